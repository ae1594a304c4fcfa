// Joins an answer for formats that people read: controllers with their heads, monitors with their modes and outputs.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "command/base/text_encoding.h"
#include "command/collection/collection.h"
#include "embedded_host/cim_store.h"

/// The system's name as printable text; other words if it has none.
std::string ShowSystemName(const TAnswerIdentity& identity);

/// The time of the collection, if it is known, and the version: "Collected 2026-11-21 21:30:00 UTC, shown by
/// displayinfo 1.4.0".
std::string DescribeCollection(const TAnswerIdentity& identity);

/// An instance's properties as printable text.
class TInstanceView {
 public:
  explicit TInstanceView(const TStoredInstance& instance) : m_instance(&instance) {}

  bool Has(const std::string& name) const { return m_instance->GetProperties().count(name) != 0; }

  /// The value as text for people, an array's elements joined by commas; empty if the instance lacks the property.
  std::string Text(const std::string& name) const {
    const auto found = m_instance->GetProperties().find(name);
    return found == m_instance->GetProperties().end() ? std::string() : ToPrintable(Write(found->second));
  }

  /// The property's unit from the schema; empty if it has none.
  std::string Unit(const std::string& name) const { return Declaration().Find(name)->unit; }

  /// "140 MHz"; empty if the instance lacks the property.
  std::string TextWithUnit(const std::string& name) const {
    return Has(name) ? Text(name) + " " + Unit(name) : std::string();
  }

  /// "640 x 480", with "?" for a side that the instance lacks; empty if it lacks both.
  std::string Size(const std::string& width, const std::string& height) const {
    if (!Has(width) && !Has(height)) return std::string();
    return (Has(width) ? Text(width) : "?") + " x " + (Has(height) ? Text(height) : "?");
  }

  /// The value of an unsigned integer; 0 if the property is missing or null.
  unsigned int Number(const std::string& name) const {
    const auto found = m_instance->GetProperties().find(name);
    const bool isThere = found != m_instance->GetProperties().end() && !found->second.IsNull();
    return isThere ? found->second.GetUnsigned() : 0;
  }

  const TClassDeclaration& Declaration() const { return m_instance->GetDeclaration(); }
  const std::string& Path() const { return m_instance->GetPathText(); }

 private:
  static std::string Write(const NQRXZELT20::TCIMValue& value) {
    if (!value.IsArray()) return value;
    const auto& elements = value.GetElements();
    return Join(std::vector<std::string>(elements.begin(), elements.end()));
  }

  const TStoredInstance* m_instance;  // a pointer, so that a view can be assigned
};

typedef std::vector<TInstanceView> TInstances;

/// A controller. A request may have made several instances of it, which share its object path and display id.
struct TControllerView {
  TInstanceView controller;
  TInstances heads;
};

/// A monitor, or only its modes if the request did not ask for monitors.
struct TMonitorView {
  std::string id;
  std::optional<TInstanceView> monitor;
  TInstances modes;
};

/// One request's instances, joined.
class TRequestView {
 public:
  explicit TRequestView(const TRequestAnswer& request);

  bool Asks(EPart part) const;
  const std::vector<TControllerView>& GetControllers() const { return m_controllers; }
  /// The heads without a controller in this request.
  const TInstances& GetLooseHeads() const { return m_looseHeads; }
  const std::vector<TMonitorView>& GetMonitors() const { return m_monitors; }
  /// The monitor's head: the one named after its connector, otherwise the only one whose screen names the monitor's
  /// model, otherwise the only head. Null if that is unknown. `output`: the monitor's; may be null.
  const TInstanceView* FindHead(const TMonitorView& monitor, const TOutput* output) const;
  /// The messages of severity "status" or worse that the plug-in logged while it served a class of the part, as
  /// printable text, each once.
  std::vector<std::string> GetComplaints(EPart part) const;

  /// The instances of a class, in commit order.
  const TInstances& Select(const std::string& className) const;

 private:
  void JoinVideo();
  void JoinMonitors();

  const TRequestAnswer& m_request;
  std::map<std::string, TInstances> m_instances;  // by class name
  std::vector<TControllerView> m_controllers;
  TInstances m_looseHeads;
  std::vector<TMonitorView> m_monitors;
};

/// True if the configuration sets the head to that resolution. `head`: may be null.
bool IsConfigured(const TInstanceView* head, unsigned int width, unsigned int height);

/// Where a page shows a row: problems come first, then what people look for (in large type), then the rest; what few
/// people ask for comes last and is folded away.
enum class ERowPlace { kProblem, kTop, kPlain, kFolded };

/// A fact about an output: a label and its text.
struct TOutputRow {
  const char* label;
  std::string text;
  ERowPlace place = ERowPlace::kPlain;
};

/// The output whose monitor or modes have that id in the answer; or null.
const TOutput* FindOutput(const TAnswer& answer, const std::string& id);

/// A row for each fault of the output's EDID.
std::vector<TOutputRow> DescribeProblems(const TOutput& output);

/// A sentence for each output that the plug-in does not report: its name and the reason.
std::vector<std::string> ExplainUnlisted(const TAnswer& answer);

/// Where the output's EDID was read from, as printable text; empty if that is unknown.
std::string GetEdidSource(const TAnswer& answer, const TOutput& output);

/// The numbers as in JSON: Hz with three decimals, inches with one.
std::string WriteRefresh(const TEdidMode& mode);
std::string WriteDiagonal(double inches);
