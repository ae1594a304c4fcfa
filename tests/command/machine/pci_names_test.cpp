#include "command/machine/pci_names.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "command/base/unusable.h"
#include "realmode/shared_library.h"
#include "tests/support/descriptor_limit.h"
#include "tests/support/pci_double.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

using testing::StartsWith;

namespace {

/// The message of the error; empty if there is none.
std::string GetError(const std::function<void()>& call) try {
  call();
  return std::string();
} catch (const TUnusable& failure) {
  return failure.what();
}

/// Names from the test's stand-in for the library.
class ForeignPciNames : public testing::Test {
 protected:
  ForeignPciNames() { pci = TPciDouble(); }
  ~ForeignPciNames() override { EXPECT_EQ(pci.heldCount, 0); }

  TSharedLibrary library{PCI_DOUBLE_FILE};
  TPciDouble& pci = *library.Find<TPciDouble>("gPciDouble");
};

}  // namespace

TEST_F(ForeignPciNames, AreThoseOfTheLibrary) {
  pci.vendorNames = {{0xFFF0, "Acme Graphics"}};
  pci.deviceNames = {{0x0A, "Acme 3D"}};
  pci.path = "/usual/pci.ids";
  const TPciNames names;
  EXPECT_TRUE(names.IsAvailable());
  EXPECT_EQ(pci.path, "/usual/pci.ids");
  EXPECT_EQ(names.GetVendor(0xFFF0), "Acme Graphics");
  EXPECT_EQ(names.GetDevice(0xFFF0, 0x0A), "Acme 3D");
  EXPECT_EQ(names.GetDevice(0xFFF0, 0x0B), "0x000b");
}

TEST_F(ForeignPciNames, AreNoLongerThanTheyNeedToBe) {
  pci.vendorNames = {{0xFFF0, std::string(1000, 'x')}};
  EXPECT_EQ(TPciNames().GetVendor(0xFFF0), std::string(255, 'x'));
}

TEST_F(ForeignPciNames, AreReadFromTheDatabaseThatIsNamed) {
  const TPciNames names("/some/pci.ids");
  EXPECT_EQ(pci.path, "/some/pci.ids");
}

TEST_F(ForeignPciNames, AreNumbersWhenTheLibraryDoesNotBegin) {
  pci.hasMemory = false;
  const TPciNames names;
  EXPECT_FALSE(names.IsAvailable());
  EXPECT_EQ(names.GetVendor(0xFFF0), "0xfff0");
  EXPECT_EQ(names.GetDevice(0xFFF0, 0x0A), "0x000a");
}

TEST_F(ForeignPciNames, AreNumbersWhereTheDatabaseIsMissing) {
  pci.isLoaded = false;
  pci.loadError = ENOENT;
  EXPECT_EQ(TPciNames().GetVendor(0xFFF0), "0xfff0");
}

TEST_F(ForeignPciNames, AreAnErrorWhenTheLibraryDoesNotSayWhatIsWrong) {
  pci.isLoaded = false;
  errno = ENOENT;  // of an earlier call
  EXPECT_THAT(GetError([] { TPciNames(); }), StartsWith("/usual/pci.ids: cannot be read: "));
}

TEST_F(ForeignPciNames, AreAnErrorWhenTheDatabaseMayNotBeRead) {
  pci.isLoaded = false;
  pci.loadError = EACCES;
  EXPECT_EQ(GetError([] { TPciNames(); }), "/usual/pci.ids: cannot be read: Permission denied; check its permissions");
  pci.loadError = EIO;
  EXPECT_THAT(GetError([] { TPciNames(); }), StartsWith("/usual/pci.ids: cannot be read: Input/output error; "));
}

TEST_F(ForeignPciNames, AreAnErrorOfOneLineWhenTheLibraryGivesUp) {
  pci.complaint = "line 7 is " + std::string(1000, '!');
  const std::string error = GetError([] { TPciNames(); });
  EXPECT_THAT(error, StartsWith("the names of graphics cards cannot be read: line 7 is !!!"));
  EXPECT_THAT(error, testing::EndsWith("!!!; install the package pci.ids again"));
  pci.complaint = "no memory";
  EXPECT_EQ(GetError([] { TPciNames(); }),
            "the names of graphics cards cannot be read: no memory; install the package pci.ids again");
}

TEST(PciNames, AreNumbersWhereTheLibraryIsAnotherVersion) {
  const TSharedLibrary library(PCI_OF_ANOTHER_VERSION_FILE);
  const TPciNames names;
  EXPECT_FALSE(names.IsAvailable());
  EXPECT_EQ(names.GetVendor(0x8086), "0x8086");
}

// Which names are known depends on the machine's database; numbers that no maker has are unknown everywhere.
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
