// Many machines, as the users of the command ask for them.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/process.h"

using nlohmann::json;
using nlohmann::ordered_json;
using testing::HasSubstr;

namespace {

const std::string kCommand = COMMAND_FILE;

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class Fleet : public testing::Test {
 protected:
  Fleet() {
    for (int number = 0; number < 20; ++number) MakeMachine("m" + std::to_string(number));
    folder.Write("broken/machine.json", "{\"nonsense\": 1}");
  }

  /// A machine that says its own name.
  void MakeMachine(const std::string& name) {
    folder.Write(name + "/machine.json", "{\"systemName\": \"" + name + "\"}");
    const std::vector<std::uint8_t> edid = TEdidBuilder().Build();
    folder.Write(name + "/edid/0.bin", std::string(edid.begin(), edid.end()));
    names.push_back(name);
  }

  TProcessResult Run(const std::string& arguments) const {
    return RunShell("cd " + folder.GetPath().string() + "\n" + kCommand + " " + arguments);
  }

  /// With this list on standard input.
  TProcessResult RunList(const std::string& list, const std::string& arguments = "") const {
    folder.Write("list", list);
    return Run("--machines - " + arguments + " <list");
  }

  std::string ListAll() const {
    std::string list;
    for (const std::string& name : names) list += name + "\n";
    return list;
  }

  static std::vector<std::string> GetNames(const std::string& output) {
    std::vector<std::string> found;
    for (const std::string& line : SplitLines(output)) found.push_back(json::parse(line)["machine"]);
    return found;
  }

  TTemporaryFolder folder;
  std::vector<std::string> names;
};

}  // namespace

TEST_F(Fleet, IsAnsweredInTheOrderOfItsList) {
  const TProcessResult result = RunList(ListAll(), "--jobs 7");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(GetNames(result.output), names);
}

TEST_F(Fleet, IsAnsweredWithWhatEachMachineAnswersAlone) {
  const std::vector<std::string> lines = SplitLines(RunList(ListAll()).output);
  ASSERT_EQ(lines.size(), names.size());
  for (std::size_t number = 0; number < names.size(); ++number) {
    ordered_json alone = {{"machine", names[number]}};
    alone.update(ordered_json::parse(Run("--format json --machine " + names[number]).output));
    EXPECT_EQ(lines[number], alone.dump());
  }
}

TEST_F(Fleet, MayBeNamedOnTheCommandLine) {
  EXPECT_EQ(GetNames(Run("--machine m3 --machine m1 --machine m3").output),
            (std::vector<std::string>{"m3", "m1", "m3"}));
}

TEST_F(Fleet, MayBeListedInAFile) {
  folder.Write("machines", "m2\nm1\n");
  EXPECT_EQ(GetNames(Run("--machines machines").output), (std::vector<std::string>{"m2", "m1"}));
}

TEST_F(Fleet, MayBeASingleMachineOfAList) {
  EXPECT_EQ(GetNames(RunList("m1\n").output), std::vector<std::string>{"m1"});
}

TEST_F(Fleet, MayBeEmpty) {
  const TProcessResult result = RunList("");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
}

TEST_F(Fleet, HoldsTheRequestsThatWereAskedFor) {
  const json line = json::parse(RunList("m1\n", "--request QRXSG_DesktopMonitor --request QRXSG_VideoHead").output);
  EXPECT_EQ(line["requests"].size(), 2U);
}

TEST_F(Fleet, GoesOnBehindABrokenMachine) {
  const TProcessResult result = RunList("m1\nbroken\nnowhere\nm2\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "displayinfo: 2 of 4 machines failed; their lines say why\n");
  const std::vector<std::string> lines = SplitLines(result.output);
  ASSERT_EQ(lines.size(), 4U);
  const std::string reason = json::parse(lines[1])["error"];
  EXPECT_EQ("displayinfo: " + reason + "\n", Run("--machine broken").errors);
  EXPECT_EQ(lines[2],
            "{\"machine\":\"nowhere\",\"error\":\"nowhere: is not a captured machine: No such file or directory; "
            "--machine takes a folder or a file that exists\"}");
  EXPECT_TRUE(json::parse(lines[3]).contains("requests"));
}

TEST_F(Fleet, LosesOneMachineWithAWorkerThatDies) {
  folder.Write("fatal/root/fatal", "");
  const TProcessResult result = RunList("m1\nfatal\nm2\n", "--jobs 1 --plugin " FATAL_PLUGIN_FILE);
  EXPECT_EQ(result.status, 1);
  const std::vector<std::string> lines = SplitLines(result.output);
  ASSERT_EQ(lines.size(), 3U);
  // That plug-in registers none, which the other machines' lines say.
  EXPECT_THAT(lines[0], HasSubstr("{\"machine\":\"m1\",\"error\":\"" FATAL_PLUGIN_FILE ": registered 0"));
  EXPECT_EQ(lines[1],
            "{\"machine\":\"fatal\",\"error\":\"the process that collected from it was ended by signal 6 (Aborted)\"}");
  EXPECT_THAT(lines[2], HasSubstr("{\"machine\":\"m2\",\"error\":\"" FATAL_PLUGIN_FILE ": registered 0"));
}

TEST_F(Fleet, LosesNoOtherMachineWhenManyAreFatal) {
  folder.Write("fatal/root/fatal", "");
  std::vector<std::string> mixed;
  for (const std::string& name : names) mixed.insert(mixed.end(), {name, "fatal", "fatal"});
  std::string list;
  for (const std::string& name : mixed) list += name + "\n";
  const TProcessResult result = RunList(list, "--jobs 3 --plugin " FATAL_PLUGIN_FILE);
  EXPECT_EQ(GetNames(result.output), mixed);
  for (const std::string& line : SplitLines(result.output)) {
    const json parsed = json::parse(line);
    const bool isFatal = parsed["error"].get<std::string>().find("was ended by signal 6") != std::string::npos;
    EXPECT_EQ(isFatal, parsed["machine"] == "fatal") << line;
  }
}

TEST_F(Fleet, IsNotBegunWithoutThePlugin) {
  const TProcessResult result = RunList("m1\n", "--plugin nowhere");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "displayinfo: nowhere: no such plug-in; build it, or name another with --plugin FILE\n");
}

TEST_F(Fleet, IsResumedBehindWhatAnEarlierRunHasWritten) {
  folder.Write("done", RunList("m1\nbroken\n").output);
  const TProcessResult result = RunList("m1\nm2\nbroken\nm1\n", "--resume done");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(GetNames(result.output), (std::vector<std::string>{"m2", "m1"}));
}

TEST_F(Fleet, IsNotBegunWithoutTheAnswerToBeResumed) {
  const TProcessResult result = RunList("m1\n", "--resume nowhere");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "displayinfo: nowhere: cannot be read; --resume takes what an earlier run has written\n");
}

TEST_F(Fleet, EndsWithAWholeLineWhenItIsInterrupted) {
  // The list stays open, so that only the signal ends the run.
  const std::string run = "mkfifo list; exec 3<>list; echo m1 >&3\n" + kCommand +
                          " --machines list --jobs 3 >out & until [ -s out ]; do :; done\n"
                          "kill -INT $!; wait $!; echo $? >&2; cat out";
  const TProcessResult result = RunShell("cd " + folder.GetPath().string() + "\n" + run);
  EXPECT_EQ(result.errors, "130\n");
  EXPECT_EQ(GetNames(result.output), std::vector<std::string>{"m1"});
  EXPECT_EQ(result.output.back(), '\n');
}

TEST_F(Fleet, EndsQuietlyWhenItsReaderHasGone) {
  std::string list = "broken\n";
  for (int count = 0; count < 100; ++count) list += ListAll();  // more than a pipe holds
  folder.Write("list", list);
  const TProcessResult result = Run("--machines list | head -n 1");
  EXPECT_EQ(GetNames(result.output), std::vector<std::string>{"broken"});
  EXPECT_EQ(result.errors, "");
}

TEST_F(Fleet, KeepsTheLogInItsLines) {
  folder.Write("silent/machine.json", "{}");
  ASSERT_THAT(Run("--machine silent").errors, HasSubstr("status: "));
  const TProcessResult result = RunList("silent\n");
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, HasSubstr("{\"severity\":\"status\",\"message\":"));
}

TEST_F(Fleet, ShowsTheLogOfEachMachineWhenItIsAskedFor) {
  EXPECT_THAT(RunList("m1\n", "--log-level debug").errors,
              HasSubstr("m1: debug: TDisplayInfoCallbacks::Init - Initializing the plugin.\n"));
}

TEST_F(Fleet, IsWronglyUsed) {
  for (const char* const arguments :
       {"--jobs 2", "--resume x", "--jobs 2 --machine m1", "--machines list --machine m1", "--machines list --jobs 0",
        "--machines list --format text", "--machines list --edid-source drm"}) {
    EXPECT_EQ(Run(arguments).status, 2) << arguments;
  }
}
