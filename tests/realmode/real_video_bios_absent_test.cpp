// The real video BIOS of a build that has none.
#include <gtest/gtest.h>

#include "realmode/real_mode_memory.h"
#include "realmode/real_video_bios.h"

TEST(RealVideoBiosAbsent, TellsThatThisBuildHasOnlyTheVirtualBios) {
  TRealModeMemory memory;
  TRealVideoBios bios;
  EXPECT_EQ(bios.GetFailure(), "");
  EXPECT_FALSE(bios.Start(memory));
  EXPECT_EQ(bios.GetFailure(),
            "this build has only the virtual BIOS; install libx86emu3 for its architecture and build again");
}
