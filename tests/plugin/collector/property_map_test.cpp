#include "plugin/collector/property_map.h"

#include <gtest/gtest.h>

#include <boost/lexical_cast.hpp>

#include "plugin/collector/array_value.h"
#include "tests/support/properties.h"

using NQRXZELT20::TCIMValue;

TEST(PropertyMap, KeepsTheFirstValueOfAName) {
  PropertyMap map;
  InsertProperty(&map, "Gamma", TCIMValue(2.2F));
  InsertProperty(&map, "Gamma", TCIMValue(1.8F));
  EXPECT_EQ(Describe(map), (TDescribed{{"Gamma", "real32 2.2"}}));
}

TEST(PropertyMap, TakesNoNullValueForANewName) {
  PropertyMap map;
  InsertProperty(&map, "Gamma", TCIMValue());
  EXPECT_TRUE(map.empty());
}

TEST(PropertyMap, KeepsAValueWhenANullOneFollows) {
  PropertyMap map;
  InsertProperty(&map, "Name", TCIMValue("A"));
  InsertProperty(&map, "Name", TCIMValue());
  EXPECT_EQ(Describe(map), (TDescribed{{"Name", "string A"}}));
}

TEST(PropertyMap, OrdersTheNamesByteByByte) {
  PropertyMap map;
  for (const char* name : {"b", "a", "B", "aa"}) InsertProperty(&map, name, TCIMValue(true));
  std::string order;
  for (const auto& entry : map) order += entry.first + " ";
  EXPECT_EQ(order, "B a aa b ");
}

TEST(PropertyMap, TakesAnArrayWithoutElements) {
  PropertyMap map;
  InsertProperty(&map, "Names", MakeArrayValue(TCIMValue::TCIMType::kString, std::vector<std::string>()));
  EXPECT_EQ(Describe(map), (TDescribed{{"Names", "string[] "}}));
}

TEST(ArrayValue, KeepsTheElementsInOrder) {
  const std::vector<unsigned short> words = {3, 1, 2};
  EXPECT_EQ(Describe(MakeArrayValue(TCIMValue::TCIMType::kUint16, words)), "uint16[] 3,1,2");
}

TEST(ArrayValue, UsesTheHostsElementTypeCodes) {
  EXPECT_EQ(TCIMValue::TCIMType::kUint16, 4);
  EXPECT_EQ(TCIMValue::TCIMType::kString, 13);
}

TEST(UnsignedConversion, ReadsAWholeNumber) { EXPECT_EQ(boost::lexical_cast<unsigned int>(std::string("24")), 24U); }

TEST(UnsignedConversion, RefusesWhatIsMoreThanANumber) {
  for (const char* text : {"", " 24", "24 ", "24x", "x"}) {
    EXPECT_THROW(boost::lexical_cast<unsigned int>(std::string(text)), boost::bad_lexical_cast) << '"' << text << '"';
  }
}
