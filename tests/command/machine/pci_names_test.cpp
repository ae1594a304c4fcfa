#include "command/machine/pci_names.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <functional>

#include "command/base/unusable.h"
#include "tests/support/descriptor_limit.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

using testing::StartsWith;

namespace {

/// What the error says; empty without one.
std::string GetError(const std::function<void()>& call) try {
  call();
  return std::string();
} catch (const TUnusable& failure) {
  return failure.what();
}

}  // namespace

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

TEST(PciNames, AreReadFromTheDatabaseThatIsNamed) {
  const TTemporaryFolder folder;
  folder.Write("pci.ids", "fff0  Acme Graphics\n\t000a  Acme 3D\n");
  const TPciNames names(folder.GetPath() / "pci.ids");
  if (!names.IsAvailable()) GTEST_SKIP() << "this machine has no libpci";
  EXPECT_EQ(names.GetVendor(0xFFF0), "Acme Graphics");
  EXPECT_EQ(names.GetDevice(0xFFF0, 0x0A), "Acme 3D");
  EXPECT_EQ(names.GetDevice(0xFFF0, 0x0B), "0x000b");
}

TEST(PciNames, AreNumbersWithoutADatabase) { EXPECT_EQ(TPciNames("/dev/null/none").GetVendor(0x8086), "0x8086"); }

// libpci ends the process at either.
TEST(PciNames, OfADamagedDatabaseAreAnErrorOfOneLine) {
  if (!TPciNames().IsAvailable()) GTEST_SKIP() << "this machine has no libpci";
  const TTemporaryFolder folder;
  folder.Write("pci.ids", "fff0  Acme\n\t\t\tno number\n");
  const std::string begin = "the names of graphics cards cannot be read: ";
  EXPECT_THAT(GetError([&] { TPciNames(folder.GetPath() / "pci.ids"); }), StartsWith(begin));
  EXPECT_THAT(GetError([&] { TPciNames(folder.GetPath().string()); }),
              StartsWith(begin));  // it can be opened, not read
}

TEST(PciNames, AreKnownOrAnErrorWhenFilesCannotBeOpened) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizers need descriptors themselves";
  const std::string known = TPciNames().GetVendor(0x8086);
  const int lowest = dup(STDIN_FILENO);  // the first descriptor that is free
  close(lowest);
  std::string vendor;
  const auto look = [&](int count) {
    const TDescriptorLimit limit(static_cast<rlim_t>(lowest + count));
    return GetError([&] { vendor = TPciNames().GetVendor(0x8086); });
  };
  EXPECT_THAT(look(0), testing::HasSubstr("Too many open files"));
  for (int count = 1; count <= 8; ++count) {
    if (look(count).empty()) {
      EXPECT_EQ(vendor, known) << count;
    }
  }
}
