#include <gmock/gmock.h>

#include <boost/lexical_cast.hpp>

#include "host/exception.h"
#include "plugin/video/video_info.h"
#include "tests/support/mock_cim.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::ReturnRef;
using testing::SizeIs;
using testing::Throw;

namespace {

std::string Device(const std::string& lines) { return "Section \"Device\"\n" + lines + "X\nEndSection\n"; }

class VideoInstances : public testing::Test {
 protected:
  TTestHost host;
  TVideoInfo video{host.GetClass("QRXSG_VideoController"), TTestHost::Provider()};
  std::vector<PropertyMap> controllers;
  std::vector<PropertyMap> heads;

  void Read(const std::string& text) {
    host.files["/etc/X11/xorg.conf"] = text;
    video.GetVideoInfo(&controllers, &heads);
  }

  /// "device id / head number" of each head.
  std::vector<std::string> GetHeads() const {
    std::vector<std::string> described;
    for (const PropertyMap& head : heads) {
      described.push_back(static_cast<std::string>(head.at("DeviceID")) + "/" +
                          static_cast<std::string>(head.at("HeadNumber")));
    }
    return described;
  }
};

}  // namespace

TEST_F(VideoInstances, ShareAllPropertiesButTheirOwn) {
  Read(Device("Identifier \"Card0\"\nBoardName \"Board\"\nVideoRam 1024\nBusID \"PCI:1:0:0\"\n") +
       "Section \"Screen\"\nDevice \"Card0\"\nMonitor \"M\"\nDefaultDepth 24\nDepth 24\nModes "
       "\"1024x768\"\nX\nEndSection\n"
       "Section \"Monitor\"\nIdentifier \"M\"\nModelName \"Tube\"\nEndSection\n");
  const TDescribed shared = {{"CurrentBitsPerPixel", "uint32 24"},
                             {"CurrentHorizontalResolution", "uint32 1024"},
                             {"CurrentVerticalResolution", "uint32 768"},
                             {"DeviceID", "string Card0"},
                             {"DisplayId", "string PCI:1:0:0"},
                             {"MonitorString", "string[] Tube"},
                             {"Name", "string Board"},
                             {"SystemCreationClassName", "string CIM_UnitaryComputerSystem"},
                             {"SystemName", "string test-system"},
                             {"VideoRamSize", "uint32 1048576"}};
  TDescribed controller = shared;
  controller["CreationClassName"] = "string QRXSG_VideoController";
  controller["OtherIdentifyingInfo"] = "string[] Card0";
  TDescribed head = shared;
  head["CreationClassName"] = "string QRXSG_VideoHead";
  head["HeadNumber"] = "uint8 1";
  ASSERT_THAT(controllers, SizeIs(1));
  ASSERT_THAT(heads, SizeIs(1));
  EXPECT_EQ(Describe(controllers[0]), controller);
  EXPECT_EQ(Describe(heads[0]), head);
}

TEST_F(VideoInstances, AreOneControllerAndTwoHeadsForTwoDevicesOnOneBus) {
  Read(Device("Identifier a\nBusID \"PCI:1:0:0\"\n") + Device("Identifier b\nBusID \"PCI:1:0:0\"\n"));
  ASSERT_THAT(controllers, SizeIs(1));
  EXPECT_EQ(Describe(controllers[0]).at("DeviceID"), "string a");
  EXPECT_THAT(GetHeads(), ElementsAre("a/1", "b/2"));
}

TEST_F(VideoInstances, AreTwoControllersAndTwoHeadsForTwoDevicesWithoutABus) {
  Read(Device("Identifier a\n") + Device("Identifier b\n"));
  EXPECT_THAT(controllers, SizeIs(2));
  EXPECT_THAT(GetHeads(), ElementsAre("a/1", "b/2"));
  EXPECT_EQ(Describe(heads[1]).at("DisplayId"), "string b");
}

TEST_F(VideoInstances, NeverCountAnEmptyBusAsSeenBefore) {
  Read(Device("Identifier a\nBusID \"\"\n") + Device("Identifier b\nBusID \"\"\n"));
  EXPECT_THAT(controllers, SizeIs(2));
  EXPECT_EQ(Describe(heads[0]).at("DisplayId"), "string ");
}

TEST_F(VideoInstances, CompareBusesByteForByte) {
  Read(Device("Identifier a\nBusID \"PCI:1:0:0\"\n") + Device("Identifier b\nBusID \"PCI:1:0:0\" \n"));
  EXPECT_THAT(controllers, SizeIs(2));
}

TEST_F(VideoInstances, LeaveOutADeviceWithoutAnIdentifierAndItsNumber) {
  Read(Device("BusID \"PCI:1:0:0\"\n") + Device("Identifier \"\"\n") + Device("Identifier b\nBusID \"PCI:1:0:0\"\n"));
  EXPECT_THAT(controllers, SizeIs(1));
  EXPECT_THAT(GetHeads(), ElementsAre("b/1"));
}

TEST_F(VideoInstances, CarryNothingFromOneDeviceToTheNext) {
  Read(Device("Identifier a\nChipset c\n") + Device("Identifier b\n"));
  EXPECT_EQ(Describe(heads[1]).count("VideoProcessor"), 0U);
}

TEST_F(VideoInstances, AreMadeForADeviceThatNoScreenNames) {
  Read(Device("Identifier a\n") + "Section \"Screen\"\nDevice b\nDefaultDepth 24\nDepth 24\nEndSection\n");
  ASSERT_THAT(heads, SizeIs(1));
  EXPECT_EQ(Describe(heads[0]).count("CurrentBitsPerPixel"), 0U);
}

TEST_F(VideoInstances, WrapTheHeadNumberAfter255) {
  std::string text;
  for (int count = 0; count < 257; ++count) text += Device("Identifier d\n");
  Read(text);
  ASSERT_THAT(heads, SizeIs(257));
  EXPECT_EQ(GetHeads()[254], "d/255");
  EXPECT_EQ(GetHeads()[255], "d/0");
  EXPECT_EQ(GetHeads()[256], "d/1");
}

TEST_F(VideoInstances, AreNoneWithoutAFileOrWithoutDevices) {
  video.GetVideoInfo(&controllers, &heads);
  Read("");
  Read("Section \"Screen\"\nDevice a\nEndSection\n");
  EXPECT_THAT(controllers, IsEmpty());
  EXPECT_THAT(heads, IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(VideoInstances, KeepWhatWasReadBeforeAVideoRamThatIsNotANumber) {
  EXPECT_THROW(Read(Device("Identifier a\n") + Device("Identifier b\nVideoRam 64M\n")), boost::bad_lexical_cast);
  EXPECT_THAT(GetHeads(), ElementsAre("a/1"));
}

TEST_F(VideoInstances, LogAHostFailureForOneAndGoOnWithTheNext) {
  const std::string name = "QRXSG_VideoHead";
  auto instance = boost::make_shared<NiceMock<TMockInstance>>();
  auto cimClass = boost::make_shared<NiceMock<TMockClass>>();
  ON_CALL(*cimClass, GetName(_)).WillByDefault(ReturnRef(name));
  EXPECT_CALL(*cimClass, CreateInstance(_)).WillOnce(Throw(TZELTException("no room"))).WillOnce(Return(instance));
  TVideoInfo other(cimClass, TTestHost::Provider());
  std::vector<NQRXZELT20::ICIMInstance*> result;
  other.GenerateVideoInstances(&result, {PropertyMap(), PropertyMap()}, name);
  EXPECT_THAT(result, ElementsAre(instance.get()));
  EXPECT_THAT(
      host.log.GetEntries(),
      testing::Contains(TLogEntry{
          ILogger::kStatus,
          "VideoInfo encountered an error\t\t\t\t\t\t\t\t generating CIM instances for QRXSG_VideoHead Error Code: "
          "no room"}));
}

TEST_F(VideoInstances, AreNoneOfAClassThatIsNotServed) {
  EXPECT_THAT(video.GetCIMInstances("qrxsg_videohead"), IsEmpty());
  EXPECT_THAT(host.calls, IsEmpty());
}
