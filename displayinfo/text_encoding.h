// Texts of unknown origin, made fit for JSON and for a terminal.
#pragma once

#include <string>

/// The text as valid UTF-8 (RFC 3629): each byte that is not part of a well-formed character becomes U+FFFD.
std::string ToUtf8(const std::string& text);

/// The text as people may see it: valid UTF-8, with each control character but the tab written as \xNN, so that a
/// terminal shows it and does not obey it.
std::string ToPrintable(const std::string& text);
