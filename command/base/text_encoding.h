// Texts of unknown origin, made fit for JSON, MOF, HTML and a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The text as valid UTF-8 (RFC 3629): each byte that is not part of a well-formed character becomes U+FFFD.
std::string ToUtf8(const std::string& text);

/// The text as people may see it: valid UTF-8, with each control character but the tab written as \xNN, so that a
/// terminal shows it and does not obey it.
std::string ToPrintable(const std::string& text);

/// The text as a MOF string literal, with its quotes.
std::string QuoteMof(const std::string& text);

/// The printable text as HTML that means no more than its characters, in an element's content and in a quoted
/// attribute. It is well-formed XML as well.
std::string EscapeHtml(const std::string& text);

/// Columns that valid UTF-8 takes: its characters, not its bytes.
std::size_t CountColumns(std::string_view text);

/// The length in bytes of the first `columns` characters.
std::size_t GetLength(std::string_view text, std::size_t columns);
