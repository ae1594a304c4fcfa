// Base64 (RFC 4648, section 4): bytes as text that a JSON document can hold.
#pragma once

#include <optional>
#include <string>
#include <string_view>

std::string EncodeBase64(std::string_view bytes);

/// The bytes, or nothing when the text is not what EncodeBase64 writes for any bytes: other characters, white space
/// included, missing padding, or bits that are set beyond the last byte.
std::optional<std::string> DecodeBase64(std::string_view text);
