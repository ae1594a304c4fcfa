#include "displayinfo/host_name.h"
#include "displayinfo/machine.h"
#include "realmode/real_video_bios.h"

TMachine MakeThisMachine() {
  const auto bios = std::make_shared<TRealVideoBios>();
  TMachine machine;
  machine.host.systemName = GetHostName();
  machine.bios = bios;
  machine.getBiosFailure = [bios] {
    const std::string failure = bios->GetFailure();
    return failure.empty() ? failure : failure + "; a captured machine (--machine DIR) does without it";
  };
  return machine;
}
