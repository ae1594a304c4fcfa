// Machines written down, and collected from again.
#include "command/capture/capture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "command/base/unusable.h"
#include "command/collection/collection.h"
#include "command/machine/captured_machine.h"
#include "command/machine/machine.h"
#include "command/report/json_report.h"
#include "embedded_host/schema.h"
#include "realmode/virtual_video_bios.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/process.h"

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::string Answer(const TMachine& machine) {
  TRequest all;
  for (const TClassDeclaration& declaration : GetSchema()) all.emplace_back(declaration.name);
  return MakeJsonReport(Collect(machine, PLUGIN_FILE, {all}, {}));
}

class Capture : public testing::Test {
 protected:
  /// What lies in the captured machine, by name.
  std::string List() const { return RunShell("cd " + target.string() + " && find . -type f | sort").output; }

  std::string Read(const std::string& name) const { return RunShell("cat " + (target / name).string()).output; }

  void ExpectRefused(const std::string& reason) const {
    try {
      CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
      FAIL() << "it was captured";
    } catch (const TUnusable& error) {
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
  }

  TCapturedMachineBuilder live;
  TTemporaryFolder folder;
  const fs::path target = folder.GetPath() / "ws-17";
};

class CaptureOfAnExample : public Capture, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_P(CaptureOfAnExample, IsAnsweredAsTheMachineWas) {
  const fs::path example = fs::path(EXAMPLES_FOLDER) / GetParam();
  for (const char* const name : {"ws-17", "ws-17.tar.gz"}) {
    CaptureMachine(ReadCapturedMachine(example), PLUGIN_FILE, folder.GetPath() / name, false);
    EXPECT_EQ(Answer(ReadCapturedMachine(folder.GetPath() / name)), Answer(ReadCapturedMachine(example))) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(OfEach, CaptureOfAnExample,
                         testing::Values("both-configurations", "faulty-bios", "no-default-depth", "nothing", "office",
                                         "old", "one-for-all-units", "two-cards", "two-heads"));

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

TEST_F(Capture, HoldsTheFilesThatWereFoundAndTheEdidsThatWereReadAlone) {
  live.File("root/etc/X11/xorg.conf", "Section \"Device\"\n  Identifier \"a\"\nEndSection\n")
      .File("root/etc/passwd", "secret")
      .Edid(0, TEdidBuilder().Build())
      .Edid(2, TEdidBuilder().Build());
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_EQ(List(), "./edid/0.bin\n./machine.json\n./root/etc/X11/xorg.conf\n");
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
  machine.host.root = "/";
  CaptureMachine(machine, ASKING_PLUGIN_FILE, target, false);
  EXPECT_EQ(List(), "./machine.json\n./root/etc/passwd\n");
  EXPECT_EQ(RunShell("ls " + folder.GetPath().string()).output, "ws-17\n");
}

TEST_F(Capture, NamesTheSystem) {
  live.Json(R"({"systemName": "ws-17", "systemType": 2})");
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_EQ(json::parse(Read("machine.json"))["systemName"], "ws-17");
}

TEST_F(Capture, IsWithoutSerialNumbersAndNameWhenItIsAnonymous) {
  live.Json(R"({"systemName": "ws-17"})").Edid(0, TEdidBuilder().Serial(3, "A190-004711").Byte(12, 7).Build());
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, true);
  EXPECT_EQ(json::parse(Read("machine.json"))["systemName"], "anonymous");
  const std::vector<std::uint8_t> blank = TEdidBuilder().Serial(3, "           ").Build();
  EXPECT_EQ(Read("edid/0.bin"), std::string(blank.begin(), blank.end()));
  EXPECT_EQ(RunShell("grep -r -e ws-17 -e 4711 " + target.string()).output, "");
}

TEST_F(Capture, IsNotWrittenOverAnything) {
  folder.Write("ws-17/precious", "old");
  ExpectRefused("ws-17: cannot be made: is there already");
  EXPECT_EQ(List(), "./precious\n");
  fs::remove_all(target);
  folder.Write("ws-17", "old");
  ExpectRefused("is there already");
  fs::remove(target);
  fs::create_symlink("nowhere", target);
  ExpectRefused("is there already");
  EXPECT_FALSE(fs::exists(folder.GetPath() / "nowhere"));
}

TEST_F(Capture, IsRefusedWhereNoFolderCanBeMade) {
  CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target, false);
  EXPECT_THROW(CaptureMachine(ReadCapturedMachine(live.GetPath()), PLUGIN_FILE, target / "machine.json/x", false),
               TUnusable);
}

namespace {

/// A BIOS that answers in its first session alone.
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
  TVirtualBiosConfiguration bios;
  bios.units[0].edid = TEdidBuilder().Established(0xFF, 0xFF).Build();
  machine.bios = std::make_shared<TUnsteadyBios>(bios);
  EXPECT_THROW(CaptureMachine(machine, PLUGIN_FILE, target, false), TUnusable);
  EXPECT_FALSE(fs::exists(target));
}
