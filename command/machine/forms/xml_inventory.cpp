#include "command/base/unusable.h"
#include "command/base/xml_reader.h"
#include "command/machine/forms/inventory_output.h"
#include "command/machine/forms/readers.h"

namespace {

bool BeginsLikeMarkup(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '<';
}

TXmlElement Parse(const std::string& text, const std::string& name) {
  try {
    return ReadXml(text);
  } catch (const TXmlFault& fault) {
    throw TUnusable(name + ": is not XML: " + fault.what());
  }
}

/// The text of a child; nothing if there is no such child.
std::optional<std::string> GetText(const TXmlElement* element, std::string_view child) {
  const TXmlElement* const found = element == nullptr ? nullptr : element->FindChild(child);
  if (found == nullptr) return std::nullopt;
  return std::string(Trim(found->text));
}

TInventoryMonitor ReadMonitor(const TXmlElement& monitor) {
  const TXmlElement* const lines = monitor.FindChild("UUENCODE");  // not trimmed: its blanks count
  return {GetText(&monitor, "PORT"), GetText(&monitor, "BASE64"),
          lines == nullptr ? std::nullopt : std::optional<std::string>(lines->text)};
}

}  // namespace

std::optional<TFoundMachine> ReadXmlInventory(const std::string& text, const std::string& name) {
  if (!BeginsLikeMarkup(text)) return std::nullopt;
  const TXmlElement request = Parse(text, name);
  const TXmlElement* const content = request.FindChild("CONTENT");
  if (request.name != "REQUEST" || content == nullptr) return std::nullopt;
  TFoundMachine machine;
  machine.name = GetText(content->FindChild("HARDWARE"), "NAME").value_or(GetText(&request, "DEVICEID").value_or(""));
  for (const TXmlElement& element : content->children) {
    if (element.name == "MONITORS") machine.Add(MakeInventoryOutput(ReadMonitor(element)));
  }
  return machine;
}
