// Writes machines down, and collects from them again.
#include "command/capture/capture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <nlohmann/json.hpp>

#include "command/base/base64.h"
#include "command/base/unusable.h"
#include "command/collection/collection.h"
#include "command/machine/captured_machine.h"
#include "command/machine/folder_files.h"
#include "command/machine/machine.h"
#include "command/report/json_report.h"
#include "embedded_host/schema.h"
#include "host/exception.h"
#include "realmode/virtual_video_bios.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/process.h"

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

namespace {

std::string Answer(const TMachine& machine) {
  TRequest all;
  for (const TClassDeclaration& declaration : GetSchema()) all.emplace_back(declaration.name);
  return MakeJsonReport(Collect(machine, PLUGIN_FILE, {all}, {}));
}

std::vector<std::string> CaptureMachine(const TMachine& machine, const fs::path& plugin, const fs::path& target,
                                        bool isAnonymous) {
  const TCapture capture = UnpackCapture(Pack(MakeCapture(machine, plugin, target, isAnonymous)));
  WriteCapture(capture, target);
  return capture.remarks;
}

class Capture : public testing::Test {
 protected:
  Capture() { live.Edid(0, TEdidBuilder().Build()); }

  /// What lies in the captured machine, by name.
  std::string List() const { return RunShell("cd " + target.string() + " && find . -type f | sort").output; }

  std::string Read(const std::string& name) const { return RunShell("cat " + (target / name).string()).output; }

  static std::string ReadFile(const fs::path& file) { return RunShell("cat " + file.string()).output; }

  void ExpectRefused(const std::string& reason) const { ExpectRefused(target, reason); }

  void ExpectRefused(const fs::path& path, const std::string& reason) const {
    try {
      CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, path, false);
      FAIL() << "it was captured";
    } catch (const TUnusable& error) {
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
  }

  TCapturedMachineBuilder live;     // with a monitor
  TCapturedMachineBuilder nothing;  // without anything
  TTemporaryFolder folder;
  const fs::path target = folder.GetPath() / "ws-17";
  const fs::path document = folder.GetPath() / "ws-17.json";
};

/// A machine whose one file exists and cannot be read.
class TUnreadableFiles : public IMachineFiles {
 public:
  bool Exists(const std::string& path) const override { return path == "/etc/X11/xorg.conf"; }
  std::string Read(const std::string& path) const override {
    throw NQRXZELT20::TZELTException(path + ": cannot be read: Permission denied");
  }
};

class CaptureOfAnExample : public Capture, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_P(CaptureOfAnExample, IsAnsweredAsTheMachineWas) {
  const fs::path example = fs::path(EXAMPLES_FOLDER) / GetParam();
  for (const char* const name : {"ws-17", "ws-17.json"}) {
    CaptureMachine(ReadCapturedMachine(example), PLUGIN_FILE, folder.GetPath() / name, false);
    EXPECT_EQ(Answer(ReadCapturedMachine(folder.GetPath() / name)), Answer(ReadCapturedMachine(example))) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(OfEach, CaptureOfAnExample,
                         testing::Values("both-configurations", "faulty-bios", "no-default-depth", "office", "old",
                                         "one-for-all-units", "two-cards", "two-heads"));

TEST_F(Capture, KeepsTheTimeOfTheMachine) {
  live.Json(R"({"collected": "2026-11-21T21:30:00Z"})");
  for (const fs::path& path : {target, document}) {
    CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, path, false);
    EXPECT_EQ(ReadCapturedMachine(path).collected, "2026-11-21T21:30:00Z");
  }
}

TEST_F(Capture, SaysNothingOfATimeThatIsNotKnown) {
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_FALSE(json::parse(Read("machine.json")).contains("collected"));
}

TEST_F(Capture, IsAnsweredAsTheMachineWasWhateverItsBiosDoes) {
  const std::vector<std::uint8_t> edid = TEdidBuilder().Extension({0x40}).Extension({0x40}).Build();
  const char* const faults[] = {
      R"({"bios": {"present": false}})",
      R"({"bios": {"memory": false}})",
      R"({"bios": {"ignoresUnit": true}})",
      R"({"bios": {"units": {"0": {"failAtBlock": 0}}}})",
      R"({"bios": {"units": {"0": {"errorAtBlock": 0}}}})",
      R"({"bios": {"units": {"0": {"failAtBlock": 2}, "1": {"errorAtBlock": 1}}}})",
      R"({"bios": {"units": {"1": {"failAtBlock": 0}}}})",
      R"({"systemType": 3})",
      R"({"provider": false})",
      R"({"systemName": "a\"\\\u0000\u00e9", "systemCreationClassName": ""})",
  };
  for (const char* const fault : faults) {
    const TCapturedMachineBuilder machine;
    machine.Json(fault).Edid(0, edid).Edid(1, TEdidBuilder().Name(0, "B").Build());
    const TTemporaryFolder captured;
    CaptureMachine(ReadCapturedMachine(machine.GetPath()), PLUGIN_FILE, captured.GetPath() / "m", false);
    EXPECT_EQ(Answer(ReadCapturedMachine(captured.GetPath() / "m")), Answer(ReadCapturedMachine(machine.GetPath())))
        << fault;
  }
}

TEST_F(Capture, HoldsTheFilesThatWereFoundAndTheEdidsOfTheMachine) {
  live.File("root/etc/X11/xorg.conf", "Section \"Device\"\n  Identifier \"a\"\nEndSection\n")
      .File("root/etc/passwd", "secret")
      .Edid(0, TEdidBuilder().Build())
      .Edid(2, TEdidBuilder().Build());
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_EQ(List(), "./edid/0.bin\n./edid/2.bin\n./machine.json\n./root/etc/X11/xorg.conf\n");
  EXPECT_EQ(Read("root/etc/X11/xorg.conf"), "Section \"Device\"\n  Identifier \"a\"\nEndSection\n");
}

TEST_F(Capture, HoldsAFileInThePlaceOfALink) {
  live.File("root/real.conf", "# real\n").File("root/etc/X11/other", "");
  fs::create_symlink("../../real.conf", live.GetPath() / "root/etc/X11/xorg.conf");
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target / "root/etc/X11/xorg.conf")));
  EXPECT_EQ(Read("root/etc/X11/xorg.conf"), "# real\n");
}

TEST_F(Capture, WritesNothingOutsideItsFolderWhateverPathAPluginAsksFor) {
  TMachine machine = ReadCapturedMachine(live.GetPath());
  machine.host.files = std::make_shared<TFolderFiles>(TRootedFolder("/", ELinks::kAll));
  CaptureMachine(machine, ASKING_PLUGIN_FILE, target, false);
  EXPECT_EQ(List(), "./edid/0.bin\n./machine.json\n./root/etc/passwd\n");
  EXPECT_EQ(RunShell("ls " + folder.GetPath().string()).output, "ws-17\n");
}

TEST_F(Capture, NamesTheSystem) {
  live.Json(R"({"systemName": "ws-17", "systemType": 2})");
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_EQ(json::parse(Read("machine.json"))["systemName"], "ws-17");
}

TEST_F(Capture, SaysOnceThatNothingMoreIsReadOfTheMachine) {
  for (const fs::path& path : {target, document}) {
    int told = 0;
    const TCapture capture = MakeCapture(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, path, false, [&] {
      ++told;
      fs::remove_all(live.GetPath() / "edid");
    });
    EXPECT_EQ(told, 1) << path;
    EXPECT_FALSE(fs::exists(path));
    live.Edid(0, TEdidBuilder().Build());
  }
}

// The time limit and Ctrl-C, which take effect after the capture has been removed.
TEST_F(Capture, IsNotLeftInPartByASignal) {
  const TCapture capture = MakeCapture(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGXCPU, SIGALRM}) {
    const auto captureInterrupted = [&] {
      sigset_t signals;
      sigfillset(&signals);
      sigprocmask(SIG_BLOCK, &signals, nullptr);
      raise(signal);
      try {
        WriteCapture(capture, target);
      } catch (const TUnusable&) {
        sigprocmask(SIG_UNBLOCK, &signals, nullptr);
      }
    };
    EXPECT_EXIT(captureInterrupted(), testing::KilledBySignal(signal), "");
    EXPECT_FALSE(fs::exists(target));
  }
}

TEST_F(Capture, IsWrittenWhateverSignalsAreIgnored) {
  const TCapture capture = MakeCapture(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  std::signal(SIGHUP, SIG_IGN);
  WriteCapture(capture, target);
  std::signal(SIGHUP, SIG_DFL);
  EXPECT_TRUE(fs::exists(target / "machine.json"));
}

TEST_F(Capture, HasFillersForSerialNumbersAndNameWhenItIsAnonymous) {
  live.Json(R"({"systemName": "ws-17"})").Edid(0, TEdidBuilder().Serial(3, "A190-004711").Byte(12, 7).Build());
  const std::vector<std::string> remarks =
      CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, true);
  EXPECT_THAT(remarks, ElementsAre("replaced by fillers: the system's name, and serial numbers (1 in a descriptor, 1 "
                                   "in a header)"));
  EXPECT_EQ(json::parse(Read("machine.json"))["systemName"], "anonymous");
  const std::vector<std::uint8_t> filled = TEdidBuilder().Serial(3, "1").Byte(12, 1).Build();
  EXPECT_EQ(Read("edid/0.bin"), std::string(filled.begin(), filled.end()));
  EXPECT_EQ(RunShell("grep -r -e ws-17 -e 4711 " + target.string()).output, "");
}

TEST_F(Capture, SaysThatItFoundNoSerialNumberWhenItIsAnonymous) {
  EXPECT_THAT(CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, true),
              ElementsAre("replaced by fillers: the system's name; no serial number was found in an EDID"));
}

TEST_F(Capture, IsWithoutThemInOneFileToo) {
  live.Json(R"({"systemName": "ws-17"})").Edid(0, TEdidBuilder().Serial(3, "A190-004711").Byte(12, 7).Build());
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, document, true);
  const json captured = json::parse(ReadFile(document));
  EXPECT_EQ(captured["systemName"], "anonymous");
  const std::vector<std::uint8_t> filled = TEdidBuilder().Serial(3, "1").Byte(12, 1).Build();
  EXPECT_EQ(captured["edids"]["0"], EncodeBase64(std::string(filled.begin(), filled.end())));
}

TEST_F(Capture, KeepsMonitorsApartThatDifferInTheirSerialNumbersOnlyWhenItIsAnonymous) {
  const auto make = [](const char* serial) { return TEdidBuilder().Name(0, "Twin").Serial(3, serial).Build(); };
  live.Edid(0, make("4711")).Edid(1, make("4712")).Edid(2, make("4711")).Edid(3, make("4711"));
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, true);
  const TAnswer answer = Collect(ReadCapturedMachine(target), PLUGIN_FILE, {{"QRXSG_DesktopMonitor"}}, {});
  std::vector<std::string> serials;
  for (const auto& monitor : answer.requests[0].instances) {
    serials.push_back(monitor->GetProperties().at("SerialNumber"));
  }
  EXPECT_THAT(serials, ElementsAre("1", "2", "1"));
  EXPECT_EQ(answer.outputs.at(3).reason, "its EDID repeats that of unit 2");
}

TEST_F(Capture, NamesTheFilesThatHoldWhatWasReplacedElsewhere) {
  live.Json(R"({"systemName": "ws-17"})").File("root/etc/X11/xorg.conf", "# of monitor A190-004711\n");
  live.Edid(0, TEdidBuilder().Serial(3, "A190-004711").Build());
  EXPECT_THAT(CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, true),
              ElementsAre("replaced by fillers: the system's name, and serial numbers (1 in a descriptor)",
                          "/etc/X11/xorg.conf holds the system's name or a serial number; it is captured as it is; "
                          "--no-xconfig leaves it out"));
}

TEST_F(Capture, IsRefusedWhenFillersWouldChangeMoreThanSerialNumbers) {
  // These two differ only in bytes after the end of a blank serial number.
  const auto make = [](unsigned int byte) { return TEdidBuilder().Serial(3, " ").Byte(108 + 17, byte).Build(); };
  live.Edid(0, make('a')).Edid(1, make('b'));
  try {
    CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, true);
    FAIL() << "it was captured";
  } catch (const TUnusable& error) {
    EXPECT_STREQ(error.what(),
                 "the answer without serial numbers would differ in more than these; capture without --anonymous");
  }
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(Capture, OfACaptureKeepsItsDateEvenWhenItIsAnonymous) {
  live.Json(R"({"collected": "2026-11-21T21:30:00Z"})");
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, true);
  EXPECT_EQ(json::parse(Read("machine.json"))["collected"], "2026-11-21T21:30:00Z");
}

TEST_F(Capture, InOneFileIsALineForEachValue) {
  nothing.Json(R"({"systemName": "ws-17"})")
      .File("root/etc/X11/xorg.conf", "Section \"Device\"\nEndSection\n\xC3\xA9\n");
  CaptureMachine(ReadCapturedMachine(nothing.GetPath()), PLUGIN_FILE, document, false);
  EXPECT_EQ(ReadFile(document), R"({
  "captured": 1,
  "systemName": "ws-17",
  "systemCreationClassName": "CIM_UnitaryComputerSystem",
  "systemType": 2,
  "provider": true,
  "bios": {
    "present": true,
    "memory": true,
    "units": {}
  },
  "files": {
    "/etc/X11/xorg.conf": {
      "text": "Section \"Device\"\nEndSection\né\n"
    }
  },
  "edids": {}
}
)");
}

TEST_F(Capture, InOneFileHoldsAFileThatIsNotUtf8AsBase64) {
  live.File("root/etc/X11/xorg.conf", "# \xFF");
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, document, false);
  EXPECT_EQ(json::parse(ReadFile(document))["files"]["/etc/X11/xorg.conf"], json::parse(R"({"base64": "IyD/"})"));
}

TEST_F(Capture, InOneFileMustFitIntoOneThatCanBeRead) {
  live.File("root/etc/X11/xorg.conf", "");
  fs::resize_file(live.GetPath() / "root/etc/X11/xorg.conf", 12 * 1024 * 1024);  // each zero is written as \u0000
  const fs::path& whole = document;
  ExpectRefused(whole, "and a captured machine in one file has 67108864 at most; capture to a folder");
  EXPECT_FALSE(fs::exists(whole));
}

TEST_F(Capture, NamesEveryOutput) {
  live.Json(
          R"({"bios": {"units": {"0": {"connector": "card0-DP-1"}, "7": {"connector": "card0-DP-8", "path": "0000:01:00.0/DP-8"}}}})")
      .Edid(0, TEdidBuilder().Build());
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, document, false);
  for (const fs::path& captured : {target, document}) {
    EXPECT_THAT(ReadCapturedMachine(captured).connectors, ElementsAre(Pair(0, "card0-DP-1"), Pair(7, "card0-DP-8")));
    EXPECT_THAT(ReadCapturedMachine(captured).paths, ElementsAre(Pair(7, "0000:01:00.0/DP-8")));
  }
}

TEST_F(Capture, HoldsNoDamagedEdid) {
  live.Edid(0, TEdidBuilder().Build()).Edid(1, std::vector<std::uint8_t>(129));
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_EQ(List(), "./edid/0.bin\n./machine.json\n");
}

TEST_F(Capture, IsNoFolderWhereAnotherFileWasMeant) {
  for (const char* const name : {"ws-17.tar.gz", "ws-17.tgz", "ws-17.JSON", "ws-17.xml", "ws-17.Zip", "ws-17.bin"}) {
    const std::string path = (folder.GetPath() / name).string();
    ExpectRefused(path, path + ": has the ending of a file that is not written; capture to one file, " +
                            document.string() + ", or to a folder: " + path + "/");
    EXPECT_FALSE(fs::exists(path));
  }
}

TEST_F(Capture, IsAFolderOfAnyNameThatLooksLikeOne) {
  for (const char* const name : {"ws-17.example.org", "10.0.0.17", "ws-17.tar/", ".json", "v1.0"}) {
    CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, folder.GetPath() / name, false);
    EXPECT_TRUE(fs::is_directory(folder.GetPath() / name)) << name;
  }
}

TEST_F(Capture, IsNotMadeOfNothing) {
  for (const fs::path& path : {target, document, fs::path("-")}) {
    try {
      CaptureMachine(ReadCapturedMachine(nothing.GetPath()), PLUGIN_FILE, path, false);
      FAIL() << "it was captured";
    } catch (const TUnusable& error) {
      EXPECT_STREQ(error.what(),
                   "there is nothing to capture: no X configuration and no usable EDID was found; displayinfo says "
                   "where it looked");
    }
    EXPECT_FALSE(fs::exists(path));
  }
}

TEST_F(Capture, IsMadeOfAConfigurationOnlyToo) {
  nothing.File("root/etc/X11/xorg.conf", "");
  CaptureMachine(ReadCapturedMachine(nothing.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_EQ(List(), "./machine.json\n./root/etc/X11/xorg.conf\n");
}

TEST_F(Capture, SaysWhoMayReadAFileThatItCannotRead) {
  TMachine machine = ReadCapturedMachine(live.GetPath());
  machine.host.files = std::make_shared<TUnreadableFiles>();
  try {
    CaptureMachine(machine, PLUGIN_FILE, target, false);
    FAIL() << "it was captured";
  } catch (const TUnusable& error) {
    EXPECT_STREQ(error.what(),
                 "/etc/X11/xorg.conf: cannot be read: Permission denied; capture as a user who may read it");
  }
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(Capture, IsNotWrittenOverAnything) {
  folder.Write("ws-17/precious", "old");
  ExpectRefused("ws-17: already exists; name a folder that does not");
  EXPECT_EQ(List(), "./precious\n");
  fs::remove_all(target);
  folder.Write("ws-17", "old");
  ExpectRefused("already exists");
  fs::remove(target);
  fs::create_symlink("nowhere", target);
  ExpectRefused("already exists");
  EXPECT_FALSE(fs::exists(folder.GetPath() / "nowhere"));
}

TEST_F(Capture, InOneFileIsNotWrittenOverAnything) {
  folder.Write("ws-17.json", "old");
  ExpectRefused(document, "ws-17.json: already exists; name a file that does not");
  EXPECT_EQ(ReadFile(document), "old");
  fs::remove(document);
  fs::create_symlink("nowhere", document);
  ExpectRefused(document, "already exists");
  EXPECT_FALSE(fs::exists(folder.GetPath() / "nowhere"));
  EXPECT_TRUE(fs::is_symlink(document));
}

TEST_F(Capture, IsRefusedWhereNoFolderCanBeMade) {
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_THROW(CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target / "machine.json/x", false),
               TUnusable);
}

namespace {

/// A BIOS that answers only in its first session.
class TUnsteadyBios : public TVirtualVideoBios {
 public:
  using TVirtualVideoBios::TVirtualVideoBios;

  bool Start(TRealModeMemory& memory) override {
    ++m_sessions;
    return TVirtualVideoBios::Start(memory);
  }
  bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) override {
    return m_sessions == 1 && TVirtualVideoBios::Interrupt(number, registers, memory);
  }

 private:
  int m_sessions = 0;
};

}  // namespace

TEST_F(Capture, IsRefusedWhenItWouldNotAnswerTheSame) {
  TMachine machine = ReadCapturedMachine(live.GetPath());
  TVirtualBiosConfiguration configuration;
  configuration.units[0].edid = TEdidBuilder().Established(0xFF, 0xFF).Build();
  for (const fs::path& path : {target, document}) {
    const auto bios = std::make_shared<TUnsteadyBios>(configuration);
    machine.bios = bios;
    EXPECT_THROW(CaptureMachine(machine, PLUGIN_FILE, path, false), TUnusable);
    EXPECT_FALSE(fs::exists(path));
  }
}

TEST_F(Capture, HasAsManyMonitorsAsUnits) {
  for (unsigned int unit = 0; unit < 256; ++unit) {
    const std::string name = "M" + std::to_string(unit);
    live.Edid(unit, TEdidBuilder().Name(0, name.c_str()).Build());
  }
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, document, false);
  EXPECT_EQ(json::parse(ReadFile(document))["edids"].size(), 256U);
}

TEST_F(Capture, ShowsNoHiddenCharacter) {
  const std::string name = "a\x7F\u0085\u202E\u2028";
  live.Json("{\"systemName\": " + json(name).dump() + "}");
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, document, false);
  EXPECT_THAT(ReadFile(document), HasSubstr(R"("systemName": "a\u007f\u0085\u202e\u2028")"));
  EXPECT_EQ(json::parse(ReadFile(document))["systemName"], name);
}
