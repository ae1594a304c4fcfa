#include "command/report/empty_classes.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/collection/plugin_texts.h"
#include "command/report/answer_view.h"

namespace {

typedef std::vector<std::string> TSentences;

/// What the host's model held when a class was asked for. An association links only instances that it holds by then.
class TModelBefore {
 public:
  /// The model just before the class at `position` of the request.
  TModelBefore(const TAnswer& answer, const TRequestAnswer& request, std::size_t position) {
    for (const TRequestAnswer& earlier : answer.requests) {
      if (&earlier == &request) break;
      Add(earlier, earlier.classes.size());
    }
    Add(request, position);
  }

  bool WasAsked(const std::string& name) const { return Has(m_asked, name); }
  bool IsHeld(const std::string& name) const { return Has(m_held, name); }

 private:
  static bool Has(const TSentences& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  }

  void Add(const TRequestAnswer& request, std::size_t classCount) {
    const auto end = request.classes.begin() + static_cast<std::ptrdiff_t>(classCount);
    for (auto name = request.classes.begin(); name != end; ++name) {
      m_asked.push_back(*name);
      const auto isOfIt = [&](const auto& instance) { return instance->GetDeclaration().name == *name; };
      if (std::any_of(request.instances.begin(), request.instances.end(), isOfIt)) m_held.push_back(*name);
    }
  }

  TSentences m_asked;
  TSentences m_held;
};

/// Why a class may have no instances.
struct TCause {
  const char* className;
  std::string TReasons::*reason;  // the machine's reason; null for an association
  const char* linked[2];          // the classes that an association links
  const char* otherwise;          // why it links none of their instances, if they exist
};

const TCause kCauses[] = {
    {kVideoControllerClass, &TReasons::noControllers, {}, ""},
    {kVideoHeadClass, &TReasons::noControllers, {}, ""},
    {kHeadOfVideoControllerClass,
     nullptr,
     {kVideoControllerClass, kVideoHeadClass},
     "no head has the display id of a controller, or their BusID is empty"},
    {kDesktopMonitorClass, &TReasons::noMonitors, {}, ""},
    {kMonitorResolutionClass, &TReasons::noModes, {}, ""},
    {kMonitorSettingClass,
     nullptr,
     {kDesktopMonitorClass, kMonitorResolutionClass},
     "no mode of a monitor is found for it: the plug-in takes the mode at the monitor's own position in the list of "
     "all"},
};

const TCause& FindCause(const std::string& className) {
  return *std::find_if(std::begin(kCauses), std::end(kCauses),
                       [&](const TCause& cause) { return className == cause.className; });
}

std::string Explain(const TAnswer& answer, const TCause& cause, const TModelBefore& model) {
  if (cause.reason != nullptr) return answer.reasons.*cause.reason;
  const std::string both = cause.linked[0] + std::string(" and ") + cause.linked[1];
  for (const char* const linked : cause.linked) {
    if (model.WasAsked(linked) && !model.IsHeld(linked)) return answer.reasons.*FindCause(linked).reason;
  }
  for (const char* const linked : cause.linked) {
    if (model.WasAsked(linked)) continue;
    return std::string(cause.className) + " links what was collected before it, and " + linked + " was not; ask for " +
           both + " first";
  }
  return cause.otherwise;
}

void Add(TSentences& sentences, const std::string& sentence) {
  const std::string printable = ToPrintable(sentence);
  if (std::find(sentences.begin(), sentences.end(), printable) == sentences.end()) sentences.push_back(printable);
}

/// A message of the plug-in that ends with a text that it could not use, so that a head lacks a property. Its severity
/// is too low for people to see it.
struct TUnusedValue {
  const char* message;
  const char* property;  // the one that the head lacks
  const char* meaning;   // "%" stands for the text
};

constexpr TUnusedValue kUnusedValues[] = {
    {kNoColourDepth, "CurrentBitsPerPixel", " has no colour depth: its Depth \"%\" is no number"},
    {kNoWidthOrDepth, "CurrentHorizontalResolution",
     " has no configured mode: \"%\" in its Screen section is no number of pixels, nor a depth"},
    {kNoHeight, "CurrentVerticalResolution",
     " has no configured height: what follows \"%x\" in its Screen section is no number of lines"},
};

/// Names all heads without that property, since the message does not say which head's text it was.
std::string NameHeadsWithout(const TRequestAnswer& request, const char* property) {
  TSentences names;
  for (const auto& instance : request.instances) {
    const TInstanceView head(*instance);
    if (head.Declaration().name != std::string(kVideoHeadClass) || head.Has(property)) continue;
    if (!head.Text("DeviceID").empty()) Add(names, head.Text("DeviceID"));
  }
  return names.empty() ? "a head" : "head " + Join(names, " or ");
}

void AddUnusedValues(const TRequestAnswer& request, TSentences& sentences) {
  for (const TLogEntry& entry : request.log) {
    for (const auto& [message, property, meaning] : kUnusedValues) {
      const std::string beginning = message;
      if (entry.message.compare(0, beginning.size(), beginning) != 0) continue;
      std::string text = meaning;
      text.replace(text.find('%'), 1, entry.message.substr(beginning.size()));
      Add(sentences, NameHeadsWithout(request, property) + text);
    }
  }
}

/// Adds the causes of classes without instances. Classes with the same cause are named together.
void AddCauses(const TAnswer& answer, const TRequestAnswer& request, EPart part, TSentences& sentences) {
  const bool isPartEmpty = !HasInstances(request, part);
  std::vector<std::pair<std::string, TSentences>> causes;  // with the names of their classes
  for (std::size_t position = 0; position < request.classes.size(); ++position) {
    const std::string& name = request.classes[position];
    const auto isOfIt = [&](const auto& instance) { return instance->GetDeclaration().name == name; };
    if (!IsOf(name, part) || std::any_of(request.instances.begin(), request.instances.end(), isOfIt)) continue;
    const std::string cause = ToPrintable(Explain(answer, FindCause(name), TModelBefore(answer, request, position)));
    if (std::find(sentences.begin(), sentences.end(), cause) != sentences.end()) continue;
    const auto known =
        std::find_if(causes.begin(), causes.end(), [&](const auto& other) { return other.first == cause; });
    if (known == causes.end()) {
      causes.push_back({cause, {name}});
    } else {
      Add(known->second, name);
    }
  }
  for (const auto& [cause, names] : causes) {
    Add(sentences, isPartEmpty ? cause : "No " + Join(names, " or ") + ": " + cause);
  }
}

}  // namespace

std::vector<std::string> ExplainGaps(const TAnswer& answer, const TRequestAnswer& request, EPart part) {
  TSentences sentences;
  AddCauses(answer, request, part, sentences);
  if (part == EPart::kVideo) AddUnusedValues(request, sentences);
  return sentences;
}

bool HasInstances(const TRequestAnswer& request, EPart part) {
  return std::any_of(request.instances.begin(), request.instances.end(),
                     [&](const auto& instance) { return instance->GetDeclaration().part == part; });
}
