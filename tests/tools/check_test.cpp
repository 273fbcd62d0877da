#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class CheckTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol s = database.addSet("s", {"*"}, "Labels");
    ztb::Symbol p = database.addParameter("p", {s});
    for (int label = 0; label < 50; ++label) {
      const std::string name = "label" + std::to_string(label);
      s.add(name).setText("text " + name);
      p.add(name).setLevel(label * 0.7);
    }
    database.addAlias("a", s);
    database.write(path("a.rxf"));
  }

  // a.rxf with one byte turned around, as b.rxf.
  void damage(std::size_t at) const {
    std::string content = read("a.rxf");
    content[at] = static_cast<char>(~content[at]);
    write("b.rxf", content);
  }
};

TEST_F(CheckTest, FindsAnIntactFileFine) {
  EXPECT_EQ(ztbFine({"check", "a.rxf"}), "a.rxf: fine: 3 symbols, 50 labels, 100 records\n");
}

TEST_F(CheckTest, FindsDamageAnywhere) {
  const std::size_t size = read("a.rxf").size();
  for (std::size_t at = 0; at < size; at += 13) {
    damage(at);
    const Outcome outcome = ztb({"check", "b.rxf"});
    EXPECT_EQ(outcome.status, 1) << at;
    EXPECT_NE(outcome.errors.find("b.rxf"), std::string::npos) << at << outcome.errors;
    EXPECT_EQ(outcome.output, "") << at;
  }
}

// The records of the first symbol begin behind the header of 96 bytes, with a head of 40.
TEST_F(CheckTest, TellsTheBlockThatIsDamagedAndWhatItShouldBe) {
  damage(140);
  const Outcome outcome = ztb({"check", "b.rxf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.errors.find("block 1 of 1 of symbol s in b.rxf: checksum is "),
            std::string::npos)
      << outcome.errors;
  EXPECT_NE(outcome.errors.find(", expected "), std::string::npos) << outcome.errors;
  EXPECT_EQ(outcome.errors.find("symbol p"), std::string::npos) << outcome.errors;
  EXPECT_TRUE(outcome.errors.ends_with("ztb: b.rxf: 1 problem found\n")) << outcome.errors;
}

// The tables stand at the end of the file.
TEST_F(CheckTest, TellsTheTableThatIsDamaged) {
  damage(read("a.rxf").size() - 1);
  const Outcome outcome = ztb({"check", "b.rxf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("symbol table of b.rxf, chunk 1"), std::string::npos)
      << outcome.errors;
}

TEST_F(CheckTest, FindsAFileCutShort) {
  const std::string content = read("a.rxf");
  for (std::size_t size = 0; size < content.size(); size += 41) {
    write("b.rxf", content.substr(0, size));
    EXPECT_EQ(ztb({"check", "b.rxf"}).status, 1) << size;
  }
}

// Wherever the damage is, no command hands out anything but the records of the file.
TEST_F(CheckTest, NoCommandShowsDamagedRecords) {
  const std::size_t size = read("a.rxf").size();
  const std::string s = ztbFine({"show", "a.rxf", "s", "--csv"});
  const std::string p = ztbFine({"show", "a.rxf", "p", "--csv"});
  std::size_t refused = 0;
  for (std::size_t at = 8; at < size; at += 97) {
    damage(at);
    EXPECT_EQ(ztb({"export", "b.rxf", "--all", "--csv", "out"}).status, 1) << at;
    EXPECT_FALSE(exists("out/_symbols.csv")) << at;
    EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf"}).status, 1) << at;
    for (const auto& [symbol, expected] : {std::pair{"s", s}, std::pair{"p", p}}) {
      const Outcome shown = ztb({"show", "b.rxf", symbol, "--csv"});
      if (shown.status == 0) {
        EXPECT_EQ(shown.output, expected) << at;
      } else {
        EXPECT_EQ(shown.output, "") << at;
        ++refused;
      }
    }
  }
  EXPECT_GT(refused, 0U);
}

TEST_F(CheckTest, NamesWhatItCannotOpen) {
  expectFails(1, "ztb: No such file: none.rxf\n", {"check", "none.rxf"});
  write("a.csv", "x\n");
  expectFails(1, "ztb: Not an RXF file: a.csv\n", {"check", "a.csv"});
}

}  // namespace
