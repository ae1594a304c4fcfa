// Makes texts fit for XML 1.0, which has all characters of Unicode except most control characters, U+FFFE and U+FFFF.
#pragma once

#include <string>
#include <string_view>

bool IsXmlCharacter(unsigned long code);

/// True if the text is UTF-8 and XML allows all of its characters.
bool IsXmlText(std::string_view text);

/// The text with U+FFFD in place of each byte that is not UTF-8 and each character that XML does not allow. A single
/// one of them would make a client refuse the whole answer.
std::string ToXmlText(const std::string& text);

/// The same, but with two hexadecimal digits after each U+FFFD that give the replaced byte, so that texts that differ
/// only in such bytes still differ.
std::string NumberXmlText(const std::string& text);

/// Escapes a text for the content of an element or for an attribute in double quotes. IsXmlText must accept the text.
std::string EscapeXml(std::string_view text);
