// The command as its users run it.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/process.h"

using nlohmann::json;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string kCommand = COMMAND_FILE;
const std::string kClassNames =
    "QRXSG_VideoController, QRXSG_VideoHead, QRXSG_HeadOfVideoController, QRXSG_DesktopMonitor, "
    "QRXSG_MonitorResolution, QRXSG_MonitorSetting";

class Command : public testing::Test {
 protected:
  TProcessResult Run(const std::string& arguments) const {
    return RunShell(kCommand + " --machine " + machine.GetPath().string() + " " + arguments);
  }

  void ExpectWrongUsage(const std::string& arguments, const std::string& message) const {
    const TProcessResult result = RunShell(kCommand + " " + arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, StartsWith("displayinfo: ")) << arguments;
    EXPECT_THAT(result.errors, HasSubstr(message));
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
  }

  void ExpectUnusable(const TProcessResult& result, const std::string& message) const {
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "displayinfo: " + message + "\n");
  }

  TCapturedMachineBuilder machine;
};

}  // namespace

TEST_F(Command, AsksForAllSixClassesInOneRequestByDefault) {
  const json answer = json::parse(Run("--format json").output);
  ASSERT_EQ(answer["requests"].size(), 1U);
  EXPECT_EQ(answer["requests"][0]["classes"],
            json::parse(R"(["QRXSG_VideoController", "QRXSG_VideoHead", "QRXSG_HeadOfVideoController",
                            "QRXSG_DesktopMonitor", "QRXSG_MonitorResolution", "QRXSG_MonitorSetting"])"));
}

TEST_F(Command, AsksForTheGivenClassesInTheirOrderInOneRequest) {
  const json answer = json::parse(Run("QRXSG_VideoHead QRXSG_DesktopMonitor QRXSG_VideoHead --format json").output);
  ASSERT_EQ(answer["requests"].size(), 1U);
  EXPECT_EQ(answer["requests"][0]["classes"],
            json::parse(R"(["QRXSG_VideoHead", "QRXSG_DesktopMonitor", "QRXSG_VideoHead"])"));
}

TEST_F(Command, RunsEachRequestInItsOrder) {
  const json answer = json::parse(
      Run("--request QRXSG_DesktopMonitor,QRXSG_VideoHead --request QRXSG_DesktopMonitor --format json").output);
  ASSERT_EQ(answer["requests"].size(), 2U);
  EXPECT_EQ(answer["requests"][0]["classes"], json::parse(R"(["QRXSG_DesktopMonitor", "QRXSG_VideoHead"])"));
  EXPECT_EQ(answer["requests"][1]["classes"], json::parse(R"(["QRXSG_DesktopMonitor"])"));
}

TEST_F(Command, WritesTheAnswerAloneToStandardOutput) {
  const TProcessResult result = Run("--format json --log-level verbose");
  EXPECT_EQ(result.status, 0);
  EXPECT_NO_THROW(json::parse(result.output));
  EXPECT_THAT(result.errors, HasSubstr("debug: TDisplayInfoCallbacks::Init - Initializing the plugin.\n"));
}

TEST_F(Command, ShowsTheLogDownToTheStatusByDefault) {
  const TProcessResult result = Run("QRXSG_DesktopMonitor");
  EXPECT_EQ(result.errors, "status: Lib call returned an error. Could not get Monitor info.\n");
}

TEST_F(Command, ShowsOnlyErrorsWhenAskedTo) { EXPECT_EQ(Run("--log-level error").errors, ""); }

TEST_F(Command, WritesEachFormat) {
  machine.Edid(0, TEdidBuilder().Name(0, "A <b> \"c\"").Build());
  const std::string classAndFormat = "QRXSG_DesktopMonitor --format ";
  EXPECT_THAT(Run(classAndFormat + "text").output, StartsWith("Monitors\n  Monitor 1: A <b> \"c\"\n"));
  EXPECT_TRUE(json::accept(Run(classAndFormat + "json").output));
  EXPECT_THAT(Run(classAndFormat + "mof").output, HasSubstr("    Name = \"A <b> \\\"c\\\"\";\n"));
  EXPECT_THAT(Run(classAndFormat + "html").output,
              AllOf(StartsWith("<!DOCTYPE html>\n<html"), HasSubstr("<td>A &lt;b&gt; &quot;c&quot;</td>")));
}

TEST_F(Command, SucceedsWhenNothingIsFoundAndSaysWhy) {
  const TProcessResult result = Run("QRXSG_DesktopMonitor");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("None: no EDID from unit 0 of the video BIOS."));
}

TEST_F(Command, DoesNotObeyWhatAMonitorIsCalled) {
  machine.Edid(0, TEdidBuilder().Name(0, "\x1B[31mred").Build());
  EXPECT_THAT(Run("QRXSG_DesktopMonitor").output, HasSubstr("\\x1b[31mred"));
}

TEST_F(Command, AnswersAnUnknownClassWithTheSixNames) {
  ExpectWrongUsage("QRXSG_Desktopmonitor", "\"QRXSG_Desktopmonitor\" is not a class; the classes are " + kClassNames);
  ExpectWrongUsage("--request QRXSG_VideoHead,X", "\"X\" is not a class; the classes are " + kClassNames);
  ExpectWrongUsage("--request ''", "\"\" is not a class; the classes are " + kClassNames);
}

TEST_F(Command, ExplainsWrongUsageInOneLine) {
  ExpectWrongUsage("--colour", "--colour");
  ExpectWrongUsage("--format yaml", "yaml");
  ExpectWrongUsage("--log-level loud", "loud");
  ExpectWrongUsage("--edid-source nvram", "nvram");
  ExpectWrongUsage("--machine", "--machine");
  ExpectWrongUsage("--request QRXSG_VideoHead QRXSG_VideoHead", "--request");
  ExpectWrongUsage("--edid-source bios --machine x", "--machine");
}

TEST_F(Command, NamesAMachineThatIsNotThere) {
  ExpectUnusable(RunShell(kCommand + " --machine /no/such/folder"),
                 "/no/such/folder: is not the folder of a captured machine; --machine takes one that exists");
}

TEST_F(Command, ChecksTheMachineBeforeItLoadsThePlugin) {
  machine.Json("{\"bios\": 1}");
  ExpectUnusable(Run("--plugin /no/such/plugin.so"),
                 machine.GetPath().string() + "/machine.json: \"bios\" must be an object");
}

TEST_F(Command, NamesAPluginThatIsNotThere) {
  ExpectUnusable(Run("--plugin /no/such/plugin.so"),
                 "/no/such/plugin.so: no such plug-in; build it, or name another with --plugin FILE");
}

TEST_F(Command, EndsQuietlyWhenItsReaderHasGone) {
  const TProcessResult result = RunShell("{ " + kCommand + " --machine " + machine.GetPath().string() +
                                         " --log-level error; echo $? >&2; } | true");
  EXPECT_EQ(result.errors, "0\n");
}

TEST_F(Command, SaysWhenItsOutputCannotBeWritten) {
  const TProcessResult result = Run("--log-level error >/dev/full");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "displayinfo: standard output cannot be written: No space left on device\n");
}

TEST_F(Command, TellsItsVersion) {
  const TProcessResult result = RunShell(kCommand + " --version");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "displayinfo 1.0\n");
}

TEST_F(Command, ExplainsItself) {
  const TProcessResult result = RunShell(kCommand + " --help");
  EXPECT_EQ(result.status, 0);
  for (const char* option :
       {"CLASS...", "--machine DIR", "--machines LIST", "--jobs N", "--resume FILE", "--request CLASS[,CLASS...]",
        "--edid-source auto|bios|drm", "--format text|json|mof|html", "--log-level error|warning|status|debug|verbose",
        "--plugin FILE", "--version", "--help"}) {
    EXPECT_THAT(result.output, HasSubstr(option));
  }
}

TEST_F(Command, ExplainsItsClasses) {
  EXPECT_THAT(RunShell(kCommand + " schema").output, StartsWith("QRXSG_VideoController\n"));
  EXPECT_THAT(RunShell(kCommand + " schema --format mof").output, StartsWith("[Description("));
  EXPECT_TRUE(json::accept(RunShell(kCommand + " schema --format json-schema").output));
  ExpectWrongUsage("schema --format html", "html");
}

TEST_F(Command, CapturesThisMachineOnce) {
  const TTemporaryFolder folder;
  const std::string target = (folder.GetPath() / "ws-17").string();
  const TProcessResult result = RunShell(kCommand + " capture --edid-source drm " + target);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, HasSubstr("captured; displayinfo --machine " + target));
  EXPECT_EQ(RunShell(kCommand + " --format json --machine " + target).output,
            RunShell(kCommand + " --format json --edid-source drm").output);
  ExpectUnusable(RunShell(kCommand + " capture " + target),
                 target + ": cannot be made: is there already; name a folder that can be");
}

TEST_F(Command, CapturesNothingWithoutATarget) {
  ExpectWrongUsage("capture", "TARGET is required");
  ExpectWrongUsage("capture --machine ws-17 x", "--machine");
}

TEST_F(Command, TakesNoOptionsBeforeASubcommand) {
  ExpectWrongUsage("--format json schema", "--format is not for schema, whose options follow it");
  ExpectWrongUsage("--machine ws-17 capture x", "--machine is not for capture");
  ExpectWrongUsage("QRXSG_VideoHead schema", "CLASS is not for schema");
}

TEST_F(Command, ExplainsItselfOnOneScreen) {
  std::istringstream lines(RunShell(kCommand + " --help").output);
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_LE(count, 24U);
}

// Started without any, it passes whatever the command does.
TEST_F(Command, HasNoCapabilityLeftWhenItAnswers) {
  std::string requests;
  for (int count = 0; count < 100; ++count) requests += " --request QRXSG_DesktopMonitor";  // more than a pipe holds
  machine.Edid(0, TEdidBuilder().Build());
  const std::string pipe = machine.GetPath() / "pipe";
  const TProcessResult result = RunShell(
      "mkfifo " + pipe + "; " + kCommand + " --machine " + machine.GetPath().string() + " --format json" + requests +
      " >" + pipe + " & exec 3<" + pipe + "; read -r line <&3; grep CapEff /proc/$!/status; cat <&3 >/dev/null");
  EXPECT_EQ(result.output, "CapEff:\t0000000000000000\n");
}

// A pipe in the place of the plug-in: it is opened when the machine has been looked at.
TEST_F(Command, HasNoCapabilityButToReadWhenItLooksAtACapturedMachine) {
  const std::string pipe = machine.GetPath() / "pipe";
  const TProcessResult result =
      RunShell("mkfifo " + pipe + "; " + kCommand + " --machine " + machine.GetPath().string() + " --plugin " + pipe +
               " & exec 3>" + pipe + "; grep CapEff /proc/$!/status");
  EXPECT_THAT(result.output, AnyOf("CapEff:\t0000000000000000\n", "CapEff:\t0000000000000004\n"));
}
