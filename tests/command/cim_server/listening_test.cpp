#include "command/cim_server/listening.h"

#include <gtest/gtest.h>

#include "command/base/unusable.h"

namespace {

std::string GetPort(const TDescriptor& listener) {
  const std::string address = GetAddress(listener);
  return address.substr(address.rfind(':') + 1);
}

}  // namespace

TEST(Listening, IsOnOnePortOfAllAddresses) {
  const std::vector<TDescriptor> listeners = Listen({"127.0.0.1", "127.0.0.2"}, 0);
  ASSERT_EQ(listeners.size(), 2U);
  EXPECT_EQ(GetAddress(listeners[0]), "127.0.0.1:" + GetPort(listeners[0]));
  EXPECT_EQ(GetAddress(listeners[1]), "127.0.0.2:" + GetPort(listeners[0]));
}

TEST(Listening, LeavesOutAnAddressThatTheMachineDoesNotHave) {
  EXPECT_EQ(Listen({"127.0.0.1", "192.0.2.1"}, 0).size(), 1U);  // an address for examples, which no machine has
  EXPECT_THROW(Listen({"192.0.2.1"}, 0), TUnusable);
}

TEST(Listening, SaysWhyItCannot) {
  const std::vector<TDescriptor> first = Listen({"127.0.0.1"}, 0);
  try {
    Listen({"127.0.0.2", "127.0.0.1"}, static_cast<unsigned short>(std::stoi(GetPort(first.front()))));
    FAIL() << "two listen on one port";
  } catch (const TUnusable& error) {
    const std::string message = error.what();
    EXPECT_NE(message.find("127.0.0.1: Address already in use"), std::string::npos) << message;
    EXPECT_NE(message.find("--port"), std::string::npos) << message;
  }
}
