#include "command/edid/sha256.h"

#include <gtest/gtest.h>

namespace {

std::string Hash(const std::string& text) { return HashSha256(std::vector<std::uint8_t>(text.begin(), text.end())); }

}  // namespace

// The examples of FIPS 180-2, appendix B, and of NIST's test vectors.
TEST(Sha256, HashesAMessageOfOneBlock) {
  EXPECT_EQ(Hash("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Sha256, HashesAMessageWhoseLengthNeedsABlockOfItsOwn) {
  EXPECT_EQ(Hash("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(Sha256, HashesNothing) { EXPECT_EQ(Hash(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"); }

TEST(Sha256, HashesAMillionBytes) {
  EXPECT_EQ(Hash(std::string(1000000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}
