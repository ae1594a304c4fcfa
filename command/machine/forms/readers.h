// The readers of the forms, each in a file of its own. A reader takes the text of a file in UTF-8, and returns nothing
// for a text that is not in its form.
#pragma once

#include <optional>
#include <string_view>

#include "command/machine/forms/found_machine.h"

/// The bytes themselves: one EDID, or several one after the other.
std::optional<TFoundMachine> ReadEdidBytes(std::string_view content);

/// What regedit exports: "EDID"=hex:00,ff,... below the key of a monitor. Missing blocks are taken from the values "0",
/// "1", ... of its key EDID_OVERRIDE.
std::optional<TFoundMachine> ReadRegistryExport(std::string_view text);

/// The log of an X server: lines of 16 bytes after "EDID (in hex):". If an output was read several times, the last time
/// counts.
std::optional<TFoundMachine> ReadXLog(std::string_view text);

/// What xrandr --props and xrandr --verbose print.
std::optional<TFoundMachine> ReadXrandr(std::string_view text);

/// What ioreg -lw0 prints: "IODisplayEDID" = <00ff...>. The display's own EDID, "IODisplayEDIDOriginal", is preferred
/// to the one that the system made of it.
std::optional<TFoundMachine> ReadIoreg(std::string_view text);

/// The bytes that edid-decode prints before their meaning.
std::optional<TFoundMachine> ReadEdidDecode(std::string_view text);

/// Rows of an offset, bytes in hex and their characters, as xxd, hexdump -C and i2cdump print them.
std::optional<TFoundMachine> ReadHexDump(std::string_view text);

/// A text of only bytes in hex, or C arrays of them.
std::optional<TFoundMachine> ReadHexBytes(std::string_view text);

/// Bytes as decimal numbers within any other text, as PowerShell prints them.
std::optional<TFoundMachine> ReadDecimalBytes(std::string_view text);

/// The JSON of GLPI's agents: content.monitors[].base64 and .port, content.hardware.name or deviceid. `name`: the
/// file's, for messages. Throws TUnusable if a text that begins like it is not JSON.
std::optional<TFoundMachine> ReadJsonInventory(const std::string& text, const std::string& name);

/// The XML of FusionInventory's and OCS's agents: REQUEST/CONTENT/MONITORS with BASE64 or UUENCODE and PORT,
/// REQUEST/CONTENT/HARDWARE/NAME or REQUEST/DEVICEID. `name`: the file's, for messages. Throws TUnusable if a text that
/// begins like it is not XML.
std::optional<TFoundMachine> ReadXmlInventory(const std::string& text, const std::string& name);
