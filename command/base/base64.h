// Base64 (RFC 4648, section 4): bytes as text that a JSON document can hold.
#pragma once

#include <optional>
#include <string>
#include <string_view>

std::string EncodeBase64(std::string_view bytes);

/// The bytes; nothing for a text that EncodeBase64 never writes: with other characters (even white space), without
/// padding, or with bits set beyond the last byte.
std::optional<std::string> DecodeBase64(std::string_view text);
