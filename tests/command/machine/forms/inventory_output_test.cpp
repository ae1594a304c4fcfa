#include "command/machine/forms/inventory_output.h"

#include <gtest/gtest.h>

namespace {

TFoundOutput DecodeUu(const std::string& text) { return MakeInventoryOutput({std::nullopt, std::nullopt, text}); }

}  // namespace

TEST(InventoryOutput, IsReadFromUuencodedLines) {
  EXPECT_EQ(DecodeUu("#0V%T\n").edid, "Cat");
  EXPECT_EQ(DecodeUu("\n#0V%T\n$0V%T0P  \n  ").edid, "CatCatC");
  EXPECT_EQ(DecodeUu("$0V%T0P").edid, "CatC");  // the blanks at its end were lost
  EXPECT_EQ(DecodeUu("#````").edid, std::string(3, '\0'));
}

TEST(InventoryOutput, IsNotUuencodedWithOtherCharactersOrLinesTooLong) {
  for (const char* const text : {"#0V%T0V%T", "#0v%T", "#\xFFV%T", "begin 644 edid"}) {
    EXPECT_EQ(DecodeUu(text).fault, "is not uuencoded") << text;
  }
}
