// Escapes texts of unknown origin for JSON, MOF, HTML, a terminal and the one line of an error.
//
// Hidden characters are those that a terminal, a browser or an editor obeys instead of showing them: the controls
// U+0000 to U+001F and U+007F to U+009F, the marks, embeddings, overrides and isolates that turn the direction of the
// text around them (U+061C, U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069), and the separators that break a line
// (U+2028, U+2029). ToPrintable and every function that quotes or escapes write them as escapes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class TTextBuffer;

/// The text as valid UTF-8 (RFC 3629): each byte that is not part of a well-formed character becomes U+FFFD.
std::string ToUtf8(const std::string& text);

/// The text as people may see it: valid UTF-8, each hidden character except the tab written as \xNN (below U+0080) or
/// \uNNNN. A text that is already printable stays as it is.
std::string ToPrintable(const std::string& text);

/// The text as the one line of an error: printable. One of more than 1000 characters loses its middle and says how long
/// it was, so that the name at its front and the cure at its end stay. A result of this function stays as it is.
std::string ToMessage(const std::string& text);

/// The text as a JSON string with its quotes. A parser reads the characters that ToUtf8 gives.
std::string QuoteJson(const std::string& text);

/// Appends the text as QuoteJson writes it.
void AppendJson(TTextBuffer& target, std::string_view text);

/// The text as a MOF string literal, with its quotes.
std::string QuoteMof(const std::string& text);

/// The printable text with its markup escaped, for an element's content or a quoted attribute of HTML. It is
/// well-formed XML as well.
std::string EscapeHtml(const std::string& text);

/// A stranger's text for use in a message: printable, cut after `columns`, with "..." if it has more.
std::string ShortenForMessage(const std::string& text, std::size_t columns);

/// The columns that valid UTF-8 takes: the number of its characters, not of its bytes.
std::size_t CountColumns(std::string_view text);

/// The length in bytes of the first `columns` characters.
std::size_t GetLength(std::string_view text, std::size_t columns);

/// Joins the texts that are not empty, with `between` between them.
std::string Join(const std::vector<std::string>& texts, const char* between = ", ");

/// The number with that many decimals: "60.000".
std::string WriteFixed(double number, int decimals);

/// The number with as many decimals as it needs, at most three: "59.94".
std::string WriteNumber(double number);
