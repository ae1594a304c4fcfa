// Runs the command as its users do.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/process.h"
#include "tests/support/reachable_build.h"
#include "tests/support/running_process.h"
#include "tests/support/sanitizers.h"
#include "tests/support/terminal.h"

using nlohmann::json;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string kCommand = COMMAND_FILE;
const std::string kAsNobody = geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
const std::string kClassNames =
    "QRXSG_VideoController, QRXSG_VideoHead, QRXSG_HeadOfVideoController, QRXSG_DesktopMonitor, "
    "QRXSG_MonitorResolution, QRXSG_MonitorSetting";

class Command : public testing::Test {
 protected:
  TProcessResult Run(const std::string& arguments) const {
    return RunShell(kCommand + " --machine " + machine.GetPath().string() + " " + arguments);
  }

  /// Expects one line with the text.
  void ExpectWrongUsageWith(const std::string& arguments, const std::string& text) const {
    const TProcessResult result = RunShell(kCommand + " " + arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, StartsWith("displayinfo: "));
    EXPECT_THAT(result.errors, HasSubstr(text));
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
  }

  /// The whole message, without what stands around each.
  /// `subcommand`: whose help is named, followed by a blank.
  void ExpectWrongUsage(const std::string& arguments, const std::string& message,
                        const std::string& subcommand = "") const {
    const TProcessResult result = RunShell(kCommand + " " + arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "displayinfo: " + message + " (displayinfo " + subcommand + "--help shows the usage)\n")
        << arguments;
  }

  /// Collects with the trouble plug-in from a machine that asks for this trouble.
  TProcessResult RunTrouble(const std::string& trouble, const std::string& arguments = "") const {
    machine.File("root/" + trouble, "");
    return Run("--plugin " TROUBLE_PLUGIN_FILE " " + arguments);
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
  EXPECT_TRUE(json::accept(result.output));
  EXPECT_THAT(result.errors, HasSubstr("debug: TDisplayInfoCallbacks::Init - Initializing the plugin.\n"));
}

TEST_F(Command, ShowsTheLogDownToTheStatusByDefault) {
  const TProcessResult result = Run("QRXSG_DesktopMonitor");
  EXPECT_EQ(result.errors, "status: Lib call returned an error. Could not get Monitor info.\n");
}

TEST_F(Command, ShowsEachMessageOnceUnlessTheLogIsAskedFor) {
  const std::string message = "status: Lib call returned an error. Could not get Monitor info.\n";
  EXPECT_EQ(Run("").errors, message);
  EXPECT_EQ(Run("--log-level status").errors, message + message);
}

TEST_F(Command, SaysOnceThatItMayNotLookForTheConfiguration) {
  machine.File("root/etc/X11/xorg.conf", "");
  std::filesystem::permissions(machine.GetPath(), std::filesystem::perms::all);
  std::filesystem::permissions(machine.GetPath() / "root", std::filesystem::perms::none);
  const TProcessResult result = RunShell(kAsNobody + TReachableBuild().GetCommand() + " --machine " +
                                         machine.GetPath().string() + " QRXSG_VideoController");
  std::filesystem::permissions(machine.GetPath() / "root", std::filesystem::perms::all);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "displayinfo: 10 of the 10 X server configuration files could not be looked for in " +
                               machine.GetPath().string() +
                               "/root: Permission denied; make it readable, or run as a user who may read it\n");
  EXPECT_THAT(result.output, HasSubstr("None: 10 of the 10 X server configuration files could not be looked for"));
}

TEST_F(Command, ReadsAMachineFromStandardInput) {
  machine.Edid(0, TEdidBuilder().Name(0, "piped").Build());
  const std::string file = (machine.GetPath() / "edid/0.bin").string();
  EXPECT_THAT(RunShell(kCommand + " --machine - QRXSG_DesktopMonitor <" + file).output, HasSubstr("Monitor 1: piped"));
}

TEST_F(Command, RefusesAnEmptyStandardInputForAMachine) {
  ExpectUnusable(RunShell(kCommand + " --machine - </dev/null"),
                 "standard input: is empty; --machine - reads a machine from it");
}

TEST_F(Command, ReadsOnlyOneMachineFromStandardInput) {
  ExpectWrongUsage("--machine - --machine x",
                   "--machine - reads one machine from standard input; name no other one beside it");
}

TEST_F(Command, ShowsOnlyErrorsWhenAskedTo) { EXPECT_EQ(Run("--log-level error").errors, ""); }

TEST_F(Command, WritesEachFormat) {
  machine.Edid(0, TEdidBuilder().Name(0, "A <b> \"c\"").Build());
  const std::string classAndFormat = "QRXSG_DesktopMonitor --format ";
  EXPECT_THAT(Run(classAndFormat + "text").output, HasSubstr("\nMonitors\n  Monitor 1: A <b> \"c\"\n"));
  EXPECT_TRUE(json::accept(Run(classAndFormat + "json").output));
  EXPECT_THAT(Run(classAndFormat + "mof").output, HasSubstr("    Name = \"A <b> \\\"c\\\"\";\n"));
  EXPECT_THAT(Run(classAndFormat + "html").output,
              AllOf(StartsWith("<!DOCTYPE html>\n<html"), HasSubstr("<td>A &lt;b&gt; &quot;c&quot;</td>")));
}

TEST_F(Command, BeginsTheReportWithTheMachineAndTheTimeOfItsCapture) {
  machine.Json(R"({"systemName": "ws-17", "collected": "2026-11-21T21:30:00Z"})");
  EXPECT_THAT(Run("QRXSG_DesktopMonitor").output,
              StartsWith("ws-17\nCollected 2026-11-21 21:30:00 UTC, shown by displayinfo "));
}

TEST_F(Command, FillsTheWidthOfTheTerminal) {
  machine.Edid(0, TEdidBuilder().Established(0xFF, 0xFF).Build());
  for (const std::size_t width : {40U, 120U}) {
    TTerminal terminal;
    terminal.SetColumns(width);
    EXPECT_EQ(Run("--log-level error >" + terminal.GetName()).status, 0);
    std::istringstream lines(terminal.Read());
    std::size_t longest = 0;
    for (std::string line; std::getline(lines, line);) longest = std::max(longest, line.size() - 1);  // without its \r
    EXPECT_LE(longest, width);
    EXPECT_GT(longest, width - 15);  // one mode more would not fit
  }
}

TEST_F(Command, SaysNothingTwiceOnATerminal) {
  machine.Edid(0, TEdidBuilder().Byte(0, 1).Build());
  TTerminal terminal;
  terminal.SetColumns(80);
  EXPECT_EQ(Run(">" + terminal.GetName() + " 2>&1").status, 0);
  const std::string screen = terminal.Read();
  const std::string reason = "its EDID is not one of version 1";
  ASSERT_THAT(screen, HasSubstr(reason));
  EXPECT_THAT(screen.substr(0, screen.find("Monitors")), testing::Not(HasSubstr(reason)));
  EXPECT_THAT(screen.substr(0, screen.find("Monitors")), testing::Not(HasSubstr("EDID structure")));
  EXPECT_THAT(Run("").errors, HasSubstr(reason));  // no terminal
}

TEST_F(Command, SuggestsTheListOfMakersWhereItIsMissing) {
  machine.Edid(0, TEdidBuilder().Manufacturer("ACM").Build());
  const auto run = [&](const std::string& list) {
    return RunShell("DISPLAYINFO_PNP_IDS=" + list + " " + kCommand + " --machine " + machine.GetPath().string()).output;
  };
  const std::string suggestion = "  The names of makers come with the package hwdata; install it.\n";
  EXPECT_THAT(run("/absent"), HasSubstr(suggestion));
  EXPECT_THAT(run(""), testing::Not(HasSubstr(suggestion)));
}

TEST_F(Command, LeavesTheConfigurationOutOfACaptureWhenAskedTo) {
  machine.Edid(0, TEdidBuilder().Build()).File("root/etc/X11/xorg.conf", "Section \"Device\"\n");
  TTemporaryFolder folder;
  const std::string target = (folder.GetPath() / "ws.json").string();
  const TProcessResult result =
      RunShell(kCommand + " capture --no-xconfig --machine " + machine.GetPath().string() + " " + target);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.errors, HasSubstr(" does without its X configuration\n"));
  const std::string text = RunShell("cat " + target).output;
  EXPECT_THAT(text, AllOf(HasSubstr("\"edids\""), testing::Not(HasSubstr("xorg.conf"))));
}

TEST_F(Command, NamesTheMakersThatTheListKnows) {
  machine.Edid(0, TEdidBuilder().Manufacturer("ACM").Build()).File("pnp.ids", "ACM\tAcme Corporation\n");
  const auto run = [&](const std::string& list) {
    return RunShell("DISPLAYINFO_PNP_IDS=" + list + " " + kCommand + " --machine " + machine.GetPath().string()).output;
  };
  EXPECT_THAT(run(machine.GetPath() / "pnp.ids"), HasSubstr("    Manufacturer      ACM (Acme Corporation)\n"));
  EXPECT_THAT(run(""), HasSubstr("    Manufacturer      ACM\n"));
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

TEST_F(Command, AnswersAnUnknownWordWithAllThatItMayHaveMeant) {
  for (const std::string word : {"QRXSG_Desktopmonitor", "captur"}) {
    ExpectWrongUsage(word, "\"" + word + "\" is neither a class nor a subcommand; the classes are " + kClassNames +
                               "; the subcommands are capture, compare, watch, serve, schema");
  }
}

TEST_F(Command, AnswersAnUnknownClassWithTheSixNames) {
  ExpectWrongUsage("--request QRXSG_VideoHead,X", "\"X\" is not a class; the classes are " + kClassNames);
  ExpectWrongUsage("--request ''", "\"\" is not a class; the classes are " + kClassNames);
}

TEST_F(Command, ExplainsWrongUsageInOneLine) {
  ExpectWrongUsage("--colour", "The following argument was not expected: --colour");
  ExpectWrongUsage("--format yaml", "--format: yaml not in {text,json,rows,csv,mof,html}");
  ExpectWrongUsage("--log-level loud", "--log-level: loud not in {error,warning,status,debug,verbose}");
  ExpectWrongUsage("--edid-source nvram", "--edid-source: nvram not in {auto,bios,drm}");
  ExpectWrongUsage("--request QRXSG_VideoHead QRXSG_VideoHead", "CLASS excludes --request");
  ExpectWrongUsage("--edid-source bios --machine x", "--machine excludes --edid-source");
  ExpectWrongUsage("--edid-source bios --machines x", "--machines excludes --edid-source");
  ExpectWrongUsage("--machines x --machine y", "--machine excludes --machines");
  ExpectWrongUsage("--machine ''", "--machine: the name is empty");
  ExpectWrongUsage("--machine a --machine ''", "--machine: the name is empty");
  ExpectWrongUsage("--machines ''", "--machines: the name is empty");
  ExpectWrongUsage("--machines x --resume ''", "--resume: the name is empty");
  ExpectWrongUsage("--plugin ''", "--plugin: the name is empty");
  ExpectWrongUsage("serve --machine ''", "--machine: the name is empty", "serve ");
  ExpectWrongUsage("compare x ''", "NEW: the name is empty", "compare ");
  ExpectWrongUsage("--jobs 2", "--jobs is for several machines; name them with --machines LIST");
  ExpectWrongUsage("--resume x", "--resume is for several machines; name them with --machines LIST");
  ExpectWrongUsage("--jobs 0 --machines x", "--jobs: Value 0 not in range 1 to 1000");
  ExpectWrongUsage("--timeout 0", "--timeout: Value 0 not in range 1 to 86400");
  ExpectWrongUsage("--timeout 86401", "--timeout: Value 86401 not in range 1 to 86400");
  ExpectWrongUsage("--timeout 1.5", "--timeout: Value 1.5 not in range 1 to 86400");
  for (const std::string format : {"text", "mof"}) {
    ExpectWrongUsage("--machines x --format " + format,
                     "several machines are answered in json, rows, csv or html; leave --format out, or name one "
                     "machine");
  }
  for (const std::string format : {"rows", "csv", "html"}) {
    ExpectWrongUsage("--machines x --resume y --format " + format,
                     "--resume goes on with lines of JSON, which tell where a machine ends; not with rows, csv or "
                     "html");
  }
  ExpectWrongUsage("--format csv QRXSG_VideoHead",
                   "--format csv is made from all classes; leave CLASS and --request out");
  ExpectWrongUsage("--machines x --format html --request QRXSG_VideoHead",
                   "the page of several machines is made from all classes; leave CLASS and --request out");
  ExpectWrongUsage("--no-log", "--no-log is for --format json; the page keeps its log, and no other format has one");
  ExpectWrongUsage("schema capture x", "The following argument was not expected: capture", "schema ");
  ExpectWrongUsage("capture x -y", "The following argument was not expected: -y", "capture ");
  ExpectWrongUsage("--no-log=yes", "--no-log takes no value");
  ExpectWrongUsage("--timeout 5 --timeout 6", "--timeout may be given only once");
  ExpectWrongUsage("serve --listen 0.0.0.0",
                   "--listen takes 127.0.0.1 or ::1, not 0.0.0.0; to answer other machines, use an SSH tunnel, or a "
                   "reverse proxy with TLS and passwords",
                   "serve ");
}

TEST_F(Command, SaysWhatToWriteWhereAValueIsMissing) {
  ExpectWrongUsage("--machine", "--machine has no value; write --machine PATH");
  ExpectWrongUsage("--machine a --machine", "--machine has no value; write --machine PATH");
  ExpectWrongUsage("--machines=", "--machines has no value; write --machines LIST");
  ExpectWrongUsage("--timeout", "--timeout has no value; write --timeout SECONDS");
  ExpectWrongUsage("--edid-source", "--edid-source has no value; write --edid-source auto|bios|drm");
  ExpectWrongUsage("--request", "--request has no value; write --request CLASS[,CLASS...]");
  ExpectWrongUsage("--machine --format json", "--machine has no value; write --machine PATH");
  ExpectWrongUsage("compare a b --format", "--format has no value; write --format text|json", "compare ");
}

TEST_F(Command, RefusesAbbreviationsOfItsOptions) {
  for (const std::string option : {"--form", "--mach", "--resum", "--no-lo", "--log"}) {
    ExpectWrongUsage(option, "The following argument was not expected: " + option);
    ExpectWrongUsage(option + " x", "The following argument was not expected: " + option);
    ExpectWrongUsage(option + "=x", "The following argument was not expected: " + option + "=x");
  }
}

TEST_F(Command, ReadsOptionsAndWordsInAnyOrderWhateverTheEnvironmentSays) {
  const std::string path = machine.GetPath();
  const std::string expected = Run("QRXSG_VideoHead QRXSG_DesktopMonitor --format json").output;
  for (const std::string environment : {"", "POSIXLY_CORRECT=1 "}) {
    for (const std::string& arguments :
         {"QRXSG_VideoHead --format json QRXSG_DesktopMonitor --machine " + path,
          "QRXSG_VideoHead --machine=" + path + " QRXSG_DesktopMonitor --format=json",
          "--format=json --machine " + path + " -- QRXSG_VideoHead QRXSG_DesktopMonitor"}) {
      EXPECT_EQ(RunShell(environment + kCommand + " " + arguments).output, expected) << environment << arguments;
    }
  }
}

TEST_F(Command, DoesNotObeyWhatIsWrongInItsUsage) {
  ExpectWrongUsageWith("\"$(printf '\\033[2J')\"", "\\x1b[2J");
  ExpectWrongUsageWith("--colour=\"$(printf '\\302\\233')\"", "\\u009b");
  ExpectWrongUsageWith("--format \"$(printf '\\342\\200\\256')\"", "\\u202e");
}

TEST_F(Command, ExplainsLongWrongUsageAtALengthThatPeopleRead) {
  const std::string name = "\"$(printf %100000d 1)\"";
  ExpectWrongUsageWith(name, kClassNames);
  EXPECT_LT(RunShell(kCommand + " " + name).errors.size(), 1200U);
  EXPECT_LT(RunShell(kCommand + " --machine " + name).errors.size(), 1200U);
}

TEST_F(Command, NamesAMachineThatIsNotThere) {
  ExpectUnusable(
      RunShell(kCommand + " --machine /no/such/folder"),
      "/no/such/folder: is not a captured machine: No such file or directory; --machine takes a folder or a file "
      "that exists");
}

TEST_F(Command, ChecksTheMachineBeforeItLoadsThePlugin) {
  machine.Json("{\"bios\": 1}");
  ExpectUnusable(Run("--plugin /no/such/plugin.so"),
                 machine.GetPath().string() + "/machine.json: \"bios\" must be an object");
}

TEST_F(Command, AnswersForAMachineWithADamagedEdidAndNamesItOnce) {
  machine.Edid(0, TEdidBuilder().Name(0, "A").Build()).Edid(1, std::vector<std::uint8_t>(129));
  const TProcessResult result = Run("QRXSG_DesktopMonitor");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output,
              AllOf(HasSubstr("  Monitor 1: A\n"),
                    HasSubstr("  unit 1\n    Not listed        its EDID has 129 bytes, which is not a multiple")));
  EXPECT_EQ(result.errors, "displayinfo: " + machine.GetPath().string() +
                               "/edid/1.bin: has 129 bytes, which is not a multiple of 128, so its unit counts as one "
                               "without an EDID; capture the machine again\n");
  EXPECT_THAT(Run("QRXSG_DesktopMonitor --format html").output, HasSubstr("its EDID has 129 bytes"));
  const json answer = json::parse(Run("--format json").output);
  EXPECT_EQ(answer["outputs"][1], json::parse(R"({"unit": 1, "deviceID": null,
                                     "reason": "its EDID has 129 bytes, which is not a multiple of 128"})"));
}

TEST_F(Command, CapturesACaptureAgainAndSaysWhatItLeftOut) {
  machine.Json(R"({"systemName": "ws-17"})").Edid(0, TEdidBuilder().Serial(3, "A190-004711").Build()).Edid(1, {});
  const TTemporaryFolder folder;
  const std::string path = machine.GetPath();
  const std::string target = folder.GetPath() / "again.json";
  const TProcessResult result = RunShell(kCommand + " capture --machine " + path + " " + target + " --anonymous");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors,
            "displayinfo: " + path +
                "/edid/1.bin: is empty, so it is not captured; capture the machine again\n"
                "displayinfo: replaced by fillers: the system's name, and serial numbers (1 in a descriptor)\n"
                "displayinfo: captured; displayinfo --machine " +
                target + " answers as " + path + " does, but for what was replaced\n");
  EXPECT_THAT(RunShell(kCommand + " --machine " + target + " QRXSG_DesktopMonitor --format json").output,
              AllOf(HasSubstr("\"value\": \"anonymous\""), testing::Not(HasSubstr("A190"))));
  ExpectWrongUsage("capture x --machine y --edid-source drm", "--machine excludes --edid-source", "capture ");
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

TEST_F(Command, SaysWhenItsOutputIsClosed) {
  const TProcessResult result = Run("--log-level error >&-");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "displayinfo: standard output is closed; send it to a file or to a program\n");
}

TEST_F(Command, AnswersForACapturedMachineWithItsInputClosed) {
  machine.Edid(0, TEdidBuilder().Build());
  const TProcessResult result = Run("--format json <&-");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, Run("--format json").output);
}

TEST_F(Command, GivesUpAMachineThatTakesTooLong) {
  ExpectUnusable(RunTrouble("never-returns", "--timeout 1"),
                 machine.GetPath().string() + ": took longer than 1 s; --timeout SECONDS gives it longer");
}

TEST_F(Command, GivesUpAMachineThatTakesTooMuchMemory) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process itself";
  ExpectUnusable(RunTrouble("takes-all-memory"), "needs more than 2 GiB of memory, the most that one machine may take");
}

TEST_F(Command, CapturesNoMachineThatTakesTooLong) {
  machine.File("root/never-returns", "");
  const TTemporaryFolder folder;
  const std::string target = (folder.GetPath() / "ws-17").string();
  ExpectUnusable(RunShell(kCommand + " capture --timeout 1 --plugin " TROUBLE_PLUGIN_FILE " --machine " +
                          machine.GetPath().string() + " " + target),
                 machine.GetPath().string() + ": took longer than 1 s; --timeout SECONDS gives it longer");
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(Command, CapturesNoMachineThatTakesTooMuchMemory) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process itself";
  machine.File("root/takes-all-memory", "");
  ExpectUnusable(
      RunShell(kCommand + " capture --plugin " TROUBLE_PLUGIN_FILE " --machine " + machine.GetPath().string() + " -"),
      "needs more than 2 GiB of memory, the most that one machine may take");
}

TEST_F(Command, ServesNoMachineThatDoesNotExist) {
  ExpectUnusable(RunShell("timeout 20 " + kCommand + " serve --port 0 --machine none"),
                 "none: is not a captured machine: No such file or directory; --machine takes a folder or a file that "
                 "exists");
}

TEST_F(Command, TellsWhatThePluginThrewWhenItWasLoaded) {
  const std::string failure = TROUBLE_PLUGIN_FILE ": the plug-in failed while it was loaded: ";
  ExpectUnusable(RunTrouble("throws"), failure + "no \\x1bwish to live; name another with --plugin FILE");
}

TEST_F(Command, TellsThatThePluginThrewWhatSaysNothing) {
  const std::string failure = TROUBLE_PLUGIN_FILE ": the plug-in failed while it was loaded: ";
  ExpectUnusable(RunTrouble("throws-a-number"),
                 failure + "an exception that says nothing; name another with --plugin FILE");
}

TEST_F(Command, AnswersWithAMillionLogMessagesAndHowManyMoreThereWere) {
  const TProcessResult result = RunTrouble("logs-much", "--timeout 3600 --format json | grep '\"message\"' | uniq -c");
  EXPECT_EQ(result.errors, "warning: all further log messages are left out\n");
  // Of the request, and of the run.
  EXPECT_EQ(result.output,
            "1000000           \"message\": \"again\"\n"
            "      1           \"message\": \"10 more log messages were left out\"\n"
            "1000000       \"message\": \"again\"\n"
            "      1       \"message\": \"10 more log messages were left out\"\n");
}

TEST_F(Command, TellsItsVersion) {
  const TProcessResult result = RunShell(kCommand + " --version");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "displayinfo 1.1\n");
}

TEST_F(Command, ExplainsItself) {
  const TProcessResult result = RunShell(kCommand + " --help");
  EXPECT_EQ(result.status, 0);
  std::ifstream expected(EXPECTED_FOLDER "/help.txt");
  EXPECT_EQ(result.output, std::string(std::istreambuf_iterator<char>(expected), {}));
}

TEST_F(Command, ExplainsEachSubcommandOnItsOwnPage) {
  const std::string help = RunShell(kCommand + " --help").output;
  for (const char* const name : {"capture", "compare", "watch", "serve", "schema"}) {
    EXPECT_THAT(help, HasSubstr(std::string("\n       displayinfo ") + name + " "));
    const TProcessResult page = RunShell(kCommand + " " + name + " --help");
    EXPECT_EQ(page.status, 0);
    EXPECT_THAT(page.output, HasSubstr(std::string("\nUsage: displayinfo ") + name + " [OPTIONS]"));
    std::istringstream lines(page.output);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  }
  EXPECT_THAT(RunShell(kCommand + " capture --help").output, HasSubstr("\n  --anonymous "));
}

TEST_F(Command, NamesEachClassWholeInItsHelp) {
  std::istringstream words(RunShell(kCommand + " --help").output);
  const std::vector<std::string> all(std::istream_iterator<std::string>(words), {});
  std::istringstream names(kClassNames);
  for (std::string name; std::getline(names >> std::ws, name, ',');) EXPECT_THAT(all, testing::Contains(name));
}

TEST_F(Command, SaysWhenItsHelpCannotBeWritten) {
  for (const char* const option : {" --help", " --version"}) {
    const TProcessResult result = RunShell(kCommand + option + " >/dev/full");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "displayinfo: standard output cannot be written: No space left on device\n");
  }
}

TEST_F(Command, ExplainsItsClasses) {
  EXPECT_THAT(RunShell(kCommand + " schema").output, StartsWith("QRXSG_VideoController\n"));
  EXPECT_THAT(RunShell(kCommand + " schema --format mof").output, StartsWith("Qualifier Key : boolean"));
  EXPECT_TRUE(json::accept(RunShell(kCommand + " schema --format json-schema").output));
  ExpectWrongUsage("schema --format html", "--format: html not in {text,mof,json-schema}", "schema ");
}

TEST_F(Command, CapturesAMachineOnceWithTheSameAnswer) {
  machine.Edid(0, TEdidBuilder().Build());
  const TTemporaryFolder folder;
  const std::string capture = kCommand + " capture --machine " + machine.GetPath().string() + " ";
  for (const char* const name : {"ws-17", "ws-17.json"}) {
    const std::string target = (folder.GetPath() / name).string();
    const TProcessResult result = RunShell(capture + target);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "displayinfo: captured; displayinfo --machine " + target + " answers as " +
                                 machine.GetPath().string() + " does\n");
    EXPECT_EQ(RunShell(kCommand + " --format json --machine " + target).output, Run("--format json").output);
    const std::string kind = name == std::string("ws-17") ? "folder" : "file";
    ExpectUnusable(RunShell(capture + target), target + ": already exists; name a " + kind + " that does not");
  }
}

TEST_F(Command, CapturesAMachineToStandardOutput) {
  machine.Edid(0, TEdidBuilder().Build());
  const TTemporaryFolder folder;
  const std::string target = (folder.GetPath() / "ws-17.json").string();
  const std::string capture = kCommand + " capture --machine " + machine.GetPath().string() + " - >";
  const TProcessResult result = RunShell(capture + target);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "displayinfo: captured; saved as FILE.json, displayinfo --machine FILE.json answers as " +
                               machine.GetPath().string() + " does\n");
  EXPECT_EQ(RunShell(kCommand + " --format json --machine " + target).output, Run("--format json").output);
  ExpectUnusable(RunShell(capture + "/dev/full"), "standard output cannot be written: No space left on device");
}

TEST_F(Command, NamesTheDamagedEdidWhenItLeavesNothingToCapture) {
  machine.Edid(0, {});
  ExpectUnusable(RunShell(kCommand + " capture --machine " + machine.GetPath().string() + " -"),
                 machine.GetPath().string() +
                     "/edid/0.bin: is empty, so it is not captured; capture the machine again\ndisplayinfo: there is "
                     "nothing to capture: no X configuration and no usable EDID was found; displayinfo says where it "
                     "looked");
}

TEST_F(Command, CapturesNothingWhereItMayNotLookForTheConfiguration) {
  machine.Edid(0, TEdidBuilder().Build()).File("root/etc/X11/xorg.conf", "");
  std::filesystem::permissions(machine.GetPath(), std::filesystem::perms::all);
  std::filesystem::permissions(machine.GetPath() / "root", std::filesystem::perms::none);
  const TProcessResult result =
      RunShell(kAsNobody + TReachableBuild().GetCommand() + " capture --machine " + machine.GetPath().string() + " -");
  std::filesystem::permissions(machine.GetPath() / "root", std::filesystem::perms::all);
  ExpectUnusable(result, "10 of the 10 X server configuration files could not be looked for in " +
                             machine.GetPath().string() +
                             "/root: Permission denied; make it readable, or run as a user who may read it");
}

TEST_F(Command, LeavesNothingWhenACaptureIsEndedWhileItReads) {
  machine.File("root/waits", "");
  const std::filesystem::path target = machine.GetPath() / "target";
  TRunningProcess run("exec " + kCommand + " capture --plugin " TROUBLE_PLUGIN_FILE " --machine " +
                      machine.GetPath().string() + " " + target.string());
  std::vector<pid_t> readers;
  ASSERT_TRUE(WaitUntil([&] { return (readers = run.GetChildren()).size() == 1; }));
  ASSERT_TRUE(WaitUntil([&] { return HasSignal(readers[0], "SigIgn", SIGUSR1); }));
  if (geteuid() == 0) {
    EXPECT_EQ(ReadStatus(readers[0], "Uid"), "65534\t65534\t65534\t65534");
    EXPECT_EQ(ReadStatus(readers[0], "CapEff"), "0000000000000004") << "it may only read";
  }
  run.Send(SIGTERM);
  const int status = run.Wait();
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
  EXPECT_FALSE(std::filesystem::exists(target));
  EXPECT_TRUE(WaitUntil([&] { return HasEnded(readers[0]); }));
}

// The process that reads the stranger's machine gives up root's rights; the one that writes keeps them.
TEST_F(Command, CapturesAsRootIntoAnyFolder) {
  if (geteuid() != 0) GTEST_SKIP() << "only root gives up rights";
  machine.Edid(0, TEdidBuilder().Build());
  const TTemporaryFolder folder;
  const std::string of = folder.GetPath().string();
  const TProcessResult result =
      RunShell("chown 65533 " + of + "; umask 077; " + kCommand + " capture --machine " + machine.GetPath().string() +
               " " + of + "/ws-17; stat -c %u " + of + "/ws-17/edid/0.bin");
  EXPECT_EQ(result.output, "0\n") << result.errors;
}

TEST_F(Command, CapturesThisMachineUnlessThereIsNothingToCapture) {
  const TTemporaryFolder folder;
  const std::string target = (folder.GetPath() / "ws-17").string();
  const TProcessResult result = RunShell(kCommand + " capture --edid-source drm " + target);
  if (result.status == 1) {
    EXPECT_THAT(result.errors,
                HasSubstr("there is nothing to capture: no X configuration and no usable EDID was found"));
    EXPECT_FALSE(std::filesystem::exists(target));
    return;
  }
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(RunShell(kCommand + " --format json --machine " + target).output,
            RunShell(kCommand + " --format json --edid-source drm").output);
}

// Without any capability nobody gets at the BIOS, root neither. A machine without an X configuration then has nothing
// to capture.
TEST_F(Command, SaysThatTheBiosCouldNotBeReadWhenItCaptures) {
  const TTemporaryFolder folder;
  const std::string target = (folder.GetPath() / "ws-17.json").string();
  const std::string powerless = geteuid() == 0 ? "setpriv --bounding-set=-all " : "";
  const TProcessResult result = RunShell(powerless + kCommand + " capture --edid-source bios " + target);
  EXPECT_THAT(result.errors, HasSubstr("; a captured machine (--machine PATH) does without it\n"));
  EXPECT_EQ(result.status, std::filesystem::exists(target) ? 0 : 1);
  if (result.status != 0) return;
  EXPECT_EQ(json::parse(RunShell("cat " + target).output)["bios"]["present"], false);
}

TEST_F(Command, CapturesNothingWithoutATarget) {
  ExpectWrongUsage("capture", "TARGET is required", "capture ");
  ExpectWrongUsage("capture --machine ws-17", "TARGET is required", "capture ");
  ExpectWrongUsage("capture ''", "TARGET: the name is empty", "capture ");
  ExpectWrongUsage("capture --machine ws-17 --edid-source drm x", "--machine excludes --edid-source", "capture ");
}

TEST_F(Command, TakesNoOptionsBeforeASubcommand) {
  ExpectWrongUsage("--format json schema", "--format is not for schema, whose options follow it", "schema ");
  ExpectWrongUsage("--machine ws-17 capture x", "--machine is not for capture, whose options follow it", "capture ");
  ExpectWrongUsage("QRXSG_VideoHead schema", "CLASS is not for schema, whose options follow it", "schema ");
  ExpectWrongUsage("--timeout 5 schema", "--timeout is not for schema, whose options follow it", "schema ");
}

TEST_F(Command, ExplainsItselfOnOneScreen) {
  std::istringstream lines(RunShell(kCommand + " --help").output);
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_LE(count, 24U);
  EXPECT_GT(count, 10U);
}

// Passes without a check if it is started without capabilities.
TEST_F(Command, HasNoCapabilityLeftWhenItAnswers) {
  std::string requests;
  for (int count = 0; count < 100; ++count) requests += " --request QRXSG_DesktopMonitor";  // more than a pipe holds
  machine.Edid(0, TEdidBuilder().Build());
  const std::string pipe = machine.GetPath() / "pipe";
  const TProcessResult result =
      RunShell("mkfifo " + pipe + "; " + kCommand + " --machine " + machine.GetPath().string() + " --format json" +
               requests + " >" + pipe + " & exec 3<" + pipe +
               "; read -r line <&3; grep -E 'Uid|Cap(Inh|Prm|Eff)|NoNewPrivs' /proc/$!/status; cat <&3 >/dev/null");
  const std::string user = geteuid() == 0 ? "65534" : std::to_string(geteuid());
  const std::string none = ":\t0000000000000000\n";
  EXPECT_EQ(result.output, "Uid:\t" + user + "\t" + user + "\t" + user + "\t" + user + "\nCapInh" + none + "CapPrm" +
                               none + "CapEff" + none + "NoNewPrivs:\t1\n");
}

// A pipe in place of the plug-in, which is opened after the machine has been read.
TEST_F(Command, HasNoCapabilityButToReadWhenItLooksAtACapturedMachine) {
  const std::string pipe = machine.GetPath() / "pipe";
  const TProcessResult result =
      RunShell("mkfifo " + pipe + "; " + kCommand + " --machine " + machine.GetPath().string() + " --plugin " + pipe +
               " & exec 3>" + pipe + "; grep -E 'Uid|CapEff|NoNewPrivs' /proc/$!/status");
  const std::string user = geteuid() == 0 ? "65534" : std::to_string(geteuid());
  const std::string capability = geteuid() == 0 ? "4" : "0";
  EXPECT_EQ(result.output, "Uid:\t" + user + "\t" + user + "\t" + user + "\t" + user + "\nCapEff:\t000000000000000" +
                               capability + "\nNoNewPrivs:\t1\n");
}

TEST_F(Command, AnswersForAFileAsForTheFolder) {
  machine.File("ws-17.json", R"({"captured": 1, "systemName": "ws-17", "files": {"/etc/X11/xorg.conf":
      {"text": "Section \"Device\"\n  Identifier \"a\"\nEndSection\n"}}})");
  machine.Json(R"({"systemName": "ws-17"})")
      .File("root/etc/X11/xorg.conf", "Section \"Device\"\n  Identifier \"a\"\nEndSection\n");
  const std::string answer = Run("--format json").output;
  EXPECT_THAT(answer, HasSubstr("\"ws-17\""));
  EXPECT_EQ(RunShell(kCommand + " --format json --machine " + machine.GetPath().string() + "/ws-17.json").output,
            answer);
}

TEST_F(Command, ReadsACapturedMachineWithStandardInputClosed) {
  machine.File("ws-17.json", R"({"captured": 1, "systemName": "ws-17"})").Edid(0, TEdidBuilder().Build());
  for (const char* const name : {"", "/ws-17.json"}) {
    const std::string line = kCommand + " --format json --machine " + machine.GetPath().string() + name;
    const TProcessResult closed = RunShell(line + " <&-");
    EXPECT_EQ(closed.status, 0) << closed.errors;
    EXPECT_EQ(closed.output, RunShell(line).output);
  }
}

TEST_F(Command, NeedsNoProcessFolder) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer reads /proc itself";
  const TProcessResult tried = RunShell("unshare --user --map-root-user --mount true");
  if (tried.status != 0) GTEST_SKIP() << "no mount namespace can be made: " << tried.errors;
  const std::string path = machine.Edid(0, TEdidBuilder().Build()).GetPath().string();
  const TProcessResult result = RunShell("unshare --user --map-root-user --mount sh -c 'mount -t tmpfs none /proc && " +
                                         kCommand + " --format json --machine " + path + "'");
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, RunShell(kCommand + " --format json --machine " + path).output);
}

TEST_F(Command, SaysWhatIsTooLongOfAMachinesName) {
  const std::string name(300, 'n');
  ExpectUnusable(
      RunShell(kCommand + " --machine " + name),
      name + ": is not a captured machine: File name too long; --machine takes a folder or a file that exists");
}

TEST_F(Command, SaysHowToUseAPackedFolder) {
  machine.File("ws-17.tar.gz", "");
  const std::string packed = machine.GetPath().string() + "/ws-17.tar.gz";
  ExpectUnusable(RunShell(kCommand + " --machine " + packed),
                 packed +
                     ": is a packed folder, which is not read; unpack it (tar -xzf FILE) and name the folder: "
                     "--machine DIR");
}

TEST_F(Command, WatchesThisMachineUntilItIsToldToEnd) {
  const TReachableBuild build;  // watching gives up root's rights before it loads the plug-in
  const TProcessResult result =
      RunShell("cd " + machine.GetPath().string() + " && mkfifo lines && { " + build.GetCommand() +
               " watch >lines & } && exec 3<lines && read -r line <&3 && echo \"$line\" && kill -TERM $! && wait $!");
  EXPECT_EQ(result.status, 0) << result.errors;
  const json state = json::parse(result.output);
  EXPECT_EQ(state["requests"][0]["classes"].size(), 6U);
  EXPECT_TRUE(state["outputs"].is_array());
  EXPECT_EQ(state.count("log"), 0U);
}

TEST_F(Command, WatchesUntilNobodyReads) {
  const TReachableBuild build;
  const TProcessResult result = RunShell("{ " + build.GetCommand() + " watch; echo $? >&2; } | head -n 1 | wc -l");
  EXPECT_EQ(result.output, "1\n");
  EXPECT_EQ(result.errors, "0\n");
}
