#include "command/base/json.h"

using nlohmann::json;

json ParseJson(std::string_view text) { return json::parse(text); }

bool IsJson(std::string_view text) { return json::accept(text); }

std::string WriteJson(const json& value) { return value.dump(); }

std::string PackJson(const json& value) {
  std::string packed;
  json::to_cbor(value, packed);
  return packed;
}

json UnpackJson(std::string_view packed) { return json::from_cbor(packed); }
