// xml_trees FILE...: prints a line of JSON for each file: its tree, [name, [[attribute, value]...], text, [child...]],
// or a text that says what is wrong with it.
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "command/base/text_encoding.h"
#include "command/base/xml_reader.h"

namespace {

std::string MakeJson(const TXmlElement& element) {
  std::string attributes;
  for (const auto& [name, value] : element.attributes) {
    attributes += (attributes.empty() ? "[" : ",[") + QuoteJson(name) + "," + QuoteJson(value) + "]";
  }
  std::string children;
  for (const TXmlElement& child : element.children) children += (children.empty() ? "" : ",") + MakeJson(child);
  return "[" + QuoteJson(element.name) + ",[" + attributes + "]," + QuoteJson(element.text) + ",[" + children + "]]";
}

}  // namespace

int main(int argumentCount, char** arguments) {
  for (int number = 1; number < argumentCount; ++number) {
    std::ifstream stream(arguments[number], std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    try {
      std::cout << MakeJson(ReadXml(text)) << '\n';
    } catch (const TXmlFault& fault) {
      std::cout << QuoteJson(fault.what()) << '\n';
    }
  }
}
