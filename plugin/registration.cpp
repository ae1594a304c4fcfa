// Makes one callback object when the library is loaded, which registers itself.
#include "plugin/display_info_callbacks.h"

int NQRXZELT20::gStarted = 0;

/// Runs among the library's constructors. The object is not kept here: the host holds it from its registration to
/// PrepareForUnload. An exception of its constructor is not caught here.
__attribute__((constructor)) HOST_API void TDisplayInfoInit();

// NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the host holds it
void TDisplayInfoInit() { new NQRXZELT20::TDisplayInfoCallbacks(); }
