// The time zone of this process, in which the plug-in gives a monitor's date of manufacture.
#pragma once

/// Reads it, once for the process. The C library takes UTC, in silence, for a zone that it cannot read: this throws
/// TUnusable instead, and shows a remark where the zone's file may not be read. No such file means UTC.
void LoadTimeZone();
