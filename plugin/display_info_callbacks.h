// TDisplayInfoCallbacks: the object the host sees. It answers the host's identity and lifecycle calls and dispatches
// each class request to the collector that serves the class.
//
// The host calls Init, any number of GetData, DeInit and last PrepareForUnload, from one thread at a time; the order is
// not enforced. All log messages of this class go straight to the core logger, provider or not.
#pragma once

#include "host/plugin_callbacks.h"

class TDisplay;

namespace NQRXZELT20 {

class HOST_API TDisplayInfoCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  /// Registers the new object with the host's plug-in manager. A TZELTException of the host passes through; a plug-in
  /// manager of another type than TPluginManagerNamespace ends the process with the assertion "px != 0".
  TDisplayInfoCallbacks();
  ~TDisplayInfoCallbacks() override;
  TDisplayInfoCallbacks(const TDisplayInfoCallbacks&) = delete;
  TDisplayInfoCallbacks& operator=(const TDisplayInfoCallbacks&) = delete;

  int GetType() override;
  std::string GetName() override;
  std::string GetVersion() override;
  std::string GetInterfaceVersion() override;
  /// Deletes this object.
  void PrepareForUnload() override;
  void Init() override;
  void DeInit() override;

  /// Collects the instances of each listed class, in order, and commits them; classes the plug-in does not serve are
  /// skipped. `ns` is not used: a collector reaches the host through its class. What a collector throws is
  /// caught and logged; what ICIMClass::GetName or the log throws passes through.
  void GetData(boost::shared_ptr<ICIMNamespace> ns, std::vector<boost::shared_ptr<ICIMClass>>& classes) override;

  /// Runs one collector, which stays the caller's, and logs whether it returned instances or threw. Always 0.
  int RetrieveDataForClass(TDisplay* collector);
};

/// Kept for hosts that look the symbol up; zero, and the plug-in neither reads nor writes it.
extern HOST_API int gStarted;

}  // namespace NQRXZELT20
