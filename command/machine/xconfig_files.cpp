#include "command/machine/xconfig_files.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/exception.h"

namespace {

constexpr const char* kMadeFile = "/etc/X11/xorg.conf";

// The files that the plug-in looks for. A test compares them with those that it asks for.
constexpr const char* kConfigurationFiles[] = {
    "/etc/X11/XF86Config-4",
    "/etc/X11/XF86Config",
    "/etc/XF86Config",
    "/usr/X11R6/etc/X11/XF86Config-4",
    "/usr/X11R6/etc/X11/XF86Config",
    "/usr/X11R6/lib/X11/XF86Config-4",
    "/usr/X11R6/lib/X11/XF86Config",
    "/etc/X11/xorg.conf-4",
    kMadeFile,
    "/etc/xorg.conf",
};

}  // namespace

TXconfigFiles::TXconfigFiles(std::shared_ptr<IMachineFiles> files, EXconfigSource source, TMakeConfiguration make)
    : m_files(std::move(files)), m_source(source), m_make(std::move(make)) {}

bool TXconfigFiles::Exists(const std::string& path) const {
  if (!GetMade().empty()) return path == kMadeFile;
  return m_source != EXconfigSource::kKernel && m_files->Exists(path);
}

std::string TXconfigFiles::Read(const std::string& path) const {
  if (!Exists(path)) throw NQRXZELT20::TZELTException(path + ": no such file");
  return GetMade().empty() ? m_files->Read(path) : GetMade();
}

const std::string& TXconfigFiles::GetMade() const {
  if (!m_made) m_made = ServesKernel() ? m_make() : std::string();
  return *m_made;
}

bool TXconfigFiles::ServesKernel() const {
  if (m_source != EXconfigSource::kAuto) return m_source == EXconfigSource::kKernel;
  return std::none_of(std::begin(kConfigurationFiles), std::end(kConfigurationFiles),
                      [&](const char* file) { return m_files->Exists(file); });
}
