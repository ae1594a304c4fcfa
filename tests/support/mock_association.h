// A host whose every object is a double, for the association passes: it answers only to the contexts that each
// operation is to be given, and fails where a test tells it to.
#pragma once

#include <gmock/gmock.h>

#include <boost/make_shared.hpp>

#include <memory>
#include <string>
#include <vector>

#include "host/services.h"
#include "tests/support/mock_cim.h"
#include "tests/support/properties.h"

class TMockAssociation {
 public:
  typedef std::vector<boost::shared_ptr<NQRXZELT20::ICIMInstance>> TInstances;

  boost::shared_ptr<testing::StrictMock<TMockClass>> requested = boost::make_shared<testing::StrictMock<TMockClass>>();
  boost::shared_ptr<testing::StrictMock<TMockClass>> first = boost::make_shared<testing::StrictMock<TMockClass>>();
  boost::shared_ptr<testing::StrictMock<TMockClass>> second = boost::make_shared<testing::StrictMock<TMockClass>>();

  /// Two classes by name, each with the property that its instances are asked for.
  TMockAssociation(const std::string& firstClass, const std::string& firstProperty, const std::string& secondClass,
                   const std::string& secondProperty)
      : m_firstProperty(firstProperty), m_secondProperty(secondProperty) {
    using testing::Return;
    const auto isAssociation = testing::Truly(IsAssociationContext);
    EXPECT_CALL(*requested, GetNamespace(testing::IsEmpty())).WillRepeatedly(Return(m_namespace));
    EXPECT_CALL(*m_namespace, GetClass(firstClass, isAssociation)).WillRepeatedly(Return(first));
    EXPECT_CALL(*m_namespace, GetClass(secondClass, isAssociation)).WillRepeatedly(Return(second));
  }

  /// Adds an instance with that property value, which is also its path.
  TMockInstance& AddFirst(const std::string& value) { return Add(m_firsts, m_firstProperty, value, value); }
  TMockInstance& AddSecond(const std::string& value) { return Add(m_seconds, m_secondProperty, value, value); }

  /// The same with a path of its own.
  TMockInstance& AddFirst(const std::string& value, const std::string& path) {
    return Add(m_firsts, m_firstProperty, value, path);
  }
  TMockInstance& AddSecond(const std::string& value, const std::string& path) {
    return Add(m_seconds, m_secondProperty, value, path);
  }

  /// Lets both classes enumerate what was added.
  void Hold() {
    HoldIn(*first, m_firsts);
    HoldIn(*second, m_seconds);
  }

 private:
  struct TDoubled {
    NQRXZELT20::TCIMValue value;
    boost::shared_ptr<testing::NiceMock<TMockProperty>> property =
        boost::make_shared<testing::NiceMock<TMockProperty>>();
    boost::shared_ptr<testing::NiceMock<TMockInstance>> instance =
        boost::make_shared<testing::NiceMock<TMockInstance>>();
  };

  static bool IsAssociationContext(const NQRXZELT20::TCIMQueryContext& context) {
    using NQRXZELT20::TCIMSchemaHelper;
    return Describe(context) ==
           TDescribed{{TCIMSchemaHelper::kContextName, std::string("string ") + TCIMSchemaHelper::kPluginNSPName}};
  }

  TMockInstance& Add(TInstances& list, const std::string& property, const std::string& value, const std::string& path) {
    using testing::IsEmpty;
    using testing::Return;
    m_doubled.push_back(std::make_unique<TDoubled>());
    TDoubled& item = *m_doubled.back();
    item.value = NQRXZELT20::TCIMValue(value);
    ON_CALL(*item.instance, GetProperty(property, IsEmpty())).WillByDefault(Return(item.property));
    ON_CALL(*item.property, GetValue(IsEmpty())).WillByDefault(testing::ReturnRef(item.value));
    ON_CALL(*item.instance, GetObjectPath(IsEmpty())).WillByDefault(Return(NQRXZELT20::TCIMReference(path)));
    list.push_back(item.instance);
    return *item.instance;
  }

  static void HoldIn(TMockClass& cimClass, const TInstances& list) {
    EXPECT_CALL(cimClass, EnumerateInstances(testing::_, false, testing::IsEmpty()))
        .WillRepeatedly([list](TMockClass::TCallback callback, bool, NQRXZELT20::TCIMQueryContext) {
          for (const auto& instance : list) EXPECT_TRUE(callback(instance));
        });
  }

  std::string m_firstProperty;
  std::string m_secondProperty;
  boost::shared_ptr<testing::StrictMock<TMockNamespace>> m_namespace =
      boost::make_shared<testing::StrictMock<TMockNamespace>>();
  TInstances m_firsts;
  TInstances m_seconds;
  std::vector<std::unique_ptr<TDoubled>> m_doubled;
};
