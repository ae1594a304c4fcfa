// Standard output, which carries answers and nothing else.
#pragma once

#include <string>

/// Puts something harmless in the place of standard input, output and error where they are closed: the next file that
/// is opened would become one of them, and be read as a list or written over with answers. Reading and writing what was
/// closed still fails.
void KeepStandardDescriptors();

/// Writes the whole text, however long its reader lets it wait; false when the reader has gone away, which is no error:
/// it had enough. Throws TUnusable when the text cannot be written. The process must ignore SIGPIPE.
bool WriteStandardOutput(const std::string& text);
