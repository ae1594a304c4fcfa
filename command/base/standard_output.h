// Standard output, which carries answers and nothing else.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

/// Opens something harmless as standard input, output or error where they are closed: otherwise the next file that is
/// opened would become one of them, and be read as a list or overwritten with answers. Reading and writing what was
/// closed still fails.
void KeepStandardDescriptors();

/// The columns of the terminal that standard output is; nothing when it is none, or does not tell.
std::optional<std::size_t> GetTerminalWidth();

/// Writes the whole text, however long the reader makes it wait. False when the reader has closed its end, which is no
/// error: it had enough. Throws TUnusable when the text cannot be written; a file then ends after a whole line. The
/// process must ignore SIGPIPE and SIGXFSZ.
bool WriteStandardOutput(const std::string& text);
