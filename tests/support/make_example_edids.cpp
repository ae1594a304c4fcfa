// make_example_edids FOLDER: writes the EDIDs of the example machines below the folder (see tools/make-example-edids).
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

#include "tests/support/edid_builder.h"

namespace fs = std::filesystem;

namespace {

TEdidBuilder MakeOfficePanel() {
  return TEdidBuilder()
      .Manufacturer("ACM")
      .Made(14, 2008)
      .ImageSize(38, 30)
      .Gamma(120)
      .Features(0xEA)
      .Established(0xA5, 0x6B)
      .Standard(0, 0x81, 0x80)
      .Standard(1, 0x71, 0x4F)
      .DetailedTiming(0, false)
      .RangeLimits(1, 56, 76, 30, 83, 14)
      .Name(2, "Acme A190")
      .Serial(3, "A190-004711");
}

TEdidBuilder MakeDigitalPanel() {
  return TEdidBuilder()
      .Manufacturer("GLX")
      .Version(1, 3)
      .Made(40, 2007)
      .ImageSize(43, 27)
      .Gamma(120)
      .Features(0xEE)
      .Established(0x21, 0x08)
      .Standard(0, 0xB3, 0x00)
      .Standard(1, 0x95, 0x00)
      .DetailedTiming(0, false)
      .RangeLimits(1, 49, 75, 31, 81, 15)
      .Name(2, "Globex Wide")
      .Serial(3, "GW20-0815")
      .Extension({0x40, 0x01, 0x02});
}

TEdidBuilder MakeTube() {
  return TEdidBuilder()
      .Manufacturer("OLD")
      .Version(1, 1)
      .Made(7, 1998)
      .ImageSize(32, 24)
      .Gamma(150)
      .Features(0xE8)
      .Established(0xBF, 0xFF)
      .Standard(0, 0x61, 0x59)
      .RangeLimits(0, 50, 160, 30, 95, 20)
      .Name(1, "Tube 17");
}

// The EDIDs by their files.
const std::map<std::string, TEdidBuilder> kEdids = {
    {"office/edid/0.bin", MakeOfficePanel()},
    {"office/edid/1.bin", MakeDigitalPanel()},
    {"old/edid/0.bin", MakeTube()},
    {"one-for-all-units/edid/0.bin", MakeOfficePanel().Serial(3, "A190-004712")},
    {"faulty-bios/edid/0.bin", MakeDigitalPanel().Extension({0x02, 0x03, 0x04})},
    {"faulty-bios/edid/1.bin", MakeOfficePanel().Byte(0, 0xFF)},
};

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::cerr << "usage: make_example_edids FOLDER\n";
    return 2;
  }
  for (const auto& [name, builder] : kEdids) {
    const fs::path file = fs::path(arguments[1]) / name;
    fs::create_directories(file.parent_path());
    const std::vector<std::uint8_t> bytes = builder.Build();
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) {
      std::cerr << "make_example_edids: cannot write " << file << "\n";
      return 1;
    }
  }
  return 0;
}
