// The facts of a machine that a comparison uses: its monitors and controllers, how each is recognised, what may change.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "command/compare/answer_reader.h"

typedef std::vector<std::string> TModes;  // such as "1280x1024@60Hz", sorted

struct TMonitor {
  /// As command/edid/identity.h defines it, but without a connector: two monitors of a machine can have the same.
  std::string identity;
  bool isNumbered;         // its identity is made of a serial number
  TReadOutput output;      // where it is, and its EDID
  TModes modes;            // its instances of QRXSG_MonitorResolution
  TProperties properties;  // of the plug-in's instance, without those that say where it is

  bool IsListed() const { return !output.deviceId.empty(); }
};

/// A head of a controller. Two heads have one name if two sections have the same Identifier.
struct THead {
  std::string name;
  TProperties properties;  // without those that say where it is
};

struct TController {
  std::string identity;  // its display id, which is its bus address
  std::string deviceId;
  TProperties properties;    // without those that say where it is
  std::vector<THead> heads;  // sorted by name
};

struct TMachineFacts {
  std::optional<std::string> error;  // why the machine could not be asked; the rest is then empty
  std::set<std::string> classes;     // those that were asked for
  std::vector<TMonitor> monitors;
  std::vector<TController> controllers;
};

/// True for a property of a head: its mode or its monitor. A controller repeats those of its first head.
bool IsHeadProperty(const std::string& name);

/// True for the name of a connector, such as "card0-DP-1", after which the configuration that the command makes names
/// its heads.
bool IsConnector(const std::string& name);

/// True for the name of a card, such as "card0", which that configuration gives to the head of a card without monitors.
bool IsCard(const std::string& name);

TMachineFacts MakeFacts(const TReadAnswer& answer);

/// The text of a string, or any other value as JSON; empty if the property is missing.
std::string FindText(const TProperties& properties, const char* name);

/// The system's name that the machine's devices give; empty if it has no devices.
std::string GetSystemName(const TReadAnswer& answer);

/// Packs the facts into few bytes. Equal results mean equal facts.
std::string Pack(const TMachineFacts& machine);
TMachineFacts Unpack(const std::string& text);
