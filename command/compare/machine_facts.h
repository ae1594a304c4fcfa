// What a comparison knows of a machine: its monitors and controllers, how each is known again, and what may change.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "command/compare/answer_reader.h"

typedef std::vector<std::string> TModes;  // such as "1280x1024@60Hz", sorted

struct TMonitor {
  /// What it is known again by, as command/edid/identity.h defines it. Two monitors of a machine can have the same:
  /// nothing but their connectors tells them apart.
  std::string identity;
  bool isNumbered;         // its identity is made of a serial number
  TReadOutput output;      // where it is, and its EDID
  TModes modes;            // what QRXSG_MonitorResolution says of it
  TProperties properties;  // of the plug-in's instance, without those that say where it is

  bool IsListed() const { return !output.deviceId.empty(); }
};

/// A head of a controller. Two of one name are two sections of one Identifier.
struct THead {
  std::string name;
  TProperties properties;  // without those that say where it is
};

struct TController {
  std::string identity;  // its display id, which is its bus address
  std::string deviceId;
  TProperties properties;    // without those that say where it is
  std::vector<THead> heads;  // sorted by their names
};

struct TMachineFacts {
  std::optional<std::string> error;  // why it could not be asked; then the rest is empty
  std::set<std::string> classes;     // that were asked for
  std::vector<TMonitor> monitors;
  std::vector<TController> controllers;
};

/// Whether a property is of a head: its mode, or its monitor. A controller repeats those of its first head.
bool IsHeadProperty(const std::string& name);

/// Whether a name is that of a connector, such as "card0-DP-1": the configuration that is made from what the kernel
/// knows names its heads after them.
bool IsConnector(const std::string& name);

/// Whether it is the name of a card, such as "card0": that configuration names the head of a card without monitors so.
bool IsCard(const std::string& name);

TMachineFacts MakeFacts(const TReadAnswer& answer);

/// The text of a string; any other value as JSON has it; empty where it is missing.
std::string FindText(const TProperties& properties, const char* name);

/// What the machine calls itself, as its devices say; empty for one without devices.
std::string GetSystemName(const TReadAnswer& answer);

/// The facts in few bytes, to be kept. Equal texts are equal facts.
std::string Pack(const TMachineFacts& machine);
TMachineFacts Unpack(const std::string& text);
