// make_seeds EXAMPLES FOLDER: writes the seeds of each fuzz target into FOLDER/<target>, from the example machines and
// from EDIDs that no example has.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "command/base/base64.h"
#include "tests/support/edid_builder.h"
#include "tests/support/rich_edids.h"

namespace fs = std::filesystem;

namespace {

const std::string kEnd(1, '\0');  // of a text within an input
const std::string kAllWorks(2, '\0');

constexpr const char* kDelimiters[] = {"\n", " ", "\t", "x"};

// The smallest section of each type: libFuzzer soon combines short seeds in odd ways.
constexpr const char* kSections[] = {
    "Section \"Device\"\n Identifier \"a\"\nEndSection\n",
    "Section \"screen\"\n Device \"a\"\nEndSection\n",
    "Section \"Monitor\"\n ModelName \"b\"\nEndSection\n",
};

// Every key that machine.json may have, and a value that each may not have.
constexpr const char* kMachineJsons[] = {
    R"({"systemName": "a", "collected": "2026-11-21T21:30:00Z", "systemCreationClassName": "b", "systemType": 2,
        "provider": true, "bios": {"present": true, "memory": false,
        "ignoresUnit": true, "units": {"0": {"failAtBlock": 1}, "1": {"errorAtBlock": 0}}}})",
    R"({"systemType": 99999999999})",
    R"({"provider": null})",
    R"({"bios": {"units": {"x": {}}}})",
    R"({"bios": {"units": {"0": {"failAtBlock": -1}}}})",
    R"([1.5e3, "\u00e9"])",
};

// A machine in one file with everything that is allowed, and others with something that is not.
constexpr const char* kMachineDocuments[] = {
    R"({"captured": 1, "systemName": "a", "collected": "2026-11-21T21:30:00Z", "systemCreationClassName": "b",
        "systemType": 2, "provider": true,
        "bios": {"present": true, "memory": false, "ignoresUnit": true,
                 "units": {"0": {"connector": "card0-DP-1", "path": "0000:01:00.0/DP-1", "failAtBlock": 1}, "1": {"errorAtBlock": 0}}},
        "files": {"/etc/X11/xorg.conf": {"text": "\u00e9"}, "/etc/X11/XF86Config": {"base64": "/wA="}},
        "edids": {"2": ""}})",
    R"({"captured": 2})",
    R"({"captured": 1, "captured": 1})",
    R"({"captured": 1, "files": {"/a/../b": {"text": ""}}})",
    R"({"captured": 1, "files": {"/a": {"text": "", "base64": ""}}})",
    R"({"captured": 1, "edids": {"0": "Zh=="}})",
    R"({"a": [[[[{}]]]], "captured": 1})",
};

// Answers before and after a change, each with everything that a comparison reads. "@" stands for an EDID.
constexpr const char* kAnswers[][2] = {
    {R"({"machine": "a", "requests": [{"classes": ["QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"], "instances": [
        {"class": "QRXSG_DesktopMonitor", "path": "p", "properties": {
            "DeviceID": {"type": "string", "value": "Monitor 1"}, "OperationalStatus": {"value": [2]},
            "ManufacturingDate": {"type": "datetime", "value": "20100101060000.000000+000"}}},
        {"class": "QRXSG_MonitorResolution", "path": "q", "properties": {
            "SettingID": {"value": "Monitor 1\\ Setting 1"}, "RefreshRate": {"value": 60}}}]}],
        "outputs": [{"connector": "card0-DP-1", "deviceID": "Monitor 1", "edid": "@"},
                    {"deviceID": null, "edid": "@"}]})",
     R"({"machine": "a", "requests": [{"classes": ["QRXSG_DesktopMonitor"], "instances": [
        {"class": "QRXSG_DesktopMonitor", "path": "p", "properties": {
            "DeviceID": {"value": "Monitor 2"}, "Gamma": {"value": 2.2}, "Name": {"value": null}}}]}],
        "outputs": [{"connector": "card0-DP-2", "deviceID": "Monitor 2", "edid": "@"}]})"},
    {R"({"requests": [{"classes": ["QRXSG_VideoController", "QRXSG_VideoHead"], "instances": [
        {"class": "QRXSG_VideoController", "path": "p", "properties": {"DisplayId": {"value": "PCI:1:0:0"}}},
        {"class": "QRXSG_VideoHead", "path": "q", "properties": {"DisplayId": {"value": "PCI:1:0:0"},
            "DeviceID": {"value": "card0-DP-1"}, "CurrentHorizontalResolution": {"value": 1280}}}]}], "outputs": []})",
     R"({"requests": [{"classes": ["QRXSG_VideoController", "QRXSG_VideoHead"], "instances": [
        {"class": "QRXSG_VideoController", "path": "p", "properties": {"DisplayId": {"value": "PCI:1:0:0"},
            "Gamma": {"value": 2.2}}}]}], "outputs": [{"deviceID": null, "log": [{}]}]})"},
    // Properties that are named like what the command itself knows of a monitor.
    {R"({"requests": [{"classes": ["QRXSG_DesktopMonitor"], "instances": [
        {"class": "QRXSG_DesktopMonitor", "path": "p", "properties": {"DeviceID": {"value": "Monitor 1"},
            "EDID": {"value": "@"}, "Modes": {"value": "a"}, "Listed": {"value": "a"}, "Heads": {"value": "a"}}}]}],
        "outputs": [{"deviceID": "Monitor 1", "edid": "@"}]})",
     R"({"requests": [{"classes": ["QRXSG_DesktopMonitor"], "instances": [
        {"class": "QRXSG_DesktopMonitor", "path": "p", "properties": {"DeviceID": {"value": "Monitor 1"},
            "EDID": {"value": "@"}, "Modes": {"value": "b"}}}]}],
        "outputs": [{"deviceID": "Monitor 1", "edid": "@"}]})"},
    {R"({"machine": "a", "error": "b"})", R"({"captured": 1})"},
};

// Files of other programs, with @ where an EDID goes in hex, % in decimal, ^ in base64.
constexpr const char* kForms[] = {
    "edid-decode (hex):\n\n@\n\n----------------\n",
    "00000000: @  ..\n*\n00000080: @\n",
    "00000000  @  |..|\n*\n00000100\n",
    "     0  1\n00: @    ..\n10: XX\n",
    "@\n",
    "/* { */ u8 edid[] = { @, }; // x\n",
    "BlockContent : {%}\nBlockType : 1\n",
    "DP-1 connected primary 1x1\n\tEDID: \n\t\t@\n\tdithering: off\nDP-2 disconnected\n",
    "[    30.503] (II) modeset(0): EDID for output DP-1\n(II) modeset(0): EDID (in hex):\n(II) modeset(0): \t@\n",
    "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\Enum\\DISPLAY\\A\\4&UID1\\Device Parameters]\r\n\"EDID\"=hex:@,\\\r\n  00\r\n"
    "[HKEY_LOCAL_MACHINE\\Enum\\DISPLAY\\A\\4&UID1\\Device Parameters\\EDID_OVERRIDE]\r\n\"1\"=hex:@\r\n",
    "+-o AppleDisplay\n| \"IODisplayEDID\" = <@>\n| \"IODisplayEDIDOriginal\" = <@>\n",
    R"({"deviceid": "a", "content": {"hardware": {"name": "b"}, "monitors": [{"port": "c", "base64": "^"}, {}]}})",
    "<REQUEST><CONTENT><HARDWARE><NAME>a</NAME></HARDWARE><MONITORS><BASE64>^</BASE64><PORT>b</PORT></MONITORS>"
    "<MONITORS><UUENCODE>#0V%T</UUENCODE></MONITORS></CONTENT><DEVICEID>c</DEVICEID></REQUEST>",
};

// Operations of CIM clients: the name, and the parameters.
constexpr const char* kCimOperations[][2] = {
    {"EnumerateInstances", R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="QRXSG_DesktopMonitor"/></IPARAMVALUE>)"},
    {"GetInstance", R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME="QRXSG_MonitorResolution"><KEYBINDING
        NAME="SettingID"><KEYVALUE VALUETYPE="string">a</KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE><IPARAMVALUE
        NAME="PropertyList"><VALUE.ARRAY><VALUE>SettingID</VALUE></VALUE.ARRAY></IPARAMVALUE>)"},
    {"AssociatorNames",
     R"(<IPARAMVALUE NAME="ObjectName"><INSTANCENAME CLASSNAME="QRXSG_MonitorResolution"><KEYVALUE>a</KEYVALUE>
        </INSTANCENAME></IPARAMVALUE><IPARAMVALUE NAME="Role"><VALUE>Setting</VALUE></IPARAMVALUE>)"},
    {"GetClass", R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="QRXSG_MonitorSetting"/></IPARAMVALUE>)"},
    {"GetProperty",
     R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME="QRXSG_MonitorSetting"><KEYBINDING NAME="Element">
        <VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH/><INSTANCENAME CLASSNAME="QRXSG_DesktopMonitor"/></INSTANCEPATH>
        </VALUE.REFERENCE></KEYBINDING></INSTANCENAME></IPARAMVALUE>)"},
};

std::string MakeCimRequest(const char* const (&operation)[2]) {
  return std::string(
             R"(<?xml version="1.0" encoding="utf-8"?><!-- --><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1")") +
         R"( PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME=")" + operation[0] +
         R"("><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>)" +
         operation[1] + "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
}

std::string ReadFile(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

/// An EDID as fuzz/input.h takes it.
std::string MakeUnit(const std::string& edid) { return static_cast<char>(edid.size() / 128) + edid; }

std::string MakeUnit(const TEdidBuilder& builder) {
  const std::vector<std::uint8_t> bytes = builder.Build();
  return MakeUnit(std::string(bytes.begin(), bytes.end()));
}

std::string FillEdids(std::string answer) {
  const std::vector<std::uint8_t> bytes = TEdidBuilder().Build();
  const std::string edid = EncodeBase64(std::string(bytes.begin(), bytes.end()));
  for (std::size_t place = 0; (place = answer.find('@', place)) != std::string::npos;) answer.replace(place, 1, edid);
  return answer;
}

void Replace(std::string& text, char mark, const std::string& by) {
  for (std::size_t place = 0; (place = text.find(mark, place)) != std::string::npos; place += by.size()) {
    text.replace(place, 1, by);
  }
}

/// The form with an EDID at each mark.
std::string WithEdids(std::string form) {
  const std::vector<std::uint8_t> bytes = TEdidBuilder().Build();
  std::string hex;
  std::string decimal;
  for (const std::uint8_t byte : bytes) {
    constexpr const char* digits = "0123456789abcdef";
    hex += {digits[byte / 16], digits[byte % 16], ' '};
    decimal += std::to_string(byte) + " ";
  }
  Replace(form, '@', hex);
  Replace(form, '%', decimal);
  Replace(form, '^', EncodeBase64(std::string(bytes.begin(), bytes.end())));
  return form;
}

std::vector<TEdidBuilder> MakeOddEdids() {
  TEdidBuilder long15;
  for (unsigned int block = 1; block < 16; ++block) long15.Extension({0x40, 0x01, 0x02});
  return {
      TEdidBuilder(),
      long15,
      TEdidBuilder().DetailedTiming(0, true).Established(0xFF, 0xFF).Standard(7, 0xD1, 0xC0).Standard(1, 0x31, 0x59),
      TEdidBuilder().Version(2, 0),
      TEdidBuilder().Byte(126, 0xFF).RangeLimits(3, 50, 75, 30, 80, 0xFF).Made(54, 2245),
      TEdidBuilder().Byte(56, 1).Name(1, "exactly 13 ch").Serial(2, ""),
  };
}

/// EDIDs of the makers that have rules for serial numbers.
std::vector<TEdidBuilder> MakeEdidsWithSerials() {
  std::vector<TEdidBuilder> edids;
  for (const char* const maker : {"ACR", "BNQ", "GSM", "PHL", "SAM"}) {
    TEdidBuilder edid = TEdidBuilder().Manufacturer(maker).Serial(0, "0123456789");
    edids.push_back(edid.Byte(edid::kSerialNumber, 'E').Byte(edid::kSerialNumber + 1, 'T'));
    edids.push_back(edid.Byte(edid::kSerialNumber + 2, '4').Byte(edid::kSerialNumber + 3, '2'));
  }
  return edids;
}

/// The files below a folder of a machine, in order of their names; none without the folder.
std::vector<fs::path> ListFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  if (!fs::exists(folder)) return files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class TSeeds {
 public:
  explicit TSeeds(fs::path folder) : m_folder(std::move(folder)) {}

  void Add(const std::string& target, const std::string& seed) {
    fs::create_directories(m_folder / target);
    std::ofstream stream(m_folder / target / std::to_string(m_count++), std::ios::binary);
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream << seed << std::flush;
  }

  void AddMachine(const fs::path& machine) {
    std::string units;
    for (const fs::path& file : ListFiles(machine / "edid")) units += MakeUnit(ReadFile(file));
    Add("monitors", units);
    Add("request", kAllWorks + kEnd + units);
    for (const fs::path& file : ListFiles(machine / "root")) {
      const std::string configuration = ReadFile(file);
      Add("sections", configuration);
      Add("request", kAllWorks + configuration + kEnd + units);
      for (const char* delimiters : kDelimiters) Add("text", delimiters + kEnd + configuration);
    }
    const std::string json = ReadFile(machine / "machine.json");
    Add("machine_json", json);
    Add("machine", json + kEnd + ReadFile(machine / "root/etc/X11/xorg.conf") + kEnd + units);
  }

 private:
  fs::path m_folder;
  unsigned int m_count = 0;
};

}  // namespace

int main(int argumentCount, char** arguments) try {
  if (argumentCount != 3) {
    std::cerr << "usage: make_seeds EXAMPLES FOLDER\n";
    return 2;
  }
  TSeeds seeds(arguments[2]);
  for (const fs::directory_entry& entry : fs::directory_iterator(arguments[1])) {
    if (fs::exists(entry.path() / "machine.json")) seeds.AddMachine(entry.path());
  }
  std::string units;
  for (const TEdidBuilder& builder : MakeOddEdids()) {
    seeds.Add("monitors", MakeUnit(builder));
    seeds.Add("forms", MakeUnit(builder).substr(1));
    units += MakeUnit(builder);
  }
  seeds.Add("monitors", units);
  for (const TEdidBuilder& builder : MakeEdidsWithSerials()) seeds.Add("edid_facts", MakeUnit(builder).substr(1));
  for (const auto& [name, edid] : MakeRichEdids()) seeds.Add("edid_facts", std::string(edid.begin(), edid.end()));
  for (const char* text : kSections) seeds.Add("sections", text);
  for (const char* text : kMachineJsons) seeds.Add("machine_json", text);
  for (const char* text : kMachineDocuments) seeds.Add("machine_document", text);
  for (const char* form : kForms) seeds.Add("forms", WithEdids(form));
  for (const auto& answer : kAnswers) {
    seeds.Add("answer", FillEdids(answer[0]) + kEnd + FillEdids(answer[1]));
    seeds.Add("answer", FillEdids(answer[0]) + kEnd + FillEdids(answer[0]));
  }
  for (const auto& operation : kCimOperations) seeds.Add("cim_request", MakeCimRequest(operation));
  return 0;
} catch (const std::exception& error) {
  std::cerr << "make_seeds: " << error.what() << '\n';
  return 1;
}
