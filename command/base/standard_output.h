// Standard output, which carries answers and nothing else.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

/// Opens something harmless as standard input, output or error if they are closed. Otherwise the next file that is
/// opened would become one of them, and would be read as a list or overwritten with answers. Reading and writing a
/// closed one still fails.
void KeepStandardDescriptors();

/// The columns of the terminal; nothing if standard output is no terminal, or one that does not know its width.
std::optional<std::size_t> GetTerminalWidth();

/// Writes the whole text, and waits for a slow reader. False if the reader has closed its end, which is no error.
/// Throws TUnusable if the text cannot be written; a file then ends with a complete line. The process must ignore
/// SIGPIPE and SIGXFSZ.
bool WriteStandardOutput(const std::string& text);
