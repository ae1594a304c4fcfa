// The characters of XML 1.0: all of Unicode except most control characters and the two noncharacters U+FFFE and U+FFFF.
#pragma once

#include <string>
#include <string_view>

bool IsXmlCharacter(unsigned long code);

/// True when the text is UTF-8 whose every character XML has.
bool IsXmlText(std::string_view text);

/// The text as XML can carry it: U+FFFD replaces each byte that is not UTF-8 and each character that XML does not
/// have. One of them would make a client refuse the whole answer.
std::string ToXmlText(const std::string& text);

/// The same, but each byte that is replaced is told by two hexadecimal digits after U+FFFD, so that texts that differ
/// in such bytes still differ.
std::string NumberXmlText(const std::string& text);

/// What IsXmlText accepts, as the content of an element or as an attribute in double quotes.
std::string EscapeXml(std::string_view text);
