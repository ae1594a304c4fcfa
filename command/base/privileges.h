// The privileges of the command, which only the calls of a real video BIOS need.
#pragma once

/// Gives up the I/O ports and every capability, for good, except the one to read and search any file and folder when
/// `keepsReading`: a machine may have been captured by another user. Root becomes the user nobody, since without
/// capabilities it would still own the system's files; where it may not change the user, it stays root. No program that
/// this process starts gets any of them back.
void DropPrivileges(bool keepsReading);

/// Makes nobody the real user of this process and of those that it starts, if it is root, and leaves root's rights as
/// they are: a process of nobody's may then end them, and the system does so at such a parent's death.
void LetNobodyEndProcesses();
