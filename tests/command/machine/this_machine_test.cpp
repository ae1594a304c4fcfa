// Tests where this machine's EDIDs and X configuration come from, with made-up folders of the kernel.
#include "command/machine/this_machine.h"

#include <gmock/gmock.h>

#include <sstream>

#include "command/base/utc_time.h"
#include "command/machine/bios_recorder.h"
#include "command/machine/host_name.h"
#include "tests/support/edid_builder.h"
#include "tests/support/temporary_folder.h"

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

namespace {

constexpr const char* kMadeFile = "/etc/X11/xorg.conf";

class ThisMachine : public testing::Test {
 protected:
  void AddOutput(const std::string& connector, const std::string& name) const {
    const std::vector<std::uint8_t> edid = TEdidBuilder().Name(0, name).Build();
    AddOutputWithEdid(connector, std::string(edid.begin(), edid.end()));
  }

  void AddOutputWithEdid(const std::string& connector, const std::string& edid) const {
    drm.Write(connector.substr(0, connector.find('-')) + "/dev", "226:0\n");
    drm.Write(connector + "/status", "connected\n");
    drm.Write(connector + "/edid", edid);
  }

  TMachine Make(EEdidSource edids, EXconfigSource xconfig = EXconfigSource::kFile) const {
    return MakeThisMachine(edids, xconfig, {drm.GetPath(), drm.GetPath() / "devices", drm.GetPath() / "pci"});
  }

  static bool HasRealBios(const TMachine& machine) {
    return dynamic_cast<TBiosRecorder*>(machine.bios.get()) != nullptr;
  }

  TTemporaryFolder drm;
};

}  // namespace

TEST_F(ThisMachine, ServesTheOutputsAsUnitsAndNamesThem) {
  AddOutput("card0-DP-1", "A");
  AddOutput("card0-DP-2", "B");
  const TMachine machine = Make(EEdidSource::kDrm);
  EXPECT_FALSE(HasRealBios(machine));
  EXPECT_EQ(machine.edidOrigin.describe(1), "card0-DP-2 in " + drm.GetPath().string());
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "card0-DP-1"), Pair(1, "card0-DP-2")));
  EXPECT_EQ(machine.getUnits().units.at(1).edid, TEdidBuilder().Name(0, "B").Build());
  EXPECT_EQ(machine.getBiosFailure(), "");
}

TEST_F(ThisMachine, NamesWhereItsOutputsAreAsFarAsThatIsKnown) {
  for (const char* const connector : {"card0-DP-1", "card0-DP-2", "card0-DP-3"}) AddOutput(connector, connector);
  AddOutputWithEdid("card0-DP-4", "");
  drm.Write("card0-DP-2/drm_dp_aux4/name", "DPMST\n");  // and the card is off, so its device is not asked
  drm.Write("0000:01:00.0/vendor", "0x1af4\n");
  std::filesystem::create_directory_symlink(drm.GetPath() / "0000:01:00.0", drm.GetPath() / "card0/device");
  EXPECT_THAT(Make(EEdidSource::kDrm).paths,
              ElementsAre(Pair(0, "0000:01:00.0/DP-1"), Pair(2, "0000:01:00.0/DP-3"), Pair(3, "0000:01:00.0/DP-4")));
}

TEST_F(ThisMachine, IsCollectedFromNow) {
  const std::string before = WriteUtcTime(std::time(nullptr));
  const std::string collected = Make(EEdidSource::kDrm).collected;
  EXPECT_LE(before, collected);
  EXPECT_LE(collected, WriteUtcTime(std::time(nullptr)));
}

TEST_F(ThisMachine, KeepsEqualEdidsApart) {
  AddOutput("card0-DP-1", "A");
  AddOutput("card0-DP-2", "A");
  AddOutput("card1-DP-1", "B");
  EXPECT_THAT(Make(EEdidSource::kDrm).connectors,
              ElementsAre(Pair(0, "card0-DP-1"), Pair(1, "card1-DP-1"), Pair(2, "card0-DP-2")));
}

TEST_F(ThisMachine, NamesOutputsWithoutAnEdidAfterTheOthers) {
  AddOutputWithEdid("card0-DP-1", "");
  AddOutput("card0-DP-2", "A");
  const TMachine machine = Make(EEdidSource::kDrm);
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "card0-DP-2"), Pair(1, "card0-DP-1")));
  EXPECT_EQ(machine.getUnits().units.size(), 1U);
}

TEST_F(ThisMachine, ByItselfPrefersTheOutputsToTheBios) {
  AddOutput("card0-DP-1", "A");
  EXPECT_FALSE(HasRealBios(Make(EEdidSource::kAuto)));
}

TEST_F(ThisMachine, ByItselfStaysWithTheKernelWhereAnythingIsConnected) {
  AddOutputWithEdid("card0-DP-1", "");
  const TMachine machine = Make(EEdidSource::kAuto);
  EXPECT_FALSE(HasRealBios(machine));
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "card0-DP-1")));
}

TEST_F(ThisMachine, ByItselfAsksTheBiosWhereNothingIsConnected) {
  drm.Write("card0/dev", "226:0\n");
  const TMachine machine = Make(EEdidSource::kAuto);
  EXPECT_TRUE(HasRealBios(machine));
  EXPECT_EQ(machine.edidOrigin.describe(1), "video BIOS, unit 1");
}

TEST_F(ThisMachine, NamesTheOutputWhoseEdidCannotBeReadAndSaysWhy) {
  AddOutput("card0-DP-2", "A");
  drm.Write("card0-DP-1/status", "connected\n");
  std::filesystem::create_directory(drm.GetPath() / "card0-DP-1/edid");
  const TMachine machine = Make(EEdidSource::kAuto);
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "card0-DP-2"), Pair(1, "card0-DP-1")));
  ASSERT_EQ(machine.damagedEdids.size(), 1U);
  EXPECT_EQ(
      Describe(machine.damagedEdids.at(1)),
      drm.GetPath().string() +
          "/card0-DP-1/edid cannot be read: Is a directory, so its unit counts as one without an EDID; try again");
}

TEST_F(ThisMachine, AsksTheBiosWhenToldToAlthoughThereAreOutputs) {
  AddOutput("card0-DP-1", "A");
  EXPECT_TRUE(HasRealBios(Make(EEdidSource::kBios)));
}

TEST_F(ThisMachine, SaysWhyNoOutputHasAnEdidWhenToldToAskThem) {
  const std::string folder = drm.GetPath().string();
  EXPECT_FALSE(HasRealBios(Make(EEdidSource::kDrm)));
  EXPECT_EQ(Make(EEdidSource::kDrm).edidOrigin.none, "the kernel shows no graphics card in " + folder);
  drm.Write("card0/dev", "226:0\n");
  EXPECT_EQ(Make(EEdidSource::kDrm).edidOrigin.none, "no output in " + folder + " has a monitor connected");
  AddOutputWithEdid("card0-DP-1", "");
  AddOutputWithEdid("card0-VGA-1", "");
  EXPECT_EQ(Make(EEdidSource::kDrm).edidOrigin.none,
            "no connected output in " + folder + " has an EDID (connected: card0-DP-1, card0-VGA-1)");
}

TEST_F(ThisMachine, SaysThatTheOutputsHaveNoEdidBeforeItSaysThatTheBiosHasNone) {
  EXPECT_EQ(Make(EEdidSource::kAuto).edidOrigin.none,
            "the kernel shows no graphics card in " + drm.GetPath().string() +
                ", and the video BIOS has no EDID of unit 0: it reaches no monitor that has one");
  EXPECT_EQ(Make(EEdidSource::kBios).edidOrigin.none,
            "the video BIOS has no EDID of unit 0: it reaches no monitor that has one");
}

TEST_F(ThisMachine, SaysWhyItHasNoConfigurationByWhereThatIsToComeFrom) {
  const std::string noCard = "the kernel shows no graphics card in " + drm.GetPath().string();
  EXPECT_EQ(Make(EEdidSource::kDrm, EXconfigSource::kAuto).explainNoXconfig(10),
            "no X server configuration file exists (10 places tried), and " + noCard + " to make one from");
  EXPECT_EQ(Make(EEdidSource::kDrm, EXconfigSource::kKernel).explainNoXconfig(10),
            noCard + ", so no X server configuration could be made");
  EXPECT_EQ(Make(EEdidSource::kDrm, EXconfigSource::kFile).explainNoXconfig(10),
            "no X server configuration file exists (10 places tried); --xconfig-source kernel makes "
            "one from what the kernel knows");
}

TEST_F(ThisMachine, HasTheConfigurationOfTheKernelInTheOrderOfTheUnits) {
  AddOutput("card0-DP-1", "A");
  AddOutput("card0-DP-2", "A");
  AddOutput("card1-DP-1", "B");
  const TMachine machine = Make(EEdidSource::kDrm, EXconfigSource::kKernel);
  std::istringstream text(machine.host.files->Read(kMadeFile));
  std::vector<std::string> devices;
  for (std::string line, before; std::getline(text, line); before = line) {
    if (before == "Section \"Device\"") devices.push_back(line);
  }
  EXPECT_THAT(devices,
              ElementsAre("\tIdentifier \"card0-DP-1\"", "\tIdentifier \"card1-DP-1\"", "\tIdentifier \"card0-DP-2\""));
}

TEST_F(ThisMachine, SaysThatItsConfigurationWasMadeOnceItWasAskedFor) {
  AddOutput("card0-DP-1", "A");
  const TMachine machine = Make(EEdidSource::kDrm, EXconfigSource::kKernel);
  EXPECT_EQ(machine.getXconfigOrigin(), "");
  EXPECT_TRUE(machine.host.files->Exists(kMadeFile));
  EXPECT_EQ(machine.getXconfigOrigin(), "made from what the kernel knows in " + drm.GetPath().string());
}

TEST_F(ThisMachine, HasNoConfigurationOfAKernelThatKnowsNoCard) {
  const TMachine machine = Make(EEdidSource::kDrm, EXconfigSource::kKernel);
  EXPECT_FALSE(machine.host.files->Exists(kMadeFile));
  EXPECT_EQ(machine.getXconfigOrigin(), "");
  EXPECT_THAT(machine.getNotes(), IsEmpty());
}

TEST_F(ThisMachine, HasTheControllersWithoutADriverInTheConfigurationOfTheKernel) {
  drm.Write("pci/0000:00:02.0/class", "0x030000\n");
  const std::string text = Make(EEdidSource::kDrm, EXconfigSource::kKernel).host.files->Read(kMadeFile);
  EXPECT_THAT(text, HasSubstr("Section \"Device\"\n\tIdentifier \"0000:00:02.0\"\n\tBusID \"PCI:0:2:0\"\n"));
  EXPECT_THAT(text, Not(HasSubstr("Section \"Screen\"")));
}

TEST_F(ThisMachine, SaysOnceThatTheModesThatAreSetCannotBeAskedFor) {
  AddOutput("card0-DP-1", "A");
  AddOutput("card1-DP-1", "B");
  AddOutput("card2-DP-1", "C");
  for (const char* const connector : {"card0-DP-1", "card2-DP-1"}) {
    drm.Write(connector + std::string("/enabled"), "enabled\n");
    drm.Write(connector + std::string("/dpms"), "On\n");
  }
  const TMachine machine = Make(EEdidSource::kDrm, EXconfigSource::kKernel);
  machine.host.files->Read(kMadeFile);
  EXPECT_THAT(machine.getNotes(), Contains(StartsWith("the modes that are set now on card0, card2 are not known: ")));
}

TEST_F(ThisMachine, WakesNoCard) {
  AddOutput("card0-DP-1", "A");
  drm.Write("card0-DP-1/enabled", "enabled\n");
  drm.Write("card0-DP-1/dpms", "Off\n");
  const TMachine machine = Make(EEdidSource::kDrm, EXconfigSource::kKernel);
  machine.host.files->Read(kMadeFile);
  EXPECT_THAT(machine.getNotes(), Contains("the modes that are set now on card0 are not known: card0 is asleep, and "
                                           "asking its driver would wake it"));
}

TEST_F(ThisMachine, OpensNoCardThatIsOff) {
  AddOutput("card0-DP-1", "A");
  drm.Write("card0-DP-1/enabled", "disabled\n");
  const TMachine machine = Make(EEdidSource::kDrm, EXconfigSource::kKernel);
  machine.host.files->Read(kMadeFile);
  EXPECT_THAT(machine.getNotes(), Not(Contains(HasSubstr("the modes that are set now"))));
}

TEST_F(ThisMachine, NamesTheSourceThatHelpsWhereItsConfigurationYieldsNoController) {
  EXPECT_EQ(Make(EEdidSource::kDrm, EXconfigSource::kFile).xconfigCure, "");  // the kernel knows no card
  AddOutput("card0-DP-1", "A");
  EXPECT_EQ(Make(EEdidSource::kDrm, EXconfigSource::kFile).xconfigCure,
            "; --xconfig-source kernel tells what the kernel knows instead");
  EXPECT_EQ(Make(EEdidSource::kDrm, EXconfigSource::kKernel).xconfigCure, "");
}

TEST_F(ThisMachine, HasTheNameOfItsSystem) {
  ASSERT_NE(GetHostName(), "");
  EXPECT_EQ(Make(EEdidSource::kDrm).host.systemName, GetHostName());
}

TEST_F(ThisMachine, HasItsOwnFilesWhereverLinksLead) {
  drm.Write("file", "its own");
  std::filesystem::create_symlink(drm.GetPath() / "file", drm.GetPath() / "link");
  const TMachine machine = Make(EEdidSource::kDrm);
  EXPECT_EQ(machine.host.files->Read(drm.GetPath() / "file"), "its own");
  EXPECT_EQ(machine.host.files->Read(drm.GetPath() / "link"), "its own");
  EXPECT_FALSE(machine.host.files->Exists(drm.GetPath() / "none"));
}
