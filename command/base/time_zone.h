// Loads the time zone of this process, in which the plug-in gives a monitor's date of manufacture.
#pragma once

/// Call it once in a process. For a zone that it cannot read, the C library silently takes UTC. This function throws
/// TUnusable instead, or shows a remark if the file may not be read. If there is no such file, the zone is UTC.
void LoadTimeZone();
