// Whether a text is an XML document that the server may look into. Boost's reader takes much that is not well-formed,
// and calls itself for each nested element; so every text is checked here first.
#pragma once

#include <stdexcept>
#include <string_view>

/// Says in one line what is wrong, and at which byte.
class TXmlFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

constexpr std::size_t kMaxXmlDepth = 64;  // nested elements; a request has 13 when a key is a reference to a reference

/// Throws TXmlFault unless the text is one well-formed XML 1.0 document in UTF-8. Beyond that it refuses what no CIM
/// client sends: document type declarations, and with them every entity except the five that XML has; names with
/// characters beyond ASCII; and elements nested deeper than kMaxXmlDepth.
void RequireWellFormedXml(std::string_view text);
