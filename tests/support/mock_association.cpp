#include "tests/support/mock_association.h"

#include <boost/make_shared.hpp>

#include "host/services.h"
#include "tests/support/properties.h"

using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMSchemaHelper;
using NQRXZELT20::TCIMValue;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::StrictMock;

namespace {

bool IsAssociationContext(const TCIMQueryContext& context) {
  return Describe(context) ==
         TDescribed{{TCIMSchemaHelper::kContextName, std::string("string ") + TCIMSchemaHelper::kPluginNSPName}};
}

void HoldIn(TMockClass& cimClass, const TMockAssociation::TInstances& list) {
  EXPECT_CALL(cimClass, EnumerateInstances(testing::_, false, IsEmpty()))
      .WillRepeatedly([list](const TMockClass::TCallback& callback, bool, const TCIMQueryContext&) {
        for (const auto& instance : list) EXPECT_TRUE(callback(instance));
      });
}

}  // namespace

struct TMockAssociation::TDoubled {
  TCIMValue value;
  boost::shared_ptr<NiceMock<TMockProperty>> property = boost::make_shared<NiceMock<TMockProperty>>();
  boost::shared_ptr<NiceMock<TMockInstance>> instance = boost::make_shared<NiceMock<TMockInstance>>();
};

TMockAssociation::TMockAssociation(const std::string& firstClass, const std::string& firstProperty,
                                   const std::string& secondClass, const std::string& secondProperty)
    : requested(boost::make_shared<StrictMock<TMockClass>>()),
      first(boost::make_shared<StrictMock<TMockClass>>()),
      second(boost::make_shared<StrictMock<TMockClass>>()),
      m_firstProperty(firstProperty),
      m_secondProperty(secondProperty),
      m_namespace(boost::make_shared<StrictMock<TMockNamespace>>()) {
  const auto isAssociation = testing::Truly(IsAssociationContext);
  EXPECT_CALL(*requested, GetNamespace(IsEmpty())).WillRepeatedly(Return(m_namespace));
  EXPECT_CALL(*m_namespace, GetClass(firstClass, isAssociation)).WillRepeatedly(Return(first));
  EXPECT_CALL(*m_namespace, GetClass(secondClass, isAssociation)).WillRepeatedly(Return(second));
}

TMockAssociation::~TMockAssociation() = default;

TMockInstance& TMockAssociation::AddFirst(const std::string& value) { return AddFirst(value, value); }

TMockInstance& TMockAssociation::AddSecond(const std::string& value) { return AddSecond(value, value); }

TMockInstance& TMockAssociation::AddFirst(const std::string& value, const std::string& path) {
  return Add(m_firsts, m_firstProperty, value, path);
}

TMockInstance& TMockAssociation::AddSecond(const std::string& value, const std::string& path) {
  return Add(m_seconds, m_secondProperty, value, path);
}

void TMockAssociation::Hold() {
  HoldIn(*first, m_firsts);
  HoldIn(*second, m_seconds);
}

TMockInstance& TMockAssociation::Add(TInstances& list, const std::string& property, const std::string& value,
                                     const std::string& path) {
  m_doubled.push_back(std::make_unique<TDoubled>());
  TDoubled& item = *m_doubled.back();
  item.value = TCIMValue(value);
  ON_CALL(*item.instance, GetProperty(property, IsEmpty())).WillByDefault(Return(item.property));
  ON_CALL(*item.property, GetValue(IsEmpty())).WillByDefault(testing::ReturnRef(item.value));
  ON_CALL(*item.instance, GetObjectPath(IsEmpty())).WillByDefault(Return(TCIMReference(path)));
  list.push_back(item.instance);
  return *item.instance;
}
