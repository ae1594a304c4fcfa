// Text files of Windows and others, as the readers of the forms take them.
#pragma once

#include <string>

/// The text in UTF-8, without a byte order mark. UTF-16 is known by its mark; half a character in it becomes U+FFFD. A
/// text without a mark stays as it is.
std::string DecodeText(const std::string& content);

/// Whether the text has the byte order mark of UTF-16.
bool IsUtf16(const std::string& content);
