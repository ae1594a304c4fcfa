#include "command/option_table.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "command/base/text_encoding.h"
#include "embedded_host/schema.h"

namespace {

constexpr unsigned int kMaxSeconds = 24 * 60 * 60;
constexpr unsigned int kMaxPort = 65535;

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
    end = text.find(separator, begin);
    parts.push_back(text.substr(begin, end - begin));
  }
  return parts;
}

/// The name of a file or a machine. Refuses an empty one, which often comes from an unset variable in a script.
const std::string& ReadName(const TOptionValue& value) {
  if (value.text.empty()) throw TWrongUsage(value.name + ": the name is empty");
  return value.text;
}

/// A whole number from `min` to `max`.
unsigned int ReadNumber(const TOptionValue& value, unsigned int min, unsigned int max) {
  const std::string& text = value.text;
  unsigned int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc() && end == text.data() + text.size() && number >= min && number <= max) return number;
  throw TWrongUsage(value.name + ": Value " + text + " not in range " + std::to_string(min) + " to " +
                    std::to_string(max));
}

std::chrono::seconds ReadSeconds(const TOptionValue& value, unsigned int min) {
  return std::chrono::seconds(ReadNumber(value, min, kMaxSeconds));
}

TRequest ReadRequest(const TOptionValue& value) {
  TRequest request = Split(value.text, ',');
  for (const std::string& name : request) {
    if (FindClass(name) != nullptr) continue;
    throw TWrongUsage("\"" + name + "\" is not a class; the classes are " + Join(ListAllClasses(), ", "));
  }
  return request;
}

/// A word that belongs to no option: a class. Throws for any other word, such as a misspelt subcommand.
std::string ReadClass(const TOptionValue& value) {
  if (FindClass(value.text) != nullptr) return value.text;
  const std::vector<TPage>& pages = GetPages();
  std::vector<std::string> subcommands;
  std::transform(pages.begin() + 1, pages.end(), std::back_inserter(subcommands),
                 [](const TPage& page) { return page.name; });
  throw TWrongUsage("\"" + value.text + "\" is neither a class nor a subcommand; the classes are " +
                    Join(ListAllClasses(), ", ") + "; the subcommands are " + Join(subcommands, ", "));
}

/// Only loopback addresses: the server has neither passwords nor TLS. Something that has them must serve other
/// machines.
std::string ReadListenAddress(const TOptionValue& value) {
  if (value.text == "127.0.0.1" || value.text == "::1") return value.text;
  throw TWrongUsage(value.name + " takes 127.0.0.1 or ::1, not " + value.text +
                    "; to answer other machines, use an SSH tunnel, or a reverse proxy with TLS and passwords");
}

/// The table and the page of many machines need all classes.
void CheckOverview(EFormat format, const TOptions& options) {
  const bool isOverview = format == EFormat::kCsv || (format == EFormat::kHtml && options.IsFleet());
  if (!isOverview || options.requests.empty()) return;
  throw TWrongUsage(std::string(format == EFormat::kCsv ? "--format csv" : "the page of several machines") +
                    " is made from all classes; leave CLASS and --request out");
}

/// Checks that the format fits several machines. These are answered in lines or in one page, and only lines can be
/// resumed.
void CheckFleet(const TOptions& options) {
  const EFormat format = options.format.value_or(options.IsFleet() ? EFormat::kJson : EFormat::kText);
  if (options.IsFleet() && (format == EFormat::kText || format == EFormat::kMof)) {
    throw TWrongUsage(
        "several machines are answered in json, rows, csv or html; leave --format out, or name one machine");
  }
  CheckOverview(format, options);
  if (options.IsFleet() && std::find(options.machines.begin(), options.machines.end(), "-") != options.machines.end()) {
    throw TWrongUsage("--machine - reads one machine from standard input; name no other one beside it");
  }
  if (options.IsFleet() && options.resume && format != EFormat::kJson) {
    throw TWrongUsage(
        "--resume goes on with lines of JSON, which tell where a machine ends; not with rows, csv or html");
  }
  if (!options.hasLog && format != EFormat::kJson) {
    throw TWrongUsage("--no-log is for --format json; the page keeps its log, and no other format has one");
  }
  if (options.IsFleet() || !(options.jobs || options.resume)) return;
  throw TWrongUsage(std::string(options.jobs ? "--jobs" : "--resume") +
                    " is for several machines; name them with --machines LIST");
}

void FinishCollection(TCommandLine& line) {
  CheckFleet(line.options);
  if (line.options.requests.empty()) line.options.requests.push_back(ListAllClasses());
}

void FinishComparison(TCommandLine& line) {
  if (line.compare.before != "-" || line.compare.after != "-") return;
  throw TWrongUsage("OLD and NEW cannot both be standard input; name a file for one of them");
}

constexpr TOptionRow kEdidSource = {
    "--edid-source",
    "auto|bios|drm",
    "Where this machine's EDIDs come from",
    "drm: the graphics drivers, which needs no privilege. bios: the video BIOS, which needs root. auto (default): the "
    "drivers if anything is connected to them, else the BIOS.",
    [](TCommandLine& line, const TOptionValue& value) { line.options.edidSource = value.As<EEdidSource>(); },
    ECompletion::kNothing,
    false,
    {"--machine", "--machines"}};

constexpr TOptionRow kXconfigSource = {
    "--xconfig-source",
    "auto|file|kernel",
    "Where its X configuration comes from",
    "file: the X server's own file. kernel: what the kernel knows of the graphics cards and their outputs, written as "
    "the server's own autoconfiguration would. auto (default): the file if there is one, else the kernel.",
    [](TCommandLine& line, const TOptionValue& value) { line.options.xconfigSource = value.As<EXconfigSource>(); },
    ECompletion::kNothing,
    false,
    {"--machine", "--machines"}};

constexpr TOptionRow kTimeout = {
    "--timeout", "SECONDS", "Give up a machine that takes longer (default: 60)",
    "Nothing is captured of such a machine. Of several machines, its line says so and the rest goes on.",
    [](TCommandLine& line, const TOptionValue& value) { line.options.timeout = ReadSeconds(value, 1); }};

constexpr TOptionRow kPlugin = {
    "--plugin",
    "FILE",
    "Which plug-in (default: beside the command)",
    "Without one there, the installed one is loaded.",
    [](TCommandLine& line, const TOptionValue& value) { line.options.plugin = ReadName(value); },
    ECompletion::kFiles};

constexpr TOptionRow kHelp = {"--help", "", "Print this help", "", nullptr};

const std::vector<TPage> kPages = {
    {"",
     "Show a machine's cards and monitors",
     ESubcommand::kNone,
     {{"CLASS", "", "What to collect (default: all six classes)", "",
       [](TCommandLine& line, const TOptionValue& value) {
         if (line.options.requests.empty()) line.options.requests.emplace_back();
         line.options.requests.front().push_back(ReadClass(value));
       },
       ECompletion::kClasses, true},
      {"--machine",
       "PATH",
       "Ask this captured machine instead (- for stdin)",
       "PATH is what capture wrote, or a file that has EDIDs: bytes, hex, xrandr, an X server's log, a registry "
       "export, "
       "ioreg, an inventory of GLPI, FusionInventory or OCS. Given several times, each machine is answered in one line "
       "of JSON, as by --machines.",
       [](TCommandLine& line, const TOptionValue& value) { line.options.machines.push_back(ReadName(value)); },
       ECompletion::kFiles,
       true,
       {}},
      {"--machines",
       "LIST",
       "Ask every machine that LIST names (- for stdin)",
       "LIST has the names of captured machines, folders or files, one a line. Each machine is answered in one line of "
       "JSON, in the order of the list; with --format, in rows, one CSV table, or one HTML page of all.",
       [](TCommandLine& line, const TOptionValue& value) { line.options.machineList = ReadName(value); },
       ECompletion::kFiles,
       false,
       {"--machine"}},
      {"--jobs", "N", "Ask N machines at a time (default: one per core)", "",
       [](TCommandLine& line, const TOptionValue& value) { line.options.jobs = ReadNumber(value, 1, kMaxJobs); }},
      {"--resume", "FILE", "Skip machines already in FILE", "An earlier run wrote FILE.",
       [](TCommandLine& line, const TOptionValue& value) { line.options.resume = ReadName(value); },
       ECompletion::kFiles},
      kTimeout,
      {"--request",
       "CLASS[,CLASS...]",
       "One request of several classes; may be repeated",
       "The requests are run in their order.",
       [](TCommandLine& line, const TOptionValue& value) { line.options.requests.push_back(ReadRequest(value)); },
       ECompletion::kClasses,
       true,
       {"CLASS"}},
      kEdidSource,
      kXconfigSource,
      {"--format", "text|json|rows|csv|mof|html", "Form of the answer (default: text)",
       "text: for people. json: for programs. rows: for tables, a JSON object a line for each instance and each "
       "output. "
       "csv: for a spreadsheet, a row for each monitor, with an apostrophe before what it would take for a number or a "
       "formula. mof: the instances in the DMTF's MOF syntax. html: one page "
       "with pictures of the machine, for a browser or for paper.",
       [](TCommandLine& line, const TOptionValue& value) { line.options.format = value.As<EFormat>(); }},
      {"--no-log", "", "Leave the log out of JSON", "",
       [](TCommandLine& line, const TOptionValue&) { line.options.hasLog = false; }},
      {"--log-level", "error|warning|status|debug|verbose", "Log to show (default: status)",
       "The log goes to standard error.",
       [](TCommandLine& line, const TOptionValue& value) {
         line.options.logLevel = value.As<NQRXZELT20::ILogger::EZELTLogSeverity>();
       }},
      kPlugin,
      {"--version", "", "Print the version", "", nullptr},
      kHelp},
     FinishCollection},
    {"capture",
     "Write this machine down",
     ESubcommand::kCapture,
     {{"TARGET", "", "FILE.json or a new folder; - for standard output", "",
       [](TCommandLine& line, const TOptionValue& value) { line.capture.target = ReadName(value); },
       ECompletion::kFiles},
      {"--machine", "PATH", "Write that captured machine again instead", "",
       [](TCommandLine& line, const TOptionValue& value) { line.capture.machine = ReadName(value); },
       ECompletion::kFiles},
      {"--anonymous", "", "Replace serial numbers and the system's name", "",
       [](TCommandLine& line, const TOptionValue&) { line.capture.isAnonymous = true; }},
      {"--no-xconfig", "", "Leave the X configuration out",
       "It may hold names. The capture then has monitors, and neither controllers nor heads.",
       [](TCommandLine& line, const TOptionValue&) { line.capture.hasConfiguration = false; }},
      kEdidSource,
      kXconfigSource,
      kTimeout,
      kPlugin,
      kHelp},
     nullptr},
    {"compare",
     "Tell what came, went or changed",
     ESubcommand::kCompare,
     {{"OLD", "", "A captured machine, or a file of answers; or -", "",
       [](TCommandLine& line, const TOptionValue& value) { line.compare.before = ReadName(value); },
       ECompletion::kFiles},
      {"NEW", "", "The same, later", "",
       [](TCommandLine& line, const TOptionValue& value) { line.compare.after = ReadName(value); },
       ECompletion::kFiles},
      {"--format", "text|json", "Form of the comparison (default: text)", "",
       [](TCommandLine& line, const TOptionValue& value) { line.compare.isJson = value.choice == 1; }},
      {"--by", "name|path", "What machines of a fleet are known again by",
       "name (default): by their system names where both sides have them, else by their paths. path: by their paths.",
       [](TCommandLine& line, const TOptionValue& value) { line.compare.isByPath = value.choice == 1; }},
      kTimeout,
      kPlugin,
      kHelp},
     FinishComparison},
    {"watch", "Tell when a monitor comes or goes", ESubcommand::kWatch, {kTimeout, kPlugin, kHelp}, nullptr},
    {"serve",
     "Answer CIM clients",
     ESubcommand::kServe,
     {{"--port", "N", "The port (default: 5988); 0: a free one", "The port is printed.",
       [](TCommandLine& line, const TOptionValue& value) {
         line.serve.port = static_cast<unsigned short>(ReadNumber(value, 0, kMaxPort));
       }},
      {"--listen", "ADDRESS", "127.0.0.1 or ::1 (default: both)", "",
       [](TCommandLine& line, const TOptionValue& value) { line.serve.addresses = {ReadListenAddress(value)}; }},
      {"--machine", "PATH", "Answer for that captured machine instead", "",
       [](TCommandLine& line, const TOptionValue& value) { line.serve.machine = ReadName(value); },
       ECompletion::kFiles},
      kEdidSource,
      kXconfigSource,
      {"--max-age", "SECONDS", "How old an answer may be (default: 60)", "",
       [](TCommandLine& line, const TOptionValue& value) { line.serve.maxAge = ReadSeconds(value, 0); }},
      {"--log-level", "error|warning|status|debug|verbose", "Log to show (default: status)",
       "Each request of a client is a line of the log at level status.",
       [](TCommandLine& line, const TOptionValue& value) {
         typedef NQRXZELT20::ILogger TLogger;
         line.serve.logsClients = value.As<TLogger::EZELTLogSeverity>() >= TLogger::kStatus;
       }},
      kTimeout,
      kPlugin,
      kHelp},
     nullptr},
    {"schema",
     "Explain the classes",
     ESubcommand::kSchema,
     {{"--format", "text|mof|json-schema", "Form of the text (default: text)",
       "text: for people. mof: the DMTF's MOF syntax. json-schema: a JSON Schema of all that is written as JSON.",
       [](TCommandLine& line, const TOptionValue& value) { line.schemaFormat = value.As<ESchemaFormat>(); }},
      kHelp},
     nullptr}};

}  // namespace

std::vector<std::string> TOptionRow::ListChoices() const {
  const std::string words = argument;
  return words.find('|') == std::string::npos ? std::vector<std::string>() : Split(words, '|');
}

const std::vector<TPage>& GetPages() { return kPages; }
