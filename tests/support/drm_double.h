// A stand-in for libdrm that answers what a test tells it to. Loaded first, it is what the loader takes for libdrm.
#pragma once

#include <xf86drmMode.h>

#include <cstdint>
#include <map>
#include <vector>

/// What the driver of a card has, by its numbers. The library answers null for what is not in here.
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
