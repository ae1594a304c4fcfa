#include "command/edid/edid_serials.h"

#include <algorithm>
#include <array>

#include "edid/layout.h"

namespace {

// What is replaced, as people are told it.
constexpr const char* kInHeader = "in a header";
constexpr const char* kInDescriptor = "in a descriptor";
constexpr const char* kInDisplayId = "in a DisplayID product identification";
constexpr const char* kDisplayIdText = "as a DisplayID text";
constexpr const char* kInTopology = "in a DisplayID tiled display topology";
constexpr const char* kContainerId = "as a container id";
constexpr const char* kUnknown = "in a block that was emptied";

// Extension blocks [their tags are those of the Enhanced EDID standard]. Others hold anything: localized strings
// (0x50) the serial number in another script, a maker's own (0xFF) and repeated base blocks the serial number itself.
constexpr unsigned char kCta = 0x02;
constexpr unsigned char kVideoTimingExtension = 0x10;
constexpr unsigned char kDisplayInformation = 0x40;
constexpr unsigned char kDisplayId = 0x70;
constexpr unsigned char kBlockMap = 0xF0;

constexpr unsigned char kVersion1 = 1;
constexpr std::size_t kAfterVersion = 20;      // of a base block; in other versions what follows is not known
constexpr std::size_t kAfterExtensionTag = 2;  // and after its version

// CTA-861: data blocks from byte 4 to where byte 2 says, then slots of 18 bytes.
constexpr std::size_t kCtaSlots = 2;
constexpr std::size_t kCtaDataBlocks = 4;
constexpr unsigned int kVendorSpecific = 3;
// A display of Microsoft's own kind: its registration, a version, its use, and the container id.
constexpr std::array<unsigned char, 3> kMicrosoft = {0x5C, 0x12, 0xCA};
constexpr std::size_t kMicrosoftContainerId = 5;

constexpr std::size_t kVideoTimingSlots = 5;  // of a video timing extension

// DisplayID: a section from byte 1, whose size byte 2 says; data blocks of three bytes and their content.
constexpr std::size_t kSectionSize = 2;
constexpr std::size_t kSectionBlocks = 5;
constexpr unsigned char kProductIdentification1 = 0x00;  // version 1
constexpr unsigned char kSerialNumberText = 0x0A;
constexpr unsigned char kProductIdentification2 = 0x20;  // version 2
constexpr unsigned char kContainerIdBlock = 0x29;
constexpr unsigned char kTopology1 = 0x12;
constexpr unsigned char kTopology2 = 0x28;
constexpr unsigned char kCtaBlocks = 0x81;   // data blocks of CTA-861
constexpr std::size_t kDisplayIdSerial = 5;  // in a product identification: after the maker and the product
constexpr std::size_t kTopologySerial = 18;  // after the places of the tiles, the maker and the product
constexpr std::size_t kDisplayIdSerialSize = 4;
constexpr std::size_t kContainerIdSize = 16;

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
      case kCta:
        return EditCta();
      case kVideoTimingExtension:
        return EditSlots(kVideoTimingSlots);
      case kDisplayId:
        return EditDisplayId();
      case kDisplayInformation:
      case kBlockMap:
        return;  // what these hold is known, and is no serial number
      default:
        return EmptyFrom(kAfterExtensionTag);
    }
  }

 private:
  unsigned char At(std::size_t position) const { return static_cast<unsigned char>(m_edid[m_block + position]); }

  std::string Get(std::size_t position, std::size_t size) const { return m_edid.substr(m_block + position, size); }

  /// The sum of the bytes with the checksum stays what it was.
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

  /// Of zeros, or of `none`, it is no serial number.
  void EditNumber(const char* kind, std::size_t position, std::size_t size, const std::string& none = "") {
    const std::string original = Get(position, size);
    if (original == none || original == std::string(size, '\0')) return;
    SetNumber(position, size, m_fillers.Number(kind, original));
  }

  /// A text of at most `size` bytes, ended as those of descriptors are.
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
    // A text that ends in zeros keeps them when there is none.
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
    const std::size_t slots = At(kCtaSlots);
    if (slots < kCtaDataBlocks) return;
    EditCtaBlocks(kCtaDataBlocks, std::min(slots, edid::kChecksum));
    EditSlots(slots);
  }

  void EditCtaBlocks(std::size_t begin, std::size_t end) {
    for (std::size_t block = begin; block < end;) {
      const std::size_t size = At(block) & 0x1FU;
      if (block + 1 + size <= end && At(block) >> 5 == kVendorSpecific) EditVendorBlock(block + 1, size);
      block += 1 + size;
    }
  }

  void EditVendorBlock(std::size_t content, std::size_t size) {
    const bool hasId = size >= kMicrosoftContainerId + kContainerIdSize &&
                       std::equal(kMicrosoft.begin(), kMicrosoft.end(), m_edid.begin() + Offset(content), IsSame);
    if (hasId) EditNumber(kContainerId, content + kMicrosoftContainerId, kContainerIdSize);
  }

  /// The section has a checksum of its own, and the block keeps its sum when that is adjusted.
  void EditDisplayId() {
    const std::size_t end = kSectionBlocks + At(kSectionSize);
    if (end >= edid::kChecksum || !HasWholeBlocks(end)) return EmptyFrom(kAfterExtensionTag);
    m_checksum = end;
    for (std::size_t block = kSectionBlocks; block + 3 <= end; block += 3 + At(block + 2)) {
      EditDisplayIdBlock(At(block), block + 3, At(block + 2));
    }
  }

  /// Whether each data block of a DisplayID section ends in it. Else it is not known what is where.
  bool HasWholeBlocks(std::size_t end) const {
    std::size_t block = kSectionBlocks;
    while (block + 3 <= end) block += 3 + At(block + 2);
    return block <= end;
  }

  void EditDisplayIdBlock(unsigned char tag, std::size_t content, std::size_t size) {
    const bool isProduct = tag == kProductIdentification1 || tag == kProductIdentification2;
    if (isProduct && size >= kDisplayIdSerial + kDisplayIdSerialSize) {
      EditNumber(kInDisplayId, content + kDisplayIdSerial, kDisplayIdSerialSize);
    }
    const bool isTopology = tag == kTopology1 || tag == kTopology2;
    if (isTopology && size >= kTopologySerial + kDisplayIdSerialSize) {
      EditNumber(kInTopology, content + kTopologySerial, kDisplayIdSerialSize);
    }
    if (tag == kCtaBlocks) EditCtaBlocks(content, content + size);
    if (tag == kSerialNumberText && size > 0) EditText(kDisplayIdText, content, size);
    if (tag == kContainerIdBlock && size >= kContainerIdSize) EditNumber(kContainerId, content, kContainerIdSize);
  }

  /// Leaves nothing from there on but a number that stands for what was there.
  void EmptyFrom(std::size_t begin) { EditNumber(kUnknown, begin, edid::kChecksum - begin); }

  std::ptrdiff_t Offset(std::size_t position) const { return static_cast<std::ptrdiff_t>(m_block + position); }

  static bool IsSame(unsigned char wanted, char byte) { return wanted == static_cast<unsigned char>(byte); }

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
  std::string text;
  for (const auto& [name, kind] : m_kinds) {
    text += (text.empty() ? "" : ", ") + std::to_string(kind.replaced) + " " + name;
  }
  return text;
}

unsigned int TSerialFillers::Number(const char* kind, const std::string& original) {
  TKind& known = m_kinds[kind];
  ++known.replaced;
  const auto next = static_cast<unsigned int>(known.fillers.size() + 1);
  return known.fillers.emplace(original, next).first->second;
}
