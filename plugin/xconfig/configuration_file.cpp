// Finding the X server's configuration file.
#include "host/exception.h"
#include "host/services.h"
#include "plugin/xconfig/xconfig.h"

using NQRXZELT20::TOSSpecific;
using NQRXZELT20::TZELTException;

namespace {

// In the order in which they are tried. Deliberate: every XF86Config comes before any xorg.conf, so a machine that has
// both is described from its XF86Config.
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
      // The first file there is ends the search, even an empty one.
      if (TOSSpecific::FileExists(path)) return TOSSpecific::CaptureFile(path);
    } catch (const TZELTException&) {
      // A file that the host cannot get at is as good as none.
    }
  }
  return std::string();
}
