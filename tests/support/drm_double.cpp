#include "tests/support/drm_double.h"

#include <xf86drm.h>

extern "C" __attribute__((visibility("default"))) TDrmDouble gDrmDouble;
TDrmDouble gDrmDouble;

namespace {

template <typename T>
T* Give(std::map<std::uint32_t, T>& things, std::uint32_t number) {
  const auto thing = things.find(number);
  if (thing == things.end()) return nullptr;
  ++gDrmDouble.heldCount;
  return &thing->second;
}

void TakeBack() { --gDrmDouble.heldCount; }

}  // namespace

// These are libdrm's own functions, declared in its headers.
#pragma GCC visibility push(default)

drmModeResPtr drmModeGetResources(int) {
  if (!gDrmDouble.hasResources) return nullptr;
  ++gDrmDouble.heldCount;
  gDrmDouble.resources.count_connectors = static_cast<int>(gDrmDouble.listed.size());
  gDrmDouble.resources.connectors = gDrmDouble.listed.data();
  return &gDrmDouble.resources;
}
drmModeConnectorPtr drmModeGetConnectorCurrent(int, std::uint32_t number) {
  return Give(gDrmDouble.connectors, number);
}
drmModeEncoderPtr drmModeGetEncoder(int, std::uint32_t number) { return Give(gDrmDouble.encoders, number); }
drmModeCrtcPtr drmModeGetCrtc(int, std::uint32_t number) { return Give(gDrmDouble.crtcs, number); }
drmModeFBPtr drmModeGetFB(int, std::uint32_t number) { return Give(gDrmDouble.framebuffers, number); }
drmModePropertyPtr drmModeGetProperty(int, std::uint32_t number) { return Give(gDrmDouble.properties, number); }
drmModePropertyBlobPtr drmModeGetPropertyBlob(int, std::uint32_t number) { return Give(gDrmDouble.blobs, number); }

const char* drmModeGetConnectorTypeName(std::uint32_t type) {
  return type == DRM_MODE_CONNECTOR_DisplayPort ? "DP" : nullptr;
}

void drmModeFreeResources(drmModeResPtr) { TakeBack(); }
void drmModeFreeConnector(drmModeConnectorPtr) { TakeBack(); }
void drmModeFreeEncoder(drmModeEncoderPtr) { TakeBack(); }
void drmModeFreeCrtc(drmModeCrtcPtr) { TakeBack(); }
void drmModeFreeFB(drmModeFBPtr) { TakeBack(); }
void drmModeFreeProperty(drmModePropertyPtr) { TakeBack(); }
void drmModeFreePropertyBlob(drmModePropertyBlobPtr) { TakeBack(); }

int drmDropMaster(int) {
  gDrmDouble.isMaster = false;
  return 0;
}

#pragma GCC visibility pop
