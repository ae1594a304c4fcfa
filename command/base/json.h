// Converts JSON values to text or bytes, and back. The library's parser and writers are templates: each room that
// called them would compile them again, which takes 100 KB of code and a tenth of the build's time.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

/// Throws nlohmann::json::exception if the text is not JSON. Only for our own texts: TJsonReader reads strangers'
/// texts.
nlohmann::json ParseJson(std::string_view text);

/// True if the text is JSON.
bool IsJson(std::string_view text);

/// The value as text in one line.
std::string WriteJson(const nlohmann::json& value);

/// The value as CBOR, and back: so one process of the command hands it to another.
std::string PackJson(const nlohmann::json& value);
nlohmann::json UnpackJson(std::string_view packed);
