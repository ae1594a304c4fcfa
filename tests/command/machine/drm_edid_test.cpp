// What becomes of the reads of an output's EDID: their sizes, their failures, and EDIDs that change meanwhile.
#include "command/machine/drm_edid.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>

#include "edid/layout.h"
#include "tests/support/temporary_folder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

typedef std::vector<std::uint8_t> TBytes;

/// An EDID that says how many extension blocks follow, and has that many blocks.
TBytes MakeEdid(std::uint8_t extensions, std::size_t blocks, std::uint8_t filler = 0) {
  TBytes bytes(blocks * edid::kBlockSize, filler);
  bytes[edid::kExtensionCount] = extensions;
  return bytes;
}

/// A file of the kernel's that shows a page at once, and another content each time it is read from its beginning; at
/// last it stays.
class TFile {
 public:
  explicit TFile(const TBytes& first, const std::vector<TBytes>& later = {}) : m_contents({first}) {
    m_contents.insert(m_contents.end(), later.begin(), later.end());
  }

  TDrmEdid Read() {
    return ReadDrmEdid([this](void* buffer, std::size_t size, off_t offset) { return ReadAt(buffer, size, offset); });
  }

  std::vector<off_t> offsets;  // that were read from

 private:
  ssize_t ReadAt(void* buffer, std::size_t size, off_t offset) {
    if (offset == 0 && !offsets.empty() && m_contents.size() > 1) m_contents.erase(m_contents.begin());
    offsets.push_back(offset);
    const TBytes& bytes = m_contents.front();
    const std::size_t begin = std::min(static_cast<std::size_t>(offset), bytes.size());
    const std::size_t count = std::min({size, bytes.size() - begin, std::size_t{4096}});
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin), count, static_cast<std::uint8_t*>(buffer));
    return static_cast<ssize_t>(count);
  }

  std::vector<TBytes> m_contents;
};

}  // namespace

TEST(DrmEdid, IsReadAtOnceWhenItHasItsBlocks) {
  TFile file(MakeEdid(1, 2));
  EXPECT_EQ(file.Read().bytes, MakeEdid(1, 2));
  EXPECT_THAT(file.offsets, ElementsAre(0));
}

TEST(DrmEdid, MayBeNone) {
  TFile file((TBytes()));
  const TDrmEdid edid = file.Read();
  EXPECT_THAT(edid.bytes, IsEmpty());
  EXPECT_EQ(edid.fault, "");
  EXPECT_THAT(file.offsets, ElementsAre(0));
}

TEST(DrmEdid, IsReadAgainWhenItHasOtherBlocksThanItSays) {
  TFile file(MakeEdid(0, 2, 1), {MakeEdid(2, 2, 2), MakeEdid(1, 2, 3)});
  EXPECT_EQ(file.Read().bytes, MakeEdid(1, 2, 3));
  EXPECT_THAT(file.offsets, ElementsAre(0, 0, 0));
}

TEST(DrmEdid, IsTakenAsItIsWhenItNeverSaysItsBlocksRightly) {
  TFile file(MakeEdid(3, 2));
  EXPECT_EQ(file.Read().bytes, MakeEdid(3, 2));
  EXPECT_THAT(file.offsets, ElementsAre(0, 0, 0, 0, 0));
}

TEST(DrmEdid, HasWholeBlocks) {
  TBytes cut = MakeEdid(0, 2);
  cut.resize(200);
  EXPECT_EQ(TFile(cut).Read().bytes, MakeEdid(0, 1));
  EXPECT_THAT(TFile(TBytes(127)).Read().bytes, IsEmpty());
}

TEST(DrmEdid, MayBeLargerThanAPage) {
  TFile file(MakeEdid(255, 256));
  EXPECT_EQ(file.Read().bytes, MakeEdid(255, 256));
  EXPECT_THAT(file.offsets, ElementsAre(0, 4096, 8192, 12288, 16384, 20480, 24576, 28672));
}

TEST(DrmEdid, EndsWhereItsFileDoesEvenAtTheEndOfAPage) {
  TFile file(MakeEdid(31, 32));
  EXPECT_EQ(file.Read().bytes, MakeEdid(31, 32));
  EXPECT_THAT(file.offsets, ElementsAre(0, 4096));
}

TEST(DrmEdid, HasTwoHundredAndFiftySixBlocksAtMost) {
  EXPECT_EQ(TFile(MakeEdid(255, 300)).Read().bytes, MakeEdid(255, 256));
}

TEST(DrmEdid, SaysWhyItCannotBeRead) {
  const TDrmEdid edid = ReadDrmEdid([](void*, std::size_t, off_t) {
    errno = ENODEV;
    return ssize_t{-1};
  });
  EXPECT_THAT(edid.bytes, IsEmpty());
  EXPECT_EQ(edid.fault, "cannot be read: No such device");
}

TEST(DrmEdid, IsNoFolderAndNoFileThatIsGone) {
  const TTemporaryFolder folder;
  EXPECT_EQ(ReadDrmEdid(folder.GetPath()).fault, "cannot be read: Is a directory");
  EXPECT_EQ(ReadDrmEdid(folder.GetPath() / "gone").fault, "cannot be read: No such file or directory");
}
