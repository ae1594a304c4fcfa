#include "command/machine/drm_modes.h"

#include <fcntl.h>
#include <xf86drmMode.h>

#include <memory>

#include "command/base/descriptor.h"
#include "realmode/shared_library.h"

namespace {

/// The calls of libdrm that are needed. What a call gives is freed by the one that is named with it.
struct TDrmLibrary {
  TSharedLibrary library{"libdrm.so.2"};
  decltype(drmModeGetResources)* getResources = library.Find<decltype(drmModeGetResources)>("drmModeGetResources");
  decltype(drmModeFreeResources)* freeResources = library.Find<decltype(drmModeFreeResources)>("drmModeFreeResources");
  decltype(drmModeGetConnectorCurrent)* getConnector =
      library.Find<decltype(drmModeGetConnectorCurrent)>("drmModeGetConnectorCurrent");
  decltype(drmModeFreeConnector)* freeConnector = library.Find<decltype(drmModeFreeConnector)>("drmModeFreeConnector");
  decltype(drmModeGetConnectorTypeName)* getTypeName =
      library.Find<decltype(drmModeGetConnectorTypeName)>("drmModeGetConnectorTypeName");
  decltype(drmModeGetEncoder)* getEncoder = library.Find<decltype(drmModeGetEncoder)>("drmModeGetEncoder");
  decltype(drmModeFreeEncoder)* freeEncoder = library.Find<decltype(drmModeFreeEncoder)>("drmModeFreeEncoder");
  decltype(drmModeGetCrtc)* getCrtc = library.Find<decltype(drmModeGetCrtc)>("drmModeGetCrtc");
  decltype(drmModeFreeCrtc)* freeCrtc = library.Find<decltype(drmModeFreeCrtc)>("drmModeFreeCrtc");
  decltype(drmModeGetFB)* getFramebuffer = library.Find<decltype(drmModeGetFB)>("drmModeGetFB");
  decltype(drmModeFreeFB)* freeFramebuffer = library.Find<decltype(drmModeFreeFB)>("drmModeFreeFB");

  /// The first and the newest of the calls: a library that has both has all of them.
  bool IsUsable() const { return getResources != nullptr && getTypeName != nullptr; }
};

template <typename T>
using TOwned = std::unique_ptr<T, void (*)(T*)>;

std::optional<unsigned int> ReadDepth(const TDrmLibrary& drm, int device, std::uint32_t framebuffer) {
  const TOwned<drmModeFB> buffer(drm.getFramebuffer(device, framebuffer), drm.freeFramebuffer);
  if (buffer == nullptr || buffer->depth == 0) return std::nullopt;
  return buffer->depth;
}

/// Nothing for a connector that is switched off.
std::optional<TDrmMode> ReadMode(const TDrmLibrary& drm, int device, const drmModeConnector& connector) {
  const TOwned<drmModeEncoder> encoder(drm.getEncoder(device, connector.encoder_id), drm.freeEncoder);
  if (encoder == nullptr) return std::nullopt;
  const TOwned<drmModeCrtc> crtc(drm.getCrtc(device, encoder->crtc_id), drm.freeCrtc);
  if (crtc == nullptr || crtc->mode_valid == 0) return std::nullopt;
  return TDrmMode{crtc->mode.hdisplay, crtc->mode.vdisplay, ReadDepth(drm, device, crtc->buffer_id)};
}

std::string MakeName(const TDrmLibrary& drm, const drmModeConnector& connector) {
  const char* const type = drm.getTypeName(connector.connector_type);
  return (type == nullptr ? "Unknown" : type) + ("-" + std::to_string(connector.connector_type_id));
}

}  // namespace

bool CanReadDrmModes() { return TDrmLibrary().IsUsable(); }

std::map<std::string, TDrmMode> ReadDrmModes(const std::filesystem::path& device) {
  std::map<std::string, TDrmMode> modes;
  const TDrmLibrary drm;
  const TDescriptor file(open(device.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
  if (!drm.IsUsable() || !file.IsOpen()) return modes;
  const TOwned<drmModeRes> resources(drm.getResources(file.Get()), drm.freeResources);
  for (int index = 0; resources != nullptr && index < resources->count_connectors; ++index) {
    const TOwned<drmModeConnector> connector(drm.getConnector(file.Get(), resources->connectors[index]),
                                             drm.freeConnector);
    if (connector == nullptr) continue;
    if (const auto mode = ReadMode(drm, file.Get(), *connector)) modes[MakeName(drm, *connector)] = *mode;
  }
  return modes;
}
