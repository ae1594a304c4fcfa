// A library in place of a plug-in, which ends its process when it is loaded for a machine that has the file /fatal.
#include <cstdlib>

#include "host/services.h"

namespace {

struct TFatal {
  TFatal() {
    if (NQRXZELT20::TOSSpecific::FileExists("/fatal")) std::abort();
  }
} gFatal;

}  // namespace
