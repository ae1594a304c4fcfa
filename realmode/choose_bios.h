// Lets the program that loads the caller of the LRMI calls choose the video BIOS beneath them.
#pragma once

#include <memory>

#include "realmode/api.h"

class IVideoBios;

/// From the next LRMI_init on, the LRMI calls work on this BIOS; a null pointer, the default, chooses the machine's
/// own. Ends a session that is still open.
REALMODE_API void ChooseVideoBios(std::shared_ptr<IVideoBios> bios);
