// The host's CIM object model as the plug-in sees it: a namespace holds classes, a class its instances, an instance its
// properties.
//
// The host owns all of them and hands them out by shared pointer. Operations report failure by throwing
// TZELTException, never by their result. Every operation takes a query context by value as its last argument.
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <string>

#include "host/cim_value.h"
#include "host/visibility.h"

namespace NQRXZELT20 {

class ICIMClass;
class ICIMInstance;

class HOST_API ICIMNamespace {
 public:
  virtual ~ICIMNamespace();

  /// The class of that name in this namespace.
  virtual boost::shared_ptr<ICIMClass> GetClass(const std::string& className, TCIMQueryContext context) = 0;
};

class HOST_API ICIMClass {
 public:
  virtual ~ICIMClass();

  /// The class name. The reference stays valid while the class lives.
  virtual const std::string& GetName(TCIMQueryContext context) = 0;

  /// The namespace that holds the class.
  virtual boost::shared_ptr<ICIMNamespace> GetNamespace(TCIMQueryContext context) = 0;

  /// A new, empty, uncommitted instance of this class.
  virtual boost::shared_ptr<ICIMInstance> CreateInstance(TCIMQueryContext context) = 0;

  /// Calls `callback` once for every committed instance of the class, until it returns false.
  virtual void EnumerateInstances(boost::function<bool(boost::shared_ptr<ICIMInstance>)> callback, bool flag,
                                  TCIMQueryContext context) = 0;
};

class HOST_API ICIMProperty {
 public:
  virtual ~ICIMProperty();

  /// The current value. The reference stays valid while the property lives.
  virtual const TCIMValue& GetValue(TCIMQueryContext context) = 0;
};

class HOST_API ICIMInstance {
 public:
  virtual ~ICIMInstance();

  /// Hands the instance, with the properties set so far, to the host as a result of the current request.
  virtual void Commit(TCIMQueryContext context) = 0;

  virtual TCIMReference GetObjectPath(TCIMQueryContext context) = 0;
  virtual boost::shared_ptr<ICIMClass> GetClass(TCIMQueryContext context) = 0;
  virtual boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name, TCIMQueryContext context) = 0;
  virtual void SetProperty(const std::string& name, const TCIMValue& value, TCIMQueryContext context) = 0;
};

}  // namespace NQRXZELT20
