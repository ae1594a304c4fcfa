// How whoever loads a caller of the LRMI calls chooses the BIOS beneath them.
#pragma once

#include <memory>

#include "realmode/api.h"

class IVideoBios;

/// From the next LRMI_init on, the LRMI calls work on this BIOS; a null pointer stands for the machine's own, which is
/// also what they work on when nobody chose. Ends a session that is still open.
REALMODE_API void ChooseVideoBios(std::shared_ptr<IVideoBios> bios);
