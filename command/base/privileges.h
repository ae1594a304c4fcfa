// Gives up the privileges of the command, which only calls of a real video BIOS need.
#pragma once

/// Gives up the I/O ports and every capability for good, also for the programs that this process starts. With
/// `keepsReading` it keeps the capability to read and search any file and folder, since another user may have captured
/// a machine. Root becomes the user nobody, because it owns the system's files even without capabilities; where it may
/// not change the user, it stays root.
void DropPrivileges(bool keepsReading);

/// If this process is root, makes nobody its real user, and that of the processes that it starts, and keeps root's
/// rights. A process of the user nobody may then end them, and the kernel ends them when such a parent dies.
void LetNobodyEndProcesses();
