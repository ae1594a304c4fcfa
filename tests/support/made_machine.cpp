#include "tests/support/made_machine.h"

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/edid_builder.h"

namespace fs = std::filesystem;

namespace {

struct TModel {
  const char* maker;
  const char* name;
  unsigned int firstYear, lastYear;
  unsigned int width, height;  // of the picture, cm
  unsigned int features;
  unsigned int established[2];
  unsigned int standard[3][2];            // 1, 1: none
  unsigned int maxVert, maxHoriz, clock;  // Hz, kHz, 10 MHz
  bool hasExtension;
};

constexpr TModel kModels[] = {
    {"TUB", "Tube 15", 1997, 2003, 28, 21, 0xE8, {0xBF, 0xEE}, {{0x31, 0x59}, {1, 1}, {1, 1}}, 120, 70, 11, false},
    {"TUB",
     "Tube 17",
     1998,
     2004,
     32,
     24,
     0xE8,
     {0xBF, 0xFF},
     {{0x61, 0x59}, {0x81, 0x80}, {1, 1}},
     160,
     95,
     20,
     false},
    {"ACM", "Acme A150", 2002, 2006, 30, 23, 0xEA, {0xA5, 0x4A}, {{0x61, 0x40}, {1, 1}, {1, 1}}, 75, 61, 8, false},
    {"ACM",
     "Acme A170",
     2003,
     2009,
     34,
     27,
     0xEA,
     {0xA5, 0x6B},
     {{0x81, 0x80}, {0x71, 0x4F}, {1, 1}},
     76,
     81,
     14,
     false},
    {"ACM",
     "Acme A190",
     2004,
     2011,
     38,
     30,
     0xEA,
     {0xA5, 0x6B},
     {{0x81, 0x80}, {0x71, 0x4F}, {1, 1}},
     76,
     83,
     14,
     false},
    {"GLX",
     "Globex Wide 20",
     2006,
     2012,
     43,
     27,
     0xEE,
     {0x21, 0x08},
     {{0xB3, 0x00}, {0x95, 0x00}, {1, 1}},
     75,
     81,
     15,
     false},
    {"GLX",
     "Globex Wide 22",
     2007,
     2014,
     47,
     30,
     0xEE,
     {0xBF, 0xEF},
     {{0xB3, 0x00}, {0x95, 0x00}, {0x81, 0x80}},
     76,
     82,
     15,
     true},
    {"INI",
     "Initech HD24",
     2009,
     2026,
     53,
     30,
     0x2A,
     {0xA5, 0x4B},
     {{0xD1, 0xC0}, {0x81, 0xC0}, {0xA9, 0x40}},
     76,
     83,
     17,
     true},
    {"INI",
     "Initech HD27",
     2012,
     2026,
     60,
     34,
     0x2A,
     {0xA5, 0x4B},
     {{0xD1, 0xC0}, {0xB3, 0x00}, {0xA9, 0x40}},
     76,
     89,
     25,
     true},
};

constexpr const char* kCards[] = {"Example Graphics 1", "Example Graphics 2", "Sample Vision X", "Specimen 3D"};
constexpr const char* kResolutions[] = {"1024x768", "1280x1024", "1680x1050", "1920x1080"};
constexpr const char* kPaths[] = {"root/etc/X11/xorg.conf", "root/etc/X11/xorg.conf", "root/etc/X11/xorg.conf",
                                  "root/etc/X11/XF86Config-4", "root/etc/X11/XF86Config"};

/// The random numbers of a machine. Not by the standard's distributions, which differ between libraries; the engine
/// does not.
class TDice {
 public:
  TDice(std::uint32_t seed, std::uint32_t number) {
    std::seed_seq both{seed, number};
    m_engine.seed(both);
  }

  /// From 0 to `count` - 1.
  unsigned int Throw(unsigned int count) { return static_cast<unsigned int>(m_engine() % count); }

  template <typename T, std::size_t count>
  const T& Pick(const T (&choices)[count]) {
    return choices[Throw(count)];
  }

 private:
  std::mt19937 m_engine;
};

void Write(const fs::path& file, const std::string& content) {
  fs::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  if (!stream.flush()) throw std::runtime_error(file.string() + " cannot be written");
}

std::string MakeEdid(TDice& dice) {
  const TModel& model = dice.Pick(kModels);
  const unsigned int year = model.firstYear + dice.Throw(model.lastYear - model.firstYear + 1);
  TEdidBuilder builder;
  builder.Manufacturer(model.maker)
      .Made(1 + dice.Throw(52), year)
      .ImageSize(model.width, model.height)
      .Gamma(120)
      .Features(model.features)
      .Established(model.established[0], model.established[1])
      .DetailedTiming(0, false)
      .RangeLimits(1, 50, model.maxVert, 30, model.maxHoriz, model.clock)
      .Name(2, model.name)
      .Serial(3, std::string(model.maker) + std::to_string(100000 + dice.Throw(900000)));
  for (unsigned int index = 0; index < 3; ++index) {
    builder.Standard(index, model.standard[index][0], model.standard[index][1]);
  }
  if (model.hasExtension) builder.Extension({0x02, 0x03, 0x04});
  const std::vector<std::uint8_t> bytes = builder.Build();
  return std::string(bytes.begin(), bytes.end());
}

std::string Quote(const std::string& text) { return "\"" + text + "\"\n"; }

std::string MakeHead(TDice& dice, const std::string& card, unsigned int bus, unsigned int head) {
  const std::string id = "Card" + std::to_string(bus) + "-" + std::to_string(head);
  return "Section \"Device\"\n    Identifier " + Quote(id) + "    Driver \"generic\"\n    BoardName " + Quote(card) +
         "    VideoRam 65536\n    BusID " + Quote("PCI:" + std::to_string(bus) + ":0:0") + "    Screen " +
         std::to_string(head) + "\nEndSection\n\nSection \"Screen\"\n    Identifier " + Quote("Screen " + id) +
         "    Device " + Quote(id) +
         "    DefaultDepth 24\n    SubSection \"Display\"\n        Depth 24\n        Modes " +
         Quote(dice.Pick(kResolutions)) + "    EndSubSection\nEndSection\n\n";
}

std::string MakeConfiguration(TDice& dice) {
  std::string text = "# made up\n\n";
  const unsigned int cards = dice.Throw(100) < 85 ? 1 : 2;
  for (unsigned int bus = 1; bus <= cards; ++bus) {
    const std::string card = dice.Pick(kCards);
    const unsigned int heads = dice.Throw(100) < 70 ? 1 : 2;
    for (unsigned int head = 0; head < heads; ++head) text += MakeHead(dice, card, bus, head);
  }
  return text;
}

unsigned int CountMonitors(TDice& dice) {
  const unsigned int percent = dice.Throw(100);
  if (percent < 5) return 0;
  if (percent < 70) return 1;
  return percent < 97 ? 2 : 3;
}

// What a broken machine has instead of something right.
struct TFault {
  const char* file;
  std::string content;
};

const TFault kFaults[] = {
    {"machine.json", "{\"systemName\": "},
    {"edid/0.bin", std::string(100, '\0')},
    {"machine.json", "{\"sytemName\": \"misspelt\"}"},
    {"edid/first.bin", std::string(128, '\0')},
    {"edid/0.bin", std::string(128, '\0')},
    {"root/etc/X11/xorg.conf", "Section \"Device\"\n    Identifier \"without an end\"\n"},
};

}  // namespace

void WriteMadeMachine(std::uint32_t seed, std::uint32_t number, const fs::path& folder) {
  if (!fs::create_directories(folder)) throw std::runtime_error(folder.string() + " already exists");
  TDice dice(seed, number);
  Write(folder / "machine.json", "{\"systemName\": \"ws-" + std::to_string(number) + "\"}\n");
  const unsigned int monitors = CountMonitors(dice);
  for (unsigned int unit = 0; unit < monitors; ++unit) {
    Write(folder / "edid" / (std::to_string(unit) + ".bin"), MakeEdid(dice));
  }
  if (dice.Throw(100) < 80) Write(folder / dice.Pick(kPaths), MakeConfiguration(dice));
  if (number % 100 != 99) return;
  const TFault& fault = kFaults[number / 100 % std::size(kFaults)];
  Write(folder / fault.file, fault.content);
}
