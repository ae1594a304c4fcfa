// A captured machine as one file: its folder, packed by the system's tar and gzip.
#pragma once

#include <filesystem>

/// Whether the file's name says that it is such an archive: it ends in .tar.gz or .tgz.
bool IsMachineArchive(const std::filesystem::path& file);

/// The folder's name in the archive of that name: the name without its ending.
std::filesystem::path GetArchivedName(const std::filesystem::path& file);

/// Packs `folder`, under its own name, into `file`. Throws TUnusable, and leaves nothing, when the file exists or
/// cannot be written.
void PackMachine(const std::filesystem::path& folder, const std::filesystem::path& file);

/// Unpacks `file` into `folder`, which is empty and nobody else's, and returns where in it the machine lies: in the one
/// folder that the archive holds, or in `folder` itself. Throws TUnusable when the file is no such archive, when it
/// unpacks to more than 256 MiB, and when it holds anything but files and folders.
std::filesystem::path UnpackMachine(const std::filesystem::path& file, const std::filesystem::path& folder);
