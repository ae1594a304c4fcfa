// A JSON value as text and as bytes. The parser and the writers of the library are templates: each room that called
// them itself would compile them again, 100 KB of code and a tenth of the build's time.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

/// Throws nlohmann::json::exception for a text that is not JSON. For texts of our own: those of strangers are for
/// TJsonReader.
nlohmann::json ParseJson(std::string_view text);

/// Whether the text is JSON.
bool IsJson(std::string_view text);

/// In one line.
std::string WriteJson(const nlohmann::json& value);

/// The value as CBOR, by which one process of the command hands it to another.
std::string PackJson(const nlohmann::json& value);
nlohmann::json UnpackJson(std::string_view packed);
