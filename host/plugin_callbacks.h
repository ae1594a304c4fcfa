// The two interfaces that a plug-in implements for the host.
//
// A plug-in's object derives from IPluginCallbacks first and from IPluginBasicQueryCallbacks second. It registers
// itself with the plug-in manager as an IPluginCallbacks*; the host finds the second interface by dynamic_cast.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

#include "host/cim_objects.h"
#include "host/visibility.h"

namespace NQRXZELT20 {

class TPluginManagerProvider;

class HOST_API IPluginCallbacks {
 public:
  virtual ~IPluginCallbacks();

  /// The plug-in type code.
  virtual int GetType() = 0;
  /// The display name.
  virtual std::string GetName() = 0;
  /// The version of the plug-in.
  virtual std::string GetVersion() = 0;
  /// The version of this interface that the plug-in was built for.
  virtual std::string GetInterfaceVersion() = 0;
  /// The last call before the host unloads the library; the host must not use the object afterwards.
  virtual void PrepareForUnload() = 0;
  /// The first call after registration.
  virtual void Init() = 0;
  /// The host stops using the plug-in.
  virtual void DeInit() = 0;

 protected:
  /// The provider that the host gave this plug-in, or null if it gave none. See m_provider.
  TPluginManagerProvider* GetProvider() const { return m_provider; }

 private:
  friend class TPluginManagerNamespace;

  /// Only the host writes this pointer, when the plug-in registers; the plug-in can only read it. A host without a
  /// provider leaves it null.
  TPluginManagerProvider* m_provider = nullptr;
};

class HOST_API IPluginBasicQueryCallbacks {
 public:
  virtual ~IPluginBasicQueryCallbacks();

  /// Asks the plug-in to produce, and commit, the instances of each listed class. `classes` is only read.
  virtual void GetData(boost::shared_ptr<ICIMNamespace> ns, std::vector<boost::shared_ptr<ICIMClass>>& classes) = 0;
};

}  // namespace NQRXZELT20
