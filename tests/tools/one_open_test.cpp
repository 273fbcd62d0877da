// Commands that look into a file open it once and walk over its blocks: damage behind the first one
// comes late, and files that are swapped meanwhile are never mixed.
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class OneOpenTest : public ProgramTest {
 protected:
  // A parameter of two blocks.
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol p = database.addParameter("p", {"*", "*"});
    for (int i = 0; i < records; ++i) {
      p.add("l" + std::to_string(i / 300), "l" + std::to_string(i % 300)).setLevel(i);
    }
    database.write(path("a.rxf"));
  }

  static constexpr int block = 65536;
  static constexpr int records = block + 100;
};

// The blocks of p begin behind the header of 96 bytes, each with a head of 40, in which the bytes
// of the body stand at 16.
TEST_F(OneOpenTest, ShowsTheRecordsBeforeDamageAndCheckTellsEveryBlock) {
  std::string bytes = read("a.rxf");
  std::size_t length = 0;
  for (std::size_t i = 4; i-- > 0;) {
    length = length << 8U | static_cast<unsigned char>(bytes[96 + 16 + i]);
  }
  const std::size_t second = 96 + 40 + length;
  bytes[second + 40] = static_cast<char>(~bytes[second + 40]);
  write("b.rxf", bytes);
  const Outcome shown = ztb({"show", "b.rxf", "p", "--csv"});
  EXPECT_EQ(shown.status, 1);
  EXPECT_TRUE(ztbFine({"show", "a.rxf", "p", "--csv"}).starts_with(shown.output));
  EXPECT_TRUE(shown.output.ends_with('\n'));
  EXPECT_LE(std::ranges::count(shown.output, '\n'), 1 + block);
  EXPECT_NE(shown.errors.find("block 2 of 2 of symbol p in b.rxf: checksum is "), std::string::npos)
      << shown.errors;
  EXPECT_EQ(ztb({"show", "b.rxf", "p"}).output, "") << "a table is measured first";
  EXPECT_EQ(ztb({"show", "b.rxf", "p", "--csv", "--head", "1"}).status, 0);
  bytes[96 + 40] = static_cast<char>(~bytes[96 + 40]);
  write("b.rxf", bytes);
  const Outcome checked = ztb({"check", "b.rxf"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_NE(checked.errors.find("block 1 of 2 of symbol p"), std::string::npos) << checked.errors;
  EXPECT_NE(checked.errors.find("block 2 of 2 of symbol p"), std::string::npos) << checked.errors;
  EXPECT_TRUE(checked.errors.ends_with("ztb: b.rxf: 2 problems found\n")) << checked.errors;
}

TEST_F(OneOpenTest, TakesNoTwoFilesForOne) {
  ztb::Database other;
  other.addParameter("p", {"*"}).add("x").setLevel(1);
  other.write(path("b.rxf"));
  std::filesystem::copy_file(path("a.rxf"), path("s.rxf"));
  std::atomic<bool> ended = false;
  std::thread swapping([&] {
    for (bool first = true; !ended; first = !first) {
      std::filesystem::copy_file(path(first ? "b.rxf" : "a.rxf"), path("t"),
                                 std::filesystem::copy_options::overwrite_existing);
      std::filesystem::rename(path("t"), path("s.rxf"));
    }
  });
  for (int run = 0; run < 20; ++run) {
    EXPECT_EQ(ztb({"check", "s.rxf"}).errors, "");
    EXPECT_EQ(ztb({"show", "s.rxf", "p", "--csv"}).errors, "");
  }
  ended = true;
  swapping.join();
}

TEST_F(OneOpenTest, CopiesBlocksAsTheyAre) {
  ztbFine({"copy", "a.rxf", "p", "b.rxf"});
  EXPECT_EQ(ztbFine({"diff", "a.rxf", "b.rxf"}), "no difference: 1 symbol, 65636 records\n");
}

}  // namespace
