// What a comparison knows of a machine: its monitors and controllers, how each is known again, and what may change.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "command/compare/answer_reader.h"

/// Values as JSON text, by their names.
typedef std::map<std::string, std::string> TFacts;

/// A monitor or a controller.
struct TDevice {
  /// What it is known again by. Two devices of a machine can have the same: nothing tells them apart.
  ///
  /// A monitor: by its maker, product code and serial numbers (the number in the EDID's header, unless that is a
  /// filler, and the text of its serial number descriptor, unless that has no letter and no digit but 0). By its whole
  /// EDID when it has neither, or is not of version 1. A controller: by its display id, which is its bus address.
  std::string identity;
  TFacts description;  // how people know it, and where it is; no change when it differs
  TFacts facts;
};

struct TMachineFacts {
  std::optional<std::string> error;  // why it could not be asked; then the rest is empty
  std::set<std::string> classes;     // that were asked for
  std::set<std::string> connected;   // the connectors that have a monitor
  std::vector<TDevice> monitors;
  std::vector<TDevice> controllers;
};

// Facts that are no properties.
constexpr const char* kEdidFact = "EDID";      // in base64
constexpr const char* kModesFact = "Modes";    // what QRXSG_MonitorResolution says of a monitor, sorted
constexpr const char* kListedFact = "Listed";  // whether the plug-in reports the monitor
constexpr const char* kHeadsFact = "Heads";    // the names of a controller's heads
constexpr const char* kHeadPrefix = "Head ";   // before the name of a head, a colon, a blank and a property

/// Whether a property is of a head: its mode, or its monitor. A controller repeats those of its first head.
bool IsHeadProperty(const std::string& name);

/// The name of the head that a fact is about; nothing when it is about none.
std::optional<std::string> GetHead(const std::string& fact);

/// Whether a name is that of a connector, such as "card0-DP-1": the configuration that is made from what the kernel
/// knows names its heads after them.
bool IsConnector(const std::string& name);

TMachineFacts MakeFacts(const TReadAnswer& answer);

/// The facts in few bytes, to be kept. Equal texts are equal facts.
std::string Pack(const TMachineFacts& machine);
TMachineFacts Unpack(const std::string& text);
