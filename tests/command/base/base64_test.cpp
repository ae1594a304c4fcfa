#include "command/base/base64.h"

#include <gtest/gtest.h>

TEST(Base64, WritesAndReadsTheExamplesOfItsStandard) {
  const std::pair<const char*, const char*> examples[] = {{"", ""},
                                                          {"f", "Zg=="},
                                                          {"fo", "Zm8="},
                                                          {"foo", "Zm9v"},
                                                          {"foob", "Zm9vYg=="},
                                                          {"fooba", "Zm9vYmE="},
                                                          {"foobar", "Zm9vYmFy"}};
  for (const auto& [bytes, text] : examples) {
    EXPECT_EQ(EncodeBase64(bytes), text);
    EXPECT_EQ(DecodeBase64(text), bytes);
  }
}

TEST(Base64, HoldsEveryByteInEveryPlace) {
  for (int byte = 0; byte < 256; ++byte) {
    for (std::size_t place = 0; place < 4; ++place) {
      std::string bytes(4, '\0');
      bytes[place] = static_cast<char>(byte);
      EXPECT_EQ(DecodeBase64(EncodeBase64(bytes)), bytes) << byte << " in " << place;
    }
  }
}

TEST(Base64, HasOneTextForTheSameBytes) {
  for (const char* const text : {"Zg", "Zg=", "Z===", "====", "Zh==", "Zm9=", "Zg==Zg==", "=Zg=", "Zm9v\n", "Zm 9v",
                                 "Zm-v", "Zm_v", "\xC3\xA9==", "Zg==="}) {
    EXPECT_EQ(DecodeBase64(text), std::nullopt) << text;
  }
}
