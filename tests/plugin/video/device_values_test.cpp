#include <gmock/gmock.h>

#include <boost/lexical_cast.hpp>

#include "host/exception.h"
#include "plugin/video/video_info.h"
#include "tests/support/mock_cim.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::TZELTException;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Throw;

namespace {

class DeviceValues : public testing::Test {
 protected:
  TTestHost host;
  TVideoInfo video{host.GetClass("QRXSG_VideoController"), TTestHost::Provider()};

  TDescribed GetProperties() const { return Describe(video.GetDeviceProperties()); }
};

}  // namespace

TEST_F(DeviceValues, TakeBusAndIdentifierAndLeaveTheOutputsOfAbsentKeys) {
  std::string busId = "bus before";
  std::string identifier = "identifier before";
  video.GetDeviceData({{"BusID", "PCI:1:0:0"}}, busId, identifier);
  EXPECT_EQ(busId, "PCI:1:0:0");
  EXPECT_EQ(identifier, "identifier before");
  video.GetDeviceData({{"Identifier", "Card0"}}, busId, identifier);
  EXPECT_EQ(busId, "PCI:1:0:0");
  EXPECT_EQ(identifier, "Card0");
}

TEST_F(DeviceValues, TranslateEveryKeyThatHasAProperty) {
  EXPECT_EQ(video.GetDeviceValues({{"BoardName", "Example Board"},
                                   {"BusID", "PCI:1:0:0"},
                                   {"Chipset", "EB1"},
                                   {"Identifier", "Card0"},
                                   {"Ramdac", "internal"},
                                   {"VendorName", "not used"},
                                   {"VideoRam", "65536"}}),
            0);
  EXPECT_EQ(GetProperties(), (TDescribed{{"DACType", "string internal"},
                                         {"DeviceID", "string Card0"},
                                         {"DisplayId", "string PCI:1:0:0"},
                                         {"Name", "string Example Board"},
                                         {"VideoProcessor", "string EB1"},
                                         {"VideoRamSize", "uint32 67108864"}}));
}

TEST_F(DeviceValues, MakeOnlyTheNameOfABoardName) {
  video.GetDeviceValues({{"BoardName", "Example Board"}, {"Identifier", "Card0"}});
  EXPECT_EQ(GetProperties(), (TDescribed{{"DeviceID", "string Card0"}, {"Name", "string Example Board"}}));
}

TEST_F(DeviceValues, TakeTheIdentifierForTheNameWithoutABoardName) {
  EXPECT_EQ(video.GetDeviceValues({{"Identifier", "Card0"}}), 0);
  EXPECT_EQ(GetProperties(), (TDescribed{{"DeviceID", "string Card0"}, {"Name", "string Card0"}}));
}

TEST_F(DeviceValues, FailWithoutAnIdentifierWithTheOtherPropertiesInserted) {
  EXPECT_EQ(video.GetDeviceValues({{"BoardName", "Example Board"}}), 1);
  EXPECT_EQ(GetProperties(), (TDescribed{{"Name", "string Example Board"}}));
}

TEST_F(DeviceValues, WrapAVideoRamOfFourGigabytes) {
  video.GetDeviceValues({{"Identifier", "a"}, {"VideoRam", "4194304"}});
  EXPECT_EQ(GetProperties().at("VideoRamSize"), "uint32 0");
}

TEST_F(DeviceValues, EndAtAVideoRamThatIsNotANumberWithTheKeysBeforeItInserted) {
  for (const char* text : {"64M", "65536 ", "", " 1"}) {
    EXPECT_THROW(video.GetDeviceValues({{"Identifier", "a"}, {"VideoRam", text}}), boost::bad_lexical_cast) << text;
  }
  EXPECT_EQ(GetProperties(), (TDescribed{{"DeviceID", "string a"}}));
}

TEST_F(DeviceValues, KeepAnEmptyBusIdAsTheDisplayId) {
  video.GetDeviceValues({{"BusID", ""}, {"Identifier", "a"}});
  EXPECT_EQ(GetProperties().at("DisplayId"), "string ");
}

TEST_F(DeviceValues, InsertTheSystemsKeys) {
  EXPECT_EQ(video.GetKeyProperties(), 0);
  EXPECT_EQ(GetProperties(), (TDescribed{{"SystemCreationClassName", "string CIM_UnitaryComputerSystem"},
                                         {"SystemName", "string test-system"}}));
}

TEST_F(DeviceValues, KeepTheKeyThatWasThereBeforeTheHostFailed) {
  host.onCall = [](const std::string& call) {
    if (call == "GetSystemName") throw TZELTException("no name");
  };
  EXPECT_EQ(video.GetKeyProperties(), 0);
  EXPECT_EQ(GetProperties(),
            (TDescribed{{"SystemCreationClassName", "string CIM_UnitaryComputerSystem"}, {"SystemName", "string "}}));
}

TEST_F(DeviceValues, InsertEmptyKeysWhenTheHostHasNoNamespace) {
  auto cimClass = boost::make_shared<NiceMock<TMockClass>>();
  EXPECT_CALL(*cimClass, GetNamespace(IsEmpty())).WillOnce(Throw(TZELTException("no namespace")));
  TVideoInfo other(cimClass);
  EXPECT_EQ(other.GetKeyProperties(), 0);
  EXPECT_EQ(Describe(other.GetDeviceProperties()),
            (TDescribed{{"SystemCreationClassName", "string "}, {"SystemName", "string "}}));
}

TEST_F(DeviceValues, TakeTheModelOfTheMonitorOfExactlyThatName) {
  video.GetMonitorValues({{{"ModelName", "nameless"}},
                          {{"Identifier", "Monitor0 "}, {"ModelName", "with a blank"}},
                          {{"Identifier", "Monitor0"}, {"ModelName", "Tube 17"}},
                          {{"Identifier", "Monitor0"}, {"ModelName", "too late"}}},
                         "Monitor0");
  EXPECT_EQ(GetProperties(), (TDescribed{{"MonitorString", "string[] Tube 17"}}));
}

TEST_F(DeviceValues, HaveNoModelOfAMonitorThatIsNotThereOrHasNone) {
  video.GetMonitorValues({{{"Identifier", "Monitor1"}, {"ModelName", "x"}}}, "Monitor0");
  video.GetMonitorValues({{{"Identifier", "Monitor0"}}, {{"Identifier", "Monitor0"}, {"ModelName", "x"}}}, "Monitor0");
  EXPECT_THAT(GetProperties(), IsEmpty());
}

TEST_F(DeviceValues, MakeAnArrayOfNoStrings) { EXPECT_EQ(Describe(video.GetStrArrayCimValue({})), "string[] "); }
