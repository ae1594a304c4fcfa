#include "command/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>

#include "command/base/standard_output.h"
#include "command/base/text_encoding.h"
#include "command/base/version.h"
#include "command/machine/this_machine.h"
#include "embedded_host/schema.h"

using NQRXZELT20::ILogger;

namespace {

constexpr int kWrongUsage = 2;
constexpr unsigned int kMaxSeconds = 24 * 60 * 60;

template <typename T>
using TNames = std::vector<std::pair<std::string, T>>;

const TNames<EEdidSource> kEdidSources = {
    {"auto", EEdidSource::kAuto}, {"bios", EEdidSource::kBios}, {"drm", EEdidSource::kDrm}};
const TNames<EXconfigSource> kXconfigSources = {
    {"auto", EXconfigSource::kAuto}, {"file", EXconfigSource::kFile}, {"kernel", EXconfigSource::kKernel}};
const TNames<EFormat> kFormats = {{"text", EFormat::kText}, {"json", EFormat::kJson}, {"rows", EFormat::kRows},
                                  {"csv", EFormat::kCsv},   {"mof", EFormat::kMof},   {"html", EFormat::kHtml}};
const TNames<ESchemaFormat> kSchemaFormats = {
    {"text", ESchemaFormat::kText}, {"mof", ESchemaFormat::kMof}, {"json-schema", ESchemaFormat::kJsonSchema}};
const TNames<bool> kCompareFormats = {{"text", false}, {"json", true}};
const TNames<ILogger::EZELTLogSeverity> kLogLevels = {{"error", ILogger::kError},
                                                      {"warning", ILogger::kWarning},
                                                      {"status", ILogger::kStatus},
                                                      {"debug", ILogger::kDebug},
                                                      {"verbose", ILogger::kVerbose}};

std::vector<std::string> GetClassNames() {
  std::vector<std::string> names;
  for (const TClassDeclaration& declaration : GetSchema()) names.emplace_back(declaration.name);
  return names;
}

/// An option whose value is one of a few words. `target`: a T, or an optional one.
template <typename TTarget, typename T>
CLI::Option* AddChoice(CLI::App& app, const std::string& name, TTarget& target, const TNames<T>& choices,
                       const std::string& description) {
  std::vector<std::string> words;
  for (const auto& choice : choices) words.push_back(choice.first);
  const auto set = [&target, &choices](const std::string& word) {
    for (const auto& choice : choices) {
      if (choice.first == word) target = choice.second;
    }
  };
  return app.add_option_function<std::string>(name, set, description)
      ->check(CLI::IsMember(words).description(""))
      ->option_text(CLI::detail::join(words, "|"));
}

/// A whole number from `min` to `max`. CLI11 has such a check too, whose message changes with its version.
CLI::Validator InRange(unsigned int min, unsigned int max) {
  return CLI::Validator(
      [=](const std::string& text) {
        unsigned int number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        const bool isNumber = error == std::errc() && end == text.data() + text.size();
        if (isNumber && number >= min && number <= max) return std::string();
        return "Value " + text + " not in range " + std::to_string(min) + " to " + std::to_string(max);
      },
      "");
}

/// For the name of a file or a machine: an empty one is a variable of a script that was never set.
CLI::Validator NotEmpty() {
  return CLI::Validator([](const std::string& name) { return name.empty() ? "the name is empty" : std::string(); }, "");
}

void AddSeconds(CLI::App& app, const char* name, std::chrono::seconds& target, unsigned int min, const char* meaning) {
  app.add_option_function<unsigned int>(
         name, [&target](unsigned int seconds) { target = std::chrono::seconds(seconds); }, meaning)
      ->option_text("SECONDS")
      ->check(InRange(min, kMaxSeconds));
}

/// Where this machine is asked. `others`: the options that name another machine instead.
void AddSources(CLI::App& app, EEdidSource& edidSource, EXconfigSource& xconfigSource,
                const std::vector<CLI::Option*>& others) {
  CLI::Option* const edids =
      AddChoice(app, "--edid-source", edidSource, kEdidSources, "Where this machine's EDIDs come from");
  CLI::Option* const xconfig = AddChoice(app, "--xconfig-source", xconfigSource, kXconfigSources,
                                         "auto (default)|file|kernel: its X configuration")
                                   ->option_text("SOURCE");
  for (CLI::Option* const other : others) {
    edids->excludes(other);
    xconfig->excludes(other);
  }
}

void AddPlugin(CLI::App& app, std::optional<std::filesystem::path>& plugin) {
  app.add_option("--plugin", plugin, "Which plug-in (default: beside the command)")
      ->option_text("FILE")
      ->check(NotEmpty());
}

void CheckClass(const std::string& name) {
  if (FindClass(name) != nullptr) return;
  throw CLI::ValidationError("\"" + name + "\" is not a class; the classes are " +
                             CLI::detail::join(GetClassNames(), ", "));
}

/// A word that belongs to no option: a class, or a subcommand that is not spelt right.
void CheckWord(const std::string& word, const CLI::App& app) {
  if (FindClass(word) != nullptr) return;
  std::vector<std::string> subcommands;
  for (const CLI::App* const subcommand : app.get_subcommands([](const CLI::App*) { return true; })) {
    subcommands.push_back(subcommand->get_name());
  }
  throw CLI::ValidationError("\"" + word + "\" is neither a class nor a subcommand; the classes are " +
                             CLI::detail::join(GetClassNames(), ", ") + "; the subcommands are " +
                             CLI::detail::join(subcommands, ", "));
}

TRequest SplitRequest(const std::string& text) {
  TRequest request = CLI::detail::split(text, ',');
  std::for_each(request.begin(), request.end(), CheckClass);
  return request;
}

std::vector<TRequest> MakeRequests(const TRequest& classes, const std::vector<std::string>& requests) {
  if (!classes.empty()) return {classes};
  if (requests.empty()) return {GetClassNames()};
  std::vector<TRequest> split;
  std::transform(requests.begin(), requests.end(), std::back_inserter(split), SplitRequest);
  return split;
}

/// The table and the page of many machines show all that is known of each.
void CheckOverview(EFormat format, bool isFleet, bool hasClasses) {
  const bool isOverview = format == EFormat::kCsv || (format == EFormat::kHtml && isFleet);
  if (!isOverview || !hasClasses) return;
  throw CLI::ValidationError(std::string(format == EFormat::kCsv ? "--format csv" : "the page of several machines") +
                             " is made from all classes; leave CLASS and --request out");
}

/// Several machines are answered in lines or in one page, and only lines can be resumed.
void CheckFleet(const TOptions& options, const CLI::App& app) {
  const EFormat format = options.format.value_or(options.IsFleet() ? EFormat::kJson : EFormat::kText);
  if (options.IsFleet() && (format == EFormat::kText || format == EFormat::kMof)) {
    throw CLI::ValidationError(
        "several machines are answered in json, rows, csv or html; leave --format out, or name one machine");
  }
  CheckOverview(format, options.IsFleet(), app.count("CLASS") + app.count("--request") > 0);
  if (options.IsFleet() && options.resume && format != EFormat::kJson) {
    throw CLI::ValidationError(
        "--resume goes on with lines of JSON, which tell where a machine ends; not with rows, csv or html");
  }
  if (!options.hasLog && format != EFormat::kJson) {
    throw CLI::ValidationError("--no-log is for --format json; the page keeps its log, and no other format has one");
  }
  for (const char* const name : {"--jobs", "--resume"}) {
    if (options.IsFleet() || app.count(name) == 0) continue;
    throw CLI::ValidationError(std::string(name) + " is for several machines; name them with --machines LIST");
  }
}

/// Each subcommand has options of its own, which follow it.
void CheckSubcommand(const CLI::App& app) {
  for (const CLI::App* const subcommand : app.get_subcommands()) {
    for (const CLI::Option* const option : app.get_options()) {
      if (option->count() == 0) continue;
      throw CLI::ValidationError(option->get_name() + " is not for " + subcommand->get_name() +
                                 ", whose options follow it");
    }
  }
}

/// Loopback only: the server has neither passwords nor TLS, so something that has them must answer other machines.
void CheckListenAddress(const std::string& address) {
  if (address == "127.0.0.1" || address == "::1") return;
  throw CLI::ValidationError(
      "--listen takes 127.0.0.1 or ::1, not " + address +
      "; to answer other machines, use an SSH tunnel, or a reverse proxy with TLS and passwords");
}

CLI::Option* AddHelp(CLI::App& app) { return app.set_help_flag("-h,--help", "Print this help message and exit"); }

/// The subcommand gets its help and its options when it is named: for all of them that takes longer than reading the
/// command line.
CLI::App* AddSubcommand(CLI::App& app, const std::string& name, const std::string& description,
                        const std::function<void(CLI::App& subcommand)>& addOptions) {
  CLI::App* const subcommand = app.add_subcommand(name, description)->group("");
  subcommand->preparse_callback([=](std::size_t) {
    AddHelp(*subcommand);
    addOptions(*subcommand);
  });
  return subcommand;
}

void AddServeOptions(CLI::App& serve, TServeOptions& options, std::optional<std::filesystem::path>& plugin) {
  constexpr unsigned int maxPort = 65535;
  serve.add_option("--port", options.port, "The port (default: 5988); 0: any, which is printed")
      ->option_text("N")
      ->check(InRange(0, maxPort));
  serve.add_option("--listen", options.address, "127.0.0.1 (default) or ::1")->option_text("ADDRESS");
  CLI::Option* const machine = serve.add_option("--machine", options.machine, "A captured machine instead of this one")
                                   ->option_text("PATH")
                                   ->check(NotEmpty());
  AddSources(serve, options.edidSource, options.xconfigSource, {machine});
  AddSeconds(serve, "--max-age", options.maxAge, 0, "How old an answer may be (default: 60)");
  AddSeconds(serve, "--timeout", options.timeout, 1, "How long a collection may take (default: 60)");
  AddPlugin(serve, plugin);
}

constexpr const char* kUsage =
    "Usage: displayinfo [OPTION...] [CLASS...]  Show a machine's cards and monitors\n"
    "       displayinfo capture TARGET          Write this machine down\n"
    "       displayinfo compare OLD NEW         Tell what came, went or changed\n"
    "       displayinfo serve                   Answer CIM clients\n"
    "       displayinfo schema                  Explain the classes\n"
    "       displayinfo SUBCOMMAND --help       Show the options of a subcommand\n";

/// The help of the command itself fits on a screen of 24 lines, subcommands and classes included. Each subcommand has
/// a page of its own.
class THelp : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
    if (app->get_parent() != nullptr) return Formatter::make_help(app, name, mode);
    return kUsage + make_groups(app, mode) + ListClasses();
  }

 private:
  /// Whole names, to be copied, in lines of three.
  static std::string ListClasses() {
    constexpr std::size_t inLine = 3;
    std::string text = "Classes (default: all six; displayinfo schema explains them):\n";
    const std::vector<std::string> names = GetClassNames();
    for (std::size_t index = 0; index < names.size(); ++index) {
      text += (index % inLine == 0 ? "  " : " ") + names[index] + (index % inLine == inLine - 1 ? "\n" : "");
    }
    return text;
  }
};

/// Which page of the help explains what was typed.
std::string GetHelpCommand(const CLI::App& app) {
  const std::vector<CLI::App*> subcommands = app.get_subcommands();
  return "displayinfo " + (subcommands.empty() ? "" : subcommands.front()->get_name() + " ") + "--help";
}

/// The library calls a missing value "--machine: 1 required TEXT missing".
std::string Explain(const CLI::ParseError& error, const CLI::App& app) {
  std::string text = error.what();
  const std::vector<CLI::App*> subcommands = app.get_subcommands();
  const CLI::App& owner = subcommands.empty() ? app : *subcommands.front();
  const std::string name = text.substr(0, text.find(':'));
  const CLI::Option* const option = owner.get_option_no_throw(name);
  const bool isMissing = error.get_name() == "ArgumentMismatch" && text.find(" missing") != std::string::npos;
  if (!isMissing || option == nullptr) return text;
  return name + " has no value; write " + name + " " + option->get_option_text();
}

void AddCaptureOptions(CLI::App& subcommand, TCaptureOptions& capture, TOptions& options) {
  subcommand.add_option("TARGET", capture.target, "FILE.json or a new folder; - for standard output")
      ->required()
      ->check(NotEmpty())
      ->option_text(" ");
  CLI::Option* const machine = subcommand.add_option("--machine", capture.machine, "A captured machine, not this one")
                                   ->option_text("PATH")
                                   ->check(NotEmpty());
  subcommand.add_flag("--anonymous", capture.isAnonymous, "Replace serial numbers and the system's name");
  AddSources(subcommand, options.edidSource, options.xconfigSource, {machine});
  AddSeconds(subcommand, "--timeout", options.timeout, 1, "How long asking it may take (default: 60)");
  AddPlugin(subcommand, options.plugin);
}

void AddCompareOptions(CLI::App& subcommand, TCompareOptions& compare, TOptions& options) {
  subcommand.add_option("OLD", compare.before, "A captured machine, or a file of answers; or -")
      ->required()
      ->check(NotEmpty())
      ->option_text(" ");
  subcommand.add_option("NEW", compare.after, "The same, later")->required()->check(NotEmpty())->option_text(" ");
  AddChoice(subcommand, "--format", compare.isJson, kCompareFormats, "text (default) or json");
  AddSeconds(subcommand, "--timeout", options.timeout, 1, "For each captured machine (default: 60)");
  AddPlugin(subcommand, options.plugin);
}

void CheckCompare(const TCompareOptions& options) {
  if (options.before == "-" && options.after == "-") {
    throw CLI::ValidationError("OLD and NEW cannot both be standard input; name a file for one of them");
  }
}

}  // namespace

TCommandLine ParseCommandLine(int argumentCount, char** arguments) {
  TCommandLine line;
  TOptions& options = line.options;
  TRequest classes;
  std::vector<std::string> requests;

  CLI::App app("", "displayinfo");
  app.formatter(std::make_shared<THelp>());
  app.set_help_flag();  // or each subcommand would be made with one
  app.require_subcommand(0, 1);
  ESchemaFormat schemaFormat = ESchemaFormat::kText;
  CLI::App* const schema =
      AddSubcommand(app, "schema", "Prints the classes with their properties", [&](CLI::App& subcommand) {
        AddChoice(subcommand, "--format", schemaFormat, kSchemaFormats,
                  "text (default), MOF, or a JSON Schema of all JSON")
            ->option_text("FORMAT");
      });
  TCaptureOptions captureOptions;
  AddSubcommand(app, "capture", "Writes a machine down, so that it can be asked elsewhere",
                [&](CLI::App& subcommand) { AddCaptureOptions(subcommand, captureOptions, options); });
  TCompareOptions compareOptions;
  AddSubcommand(app, "compare", "Tells which monitors and controllers came, went or changed",
                [&](CLI::App& subcommand) { AddCompareOptions(subcommand, compareOptions, options); });
  TServeOptions serveOptions;
  AddSubcommand(app, "serve", "Answers CIM clients on a loopback address",
                [&](CLI::App& subcommand) { AddServeOptions(subcommand, serveOptions, options.plugin); });
  AddHelp(app)->group("");  // whoever reads the help has found it

  app.set_version_flag("--version", std::string("displayinfo ") + kCommandVersion, "Print the version");
  CLI::Option* const classOption =
      app.add_option("CLASS", classes, "What to collect (default: all six classes)")->option_text("...");
  CLI::Option* const machineOption =
      app.add_option("--machine", options.machines, "A captured machine instead: folder or file")
          ->option_text("PATH")
          ->check(NotEmpty())
          ->allow_extra_args(false);
  CLI::Option* const listOption =
      app.add_option("--machines", options.machineList, "Many: a file of their names, or - (stdin)")
          ->option_text("LIST")
          ->check(NotEmpty())
          ->excludes(machineOption);
  app.add_option("--jobs", options.jobs, "N at a time (default: one per core)")
      ->option_text("N")
      ->check(InRange(1, kMaxJobs));
  app.add_option("--resume", options.resume, "Skip machines already in FILE")->option_text("FILE")->check(NotEmpty());
  AddSeconds(app, "--timeout", options.timeout, 1, "For each machine (default: 60)");
  app.add_option("--request", requests, "One request of several; may be repeated")
      ->option_text("CLASS[,CLASS...]")
      ->excludes(classOption)
      ->allow_extra_args(false);
  AddSources(app, options.edidSource, options.xconfigSource, {machineOption, listOption});
  AddChoice(app, "--format", options.format, kFormats, "text (default)|json|rows|csv|mof|html")->option_text("FORMAT");
  app.add_flag_callback(
      "--no-log", [&options] { options.hasLog = false; }, "Leave the log out of JSON");
  AddChoice(app, "--log-level", options.logLevel, kLogLevels, "error|warning|status (default)|debug|verbose")
      ->option_text("LEVEL");
  AddPlugin(app, options.plugin);

  try {
    app.parse(argumentCount, arguments);
    for (const std::string& word : classes) CheckWord(word, app);
    options.requests = MakeRequests(classes, requests);
    CheckFleet(options, app);
    CheckSubcommand(app);
    if (schema->parsed()) line.schemaFormat = schemaFormat;
    if (app.got_subcommand("capture")) line.capture = captureOptions;
    if (app.got_subcommand("compare")) {
      CheckCompare(compareOptions);
      line.compare = compareOptions;
    }
    if (app.got_subcommand("serve")) {
      CheckListenAddress(serveOptions.address);
      line.serve = serveOptions;
    }
  } catch (const CLI::Success& done) {
    std::ostringstream text;
    line.exitStatus = app.exit(done, text, text);
    WriteStandardOutput(text.str());
  } catch (const CLI::ParseError& error) {
    std::cerr << "displayinfo: " << ToMessage(Explain(error, app)) << " (" << GetHelpCommand(app)
              << " shows the usage)\n";
    line.exitStatus = kWrongUsage;
  }
  return line;
}
