// A loaded plug-in reads the configuration only once.
#include <gmock/gmock.h>

#include "tests/support/loaded_plugin.h"

using testing::Contains;
using testing::Each;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

const char* const kFile = "/etc/X11/xorg.conf";
const char* const kController = "QRXSG_VideoController";
const char* const kHead = "QRXSG_VideoHead";
const char* const kHeadOfController = "QRXSG_HeadOfVideoController";

class KeptConfiguration : public testing::Test {
 protected:
  TTestHost host;
  std::unique_ptr<TLoadedPlugin> plugin = std::make_unique<TLoadedPlugin>(host, PLUGIN_FILE);

  KeptConfiguration() { host.files[kFile] = "Section \"Device\"\nIdentifier \"Card0\"\nEndSection\n"; }

  std::ptrdiff_t CountReadings() const {
    return std::count(host.calls.begin(), host.calls.end(), std::string("CaptureFile ") + kFile);
  }
};

}  // namespace

TEST_F(KeptConfiguration, ReadsTheConfigurationAtTheFirstOfBothClasses) {
  EXPECT_THAT(plugin->Ask({kHead}), SizeIs(1));
  EXPECT_THAT(plugin->Ask({kController}), SizeIs(1));
  EXPECT_EQ(CountReadings(), 1);
}

TEST_F(KeptConfiguration, AnswersLaterRequestsFromWhatItKept) {
  const auto first = plugin->Ask({kController});
  host.files[kFile] = "";
  host.calls.clear();
  EXPECT_EQ(plugin->Ask({kController}), first);
  EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(KeptConfiguration, ReadsAgainWhenTheLibraryWasLoadedAnew) {
  EXPECT_THAT(plugin->Ask({kController}), SizeIs(1));
  plugin.reset();
  host.files[kFile] += host.files[kFile];
  plugin = std::make_unique<TLoadedPlugin>(host, PLUGIN_FILE);
  EXPECT_THAT(plugin->Ask({kController}), SizeIs(2));
}

TEST_F(KeptConfiguration, StaysEmptyWhenThereWasNoConfiguration) {
  host.files.clear();
  EXPECT_THAT(plugin->Ask({kController}), IsEmpty());
  host.files[kFile] = "Section \"Device\"\nIdentifier \"Card0\"\nEndSection\n";
  EXPECT_THAT(plugin->Ask({kController, kHead}), IsEmpty());
}

TEST_F(KeptConfiguration, DoesNotReadForTheAssociation) {
  EXPECT_THAT(plugin->Ask({kHeadOfController}), IsEmpty());
  EXPECT_THAT(host.calls, Each(StartsWith("GetPluginManager")));
}

TEST_F(KeptConfiguration, AnswersTheAssociationFromTheHostsInstances) {
  EXPECT_EQ(
      plugin->Ask({kHead, kController, kHeadOfController}).back(),
      (TDescribed{{"Antecedent",
                   "reference QRXSG_VideoController.CreationClassName=\"QRXSG_VideoController\",DeviceID=\"Card0\","
                   "SystemCreationClassName=\"CIM_UnitaryComputerSystem\",SystemName=\"test-system\""},
                  {"Dependent",
                   "reference QRXSG_VideoHead.CreationClassName=\"QRXSG_VideoHead\",DeviceID=\"Card0\","
                   "SystemCreationClassName=\"CIM_UnitaryComputerSystem\",SystemName=\"test-system\""}}));
}

TEST_F(KeptConfiguration, ReadsAgainAndAppendsToWhatAFailedReadingLeft) {
  const std::string good = host.files[kFile];
  host.files[kFile] = good + "Section \"Device\"\nIdentifier \"Card1\"\nVideoRam 64M\nEndSection\n";
  EXPECT_THAT(plugin->Ask({kHead}), IsEmpty());
  EXPECT_THAT(host.log.GetEntries(),
              Contains(TLogEntry{NQRXZELT20::ILogger::kStatus, "DisplayInfo plugin threw unknown exception"}));
  host.files[kFile] = good;
  EXPECT_THAT(plugin->Ask({kHead}), SizeIs(2));
  EXPECT_THAT(plugin->Ask({kHead}), SizeIs(2));
  EXPECT_EQ(CountReadings(), 2);
}
