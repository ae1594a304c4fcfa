// Tests each cause of an empty part with a machine that has it, and with the plug-in's answer for that machine.
#include "command/collection/reasons.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "command/collection/collection.h"
#include "command/machine/captured_machine.h"
#include "realmode/choose_bios.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/reachable_build.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kConfiguration = "root/etc/X11/xorg.conf";

class Reasons : public testing::Test {
 protected:
  ~Reasons() override { ChooseVideoBios(nullptr); }

  /// The answer for that class, which must have no instances.
  TAnswer Ask(const std::string& className, const fs::path& plugin = PLUGIN_FILE) const {
    const TAnswer answer = Collect(ReadCapturedMachine(machine.GetPath()), plugin, {{className}}, {});
    EXPECT_THAT(answer.requests[0].instances, IsEmpty());
    return answer;
  }

  std::string WhyNoController() const { return Ask("QRXSG_VideoController").reasons.noControllers; }
  std::string WhyNoMonitor() const { return Ask("QRXSG_DesktopMonitor").reasons.noMonitors; }
  std::string WhyNoMode() const { return Ask("QRXSG_MonitorResolution").reasons.noModes; }

  TCapturedMachineBuilder machine;
};

}  // namespace

TEST_F(Reasons, OfNoControllerLieInItsConfiguration) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "/etc/X11/xorg.conf is empty"},
      {"Section \"Files\"\nEndSection\n# Section \"Device\"\n", "/etc/X11/xorg.conf has no Device section"},
      {"Section \"Device\"\n  Identifier \"a\"\n",
       "no Device section in /etc/X11/xorg.conf has an EndSection after it"},
      {"Section \"Device\"\n  BusID \"PCI:1:0:0\"\nEndSection\nIdentifier \"a\"\n",
       "no Device section in /etc/X11/xorg.conf has an Identifier"},
      {"Identifier \"a\"\nEndSection\nSection \"Device\"\n  BusID \"PCI:1:0:0\"\nEndSection\n",
       "no Device section in /etc/X11/xorg.conf has an Identifier"},
      {" Section \"device\"\n\tIdentifier \"\"\nEndSection\n",
       "no Device section in /etc/X11/xorg.conf has an Identifier"},
      {"Section \"Device\"\n  Identifier \"a\"\n  VideoRam \"64M\"\nEndSection\n",
       "a Device section in /etc/X11/xorg.conf has a VideoRam that is no whole number, at which the plug-in gives up; "
       "write it in kilobytes"},
      {"Section \"Device\"\n  Identifier \"a\"\n  VideoRam \"\"\nEndSection\n",
       "a Device section in /etc/X11/xorg.conf has a VideoRam that is no whole number, at which the plug-in gives up; "
       "write it in kilobytes"},
      {"Section \"Device\"\n  Identifier \"a\"\n  Identifier \"\"\n  VideoRam \"64M\"\n  VideoRam 65536\nEndSection\n",
       "a Device section in /etc/X11/xorg.conf has a VideoRam that is no whole number, at which the plug-in gives up; "
       "write it in kilobytes"},
      {"Section \"Device\"\r\n  BusID \"PCI:1:0:0\"\r\nEndSection\r\n",
       "no Device section in /etc/X11/xorg.conf has an Identifier"},
      {"Section \"Device\"\n  Identifier \"a\"\n  VideoRam 99999999999\nEndSection\n",
       "/etc/X11/xorg.conf yields none"},
  };
  for (const auto& [configuration, reason] : cases) {
    machine.File(kConfiguration, configuration);
    EXPECT_EQ(WhyNoController(), reason) << configuration;
  }
}

TEST_F(Reasons, OfNoControllerEndWithWhatTheMachineKnowsToHelp) {
  machine.File(kConfiguration, "# nothing\n");
  TMachine helpful = ReadCapturedMachine(machine.GetPath());
  helpful.xconfigCure = "; do something else";
  EXPECT_EQ(Collect(helpful, PLUGIN_FILE, {{"QRXSG_VideoController"}}, {}).reasons.noControllers,
            "/etc/X11/xorg.conf has no Device section; do something else");
}

TEST_F(Reasons, OfNoControllerAreTheFilesThatAreNotThere) {
  EXPECT_EQ(WhyNoController(), "no X server configuration file exists (10 places tried)");
  machine.File("root/etc/motd", "");
  EXPECT_EQ(WhyNoController(), "no X server configuration file exists (10 places tried)");
}

TEST_F(Reasons, OfNoControllerAreThatNoFileWasAskedFor) {
  EXPECT_EQ(FindReasons(ReadCapturedMachine(machine.GetPath()), {}, {}).noControllers,
            "no X server configuration was asked for");
}

TEST_F(Reasons, OfFilesThatCannotBeLookedForAreThatOfTheFirst) {
  TMachine captured = ReadCapturedMachine(machine.GetPath());
  captured.filesPlace = "";
  captured.getFileFailures = [] {
    return std::vector<TFileFailure>{{"/a", "is broken", true, "mend it"}, {"/b", "is lost", true, "find it"}};
  };
  EXPECT_EQ(ExplainUnreadableFiles(captured, {{"/a", false}, {"/b", false}, {"/c", false}}),
            "2 of the 3 X server configuration files could not be looked for: is broken; mend it");
}

TEST_F(Reasons, OfNoControllerAreLinksThatLeadOut) {
  machine.File("root/etc/X11/other", "");
  fs::create_symlink("/etc/passwd", machine.GetPath() / kConfiguration);
  EXPECT_EQ(WhyNoController(), "1 of the 10 X server configuration files could not be looked for in " +
                                   machine.GetPath().string() +
                                   "/root: a link on the way to /etc/X11/xorg.conf leads out of the folder; put what "
                                   "it stands for in its place");
}

TEST_F(Reasons, OfNoControllerAreLinksInACircle) {
  machine.File("root/etc/X11/other", "");
  fs::create_symlink("xorg.conf", machine.GetPath() / kConfiguration);
  EXPECT_EQ(WhyNoController(), "1 of the 10 X server configuration files could not be looked for in " +
                                   machine.GetPath().string() +
                                   "/root: a link on the way to /etc/X11/xorg.conf cannot be followed; put what it "
                                   "stands for in its place");
}

TEST_F(Reasons, OfNoControllerAreFilesThatAreTooLarge) {
  machine.File(kConfiguration, "");
  fs::resize_file(machine.GetPath() / kConfiguration, kMaxMachineFileSize + 1);
  EXPECT_EQ(WhyNoController(), machine.GetPath().string() +
                                   "/root/etc/X11/xorg.conf is larger than 268435456 bytes, which no such file needs; "
                                   "put the right file in its place");
}

TEST_F(Reasons, OfNoControllerAreMissingPermissionsWhichAreNotedToo) {
  machine.File(kConfiguration, "Section \"Device\"\n  Identifier \"a\"\nEndSection\n");
  fs::permissions(machine.GetPath(), fs::perms::all);
  fs::permissions(machine.GetPath() / kConfiguration, fs::perms::none);
  const TReachableBuild build;
  const uid_t user = geteuid();
  constexpr uid_t nobody = 65534;
  ASSERT_EQ(user == 0 ? seteuid(nobody) : 0, 0);  // root may read everything
  const TAnswer answer = Ask("QRXSG_VideoController", build.GetPlugin());
  ASSERT_EQ(seteuid(user), 0);
  EXPECT_EQ(answer.reasons.noControllers,
            machine.GetPath().string() +
                "/root/etc/X11/xorg.conf cannot be read: Permission denied; make it readable, or run as a user who may "
                "read it");
  EXPECT_THAT(answer.notes, ElementsAre(answer.reasons.noControllers));
}

TEST_F(Reasons, OfNoMonitorLieInTheMachine) {
  const std::pair<const char*, const char*> cases[] = {
      {"{}", "no EDID from unit 0 of the video BIOS"},
      {R"({"systemType": 3})", "the plug-in calls the video BIOS of a system of type 2 only"},
      {R"({"bios": {"present": false}})", "there is no video BIOS"},
      {R"({"bios": {"memory": false}})", "the video BIOS has no memory for its answer"},
      {R"({"bios": {"units": {"0": {"failAtBlock": 0}}}})", "the video BIOS does not return from the call for unit 0"},
      {R"({"bios": {"units": {"0": {"connector": "card0-DP-1"}}}})", "no EDID from unit 0 of the video BIOS"},
  };
  for (const auto& [json, reason] : cases) {
    machine.Json(json);
    EXPECT_EQ(WhyNoMonitor(), reason) << json;
    EXPECT_EQ(WhyNoMode(), reason) << json;
  }
}

TEST_F(Reasons, OfNoMonitorLieInTheEdidOfTheFirstUnit) {
  const std::pair<std::vector<std::uint8_t>, const char*> cases[] = {
      {TEdidBuilder().Version(2, 0).Build(), "card0-DP-1 (unit 0) is not listed: its EDID is not one of version 1"},
      {TEdidBuilder().Byte(0, 1).Build(), "card0-DP-1 (unit 0) is not listed: its EDID is not one of version 1"},
      {std::vector<std::uint8_t>(5),
       "card0-DP-1 (unit 0) is not listed: its EDID has 5 bytes, which is not a multiple of 128"},
  };
  machine.Json(R"({"bios": {"units": {"0": {"connector": "card0-DP-1"}}}})");
  for (const auto& [edid, reason] : cases) {
    machine.Edid(0, edid);
    EXPECT_EQ(WhyNoMonitor(), reason);
    EXPECT_EQ(WhyNoMode(), reason);
  }
  machine.Edid(0, TEdidBuilder().Build()).Json(R"({"bios": {"units": {"0": {"errorAtBlock": 0}}}})");
  EXPECT_EQ(WhyNoMonitor(), "unit 0 is not listed: its EDID cannot be read: the video BIOS fails at its first block");
}

TEST_F(Reasons, OfNoMonitorDoNotLieInTheEdidOfAnotherUnit) {
  machine.Edid(1, TEdidBuilder().Build());
  EXPECT_EQ(WhyNoMonitor(), "no EDID from unit 0 of the video BIOS");
}

TEST_F(Reasons, OfNoMonitorAreWhatTheRealBiosSays) {
  TMachine real = ReadCapturedMachine(machine.GetPath());
  real.getBiosFailure = [] { return std::string("the video BIOS cannot be read"); };
  EXPECT_EQ(FindReasons(real, {}, {}).noMonitors, "the video BIOS cannot be read");
  real.host.systemType = 1;  // then it is not called
  EXPECT_EQ(FindReasons(real, {}, {}).noMonitors, "the plug-in calls the video BIOS of a system of type 2 only");
}

TEST_F(Reasons, OfNoMonitorAreWhereTheEdidsShouldHaveComeFrom) {
  TMachine drm = ReadCapturedMachine(machine.GetPath());
  drm.edidOrigin.none = "nothing is connected";
  EXPECT_EQ(FindReasons(drm, {}, {}).noMonitors, "nothing is connected");
}

TEST_F(Reasons, OfNoModeLieInMonitorsThatDeclareNone) {
  machine.Edid(0, TEdidBuilder().DetailedTiming(0, false).Build());
  EXPECT_EQ(WhyNoMode(), "no EDID declares an established or a standard timing, and the plug-in lists no other modes");
}
