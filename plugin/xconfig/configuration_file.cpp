// Finds the X server's configuration file.
#include "host/exception.h"
#include "host/services.h"
#include "plugin/xconfig/xconfig.h"

using NQRXZELT20::TOSSpecific;
using NQRXZELT20::TZELTException;

namespace {

// In the order in which they are tried. Every XF86Config comes before any xorg.conf: in any other order, a machine that
// has both would be described from its xorg.conf.
constexpr const char* kCandidates[] = {
    "/etc/X11/XF86Config-4",
    "/etc/X11/XF86Config",
    "/etc/XF86Config",
    "/usr/X11R6/etc/X11/XF86Config-4",
    "/usr/X11R6/etc/X11/XF86Config",
    "/usr/X11R6/lib/X11/XF86Config-4",
    "/usr/X11R6/lib/X11/XF86Config",
    "/etc/X11/xorg.conf-4",
    "/etc/X11/xorg.conf",
    "/etc/xorg.conf",
};

}  // namespace

std::string TXConfig::CaptureConfiguration() {
  for (const char* path : kCandidates) {
    try {
      // The first file that exists ends the search, even an empty one.
      if (TOSSpecific::FileExists(path)) return TOSSpecific::CaptureFile(path);
    } catch (const TZELTException&) {
      // A file that the host cannot read counts as absent.
    }
  }
  return std::string();
}
