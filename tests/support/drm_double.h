// A stand-in for libdrm that answers what a test tells it to. If it is loaded first, the loader takes it as libdrm.
#pragma once

#include <xf86drmMode.h>

#include <cstdint>
#include <map>
#include <vector>

/// What the driver of a card has, by number. For everything else, the library returns null.
struct TDrmDouble {
  bool hasResources = true;
  std::vector<std::uint32_t> listed;  // the connectors that the card says it has
  std::map<std::uint32_t, drmModeConnector> connectors;
  std::map<std::uint32_t, drmModeEncoder> encoders;
  std::map<std::uint32_t, drmModeCrtc> crtcs;
  std::map<std::uint32_t, drmModeFB> framebuffers;
  std::map<std::uint32_t, drmModePropertyRes> properties;
  std::map<std::uint32_t, drmModePropertyBlobRes> blobs;

  drmModeRes resources = {};
  int heldCount = 0;  // what the caller was given and has not freed
  bool isMaster = true;
};
