// Converts text files of Windows and other systems to UTF-8 for the readers of the forms.
#pragma once

#include <string>

/// The text in UTF-8, without a byte order mark. UTF-16 is recognised by its mark; half a character in it becomes
/// U+FFFD. A text without a mark stays as it is.
std::string DecodeText(const std::string& content);

/// True if the text begins with the byte order mark of UTF-16.
bool IsUtf16(const std::string& content);
