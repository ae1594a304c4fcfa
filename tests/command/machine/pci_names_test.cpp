#include "command/machine/pci_names.h"

#include <gmock/gmock.h>

// What is known depends on the machine's database; numbers that no maker has are known nowhere.
TEST(PciNames, AreTheNumbersOfWhatTheDatabaseDoesNotKnow) {
  const TPciNames names;
  EXPECT_EQ(names.GetVendor(0xFFF0), "0xfff0");
  EXPECT_EQ(names.GetDevice(0xFFF0, 0x0A), "0x000a");
}

TEST(PciNames, AreThoseOfTheDatabase) {
  const TPciNames names;
  if (!names.IsAvailable() || names.GetVendor(0x8086) == "0x8086")
    GTEST_SKIP() << "this machine has no PCI id database";
  EXPECT_EQ(names.GetVendor(0x8086), "Intel Corporation");
  EXPECT_NE(names.GetDevice(0x8086, 0x1237), "0x1237");
}
