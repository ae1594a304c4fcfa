#include "command/base/json.h"

#include <gtest/gtest.h>

using nlohmann::json;

namespace {

TEST(Json, IsWrittenInOneLine) {
  EXPECT_EQ(WriteJson(ParseJson("{\"rates\": [60, 59.94],\n \"hdr\": true}")), R"({"hdr":true,"rates":[60,59.94]})");
}

TEST(Json, RefusesATextThatIsNotJson) {
  EXPECT_THROW(ParseJson("{"), json::exception);
  EXPECT_FALSE(IsJson("{"));
  EXPECT_TRUE(IsJson("{}"));
}

TEST(Json, ComesOutOfItsPackAsItWas) {
  const json value = {{"bytes", json::binary({0, 255})}, {"texts", {"\xFF", ""}}, {"none", nullptr}};
  EXPECT_EQ(UnpackJson(PackJson(value)), value);
}

}  // namespace
