#include "command/base/version.h"

const char* const kCommandVersion = DISPLAYINFO_VERSION;
