#include "tools/text/failure.h"

#include <gtest/gtest.h>

namespace {

TEST(WithFile, PutsTheFileInFrontUnlessTheTextHasIt) {
  EXPECT_EQ(tool::withFile("a.rxf", "No such file: a.rxf"), "No such file: a.rxf");
  EXPECT_EQ(tool::withFile("a.rxf", "block 1 in a.rxf: wrong"), "block 1 in a.rxf: wrong");
  EXPECT_EQ(tool::withFile("a.rxf", "Disk full"), "a.rxf: Disk full");
  EXPECT_EQ(tool::withFile("a", "Cannot find it"), "a: Cannot find it");
  EXPECT_EQ(tool::withFile("a.rxf", "data.rxf is full"), "a.rxf: data.rxf is full");
}

}  // namespace
