// An answer as people look at it: its identity, each request's instances joined (controllers with their heads, monitors
// with their modes), and its outputs.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "command/base/text_encoding.h"
#include "command/collection/collection.h"
#include "embedded_host/cim_store.h"

/// The system's name as printable text; words for a system that has none.
std::string ShowSystemName(const TAnswerIdentity& identity);

/// When the machine was collected from, as far as that is known, and the version: "Collected 2026-11-21 21:30:00 UTC,
/// shown by displayinfo 1.4.0".
std::string DescribeCollection(const TAnswerIdentity& identity);

/// An instance's properties as printable text.
class TInstanceView {
 public:
  explicit TInstanceView(const TStoredInstance& instance) : m_instance(&instance) {}

  bool Has(const std::string& name) const { return m_instance->GetProperties().count(name) != 0; }

  /// The value as people read it, an array's elements joined by commas; empty for a property that the instance lacks.
  std::string Text(const std::string& name) const {
    const auto found = m_instance->GetProperties().find(name);
    return found == m_instance->GetProperties().end() ? std::string() : ToPrintable(Write(found->second));
  }

  /// The property's unit, as the schema has it; empty for one without.
  std::string Unit(const std::string& name) const { return Declaration().Find(name)->unit; }

  /// "140 MHz"; empty for a property that the instance lacks.
  std::string TextWithUnit(const std::string& name) const {
    return Has(name) ? Text(name) + " " + Unit(name) : std::string();
  }

  /// "640 x 480", with "?" for a side that the instance lacks; empty when it lacks both.
  std::string Size(const std::string& width, const std::string& height) const {
    if (!Has(width) && !Has(height)) return std::string();
    return (Has(width) ? Text(width) : "?") + " x " + (Has(height) ? Text(height) : "?");
  }

  /// The value of an unsigned integer; 0 for a property that is missing or null.
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

/// A controller, once for all instances that the request made of it: they have its object path and its display id.
struct TControllerView {
  TInstanceView controller;
  TInstances heads;
};

/// A monitor, or only its modes when the request did not ask for monitors.
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
  /// The heads of no controller that the request has.
  const TInstances& GetLooseHeads() const { return m_looseHeads; }
  const std::vector<TMonitorView>& GetMonitors() const { return m_monitors; }
  /// The head at which the monitor hangs: the one that is named after its connector, else the only one whose screen
  /// names the monitor's model, else the only one that exists. Null where that is not known. `output`: of the monitor;
  /// may be null.
  const TInstanceView* FindHead(const TMonitorView& monitor, const TOutput* output) const;
  /// What the plug-in logged at status or worse while it served a class of the part, as printable text, each message
  /// once.
  std::vector<std::string> GetComplaints(EPart part) const;

  /// The instances of a class, in commit order.
  const TInstances& Select(const std::string& className) const;

 private:
  void JoinVideo();
  void JoinMonitors();

  const TRequestAnswer& m_request;
  std::map<std::string, TInstances> m_instances;  // by the name of their class
  std::vector<TControllerView> m_controllers;
  TInstances m_looseHeads;
  std::vector<TMonitorView> m_monitors;
};

/// True when the configuration sets the head to that resolution. `head`: may be null.
bool IsConfigured(const TInstanceView* head, unsigned int width, unsigned int height);

/// Where a page shows a row: problems come first, then in large type what people look for, and last, folded away, what
/// few ask for.
enum class ERowPlace { kProblem, kTop, kPlain, kFolded };

/// What is known of an output: a label and its text.
struct TOutputRow {
  const char* label;
  std::string text;
  ERowPlace place = ERowPlace::kPlain;
};

/// The output whose monitor, or whose modes, the answer has under that id; or null.
const TOutput* FindOutput(const TAnswer& answer, const std::string& id);

/// A row for each thing that is wrong with the output's EDID.
std::vector<TOutputRow> DescribeProblems(const TOutput& output);

/// A sentence for each output that the plug-in does not report, which names it and says why.
std::vector<std::string> ExplainUnlisted(const TAnswer& answer);

/// Where the output's EDID was read from, as printable text; empty when that is not known.
std::string GetEdidSource(const TAnswer& answer, const TOutput& output);

/// The same numbers as JSON has them: Hz with three decimals, inches with one.
std::string WriteRefresh(const TEdidMode& mode);
std::string WriteDiagonal(double inches);
