#include "plugin/collector/system_keys.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "host/exception.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::TZELTException;
using testing::ElementsAre;

namespace {

class SystemKeys : public testing::Test {
 protected:
  TTestHost host;

  TDescribed Insert() {
    PropertyMap properties;
    InsertSystemKeys(&properties, *host.GetClass("QRXSG_DesktopMonitor"));
    return Describe(properties);
  }
};

}  // namespace

TEST_F(SystemKeys, AreWhatTheHostSaysOfTheNamespace) {
  EXPECT_EQ(Insert(), (TDescribed{{"SystemCreationClassName", "string CIM_UnitaryComputerSystem"},
                                  {"SystemName", "string test-system"}}));
  EXPECT_THAT(host.calls, ElementsAre("GetSystemCreationClassName", "GetSystemName"));
}

TEST_F(SystemKeys, AreEmptyWhereTheHostHasNone) {
  host.systemName = "";
  host.systemCreationClassName = "";
  EXPECT_EQ(Insert(), (TDescribed{{"SystemCreationClassName", "string "}, {"SystemName", "string "}}));
}

TEST_F(SystemKeys, AreBothEmptyWhenTheFirstFails) {
  host.onCall = [](const std::string& call) {
    if (call == "GetSystemCreationClassName") throw TZELTException("no class");
  };
  EXPECT_EQ(Insert(), (TDescribed{{"SystemCreationClassName", "string "}, {"SystemName", "string "}}));
}

TEST_F(SystemKeys, KeepTheFirstWhenTheSecondFails) {
  host.onCall = [](const std::string& call) {
    if (call == "GetSystemName") throw TZELTException("no name");
  };
  EXPECT_EQ(Insert(),
            (TDescribed{{"SystemCreationClassName", "string CIM_UnitaryComputerSystem"}, {"SystemName", "string "}}));
}

TEST_F(SystemKeys, LetOtherExceptionsThrough) {
  host.onCall = [](const std::string&) { throw std::runtime_error("not the host's own kind"); };
  EXPECT_THROW(Insert(), std::runtime_error);
}
