// make_edids examples|rich FOLDER: writes EDIDs below the folder, those of the example machines (see
// tools/make-example-edids) or those with as much as possible in them.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

#include "tests/support/edid_builder.h"
#include "tests/support/rich_edids.h"

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

typedef std::map<std::string, std::vector<std::uint8_t>> TEdids;  // by their files

TEdids MakeExamples() {
  return {{"office/edid/0.bin", MakeOfficePanel().Build()},
          {"office/edid/1.bin", MakeDigitalPanel().Build()},
          {"old/edid/0.bin", MakeTube().Build()},
          {"one-for-all-units/edid/0.bin", MakeOfficePanel().Serial(3, "A190-004712").Build()},
          {"faulty-bios/edid/0.bin", MakeDigitalPanel().Extension({0x02, 0x03, 0x04}).Build()},
          {"faulty-bios/edid/1.bin", MakeOfficePanel().Byte(0, 0xFF).Build()}};
}

TEdids MakeRich() {
  TEdids edids;
  for (auto& [name, edid] : MakeRichEdids()) edids[name + ".bin"] = std::move(edid);
  return edids;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const std::map<std::string, TEdids (*)()> kinds = {{"examples", MakeExamples}, {"rich", MakeRich}};
  const auto kind = argumentCount == 3 ? kinds.find(arguments[1]) : kinds.end();
  if (kind == kinds.end()) {
    std::cerr << "usage: make_edids examples|rich FOLDER\n";
    return 2;
  }
  for (const auto& [name, bytes] : kind->second()) {
    const fs::path file = fs::path(arguments[2]) / name;
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) {
      std::cerr << "make_edids: cannot write " << file << "\n";
      return 1;
    }
  }
  return 0;
}
