// One request's instances, joined as people look at them: controllers with their heads, monitors with their modes.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "command/collection/collection.h"
#include "command/report/instance_view.h"

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

/// The texts that are not empty, with ", " between them.
std::string JoinTexts(const std::vector<std::string>& texts);
