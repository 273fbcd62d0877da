// What a ztb::Model tells of itself before it is tied to a database, and writes.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <ztb/model.hpp>

#include "tests/support/temp_folder.h"

namespace {

TEST(ModelShape, IsToldAndWritten) {
  const ztbtest::TempFolder folder;
  std::ofstream(folder.file("m.lp"))
      << "max 3 x[a] + 2 x[b]\nst\nroom: x[a] + x[b] <= 4\nend\nrest\n";
  ztb::Model model = ztb::Model::open(folder.file("m.lp"));
  EXPECT_EQ(model.noteCount(), 1);
  EXPECT_EQ(model.size().columns, 2);
  EXPECT_EQ(model.size().maximize, 1);
  EXPECT_STREQ(model.family(0).name, "x");
  EXPECT_EQ(model.family(0).count, 2);
  model.write(folder.file("w.mps"));
  ztb::Model read = ztb::Model::open(folder.file("w.mps"));
  EXPECT_EQ(read.size().maximize, 1);
  EXPECT_EQ(read.size().terms, 4);
  EXPECT_EQ(read.family(2).largestSide, 4);
  EXPECT_THROW(model.write(folder.file("w.txt")), ztb::Error);
  EXPECT_THROW((void)model.family(3), ztb::Error);
}

}  // namespace
