#include "command/machine/captured_machine.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "command/base/private_folder.h"
#include "command/base/unusable.h"
#include "command/machine/host_name.h"
#include "command/machine/machine_archive.h"
#include "embedded_host/machine_files.h"
#include "host/exception.h"
#include "realmode/virtual_video_bios.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::size_t kEdidBlockSize = 128;  // bytes
constexpr std::size_t kMaxEdidBlocks = 256;  // a base block and as many extensions as its count byte can tell

/// The folder of a captured machine. What is read of it lies inside: a link that leads out of it is an error.
class TFolder {
 public:
  explicit TFolder(fs::path path) : m_path(std::move(path)), m_files(m_path) {}

  /// Where that lies, for messages too.
  fs::path At(const std::string& name) const { return m_path / name; }

  bool Has(const std::string& name) const { return fs::exists(fs::symlink_status(At(name))); }

  void RequireFolder(const std::string& name) const {
    if (!m_files.HasFolder(name)) throw TUnusable(At(name).string() + ": must be a folder inside the machine's folder");
  }

  std::string Read(const std::string& name, std::size_t maxSize) const try {
    return m_files.Read(name, maxSize);
  } catch (const NQRXZELT20::TZELTException& failure) {
    if (!m_files.Exists(name))
      throw TUnusable(At(name).string() + ": must be a regular file inside the machine's folder");
    throw TUnusable(m_path.string() + "/" + failure.what());
  }

 private:
  fs::path m_path;
  TMachineFiles m_files;
};

/// Nothing for what is no number, or not in the one way to write it: two names of a unit would be two answers.
std::optional<unsigned int> ParseUnit(const std::string& text) {
  unsigned int unit = 0;
  std::from_chars(text.data(), text.data() + text.size(), unit);
  if (text != std::to_string(unit)) return std::nullopt;
  return unit;
}

/// machine.json, key by key against what may stand there.
class TMachineJson {
 public:
  static constexpr const char* kName = "machine.json";

  TMachineJson(const TFolder& folder, THostConfiguration& host, TVirtualBiosConfiguration& bios)
      : m_folder(folder), m_host(host), m_bios(bios) {}

  void Read() {
    const json document = Parse();
    ReadObject(document, "",
               {
                   {"systemName", [&](const json& value, const TKey& key) { m_host.systemName = Text(value, key); }},
                   {"systemCreationClassName",
                    [&](const json& value, const TKey& key) { m_host.systemCreationClassName = Text(value, key); }},
                   {"systemType", [&](const json& value, const TKey& key) { m_host.systemType = Integer(value, key); }},
                   {"provider", [&](const json& value, const TKey& key) { m_host.provider = Boolean(value, key); }},
                   {"bios", [&](const json& value, const TKey& key) { ReadBios(value, key); }},
               });
  }

 private:
  typedef std::string TKey;  // the way to a value, such as bios.units.0.failAtBlock
  typedef std::map<std::string, std::function<void(const json&, const TKey&)>> TReaders;

  json Parse() const {
    constexpr std::size_t maxSize = std::size_t{1024} * 1024;
    try {
      return json::parse(m_folder.Read(kName, maxSize));
    } catch (const json::exception& error) {
      // The parser's text begins with its own error number, in brackets.
      const std::string text = error.what();
      throw TUnusable(m_folder.At(kName).string() +
                      ": is not JSON: " + text.substr(std::min(text.find("] ") + 2, text.size())));
    }
  }

  [[noreturn]] void Fail(const TKey& key, const std::string& what) const {
    throw TUnusable(m_folder.At(kName).string() + ": " + (key.empty() ? "the document" : "\"" + key + "\"") + " " +
                    what);
  }

  void ReadObject(const json& object, const TKey& key, const TReaders& readers) const {
    if (!object.is_object()) Fail(key, "must be an object");
    for (const auto& [name, value] : object.items()) {
      const TKey itemKey = key.empty() ? name : key + "." + name;
      const auto reader = readers.find(name);
      if (reader == readers.end()) Fail(itemKey, "is not a known key; known here: " + ListNames(readers));
      reader->second(value, itemKey);
    }
  }

  void ReadBios(const json& object, const TKey& biosKey) {
    ReadObject(
        object, biosKey,
        {
            {"present", [&](const json& value, const TKey& key) { m_bios.present = Boolean(value, key); }},
            {"memory", [&](const json& value, const TKey& key) { m_bios.memory = Boolean(value, key); }},
            {"ignoresUnit", [&](const json& value, const TKey& key) { m_bios.ignoresUnit = Boolean(value, key); }},
            {"units", [&](const json& value, const TKey& key) { ReadUnits(value, key); }},
        });
  }

  void ReadUnits(const json& object, const TKey& unitsKey) {
    if (!object.is_object()) Fail(unitsKey, "must be an object");
    for (const auto& [name, value] : object.items()) {
      const TKey unitKey = unitsKey + "." + name;
      const std::optional<unsigned int> number = ParseUnit(name);
      if (!number) Fail(unitKey, "is not a unit number; units are named 0, 1, 2, ...");
      auto& unit = m_bios.units[*number];
      ReadObject(
          value, unitKey,
          {
              {"failAtBlock", [&](const json& block, const TKey& key) { unit.failAtBlock = Count(block, key); }},
              {"errorAtBlock", [&](const json& block, const TKey& key) { unit.errorAtBlock = Count(block, key); }},
          });
    }
  }

  std::string Text(const json& value, const TKey& key) const {
    if (!value.is_string()) Fail(key, "must be a string");
    return value.get<std::string>();
  }

  bool Boolean(const json& value, const TKey& key) const {
    if (!value.is_boolean()) Fail(key, "must be true or false");
    return value.get<bool>();
  }

  int Integer(const json& value, const TKey& key) const {
    typedef std::numeric_limits<int> TLimits;
    return static_cast<int>(Number(value, key, TLimits::min(), TLimits::max(), "must be a whole number of 32 bits"));
  }

  unsigned int Count(const json& value, const TKey& key) const {
    constexpr std::int64_t max = std::numeric_limits<unsigned int>::max();
    return static_cast<unsigned int>(Number(value, key, 0, max, "must be a block number: 0, 1, 2, ..."));
  }

  std::int64_t Number(const json& value, const TKey& key, std::int64_t min, std::int64_t max,
                      const char* otherwise) const {
    const bool fits = value.is_number_integer() &&
                      !(value.is_number_unsigned() && value.get<std::uint64_t>() > static_cast<std::uint64_t>(max)) &&
                      value.get<std::int64_t>() >= min && value.get<std::int64_t>() <= max;
    if (!fits) Fail(key, otherwise);
    return value.get<std::int64_t>();
  }

  static std::string ListNames(const TReaders& readers) {
    std::string names;
    for (const auto& [name, reader] : readers) names += (names.empty() ? "" : ", ") + name;
    return names;
  }

  const TFolder& m_folder;
  THostConfiguration& m_host;
  TVirtualBiosConfiguration& m_bios;
};

void ReadEdid(const TFolder& folder, const std::string& name, TVirtualBiosConfiguration& bios) {
  const std::string file = folder.At(name).string();
  const std::optional<unsigned int> unit = ParseUnit(fs::path(name).stem().string());
  if (!unit) throw TUnusable(file + ": is not named after a unit; call it 0.bin, 1.bin, ...");
  const std::string content = folder.Read(name, kMaxEdidBlocks * kEdidBlockSize);
  if (content.size() % kEdidBlockSize != 0) {
    throw TUnusable(file + ": its size, " + std::to_string(content.size()) +
                    " bytes, is not a multiple of 128; an EDID is whole 128-byte blocks");
  }
  bios.units[*unit].edid.assign(content.begin(), content.end());
}

void ReadEdids(const TFolder& folder, TVirtualBiosConfiguration& bios) {
  folder.RequireFolder("edid");
  for (const fs::directory_entry& entry : fs::directory_iterator(folder.At("edid"))) {
    const std::string name = "edid/" + entry.path().filename().string();
    if (entry.path().extension() == ".bin") ReadEdid(folder, name, bios);
  }
}

TMachine ReadFolder(const fs::path& path) {
  const TFolder folder(path);
  TVirtualBiosConfiguration bios;
  TMachine machine;
  machine.host.systemName = GetHostName();
  machine.host.root = folder.At("root");
  if (folder.Has("root")) folder.RequireFolder("root");
  if (folder.Has(TMachineJson::kName)) TMachineJson(folder, machine.host, bios).Read();
  if (folder.Has("edid")) ReadEdids(folder, bios);
  machine.bios = std::make_shared<TVirtualVideoBios>(std::move(bios));
  machine.getBiosFailure = [] { return std::string(); };
  return machine;
}

TMachine ReadArchive(const fs::path& path) {
  const auto folder = std::make_shared<TPrivateFolder>();
  try {
    TMachine machine = ReadFolder(UnpackMachine(path, folder->GetPath()));
    machine.folder = folder;
    return machine;
  } catch (const TUnusable& error) {
    // Where it was unpacked to is gone when somebody reads this.
    const std::string hidden = folder->GetPath().string();
    std::string text = error.what();
    if (text.compare(0, hidden.size(), hidden) == 0) text.replace(0, hidden.size(), path.string());
    throw TUnusable(text);
  }
}

}  // namespace

TMachine ReadCapturedMachine(const fs::path& path) try {
  if (fs::is_directory(path)) return ReadFolder(path);
  if (IsMachineArchive(path)) return ReadArchive(path);
  throw TUnusable(path.string() + ": is not the folder of a captured machine; --machine takes one that exists");
} catch (const fs::filesystem_error& error) {
  throw TUnusable(error.path1().string() + ": " + error.code().message() + "; check the permissions of the folder");
}
