// The privileges of the command, which only the calls of a real video BIOS need.
#pragma once

/// Gives up the I/O ports and every capability, for good, but for the one to read and search any file and folder when
/// `keepsReading`: a machine may have been captured by another user. Does nothing in a process that has none.
void DropPrivileges(bool keepsReading);
