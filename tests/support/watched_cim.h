// A CIM model that wraps another one. A watcher is told of every call before it is passed on, and may throw instead.
// The objects are counted, so that kept references show.
#pragma once

#include <boost/make_shared.hpp>

#include <functional>
#include <string>
#include <utility>

#include "host/cim_objects.h"

struct TWatcher {
  /// Called with the operation's name, such as "SetProperty".
  std::function<void(const std::string& operation)> onCall;
  int objects = 0;  // alive
};

/// The base of every watched object: wraps another object, and counts itself.
template <typename TInterface>
class TWatched : public TInterface {
 public:
  TWatched(TWatcher& watcher, boost::shared_ptr<TInterface> inner) : m_watcher(watcher), m_inner(std::move(inner)) {
    ++m_watcher.objects;
  }
  ~TWatched() override { --m_watcher.objects; }
  TWatched(const TWatched&) = delete;
  TWatched& operator=(const TWatched&) = delete;

 protected:
  /// The wrapped object, after the watcher has allowed the call.
  TInterface& Call(const char* operation) {
    if (m_watcher.onCall) m_watcher.onCall(operation);
    return *m_inner;
  }

  TWatcher& m_watcher;

 private:
  boost::shared_ptr<TInterface> m_inner;
};

class TWatchedProperty : public TWatched<NQRXZELT20::ICIMProperty> {
 public:
  using TWatched::TWatched;

  const NQRXZELT20::TCIMValue& GetValue(NQRXZELT20::TCIMQueryContext context) override {
    return Call("GetValue").GetValue(context);
  }
};

class TWatchedInstance : public TWatched<NQRXZELT20::ICIMInstance> {
 public:
  using TWatched::TWatched;

  void Commit(NQRXZELT20::TCIMQueryContext context) override { Call("Commit").Commit(context); }
  NQRXZELT20::TCIMReference GetObjectPath(NQRXZELT20::TCIMQueryContext context) override {
    return Call("GetObjectPath").GetObjectPath(context);
  }
  boost::shared_ptr<NQRXZELT20::ICIMClass> GetClass(NQRXZELT20::TCIMQueryContext context) override;
  boost::shared_ptr<NQRXZELT20::ICIMProperty> GetProperty(const std::string& name,
                                                          NQRXZELT20::TCIMQueryContext context) override {
    return boost::make_shared<TWatchedProperty>(m_watcher, Call("GetProperty").GetProperty(name, context));
  }
  void SetProperty(const std::string& name, const NQRXZELT20::TCIMValue& value,
                   NQRXZELT20::TCIMQueryContext context) override {
    Call("SetProperty").SetProperty(name, value, context);
  }
};

class TWatchedClass : public TWatched<NQRXZELT20::ICIMClass> {
 public:
  using TWatched::TWatched;

  const std::string& GetName(NQRXZELT20::TCIMQueryContext context) override { return Call("GetName").GetName(context); }
  boost::shared_ptr<NQRXZELT20::ICIMNamespace> GetNamespace(NQRXZELT20::TCIMQueryContext context) override;
  boost::shared_ptr<NQRXZELT20::ICIMInstance> CreateInstance(NQRXZELT20::TCIMQueryContext context) override {
    return boost::make_shared<TWatchedInstance>(m_watcher, Call("CreateInstance").CreateInstance(context));
  }
  void EnumerateInstances(boost::function<bool(boost::shared_ptr<NQRXZELT20::ICIMInstance>)> callback, bool flag,
                          NQRXZELT20::TCIMQueryContext context) override {
    const auto watch = [&](boost::shared_ptr<NQRXZELT20::ICIMInstance> instance) {
      return callback(boost::make_shared<TWatchedInstance>(m_watcher, instance));
    };
    Call("EnumerateInstances").EnumerateInstances(watch, flag, context);
  }
};

class TWatchedNamespace : public TWatched<NQRXZELT20::ICIMNamespace> {
 public:
  using TWatched::TWatched;

  boost::shared_ptr<NQRXZELT20::ICIMClass> GetClass(const std::string& name,
                                                    NQRXZELT20::TCIMQueryContext context) override {
    return boost::make_shared<TWatchedClass>(m_watcher, Call("GetClass").GetClass(name, context));
  }
};

inline boost::shared_ptr<NQRXZELT20::ICIMClass> TWatchedInstance::GetClass(NQRXZELT20::TCIMQueryContext context) {
  return boost::make_shared<TWatchedClass>(m_watcher, Call("GetClass").GetClass(context));
}

inline boost::shared_ptr<NQRXZELT20::ICIMNamespace> TWatchedClass::GetNamespace(NQRXZELT20::TCIMQueryContext context) {
  return boost::make_shared<TWatchedNamespace>(m_watcher, Call("GetNamespace").GetNamespace(context));
}
