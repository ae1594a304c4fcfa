#include "host/cim_value.h"

#include <gtest/gtest.h>

#include "host/exception.h"
#include "tests/support/properties.h"

using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;

typedef TCIMValue::TCIMType TType;

TEST(CimValue, IsNullByDefault) {
  EXPECT_TRUE(TCIMValue().IsNull());
  EXPECT_EQ(static_cast<std::string>(TCIMValue()), "");
}

TEST(CimValue, HasTheTypeAndTextOfWhatItWasMadeOf) {
  TCIMReference reference("A.B=\"c\"");
  EXPECT_EQ(Describe(TCIMValue(true)), "boolean true");
  EXPECT_EQ(Describe(TCIMValue(static_cast<unsigned char>(255))), "uint8 255");
  EXPECT_EQ(Describe(TCIMValue(static_cast<unsigned short>(65535))), "uint16 65535");
  EXPECT_EQ(Describe(TCIMValue(4294967295U)), "uint32 4294967295");
  EXPECT_EQ(Describe(TCIMValue(2.2F)), "real32 2.2");
  EXPECT_EQ(Describe(TCIMValue("text")), "string text");
  EXPECT_EQ(Describe(TCIMValue(std::string("a\0b", 3))), std::string("string a\0b", 10));
  EXPECT_EQ(Describe(TCIMValue(reference)), "reference A.B=\"c\"");
}

TEST(CimValue, OfANullDatetimeIsNull) { EXPECT_TRUE(TCIMValue(TCIMDateTime()).IsNull()); }

TEST(CimValue, OfAnEmptyTextIsNotNull) { EXPECT_FALSE(TCIMValue("").IsNull()); }

TEST(CimValue, OfAnArrayWithoutElementsIsNotNull) {
  const TCIMValue value(TType(TType::kString), 0, {});
  EXPECT_FALSE(value.IsNull());
  EXPECT_EQ(Describe(value), "string[] ");
}

TEST(CimValue, RefusesAnArrayWhoseCountIsWrong) {
  EXPECT_THROW(TCIMValue(TType(TType::kString), 2, {TCIMValue("a")}), TZELTException);
}

TEST(CimValue, RefusesAnArrayElementOfAnotherType) {
  EXPECT_THROW(TCIMValue(TType(TType::kString), 1, {TCIMValue(true)}), TZELTException);
}

TEST(CimValue, RefusesToBeReadAsAnotherKind) {
  const auto refuse = [](const TCIMValue& value, auto read) -> std::string {
    try {
      (value.*read)();
    } catch (const TZELTException& refusal) {
      return refusal.what();
    }
    return "read";
  };
  EXPECT_EQ(refuse(TCIMValue("a"), &TCIMValue::GetUnsigned), "the value is not an unsigned integer");
  EXPECT_EQ(refuse(TCIMValue(1U), &TCIMValue::GetReal), "the value is not a real number");
  EXPECT_EQ(refuse(TCIMValue(), &TCIMValue::GetBoolean), "the value is not a boolean");
  EXPECT_EQ(refuse(TCIMValue(1U), &TCIMValue::GetText), "the value is not a text");
  EXPECT_EQ(refuse(TCIMValue(1U), &TCIMValue::GetElements), "the value is not an array");
}

TEST(CimDateTime, IsNullUntilItIsSet) {
  TCIMDateTime date;
  EXPECT_TRUE(date.IsNull());
  date.Set(2010, 1, 2, 3, 4, 5, 6, 60);
  EXPECT_FALSE(date.IsNull());
}

TEST(CimDateTime, HasTheCimTextForm) {
  TCIMDateTime date;
  date.Set(2010, 1, 2, 3, 4, 5, 6, -570);
  EXPECT_EQ(date.GetText(), "20100102030405.000006-570");
}

TEST(CimReference, EqualsOneOfTheSamePath) {
  EXPECT_TRUE(TCIMReference("A") == TCIMReference("A"));
  EXPECT_FALSE(TCIMReference("A") == TCIMReference("a"));
}
