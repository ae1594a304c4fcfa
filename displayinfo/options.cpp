#include "displayinfo/options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "embedded_host/schema.h"

using NQRXZELT20::ILogger;

namespace {

constexpr int kWrongUsage = 2;

template <typename T>
using TNames = std::vector<std::pair<std::string, T>>;

const TNames<EEdidSource> kEdidSources = {
    {"auto", EEdidSource::kAuto}, {"bios", EEdidSource::kBios}, {"drm", EEdidSource::kDrm}};
const TNames<EFormat> kFormats = {
    {"text", EFormat::kText}, {"json", EFormat::kJson}, {"mof", EFormat::kMof}, {"html", EFormat::kHtml}};
const TNames<ESchemaFormat> kSchemaFormats = {
    {"text", ESchemaFormat::kText}, {"mof", ESchemaFormat::kMof}, {"json-schema", ESchemaFormat::kJsonSchema}};
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

/// An option whose value is one of a few words.
template <typename T>
CLI::Option* AddChoice(CLI::App& app, const std::string& name, T& target, const TNames<T>& choices,
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

void CheckClass(const std::string& name) {
  const std::vector<std::string> names = GetClassNames();
  if (std::find(names.begin(), names.end(), name) != names.end()) return;
  throw CLI::ValidationError("\"" + name + "\" is not a class; the classes are " + CLI::detail::join(names, ", "));
}

TRequest SplitRequest(const std::string& text) {
  TRequest request = CLI::detail::split(text, ',');
  std::for_each(request.begin(), request.end(), CheckClass);
  return request;
}

std::vector<TRequest> MakeRequests(const TRequest& classes, const std::vector<std::string>& requests) {
  std::for_each(classes.begin(), classes.end(), CheckClass);
  if (!classes.empty()) return {classes};
  if (requests.empty()) return {GetClassNames()};
  std::vector<TRequest> split;
  std::transform(requests.begin(), requests.end(), std::back_inserter(split), SplitRequest);
  return split;
}

}  // namespace

TCommandLine ParseCommandLine(int argumentCount, char** arguments) {
  TCommandLine line;
  TOptions& options = line.options;
  TRequest classes;
  std::vector<std::string> requests;

  CLI::App app("Shows the video controllers, heads and monitors of a machine.", "displayinfo");
  app.set_version_flag("--version", "displayinfo " DISPLAYINFO_VERSION, "Print the version");
  CLI::Option* const classOption =
      app.add_option("CLASS", classes, "What to collect (default: all six classes)")->option_text("...");
  CLI::Option* const machineOption =
      app.add_option("--machine", options.machine, "A captured machine instead of this one")->option_text("DIR");
  app.add_option("--request", requests, "One request of several; may be repeated")
      ->option_text("CLASS[,CLASS...]")
      ->excludes(classOption)
      ->allow_extra_args(false);
  AddChoice(app, "--edid-source", options.edidSource, kEdidSources, "Where this machine's EDIDs come from")
      ->excludes(machineOption);
  AddChoice(app, "--format", options.format, kFormats, "For people (default), programs, CIM, a browser");
  AddChoice(app, "--log-level", options.logLevel, kLogLevels, "What is logged (default: status)");
  app.add_option("--plugin", options.plugin, "Which plug-in (default: beside the command)")->option_text("FILE");

  ESchemaFormat schemaFormat = ESchemaFormat::kText;
  CLI::App* const schema = app.add_subcommand("schema", "Print the classes with their properties")->group("");
  AddChoice(*schema, "--format", schemaFormat, kSchemaFormats, "text (default), MOF, or a JSON Schema of the answer");

  app.footer(
      "Classes:  QRXSG_VideoController   QRXSG_VideoHead\n"
      "          QRXSG_DesktopMonitor    QRXSG_HeadOfVideoController\n"
      "          QRXSG_MonitorResolution QRXSG_MonitorSetting\n"
      "          displayinfo schema [--format text|mof|json-schema] explains them\n"
      "Examples: displayinfo QRXSG_DesktopMonitor            this machine's monitors\n"
      "          sudo displayinfo --edid-source bios         all, by its own video BIOS\n"
      "          displayinfo --machine ws-17 --format json   a captured machine");

  try {
    app.parse(argumentCount, arguments);
    options.requests = MakeRequests(classes, requests);
    if (schema->parsed()) line.schemaFormat = schemaFormat;
  } catch (const CLI::Success& done) {
    line.exitStatus = app.exit(done);
  } catch (const CLI::ParseError& error) {
    std::cerr << "displayinfo: " << error.what() << " (displayinfo --help shows the usage)\n";
    line.exitStatus = kWrongUsage;
  }
  return line;
}
