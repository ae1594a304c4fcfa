#include "command/report/maker_names.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace {

class MakerNames : public testing::Test {
 protected:
  std::string Find(const std::string& list, const std::string& letters) const {
    folder.Write("pnp.ids", list);
    return TMakerNames(folder.GetPath() / "pnp.ids").Find(letters);
  }

  TTemporaryFolder folder;
};

}  // namespace

TEST_F(MakerNames, AreFoundByTheThreeLetters) {
  const std::string list = "ACM\tAcme Corporation\nGLX\tGlobex\nINI\tInitech, Inc.";
  EXPECT_EQ(Find(list, "ACM"), "Acme Corporation");
  EXPECT_EQ(Find(list, "GLX"), "Globex");
  EXPECT_EQ(Find(list, "INI"), "Initech, Inc.");
}

TEST_F(MakerNames, AreNotKnownOfOtherLetters) {
  const std::string list = "ACM\tAcme GLX\tGlobex\n";
  for (const char* const letters : {"GLX", "ACN", "acm", "AC", "", "CM\t"}) EXPECT_EQ(Find(list, letters), "");
}

TEST_F(MakerNames, AreNotKnownWithoutTheList) {
  EXPECT_EQ(TMakerNames().Find("ACM"), "");
  EXPECT_EQ(TMakerNames(folder.GetPath() / "absent").Find("ACM"), "");
  EXPECT_EQ(TMakerNames(folder.GetPath()).Find("ACM"), "");
}

TEST_F(MakerNames, MissTheirListOnlyWhereThereShouldBeOne) {
  folder.Write("pnp.ids", "ACM\tAcme\n");
  EXPECT_FALSE(TMakerNames().IsListMissing());
  EXPECT_FALSE(TMakerNames(folder.GetPath() / "pnp.ids").IsListMissing());
  EXPECT_TRUE(TMakerNames(folder.GetPath() / "absent").IsListMissing());
}

TEST_F(MakerNames, EndWithTheirLineInAListOfAnySystem) {
  EXPECT_EQ(Find("ACM\tAcme\r\nGLX\tGlobex\r\n", "ACM"), "Acme");
}

TEST_F(MakerNames, ArePrintableAndShort) {
  EXPECT_EQ(Find("ACM\tAc\x1B[2Jme\xFF\n", "ACM"), "Ac\\x1b[2Jme\xEF\xBF\xBD");
  EXPECT_EQ(Find("ACM\t" + std::string(5000, 'x'), "ACM"), std::string(100, 'x'));
}

TEST_F(MakerNames, AreNotReadFromAListThatIsTooLong) {
  EXPECT_EQ(Find("ACM\tAcme\n" + std::string(2 * 1024 * 1024, '\n'), "ACM"), "");
}

TEST_F(MakerNames, AreReadOnce) {
  folder.Write("pnp.ids", "ACM\tAcme\n");
  const TMakerNames names(folder.GetPath() / "pnp.ids");
  EXPECT_EQ(names.Find("ACM"), "Acme");
  folder.Write("pnp.ids", "ACM\tOther\n");
  EXPECT_EQ(names.Find("ACM"), "Acme");
}
