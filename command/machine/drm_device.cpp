#include "command/machine/drm_device.h"

#include <fcntl.h>
#include <xf86drm.h>
#include <xf86drmMode.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>
#include <string_view>

#include "command/base/descriptor.h"
#include "command/base/unusable.h"
#include "realmode/shared_library.h"

namespace {

/// The functions of libdrm that are needed. What a "get" function returns is freed by the "free" function below it.
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
  decltype(drmModeGetProperty)* getProperty = library.Find<decltype(drmModeGetProperty)>("drmModeGetProperty");
  decltype(drmModeFreeProperty)* freeProperty = library.Find<decltype(drmModeFreeProperty)>("drmModeFreeProperty");
  decltype(drmModeGetPropertyBlob)* getBlob = library.Find<decltype(drmModeGetPropertyBlob)>("drmModeGetPropertyBlob");
  decltype(drmModeFreePropertyBlob)* freeBlob =
      library.Find<decltype(drmModeFreePropertyBlob)>("drmModeFreePropertyBlob");
  decltype(drmDropMaster)* dropMaster = library.Find<decltype(drmDropMaster)>("drmDropMaster");

  /// Checks the first and the newest function: a library that has both has all of them.
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

/// The connector's property PATH; empty if it has none.
std::string ReadPath(const TDrmLibrary& drm, int device, const drmModeConnector& connector) {
  for (int index = 0; index < connector.count_props; ++index) {
    const TOwned<drmModePropertyRes> property(drm.getProperty(device, connector.props[index]), drm.freeProperty);
    if (property == nullptr || std::strcmp(property->name, "PATH") != 0) continue;
    const auto number = static_cast<std::uint32_t>(connector.prop_values[index]);
    const TOwned<drmModePropertyBlobRes> blob(drm.getBlob(device, number), drm.freeBlob);
    if (blob == nullptr) return std::string();
    const auto* const text = static_cast<const char*>(blob->data);
    return std::string(text, strnlen(text, blob->length));
  }
  return std::string();
}

std::string ExplainClosed(const std::filesystem::path& device) {
  const std::string cure = errno == EACCES ? "; run displayinfo as root or as a member of the group video" : "";
  return device.string() + " cannot be opened: " + std::strerror(errno) + cure;
}

void ReadConnectors(const TDrmLibrary& drm, int file, TDrmDevice& device) {
  const TOwned<drmModeRes> resources(drm.getResources(file), drm.freeResources);
  std::map<std::uint32_t, std::string> names;
  std::map<std::string, std::string> paths;
  for (int index = 0; resources != nullptr && index < resources->count_connectors; ++index) {
    const TOwned<drmModeConnector> connector(drm.getConnector(file, resources->connectors[index]), drm.freeConnector);
    if (connector == nullptr) continue;
    const std::string name = MakeName(drm, *connector);
    names[connector->connector_id] = name;
    paths[name] = ReadPath(drm, file, *connector);
    if (const auto mode = ReadMode(drm, file, *connector)) device.modes[name] = *mode;
  }
  for (const auto& [name, path] : paths) {
    const std::string port = MakePortName(path, names);
    if (!port.empty()) device.ports[name] = port;
  }
}

}  // namespace

TDrmDevice ReadDrmDevice(const std::filesystem::path& device) {
  TDrmDevice read;
  const TDrmLibrary drm;
  RequireLoaded(drm.library.GetFailure());
  if (!drm.IsUsable()) {
    read.fault = "libdrm.so.2 is missing; install libdrm2";
    return read;
  }
  const TDescriptor file(open(device.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) {
    if (!DescribesFile(errno)) FailToRead(device.string(), errno);
    read.fault = ExplainClosed(device);
    return read;
  }
  drm.dropMaster(file.Get());
  ReadConnectors(drm, file.Get(), read);
  return read;
}

std::string MakePortName(const std::string& property, const std::map<std::uint32_t, std::string>& connectors) {
  constexpr std::string_view kind = "mst:";
  if (property.compare(0, kind.size(), kind) != 0) return std::string();
  const char* const end = property.data() + property.size();
  std::uint32_t number = 0;
  const auto [ports, error] = std::from_chars(property.data() + kind.size(), end, number);
  const auto connector = connectors.find(number);
  if (error != std::errc() || ports == end || *ports != '-' || connector == connectors.end()) return std::string();
  return connector->second + std::string(ports, end);
}
