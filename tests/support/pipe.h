// A pipe whose ends a test closes when it wants, or with itself.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "command/base/descriptor.h"

struct TPipe {
  /// With these flags of pipe2(), at both ends.
  explicit TPipe(int flags = 0) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, flags), 0);
    reading = TDescriptor(ends[0]);
    writing = TDescriptor(ends[1]);
  }

  TDescriptor reading, writing;
};
