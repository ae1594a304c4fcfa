// Asks many machines as the command's users do.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/ioctl.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "command/base/descriptor.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/pipe.h"
#include "tests/support/process.h"
#include "tests/support/running_process.h"
#include "tests/support/sanitizers.h"
#include "tests/support/terminal.h"

using nlohmann::json;
using nlohmann::ordered_json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

const std::string kCommand = COMMAND_FILE;

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// Options for lines that are longer than a pipe can hold.
const std::string kManyRequests = [] {
  std::string requests;
  for (int count = 0; count < 100; ++count) requests += " --request QRXSG_DesktopMonitor";
  return requests;
}();

/// True if the pipe is full.
bool IsFull(const TDescriptor& pipe) {
  int size = 0;
  return ioctl(pipe.Get(), FIONREAD, &size) == 0 && size >= 65536;
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

  /// A machine that asks the trouble plug-in for this trouble.
  void MakeTrouble(const std::string& trouble) const { folder.Write(trouble + "/root/" + trouble, ""); }

  /// The text in its lines that says why the machines failed; empty for those that did not.
  static std::vector<std::string> GetErrors(const std::string& output) {
    std::vector<std::string> errors;
    for (const std::string& line : SplitLines(output)) errors.push_back(json::parse(line).value("error", ""));
    return errors;
  }

  /// What the machines that name their process log, in the order of the output.
  static std::vector<std::string> GetProcesses(const std::string& output) {
    std::vector<std::string> processes;
    for (const std::string& line : SplitLines(output)) {
      const json answer = json::parse(line);
      for (const json& entry : answer.at("log")) {
        std::string message = entry.at("message");
        if (message.compare(0, 8, "process ") == 0) processes.push_back(std::move(message));
      }
    }
    return processes;
  }

  std::string GetPath(const std::string& name) const { return folder.GetPath() / name; }

  std::string ReadFile(const std::string& name) const {
    std::ifstream stream(GetPath(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }

  /// The line of shell that runs the command in the folder of the machines.
  std::string Exec(const std::string& arguments) const {
    return "cd " + folder.GetPath().string() + " && exec " + kCommand + " " + arguments;
  }

  std::string ListAll() const {
    std::string list;
    for (const std::string& name : names) list += name + "\n";
    return list;
  }

  static std::string GetFirstLine(const std::string& text) { return text.substr(0, text.find('\n') + 1); }
  static std::string GetRest(const std::string& text) { return text.substr(text.find('\n') + 1); }

  static std::vector<std::string> GetNames(const std::string& output) {
    std::vector<std::string> found;
    for (const std::string& line : SplitLines(output)) found.push_back(json::parse(line)["machine"]);
    return found;
  }

  TTemporaryFolder folder;
  std::vector<std::string> names;
};

/// A run in a process group of its own, whose only worker has answered m1 and waits for a signal.
class InterruptedFleet : public Fleet {
 protected:
  InterruptedFleet() {
    MakeTrouble("waits");
    folder.Write("list", "m1\nwaits\nm2\n");
    run.emplace("cd " + folder.GetPath().string() + " && exec setsid " + kCommand +
                " --machines list --jobs 1 --plugin " TROUBLE_PLUGIN_FILE " >out 2>errors");
    const auto isWaiting = [&] {
      const std::vector<pid_t> workers = run->GetChildren();
      worker = workers.empty() ? -1 : workers[0];
      return worker > 0 && HasSignal(worker, "SigIgn", SIGUSR1) && !ReadFile("out").empty();
    };
    if (!WaitUntil(isWaiting)) throw std::runtime_error("the worker does not wait");
  }

  /// Expects that the run ended by that signal, and left no line of the machine that it was asking.
  void ExpectNoVerdict(int signal) {
    const int status = run->Wait();
    ASSERT_TRUE(WIFEXITED(status)) << "it was killed";
    EXPECT_EQ(WEXITSTATUS(status), 128 + signal);
    EXPECT_EQ(GetNames(ReadFile("out")), std::vector<std::string>{"m1"});
    EXPECT_EQ(ReadFile("out").back(), '\n');
    EXPECT_EQ(GetNames(Run("--machines list --resume out").output), (std::vector<std::string>{"waits", "m2"}));
  }

  std::optional<TRunningProcess> run;
  pid_t worker = -1;
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

TEST_F(Fleet, IsAnsweredInTheRowsOfEachMachine) {
  std::string rows;
  for (const std::string& name : names) rows += Run("--format rows --machine " + name).output;
  EXPECT_EQ(RunList(ListAll(), "--format rows").output, rows);
}

TEST_F(Fleet, IsAnsweredInOneTableWithTheRowsOfEachMachine) {
  std::string table = GetFirstLine(Run("--format csv --machine m1").output);
  for (const std::string& name : names) table += GetRest(Run("--format csv --machine " + name).output);
  EXPECT_EQ(RunList(ListAll(), "--format csv --jobs 7").output, table);
}

TEST_F(Fleet, HasARowInTheTableForAMachineThatFails) {
  MakeTrouble("throws");
  const TProcessResult result = RunList("nowhere\nthrows\n", "--format csv --timeout 60 --plugin " TROUBLE_PLUGIN_FILE);
  EXPECT_EQ(result.status, 1);
  const std::vector<std::string> lines = SplitLines(result.output);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[1],
            "nowhere,,,,,,,,,,,,,,,,,,,,,,,,,,,\"nowhere: is not a captured machine: No such file or directory; "
            "--machine takes a "
            "folder or a file that exists\"\r");
  EXPECT_THAT(lines[2], StartsWith("throws,,,,,,,,,,,,,,,,,,,,,,,,,,,"));
}

TEST_F(Fleet, IsATableWithItsHeadWhenItIsEmpty) {
  const TProcessResult result = RunList("", "--format csv");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, GetFirstLine(Run("--format csv --machine m1").output));
}

TEST_F(Fleet, IsAnsweredInOnePageInTheOrderOfItsList) {
  const TProcessResult result = RunList(ListAll() + "nowhere\n", "--format html --jobs 7");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output, StartsWith("<!DOCTYPE html>"));
  EXPECT_THAT(result.output, EndsWith("</html>\n"));
  std::size_t place = 0;
  for (std::size_t number = 0; number < names.size(); ++number) {
    const std::string row =
        "<tr id=\"machine-" + std::to_string(number + 1) + "\"><th scope=\"row\">" + names[number] + "</th>";
    place = result.output.find(row, place);
    ASSERT_NE(place, std::string::npos) << row;
  }
  EXPECT_THAT(result.output, HasSubstr("<b>1</b>\n could not be asked"));
}

TEST_F(Fleet, IsAPageWhenItIsEmpty) {
  const TProcessResult result = RunList("", "--format html");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("<p>None: the list names no machine.</p>"));
}

TEST_F(Fleet, IsAPageOfItsBeginningWhenItIsInterrupted) {
  ASSERT_EQ(mkfifo(GetPath("list").c_str(), 0600), 0);
  const TDescriptor list(open(GetPath("list").c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(write(list.Get(), "m1\n", 3), 3);
  TRunningProcess run(Exec("--machines list --format html --log-level debug 2>errors >out"));
  ASSERT_TRUE(WaitUntil([&] { return ReadFile("errors").find("DeInit") != std::string::npos; }));
  run.Send(SIGINT);
  const int status = run.Wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 130);
  EXPECT_THAT(ReadFile("out"), HasSubstr("The run was stopped: the rest of the list is missing."));
  EXPECT_THAT(ReadFile("out"), EndsWith("</html>\n"));
}

TEST_F(Fleet, IsAnsweredWithoutTheLogWhenThatIsLeftOut) {
  const ordered_json line = ordered_json::parse(RunList("m1\n", "--no-log").output);
  EXPECT_FALSE(line.contains("log"));
  EXPECT_FALSE(line["requests"][0].contains("log"));
  EXPECT_TRUE(line["requests"][0].contains("instances"));
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

TEST_F(Fleet, LosesOnlyTheUnitOfADamagedEdid) {
  folder.Write("m0/edid/1.bin", "short");
  const TProcessResult result = Run("--machine m0 --machine m1");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(SplitLines(result.output).front())["outputs"][1]["reason"],
            "its EDID has 5 bytes, which is not a multiple of 128");
  EXPECT_THAT(result.errors, HasSubstr("displayinfo: m0/edid/1.bin: has 5 bytes, "));
}

TEST_F(Fleet, LosesOneMachineWithAWorkerThatDies) {
  folder.Write("fatal/root/fatal", "");
  const TProcessResult result = RunList("m1\nfatal\nm2\n", "--jobs 1 --plugin " FATAL_PLUGIN_FILE);
  EXPECT_EQ(result.status, 1);
  const std::vector<std::string> lines = SplitLines(result.output);
  ASSERT_EQ(lines.size(), 3U);
  // That library registers no plug-in, which the lines of the other machines say.
  EXPECT_THAT(lines[0], HasSubstr("{\"machine\":\"m1\",\"error\":\"m1: " FATAL_PLUGIN_FILE ": registered 0"));
  EXPECT_EQ(lines[1],
            "{\"machine\":\"fatal\",\"error\":\"fatal: the process that collected from it was ended by signal 6 "
            "(Aborted)\"}");
  EXPECT_THAT(lines[2], HasSubstr("{\"machine\":\"m2\",\"error\":\"m2: " FATAL_PLUGIN_FILE ": registered 0"));
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
  EXPECT_EQ(result.errors,
            "displayinfo: nowhere: cannot be read: No such file or directory; --resume takes what an earlier run has "
            "written\n");
}

TEST_F(Fleet, EndsWithAWholeLineWhenItIsInterrupted) {
  ASSERT_EQ(mkfifo(GetPath("list").c_str(), 0600), 0);
  const TDescriptor list(
      open(GetPath("list").c_str(), O_RDWR | O_CLOEXEC));  // stays open: only the signal ends the run
  for (const int signal : {SIGINT, SIGTERM}) {
    const std::string out = "out" + std::to_string(signal);
    ASSERT_EQ(write(list.Get(), "m1\n", 3), 3);
    TRunningProcess run(Exec("--machines list --jobs 3 2>errors >" + out));
    ASSERT_TRUE(WaitUntil([&] { return !ReadFile(out).empty(); }));
    run.Send(signal);
    const int status = run.Wait();
    ASSERT_TRUE(WIFEXITED(status)) << "it was killed";
    EXPECT_EQ(WEXITSTATUS(status), 128 + signal);
    EXPECT_EQ(ReadFile("errors"), "");
    EXPECT_EQ(GetNames(ReadFile(out)), std::vector<std::string>{"m1"});
    EXPECT_EQ(ReadFile(out).back(), '\n');
  }
}

TEST_F(InterruptedFleet, SaysNothingOfTheMachineWhenTheWholeGroupIsEnded) {
  kill(-run->GetId(), SIGTERM);
  ExpectNoVerdict(SIGTERM);
}

TEST_F(InterruptedFleet, SaysNothingOfTheMachineWhenTheGroupHasHadItsTime) {
  kill(-run->GetId(), SIGXCPU);
  ExpectNoVerdict(SIGXCPU);
}

TEST_F(InterruptedFleet, SaysNothingOfTheMachineWhenOnlyTheWorkerIsEnded) {
  kill(worker, SIGTERM);
  ExpectNoVerdict(SIGTERM);
  EXPECT_EQ(ReadFile("errors"),
            "displayinfo: the run ends, since one of its processes was ended by signal 15 (Terminated); --resume goes "
            "on with it\n");
}

TEST_F(InterruptedFleet, GoesOnWhenAFileOfTheGroupMayNotGrow) {
  kill(-run->GetId(), SIGXFSZ);
  kill(worker, SIGUSR2);
  EXPECT_EQ(run->Wait() >> 8, 1);
  EXPECT_THAT(
      GetErrors(ReadFile("out")),
      ElementsAre("", "waits: the process that collected from it was ended by signal 12 (User defined signal 2)", ""));
}

TEST_F(Fleet, EndsWithAWholeLineWhenItsFileMayNotGrow) {
  const std::string whole = RunList(ListAll()).output;
  folder.Write("limited", "ulimit -f 20\n" + kCommand + " --machines list >cut\n");
  const TProcessResult limited = RunShell("cd " + folder.GetPath().string() + "; bash limited");
  EXPECT_EQ(limited.status, 1);
  EXPECT_EQ(limited.errors, "displayinfo: standard output cannot be written: File too large\n");
  const std::string cut = ReadFile("cut");
  ASSERT_THAT(cut, EndsWith("\n"));
  EXPECT_LT(cut.size(), whole.size());
  EXPECT_EQ(cut, whole.substr(0, cut.size()));
}

// A reader that reads nothing keeps the first signal from taking effect.
TEST_F(Fleet, IsKilledByTheSecondInterruption) {
  ASSERT_EQ(mkfifo(GetPath("out").c_str(), 0600), 0);
  const TDescriptor reader(open(GetPath("out").c_str(), O_RDWR | O_CLOEXEC));
  folder.Write("list", "m1\n");
  TRunningProcess run(Exec("--machines list" + kManyRequests + " >out 2>errors"));
  ASSERT_TRUE(WaitUntil([&] { return IsFull(reader); }));
  run.Send(SIGINT);
  ASSERT_TRUE(WaitUntil([&] { return !HasSignal(run.GetId(), "SigCgt", SIGINT); }));
  ASSERT_FALSE(HasEnded(run.GetId()));
  run.Send(SIGINT);
  const int status = run.Wait();
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

TEST_F(Fleet, IsInterruptedEvenWhenAWorkerNeverReturns) {
  MakeTrouble("never-returns");
  folder.Write("list", "never-returns\n");
  TRunningProcess run(Exec("--machines list --jobs 1 --plugin " TROUBLE_PLUGIN_FILE " >out 2>errors"));
  std::vector<pid_t> workers;
  ASSERT_TRUE(WaitUntil([&] { return (workers = run.GetChildren()).size() == 1; }));
  ASSERT_TRUE(WaitUntil([&] { return HasSignal(workers[0], "SigIgn", SIGTERM); }));
  run.Send(SIGINT);
  const int status = run.Wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 130);
  EXPECT_EQ(ReadFile("out"), "");
  EXPECT_TRUE(WaitUntil([&] { return HasEnded(workers[0]); }));
}

TEST_F(Fleet, GoesOnWhenAnIdleWorkerIsKilled) {
  ASSERT_EQ(mkfifo(GetPath("list").c_str(), 0600), 0);
  TDescriptor list(open(GetPath("list").c_str(), O_RDWR | O_CLOEXEC));
  TRunningProcess run(Exec("--machines list --jobs 1 >out 2>errors"));
  ASSERT_EQ(write(list.Get(), "m1\n", 3), 3);
  ASSERT_TRUE(WaitUntil([&] { return !ReadFile("out").empty(); }));
  const std::vector<pid_t> before = run.GetChildren();
  ASSERT_THAT(before, SizeIs(1));
  kill(before[0], SIGKILL);
  ASSERT_TRUE(WaitUntil([&] { return run.GetChildren().size() == 1 && run.GetChildren() != before; }));
  ASSERT_EQ(write(list.Get(), "m2\n", 3), 3);
  list.Close();
  EXPECT_EQ(run.Wait(), 0);
  EXPECT_EQ(ReadFile("errors"), "");
  EXPECT_THAT(GetNames(ReadFile("out")), ElementsAre("m1", "m2"));
}

TEST_F(Fleet, FailsTheMachinesThatTakeTooLong) {
  MakeTrouble("never-returns");
  MakeTrouble("stops");
  const TProcessResult result =
      RunList("m1\nnever-returns\nm2\nstops\nm3\n", "--jobs 3 --timeout 3 --plugin " TROUBLE_PLUGIN_FILE);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "displayinfo: 2 of 5 machines failed; their lines say why\n");
  const std::string reason = ": took longer than 3 s; --timeout SECONDS gives it longer";
  EXPECT_THAT(GetErrors(result.output), ElementsAre("", "never-returns" + reason, "", "stops" + reason, ""));
}

TEST_F(Fleet, FailsTheMachineThatTakesTooMuchMemory) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process itself";
  MakeTrouble("takes-all-memory");
  const std::string list = "m1\ntakes-all-memory\ntakes-all-memory\nm2\n";
  const TProcessResult result = RunList(list, "--jobs 1 --plugin " TROUBLE_PLUGIN_FILE);
  EXPECT_EQ(result.status, 1);
  const std::string reason = "takes-all-memory: needs more than 2 GiB of memory, the most that one machine may take";
  EXPECT_THAT(GetErrors(result.output), ElementsAre("", reason, reason, ""));
}

TEST_F(Fleet, AsksTheNextMachineInTheSameProcess) {
  MakeTrouble("names-its-process");
  const TProcessResult result =
      RunList("names-its-process\nm1\nnames-its-process\n", "--jobs 1 --plugin " TROUBLE_PLUGIN_FILE);
  const std::vector<std::string> processes = GetProcesses(result.output);
  ASSERT_THAT(processes, SizeIs(2));
  EXPECT_EQ(processes[0], processes[1]);
}

TEST_F(Fleet, AsksTheNextMachineInAFreshProcessAfterOneThatTookMuchMemory) {
  MakeTrouble("names-its-process");
  MakeTrouble("takes-much-memory");
  const TProcessResult result =
      RunList("names-its-process\ntakes-much-memory\nnames-its-process\n", "--jobs 1 --plugin " TROUBLE_PLUGIN_FILE);
  const std::vector<std::string> processes = GetProcesses(result.output);
  ASSERT_THAT(processes, SizeIs(2));
  EXPECT_NE(processes[0], processes[1]);
}

TEST_F(Fleet, FailsTheMachineWhoseAnswerIsTooLarge) {
  MakeTrouble("logs-long");
  const TProcessResult result = RunList("m1\nlogs-long\nm2\n", "--jobs 1 --plugin " TROUBLE_PLUGIN_FILE);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(GetErrors(result.output), ElementsAre("", "logs-long: its answer is larger than 64 MiB", ""));
}

TEST_F(Fleet, FailsTheMachineOverWhichThePluginThrowsWhenItIsLoaded) {
  MakeTrouble("throws");
  const TProcessResult result = RunList("m1\nthrows\nthrows\nm2\n", "--jobs 1 --plugin " TROUBLE_PLUGIN_FILE);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "displayinfo: 2 of 4 machines failed; their lines say why\n");
  const std::string reason =
      "throws: " TROUBLE_PLUGIN_FILE
      ": the plug-in failed while it was loaded: no \\x1bwish to live; name another with --plugin FILE";
  EXPECT_THAT(GetErrors(result.output), ElementsAre("", reason, reason, ""));
}

TEST_F(Fleet, HoldsNoMoreThanTheLinesItMayWhenAnEarlierOneIsMissing) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer keeps memory that was freed";
  MakeTrouble("never-returns");
  std::string list = "never-returns\n";
  for (int number = 0; number < 8; ++number) {
    folder.Write("long" + std::to_string(number) + "/root/logs-half", "");  // 48 MiB each
    list += "long" + std::to_string(number) + "\n";
  }
  folder.Write("list", list);
  TRunningProcess run(Exec("--machines list --jobs 6 --plugin " TROUBLE_PLUGIN_FILE " >out 2>errors"));
  const auto isAsleep = [](pid_t process) { return ReadStatus(process, "State")[0] == 'S'; };
  const auto areStuck = [&] {
    const std::vector<pid_t> workers = run.GetChildren();
    // All workers except one have used the memory of a long line, and now wait for it to be taken.
    return workers.size() == 6 && isAsleep(run.GetId()) && std::all_of(workers.begin(), workers.end(), isAsleep) &&
           std::count_if(workers.begin(), workers.end(),
                         [](pid_t worker) { return GetPeakMemory(worker) > 48 * 1024; }) >= 4;
  };
  ASSERT_TRUE(WaitUntil(areStuck));
  EXPECT_LT(GetPeakMemory(run.GetId()), 200U * 1024);
}

TEST_F(Fleet, TellsHowAWorkerDiedEvenWhenItWasStartedToIgnoreThat) {
  folder.Write("fatal/root/fatal", "");
  folder.Write("list", "fatal\n");
  const TProcessResult result = RunShell("cd " + folder.GetPath().string() + "; env --ignore-signal=CHLD " + kCommand +
                                         " --machines list --plugin " FATAL_PLUGIN_FILE);
  EXPECT_THAT(GetErrors(result.output),
              ElementsAre("fatal: the process that collected from it was ended by signal 6 (Aborted)"));
}

// Without a list, the first descriptor that the command opens is the socket to a worker.
TEST_F(Fleet, CannotBeWrittenToAClosedStandardOutput) {
  const TProcessResult result = Run("--machine m1 --machine m2 --jobs 1 >&-");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "displayinfo: standard output is closed; send it to a file or to a program\n");
}

TEST_F(Fleet, CannotBeReadFromAClosedStandardInput) {
  const TProcessResult result = Run("--machines - <&-");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors,
            "displayinfo: standard input is closed; --machines takes a file of machines, one a line, or - for "
            "standard input\n");
}

TEST_F(Fleet, WaitsForAReaderEvenWhenItsOutputDoesNot) {
  TPipe answer(O_NONBLOCK);
  folder.Write("list", "m1\nm2\n");
  TRunningProcess run(Exec("--machines list" + kManyRequests + " 2>errors >&" + std::to_string(answer.writing.Get())));
  answer.writing.Close();
  ASSERT_TRUE(WaitUntil([&] { return IsFull(answer.reading); }));
  std::string output;
  char piece[4096];
  const auto readAll = [&] {
    ssize_t count = 0;
    while ((count = read(answer.reading.Get(), piece, sizeof piece)) > 0) {
      output.append(piece, static_cast<std::size_t>(count));
    }
    return count == 0;
  };
  ASSERT_TRUE(WaitUntil(readAll));
  EXPECT_EQ(run.Wait(), 0);
  EXPECT_EQ(ReadFile("errors"), "");
  EXPECT_THAT(GetNames(output), ElementsAre("m1", "m2"));
}

TEST_F(Fleet, FailsAMachineWhoseNameHasAZeroByte) {
  const TProcessResult result = RunList(std::string("m1\0evil\n", 8) + "m2\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(GetErrors(result.output),
              ElementsAre("m1\\x00evil: is not a captured machine: no file's name has a zero byte", ""));
}

TEST_F(Fleet, FailsAMachineWhoseNameIsLongerThanTheSystemTakes) {
  const std::string name(100000, 'x');
  const TProcessResult result = RunList("m1\n" + name + "\nm2\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(GetNames(result.output), ElementsAre("m1", name.substr(0, 4096), "m2"));
  EXPECT_EQ(GetErrors(result.output)[1], "its name is longer than any that the system takes; this is its beginning");
}

TEST_F(Fleet, ReadsItsListNoFurtherThanItIsAtWork) {
  MakeTrouble("never-returns");
  std::string list = "never-returns\n";
  for (int count = 0; count < 10000; ++count) list += ListAll();
  folder.Write("list", list);
  TRunningProcess run(Exec("--machines list --jobs 1 --plugin " TROUBLE_PLUGIN_FILE " >out 2>errors"));
  std::vector<pid_t> workers;
  ASSERT_TRUE(WaitUntil([&] { return (workers = run.GetChildren()).size() == 1; }));
  ASSERT_TRUE(WaitUntil([&] { return HasSignal(workers[0], "SigIgn", SIGTERM); }));
  ASSERT_TRUE(WaitUntil([&] { return ReadStatus(run.GetId(), "State") == "S (sleeping)"; }));
  std::string position;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(run.GetId()) + "/fd")) {
    std::error_code error;
    if (std::filesystem::read_symlink(entry, error) != GetPath("list")) continue;
    position = ReadProcess(run.GetId(), "fdinfo/" + entry.path().filename().string());
  }
  EXPECT_THAT(position, HasSubstr("pos:\t65536\n"));
}

TEST_F(Fleet, NeedsRoomForItsWorkers) {
  folder.Write("list", "m1\n");
  const TProcessResult result =
      RunShell("cd " + folder.GetPath().string() + "; ulimit -n 8; " + kCommand + " --machines list --jobs 10");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "displayinfo: no worker process can be reached: Too many open files; take fewer --jobs\n");
}

TEST_F(Fleet, ShowsOnATerminalHowFarItIs) {
  TTerminal terminal;
  folder.Write("list", ListAll());
  EXPECT_EQ(
      RunShell("cd " + folder.GetPath().string() + "; " + kCommand + " --machines - <list 2>" + terminal.GetName())
          .status,
      0);
  EXPECT_THAT(terminal.Read(), EndsWith("\r[##############################] 20 of 20 machines, 0 failed\r\n"));
}

TEST_F(Fleet, OnlyCountsOnATerminalWhatHasNoKnownEnd) {
  TTerminal terminal;
  folder.Write("list", ListAll());
  EXPECT_EQ(
      RunShell("cd " + folder.GetPath().string() + "; cat list | " + kCommand + " --machines - 2>" + terminal.GetName())
          .status,
      0);
  const std::string shown = terminal.Read();
  EXPECT_THAT(shown, EndsWith("\r20 machines, 0 failed\r\n"));
  EXPECT_THAT(shown, Not(HasSubstr(" of ")));
}

TEST_F(Fleet, PutsWhatItSaysOfAMachineInThePlaceOfTheBar) {
  TTerminal terminal;
  folder.Write("damaged/edid/0.bin", "short");
  folder.Write("list", "damaged\n");
  RunShell("cd " + folder.GetPath().string() + "; " + kCommand + " --machines list --log-level status 2>" +
           terminal.GetName());
  EXPECT_THAT(terminal.Read(), AllOf(HasSubstr("\r\x1B[Kdisplayinfo: damaged/edid/0.bin: has 5 bytes"),
                                     HasSubstr("\r\x1B[Kdamaged: status: ")));
}

TEST_F(Fleet, LeavesItsBarBeforeItSaysMoreOnATerminal) {
  TTerminal terminal;
  folder.Write("list", "m1\nbroken\n");
  RunShell("cd " + folder.GetPath().string() + "; " + kCommand + " --machines list 2>" + terminal.GetName());
  EXPECT_THAT(terminal.Read(), EndsWith("2 of 2 machines, 1 failed\r\n"
                                        "displayinfo: 1 of 2 machines failed; their lines say why\r\n"));
}

TEST_F(Fleet, LeavesItsBarOnATerminalEvenWhenItCannotGoOn) {
  TTerminal terminal;
  folder.Write("list", "m1\n");
  RunShell("cd " + folder.GetPath().string() + "; " + kCommand + " --machines list >/dev/full 2>" + terminal.GetName());
  EXPECT_THAT(terminal.Read(), EndsWith(" failed\r\ndisplayinfo: standard output cannot be written: No space left on "
                                        "device\r\n"));
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
        "--machines list --timeout 0", "--machines list --timeout 86401", "--machines list --format text",
        "--machines list --edid-source drm"}) {
    EXPECT_EQ(Run(arguments).status, 2) << arguments;
  }
}
