// Reads strangers' XML into a tree of elements.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// An element with everything in it. Comments and processing instructions are left out.
struct TXmlElement {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;  // in the order of the document
  std::vector<TXmlElement> children;
  std::string text;  // all character data directly in it, CDATA sections included; line ends as line feeds

  /// The value of that attribute, or null.
  const std::string* FindAttribute(std::string_view attribute) const;
  /// The first child of that name, or null.
  const TXmlElement* FindChild(std::string_view child) const;
};

/// Says in one line what is wrong, and at which byte.
class TXmlFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The most that a document may hold. An element without content takes about 100 bytes of memory.
struct TXmlLimits {
  std::size_t size = std::size_t{64} * 1024 * 1024;  // of the document, bytes
  std::size_t depth = 64;                            // nested elements
  std::size_t attributes = 64;                       // of one element
  std::size_t elements = 1'000'000;
};

/// Returns the root element. Throws TXmlFault unless the text is one well-formed XML 1.0 document in UTF-8 within the
/// limits. Also refuses document type declarations, every entity except the five of XML, and names with characters
/// beyond ASCII. A name includes its prefix. The time is proportional to the size.
TXmlElement ReadXml(std::string_view text, const TXmlLimits& limits = {});
