// A library in the place of a plug-in, which ends its process when it is loaded over a machine that has the file
// /fatal.
#include <cstdlib>

#include "host/services.h"

namespace {

struct TFatal {
  TFatal() {
    if (NQRXZELT20::TOSSpecific::FileExists("/fatal")) std::abort();
  }
} gFatal;

}  // namespace
