#include "command/cim_server/enumerations.h"

#include <gtest/gtest.h>

namespace {

/// Enumerations whose clock the test sets.
class Enumerations : public testing::Test {
 protected:
  static TEnumeration Make(std::size_t size = 1) {
    return {"root/cimv2", false, {std::string(size, 'a')}, std::chrono::seconds(10)};
  }

  TEnumerations::TTime m_now;
  TEnumerations m_enumerations = TEnumerations([this] { return m_now; });
};

}  // namespace

TEST_F(Enumerations, AreFoundByTheirContextUntilTheyAreClosed) {
  const std::string context = m_enumerations.Open(Make());
  const std::string other = m_enumerations.Open(Make());
  EXPECT_EQ(context.size(), 32U);
  EXPECT_NE(context, other);
  ASSERT_NE(m_enumerations.Find(context), nullptr);
  EXPECT_EQ(m_enumerations.Find(context)->objects.size(), 1U);
  m_enumerations.Close(context);
  EXPECT_EQ(m_enumerations.Find(context), nullptr);
  EXPECT_NE(m_enumerations.Find(other), nullptr);
  EXPECT_EQ(m_enumerations.Find(""), nullptr);
}

TEST_F(Enumerations, HaveContextsThatAreRandomThroughout) {
  const std::string context = m_enumerations.Open(Make());
  EXPECT_NE(context.substr(0, 16), context.substr(16));
}

TEST_F(Enumerations, AreForgottenWhenTheyRestTooLong) {
  const std::string context = m_enumerations.Open(Make());
  m_now += std::chrono::seconds(10);
  EXPECT_NE(m_enumerations.Find(context), nullptr);
  m_now += std::chrono::seconds(10);
  EXPECT_NE(m_enumerations.Find(context), nullptr);
  m_now += std::chrono::seconds(11);
  EXPECT_EQ(m_enumerations.Find(context), nullptr);
}

TEST_F(Enumerations, AreBoundedInNumberAndGiveTheirPlaceWhenTheyAreForgotten) {
  for (std::size_t number = 0; number < TEnumerations::kMaxCount; ++number) EXPECT_NE(m_enumerations.Open(Make()), "");
  EXPECT_EQ(m_enumerations.Open(Make()), "");
  m_now += std::chrono::seconds(11);
  EXPECT_NE(m_enumerations.Open(Make()), "");
}

TEST_F(Enumerations, AreBoundedInMemory) {
  EXPECT_EQ(m_enumerations.Open(Make(TEnumerations::kMaxSize + 1)), "");
  EXPECT_NE(m_enumerations.Open(Make(TEnumerations::kMaxSize)), "");
  EXPECT_EQ(m_enumerations.Open(Make(1)), "");
}
