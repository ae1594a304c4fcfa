#include <gmock/gmock.h>

#include <stdexcept>

#include "host/exception.h"
#include "plugin/xconfig/xconfig.h"
#include "tests/support/test_host.h"

using NQRXZELT20::TZELTException;
using testing::ElementsAre;

namespace {

class ConfigurationFile : public testing::Test {
 protected:
  TTestHost host;
};

}  // namespace

TEST_F(ConfigurationFile, IsLookedForInTenPlacesInTheirOrder) {
  host.files["/etc/xorg.conf"] = "the tenth";
  EXPECT_EQ(TXConfig::CaptureConfiguration(), "the tenth");
  EXPECT_THAT(host.calls,
              ElementsAre("FileExists /etc/X11/XF86Config-4", "FileExists /etc/X11/XF86Config",
                          "FileExists /etc/XF86Config", "FileExists /usr/X11R6/etc/X11/XF86Config-4",
                          "FileExists /usr/X11R6/etc/X11/XF86Config", "FileExists /usr/X11R6/lib/X11/XF86Config-4",
                          "FileExists /usr/X11R6/lib/X11/XF86Config", "FileExists /etc/X11/xorg.conf-4",
                          "FileExists /etc/X11/xorg.conf", "FileExists /etc/xorg.conf", "CaptureFile /etc/xorg.conf"));
}

TEST_F(ConfigurationFile, IsTheXF86ConfigWhereBothAreThere) {
  host.files = {{"/etc/X11/XF86Config", "old"}, {"/etc/X11/xorg.conf", "new"}};
  EXPECT_EQ(TXConfig::CaptureConfiguration(), "old");
}

TEST_F(ConfigurationFile, MayBeEmptyAndEndsTheSearchAllTheSame) {
  host.files = {{"/etc/X11/XF86Config-4", ""}, {"/etc/X11/xorg.conf", "never looked at"}};
  EXPECT_EQ(TXConfig::CaptureConfiguration(), "");
  EXPECT_THAT(host.calls, ElementsAre("FileExists /etc/X11/XF86Config-4", "CaptureFile /etc/X11/XF86Config-4"));
}

TEST_F(ConfigurationFile, IsTheNextOneWhenTheHostFailsToLook) {
  host.files = {{"/etc/X11/XF86Config", "second"}};
  host.onCall = [](const std::string& call) {
    if (call == "FileExists /etc/X11/XF86Config-4") throw TZELTException("not now");
  };
  EXPECT_EQ(TXConfig::CaptureConfiguration(), "second");
}

TEST_F(ConfigurationFile, IsTheNextOneWhenTheHostFailsToCapture) {
  host.files = {{"/etc/X11/XF86Config-4", "first"}, {"/etc/X11/xorg.conf", "ninth"}};
  host.onCall = [](const std::string& call) {
    if (call == "CaptureFile /etc/X11/XF86Config-4") throw TZELTException("not now");
  };
  EXPECT_EQ(TXConfig::CaptureConfiguration(), "ninth");
}

TEST_F(ConfigurationFile, IsEmptyWhenThereIsNone) {
  EXPECT_EQ(TXConfig::CaptureConfiguration(), "");
  EXPECT_EQ(host.calls.size(), 10U);
  EXPECT_TRUE(host.log.GetEntries().empty());
}

TEST_F(ConfigurationFile, LetsOtherExceptionsThrough) {
  host.onCall = [](const std::string&) { throw std::runtime_error("not the host's own kind"); };
  EXPECT_THROW(TXConfig::CaptureConfiguration(), std::runtime_error);
}
