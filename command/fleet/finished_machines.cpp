#include "command/fleet/finished_machines.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>

#include "command/base/text_encoding.h"
#include "command/base/unusable.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

/// Looks for the machine's name in a line, and at no more of it: a line may be long, and its name stands first.
class TNameFinder : public nlohmann::json_sax<json> {
 public:
  std::optional<std::string> name;

  bool start_object(std::size_t) override { return m_depth++ == 0; }
  bool key(string_t& key) override { return key == "machine"; }
  bool string(string_t& value) override {
    if (m_depth == 1) name = value;
    return false;
  }

  bool null() override { return false; }
  bool boolean(bool) override { return false; }
  bool number_integer(number_integer_t) override { return false; }
  bool number_unsigned(number_unsigned_t) override { return false; }
  bool number_float(number_float_t, const string_t&) override { return false; }
  bool binary(binary_t&) override { return false; }
  bool end_object() override { return false; }
  bool start_array(std::size_t) override { return false; }
  bool end_array() override { return false; }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

 private:
  int m_depth = 0;
};

std::optional<std::string> FindName(const std::string& line) {
  TNameFinder finder;
  json::sax_parse(line, &finder);
  return finder.name;
}

}  // namespace

TFinishedMachines::TFinishedMachines(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream || fs::is_directory(file)) {
    throw TUnusable(file.string() + ": cannot be read; --resume takes what an earlier run has written");
  }
  std::size_t number = 0;
  for (std::string line; std::getline(stream, line);) {
    const std::string place = file.string() + ", line " + std::to_string(++number);
    if (stream.eof()) throw TUnusable(place + ": is cut off; remove it, for example with sed -i '$d'");
    const std::optional<std::string> name = FindName(line);
    if (!name) throw TUnusable(place + ": names no machine; --resume takes what an earlier run has written");
    ++m_counts[*name];
  }
}

bool TFinishedMachines::Take(const std::string& machine) {
  const auto found = m_counts.find(ToUtf8(machine));
  if (found == m_counts.end()) return false;
  if (--found->second == 0) m_counts.erase(found);
  return true;
}
