// Standard output, which carries answers alone.
#pragma once

#include <string>

/// Writes the whole text; false when the reader has gone away, which is no error: it had enough. Throws TUnusable when
/// the text cannot be written. The process must ignore SIGPIPE.
bool WriteStandardOutput(const std::string& text);
