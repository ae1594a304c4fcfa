// Where the EDIDs of this machine come from, over a made-up folder of graphics outputs.
#include <gmock/gmock.h>

#include "command/machine/drm_edids.h"
#include "command/machine/host_name.h"
#include "command/machine/machine.h"
#include "command/machine/this_machine.h"
#include "realmode/real_video_bios.h"
#include "tests/support/edid_builder.h"
#include "tests/support/temporary_folder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ThisMachine : public testing::Test {
 protected:
  void AddOutput(const std::string& connector, const std::string& status, const std::vector<std::uint8_t>& edid) const {
    drm.Write(connector + "/status", status + "\n");
    drm.Write(connector + "/edid", std::string(edid.begin(), edid.end()));
  }

  std::vector<std::string> GetConnectors() const {
    std::vector<std::string> connectors;
    for (const TDrmEdid& edid : ReadDrmEdids(drm.GetPath())) connectors.push_back(edid.connector);
    return connectors;
  }

  static bool HasRealBios(const TMachine& machine) {
    return dynamic_cast<TRealVideoBios*>(machine.bios.get()) != nullptr;
  }

  TTemporaryFolder drm;
  const std::vector<std::uint8_t> whole = TEdidBuilder().Name(0, "A").Build();
};

}  // namespace

TEST_F(ThisMachine, TakesTheEdidsOfConnectedOutputsInTheOrderOfTheirConnectors) {
  for (const char* connector : {"card1-DP-1", "card0-DP-10", "card0-DP-2", "card0-HDMI-A-1"}) {
    AddOutput(connector, "connected", whole);
  }
  AddOutput("card0-DP-1", "disconnected", whole);
  drm.Write("version", "drm 1.1.0 20060810");
  EXPECT_THAT(GetConnectors(), ElementsAre("card0-DP-2", "card0-DP-10", "card0-HDMI-A-1", "card1-DP-1"));
}

TEST_F(ThisMachine, PassesOverAnOutputWithoutAnEdid) {
  AddOutput("card0-VGA-1", "connected", {});
  AddOutput("card0-VGA-2", "connected", std::vector<std::uint8_t>(127));
  EXPECT_THAT(GetConnectors(), IsEmpty());
}

TEST_F(ThisMachine, TakesWholeBlocksAlone) {
  std::vector<std::uint8_t> cut = whole;
  cut.resize(200);
  AddOutput("card0-DP-1", "connected", cut);
  EXPECT_EQ(ReadDrmEdids(drm.GetPath()).at(0).bytes, whole);
}

TEST_F(ThisMachine, HasNoOutputsWithoutTheFolder) { EXPECT_THAT(ReadDrmEdids(drm.GetPath() / "none"), IsEmpty()); }

TEST_F(ThisMachine, ServesTheOutputsAsUnitsAndNamesThem) {
  AddOutput("card0-DP-1", "connected", whole);
  AddOutput("card0-DP-2", "connected", whole);
  const TMachine machine = MakeThisMachine(EEdidSource::kDrm, drm.GetPath());
  EXPECT_FALSE(HasRealBios(machine));
  EXPECT_EQ(machine.edidOrigin.describe(1), "card0-DP-2 in " + drm.GetPath().string());
  EXPECT_EQ(machine.connectors.at(0), "card0-DP-1");
  EXPECT_EQ(machine.connectors.at(1), "card0-DP-2");
  EXPECT_EQ(machine.getBiosFailure(), "");
}

TEST_F(ThisMachine, ByItselfPrefersTheOutputsToTheBios) {
  AddOutput("card0-DP-1", "connected", whole);
  EXPECT_FALSE(HasRealBios(MakeThisMachine(EEdidSource::kAuto, drm.GetPath())));
}

TEST_F(ThisMachine, ByItselfAsksTheBiosWithoutOutputs) {
  const TMachine machine = MakeThisMachine(EEdidSource::kAuto, drm.GetPath());
  EXPECT_TRUE(HasRealBios(machine));
  EXPECT_EQ(machine.edidOrigin.describe(1), "video BIOS, unit 1");
}

TEST_F(ThisMachine, AsksTheBiosWhenToldToAlthoughThereAreOutputs) {
  AddOutput("card0-DP-1", "connected", whole);
  EXPECT_TRUE(HasRealBios(MakeThisMachine(EEdidSource::kBios, drm.GetPath())));
}

TEST_F(ThisMachine, SaysThatNoOutputHasAnEdidWhenToldToAskThem) {
  const TMachine machine = MakeThisMachine(EEdidSource::kDrm, drm.GetPath());
  EXPECT_FALSE(HasRealBios(machine));
  EXPECT_EQ(machine.edidOrigin.none, "no connected output in " + drm.GetPath().string() + " has an EDID.");
}

TEST_F(ThisMachine, HasTheNameOfItsSystem) {
  ASSERT_NE(GetHostName(), "");
  EXPECT_EQ(MakeThisMachine(EEdidSource::kDrm, drm.GetPath()).host.systemName, GetHostName());
}

TEST_F(ThisMachine, HasItsOwnFilesWhereverLinksLead) {
  drm.Write("file", "its own");
  std::filesystem::create_symlink(drm.GetPath() / "file", drm.GetPath() / "link");
  const TMachine machine = MakeThisMachine(EEdidSource::kDrm, drm.GetPath());
  EXPECT_EQ(machine.host.files->Read(drm.GetPath() / "file"), "its own");
  EXPECT_EQ(machine.host.files->Read(drm.GetPath() / "link"), "its own");
  EXPECT_FALSE(machine.host.files->Exists(drm.GetPath() / "none"));
}
