#include "command/machine/kernel_configuration.h"

#include <algorithm>
#include <sstream>

#include "command/edid/edid_facts.h"

namespace {

constexpr unsigned int kDefaultDepth = 24;                    // the X server's default
constexpr std::uint64_t kMaxVideoMemory = 0xFFFFFFFF / 1024;  // kilobytes: in bytes it fits into 32 bits

/// The text in quotes, without characters that would end the quotes or the line.
std::string Quote(std::string text) {
  for (char& character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x20 || code == 0x7F) character = ' ';
    if (character == '"') character = '\'';
  }
  return '"' + text + '"';
}

/// As the server reads it: decimal, with the domain only if it is not 0.
std::string MakeBusId(const TPciDevice& pci) {
  const std::string domain = pci.domain == 0 ? "" : "@" + std::to_string(pci.domain);
  return "PCI:" + std::to_string(pci.bus) + domain + ":" + std::to_string(pci.device) + ":" +
         std::to_string(pci.function);
}

class TWriter {
 public:
  explicit TWriter(const TKernelGraphics& graphics) : m_graphics(graphics) {
    m_text << "# Made by displayinfo from what the kernel's graphics drivers know: this machine has no such file.\n";
  }

  void WriteOutput(const TDrmOutput& output) {
    const std::string name = output.edid.empty() ? std::string() : ReadEdidFacts(output.edid).name;
    WriteDevice(FindCard(output), output.connector);
    m_text << "\nSection \"Monitor\"\n\tIdentifier " << Quote("Monitor of " + output.connector) << '\n';
    if (!name.empty()) m_text << "\tModelName " << Quote(name) << '\n';
    m_text << "EndSection\n";
    WriteScreen(output.connector);
  }

  void WriteDevice(const TDrmCard& card, const std::string& identifier) {
    m_text << "\nSection \"Device\"\n\tIdentifier " << Quote(identifier) << '\n';
    if (card.pci) m_text << "\tBusID " << Quote(MakeBusId(*card.pci)) << '\n';
    const auto names = m_graphics.names.find(card.name);
    if (names != m_graphics.names.end()) {
      m_text << "\tVendorName " << Quote(names->second.vendor) << "\n\tBoardName " << Quote(names->second.board)
             << '\n';
    }
    if (card.videoMemory) WriteVideoMemory(*card.videoMemory);
    m_text << "EndSection\n";
  }

  std::string GetText() const { return m_text.str(); }

 private:
  const TDrmCard& FindCard(const TDrmOutput& output) const {
    return *std::find_if(m_graphics.cards.begin(), m_graphics.cards.end(), [&](const TDrmCard& card) {
      return output.connector.compare(0, card.name.size() + 1, card.name + "-") == 0;
    });
  }

  void WriteVideoMemory(std::uint64_t kilobytes) {
    // Larger amounts are written as a comment: in bytes they do not fit into the plug-in's 32 bits.
    const char* const mark = kilobytes > kMaxVideoMemory ? "#" : "";
    m_text << '\t' << mark << "VideoRam " << kilobytes << '\n';
  }

  void WriteScreen(const std::string& connector) {
    const auto mode = m_graphics.modes.find(connector);
    const bool isOn = mode != m_graphics.modes.end();
    const unsigned int depth = isOn ? mode->second.depth.value_or(kDefaultDepth) : kDefaultDepth;
    m_text << "\nSection \"Screen\"\n\tIdentifier " << Quote("Screen of " + connector) << "\n\tDevice "
           << Quote(connector) << "\n\tMonitor " << Quote("Monitor of " + connector) << "\n\tDefaultDepth " << depth
           << '\n';
    if (isOn) {
      m_text << "\tSubSection \"Display\"\n\t\tDepth " << depth << "\n\t\tModes \"" << mode->second.width << 'x'
             << mode->second.height << "\"\n\tEndSubSection\n";
    }
    m_text << "EndSection\n";
  }

  const TKernelGraphics& m_graphics;
  std::ostringstream m_text;
};

}  // namespace

std::string MakeKernelConfiguration(const TKernelGraphics& graphics) {
  TWriter writer(graphics);
  for (const TDrmOutput& output : graphics.units) writer.WriteOutput(output);
  for (const TDrmCard& card : graphics.cards) {
    for (const TDrmOutput& output : card.outputs) {
      if (output.edid.empty()) writer.WriteOutput(output);
    }
    if (card.outputs.empty()) writer.WriteDevice(card, card.name);
  }
  return writer.GetText();
}
