#include "command/edid/edid_serials.h"

#include <algorithm>

#include "command/base/text_encoding.h"
#include "edid/cta_layout.h"
#include "edid/display_id_layout.h"
#include "edid/layout.h"

namespace cta = edid::cta;
namespace displayid = edid::displayid;

namespace {

// What was replaced, in words for people.
constexpr const char* kInHeader = "in a header";
constexpr const char* kInDescriptor = "in a descriptor";
constexpr const char* kInDisplayId = "in a DisplayID product identification";
constexpr const char* kDisplayIdText = "as a DisplayID text";
constexpr const char* kInTopology = "in a DisplayID tiled display topology";
constexpr const char* kContainerId = "as a container id";
constexpr const char* kUnknown = "in a block that was emptied";

constexpr unsigned char kVersion1 = 1;
constexpr std::size_t kAfterVersion = 20;      // in a base block; what follows is unknown in other versions
constexpr std::size_t kAfterExtensionTag = 2;  // and after its version

/// True for the tags that DisplayID 1 and DisplayID 2 give to such a data block.
constexpr bool IsProduct(unsigned int tag) { return tag == displayid::kTagProduct || tag == displayid::kTagProduct2; }
constexpr bool IsTopology(unsigned int tag) {
  return tag == displayid::kTagTopology || tag == displayid::kTagTopology2;
}

}  // namespace

/// Changes one block of an EDID.
class TSerialFillers::TEditor {
 public:
  TEditor(TSerialFillers& fillers, std::string& edid, std::size_t block)
      : m_fillers(fillers), m_edid(edid), m_block(block), m_checksum(edid::kChecksum) {}

  void EditBaseBlock() {
    EditNumber(kInHeader, edid::kSerialNumber, edid::kSerialNumberSize, std::string(4, '\1'));
    if (At(edid::kVersion) != kVersion1) return EmptyFrom(kAfterVersion);
    for (const std::size_t slot : edid::kDescriptors) EditSlot(slot);
  }

  void EditExtension() {
    switch (At(edid::kExtensionTag)) {
      case cta::kExtension:
        return EditCta();
      case edid::kVideoTimingExtension:
        return EditSlots(edid::kVtbTimings);
      case displayid::kExtension:
        return EditDisplayId();
      case edid::kDisplayInformationExtension:
      case edid::kBlockMap:
        return;  // these are known to hold no serial number
      // Other blocks can hold anything: localized strings (0x50) have the serial number in another script; a maker's
      // own blocks (0xFF) and repeated base blocks have the serial number itself.
      default:
        return EmptyFrom(kAfterExtensionTag);
    }
  }

 private:
  unsigned char At(std::size_t position) const { return static_cast<unsigned char>(m_edid[m_block + position]); }

  std::string Get(std::size_t position, std::size_t size) const { return m_edid.substr(m_block + position, size); }

  /// Changes a byte, and adjusts the checksum so that the sum stays the same.
  void Set(std::size_t position, unsigned char value) {
    char& checksum = m_edid[m_block + m_checksum];
    checksum = static_cast<char>(checksum + m_edid[m_block + position] - static_cast<char>(value));
    m_edid[m_block + position] = static_cast<char>(value);
  }

  void SetNumber(std::size_t position, std::size_t size, unsigned int number) {
    for (std::size_t byte = 0; byte < size; ++byte) {
      Set(position + byte, static_cast<unsigned char>(byte < sizeof number ? number >> (8 * byte) : 0U));
    }
  }

  /// Zeros, or the bytes of `none`, are no serial number and stay.
  void EditNumber(const char* kind, std::size_t position, std::size_t size, const std::string& none = "") {
    const std::string original = Get(position, size);
    if (original == none || original == std::string(size, '\0')) return;
    SetNumber(position, size, m_fillers.Number(kind, original));
  }

  /// Replaces a text of at most `size` bytes that ends as those in descriptors do.
  void EditText(const char* kind, std::size_t position, std::size_t size) {
    const std::string original = Get(position, size);
    const std::string text = original.substr(0, original.find_first_of(std::string("\n\0", 2)));
    std::string filler;
    if (text.find_first_not_of(' ') == std::string::npos) {
      filler = text;
    } else {
      filler = std::to_string(m_fillers.Number(kind, original)).substr(0, size);
      const std::size_t begin = text.find_first_not_of(' ');
      m_fillers.m_texts.insert(text.substr(begin, text.find_last_not_of(' ') + 1 - begin));
    }
    if (filler.size() < size) filler += '\n';
    filler.resize(size, ' ');
    // An empty text of zeros stays as it is.
    if (text.empty() && original == std::string(size, '\0')) return;
    for (std::size_t byte = 0; byte < size; ++byte) Set(position + byte, static_cast<unsigned char>(filler[byte]));
  }

  void EditSlot(std::size_t slot) {
    const bool isDescriptor = At(slot) == 0 && At(slot + 1) == 0;
    if (!isDescriptor || At(slot + edid::kDescriptorTag) != edid::kTagSerialNumber) return;
    EditText(kInDescriptor, slot + edid::kDescriptorText, edid::kDescriptorTextSize);
  }

  void EditSlots(std::size_t begin) {
    for (std::size_t slot = begin; slot + edid::kDescriptorSize <= edid::kChecksum; slot += edid::kDescriptorSize) {
      EditSlot(slot);
    }
  }

  void EditCta() {
    const std::size_t slots = At(cta::kTimings);
    if (slots < cta::kDataBlocks) return EmptyFrom(cta::kDataBlocks);  // nothing is known of what it holds
    EditCtaBlocks(cta::kDataBlocks, std::min(slots, edid::kChecksum));
    EditSlots(slots);
  }

  void EditCtaBlocks(std::size_t begin, std::size_t end) {
    for (std::size_t block = begin; block < end;) {
      const std::size_t size = At(block) & cta::kSizeBits;
      if (block + 1 + size <= end && At(block) >> cta::kTagShift == cta::kTagVendor) EditVendorBlock(block + 1, size);
      block += 1 + size;
    }
  }

  void EditVendorBlock(std::size_t content, std::size_t size) {
    constexpr std::size_t id = cta::kOuiSize + cta::kMicrosoftContainerId;
    if (size < id + displayid::kContainerIdSize) return;
    unsigned int oui = 0;
    for (std::size_t byte = cta::kOuiSize; byte-- > 0;) oui = oui << 8 | At(content + byte);
    if (oui == cta::kMicrosoft) EditNumber(kContainerId, content + id, displayid::kContainerIdSize);
  }

  /// The section has its own checksum. Adjusting it keeps the sum of the block as well.
  void EditDisplayId() {
    const std::size_t end = displayid::kDataBlocks + At(displayid::kSectionSize);
    if (end >= edid::kChecksum || !HasWholeBlocks(end)) return EmptyFrom(kAfterExtensionTag);
    m_checksum = end;
    for (std::size_t block = displayid::kDataBlocks; block + displayid::kPayload <= end;
         block += displayid::kPayload + At(block + displayid::kPayloadSize)) {
      EditDisplayIdBlock(At(block), block + displayid::kPayload, At(block + displayid::kPayloadSize));
    }
  }

  /// True if the last data block of the DisplayID section ends within it. Otherwise the blocks cannot be told apart.
  bool HasWholeBlocks(std::size_t end) const {
    std::size_t block = displayid::kDataBlocks;
    while (block + displayid::kPayload <= end) block += displayid::kPayload + At(block + displayid::kPayloadSize);
    return block <= end;
  }

  void EditDisplayIdBlock(unsigned char tag, std::size_t content, std::size_t size) {
    if (IsProduct(tag) && size >= displayid::kProductSerial + displayid::kProductSerialSize) {
      EditNumber(kInDisplayId, content + displayid::kProductSerial, displayid::kProductSerialSize);
    }
    if (IsTopology(tag) && size >= displayid::kTopologySize) {
      EditNumber(kInTopology, content + displayid::kTopologySerial, displayid::kProductSerialSize);
    }
    if (tag == displayid::kTagCta) EditCtaBlocks(content, content + size);
    if (tag == displayid::kTagSerialNumber && size > 0) EditText(kDisplayIdText, content, size);
    if (tag == displayid::kTagContainerId && size >= displayid::kContainerIdSize)
      EditNumber(kContainerId, content, displayid::kContainerIdSize);
  }

  /// Replaces everything from `begin` on by one number that stands for it.
  void EmptyFrom(std::size_t begin) { EditNumber(kUnknown, begin, edid::kChecksum - begin); }

  TSerialFillers& m_fillers;
  std::string& m_edid;
  const std::size_t m_block;
  std::size_t m_checksum;
};

void TSerialFillers::Replace(std::string& edid) {
  for (std::size_t block = 0; block + edid::kBlockSize <= edid.size(); block += edid::kBlockSize) {
    TEditor editor(*this, edid, block);
    if (block == 0) {
      editor.EditBaseBlock();
    } else {
      editor.EditExtension();
    }
  }
}

std::string TSerialFillers::Describe() const {
  std::vector<std::string> texts;
  for (const auto& [name, kind] : m_kinds) texts.push_back(std::to_string(kind.replaced) + " " + name);
  return Join(texts);
}

unsigned int TSerialFillers::Number(const char* kind, const std::string& original) {
  TKind& known = m_kinds[kind];
  ++known.replaced;
  const auto next = static_cast<unsigned int>(known.fillers.size() + 1);
  return known.fillers.emplace(original, next).first->second;
}
