// Doubles of the host's CIM objects, for behaviour that a real store never has.
#pragma once

#include <gmock/gmock.h>

#include <string>

#include "host/cim_objects.h"

class TMockNamespace : public NQRXZELT20::ICIMNamespace {
 public:
  MOCK_METHOD(boost::shared_ptr<NQRXZELT20::ICIMClass>, GetClass,
              (const std::string& className, NQRXZELT20::TCIMQueryContext context), (override));
};

class TMockClass : public NQRXZELT20::ICIMClass {
 public:
  typedef boost::function<bool(boost::shared_ptr<NQRXZELT20::ICIMInstance>)> TCallback;

  MOCK_METHOD(const std::string&, GetName, (NQRXZELT20::TCIMQueryContext context), (override));
  MOCK_METHOD(boost::shared_ptr<NQRXZELT20::ICIMNamespace>, GetNamespace, (NQRXZELT20::TCIMQueryContext context),
              (override));
  MOCK_METHOD(boost::shared_ptr<NQRXZELT20::ICIMInstance>, CreateInstance, (NQRXZELT20::TCIMQueryContext context),
              (override));
  MOCK_METHOD(void, EnumerateInstances, (TCallback callback, bool flag, NQRXZELT20::TCIMQueryContext context),
              (override));
};

class TMockProperty : public NQRXZELT20::ICIMProperty {
 public:
  MOCK_METHOD(const NQRXZELT20::TCIMValue&, GetValue, (NQRXZELT20::TCIMQueryContext context), (override));
};

class TMockInstance : public NQRXZELT20::ICIMInstance {
 public:
  MOCK_METHOD(void, Commit, (NQRXZELT20::TCIMQueryContext context), (override));
  MOCK_METHOD(NQRXZELT20::TCIMReference, GetObjectPath, (NQRXZELT20::TCIMQueryContext context), (override));
  MOCK_METHOD(boost::shared_ptr<NQRXZELT20::ICIMClass>, GetClass, (NQRXZELT20::TCIMQueryContext context), (override));
  MOCK_METHOD(boost::shared_ptr<NQRXZELT20::ICIMProperty>, GetProperty,
              (const std::string& name, NQRXZELT20::TCIMQueryContext context), (override));
  MOCK_METHOD(void, SetProperty,
              (const std::string& name, const NQRXZELT20::TCIMValue& value, NQRXZELT20::TCIMQueryContext context),
              (override));
};
