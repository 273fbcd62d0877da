// A file, a model and arguments full of bytes that steer a terminal: whatever the commands say of
// them is safe to look at, and what they write for programs is exact.
#include <nlohmann/json.hpp>
#include <ztb/ztb.hpp>

#include "tests/rxf/reseal.h"
#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

// The control sequence introducer as a byte of its own, as a C1 character, and as an escape; a text
// turned around, a delete, the first half of a character.
const std::string kByteLabel =
    "bad\x9b"
    "31m";
const std::string kC1Label =
    "bad\xC2\x9B"
    "31m";
const std::string kTurnedLabel = "ex\u202Egpj\x7F";
const std::string kHalfLabel = "half\xE2\x82";
const std::string kText = "\x1b]0;owned\x07\x1b[2J\r\n\u2028gone\U000E0041";

// The introducer in an argument. Those of Windows are UTF-16, which has no bytes of their own.
#ifdef _WIN32
const std::string kRawArgument = "\xC2\x9B";
const std::string kRawShown = "<U+009B>";
#else
const std::string kRawArgument = "\x9b";
const std::string kRawShown = "\\x9b";
#endif

class HostileTextTest : public ProgramTest {
 protected:
  void SetUp() override { make("a.rxf", 1); }

  void make(const std::string& file, double level) const {
    ztb::Database database;
    ztb::Symbol set = database.addSet("s", {"*"}, kText);
    ztb::Symbol part = database.addSet("part", {"*"});
    for (const std::string& label : {kByteLabel, kC1Label, kTurnedLabel, kHalfLabel}) {
      set.add(label).setText(kText);
    }
    part.add("plain");
    ztb::Symbol cost = database.addParameter("cost", {part, "*"}, kText);
    cost.add(kByteLabel, kC1Label).setLevel(level);
    cost.add(kTurnedLabel, kHalfLabel).setLevel(level + 1);
    database.write(path(file));
  }

  // Nothing of the foreign bytes is in it, and no other control character.
  static void expectSafe(const std::string& text) {
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      EXPECT_TRUE(byte == '\n' || (byte >= 0x20 && byte < 0x7F)) << static_cast<int>(byte);
    }
  }
  std::string safely(const std::vector<std::string>& arguments) const {
    const Outcome outcome = ztb(arguments);
    expectSafe(outcome.output);
    expectSafe(outcome.errors);
    return outcome.output + outcome.errors;
  }
  static bool has(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
  }
};

TEST_F(HostileTextTest, TablesSpellItOutAndStayAligned) {
  EXPECT_EQ(safely({"show", "a.rxf", "cost"}),
            "parameter cost(part, *): \\x1b]0;owned\\x07\\x1b[2J\\x0d\\n<U+2028>gone<U+E0041>\n"
            "\n"
            "part               dim_2           value\n"
            "-----------------  --------------  -----\n"
            "bad\\x9b31m         bad<U+009B>31m      1\n"
            "ex<U+202E>gpj\\x7f  half\\xe2\\x82        2\n"
            "\n"
            "2 records\n");
}

TEST_F(HostileTextTest, EveryCommandIsSafe) {
  make("b.rxf", 5);
  EXPECT_TRUE(has(safely({"info", "a.rxf"}), "<U+2028>gone"));
  EXPECT_TRUE(has(safely({"show", "a.rxf", "s"}), "half\\xe2\\x82"));
  EXPECT_TRUE(has(safely({"show", "a.rxf", "*"}), "ex<U+202E>gpj\\x7f"));
  EXPECT_TRUE(
      has(safely({"pivot", "a.rxf", "cost", "--rows", "1", "--columns", "2"}), "bad<U+009B>31m"));
  EXPECT_TRUE(has(safely({"diff", "a.rxf", "b.rxf"}), "bad\\x9b31m"));
  EXPECT_TRUE(has(safely({"check", "a.rxf", "--domains"}), "bad\\x9b31m"));
  EXPECT_TRUE(has(safely({"copy", "a.rxf", "cost", "c.rxf", "--check-domains"}), "c.rxf"));
  EXPECT_TRUE(has(safely({"export", "a.rxf", "--all", "--csv", "out"}), "out"));
  for (const char* command : {"info", "show", "pivot", "check"}) {
    std::vector<std::string> arguments{command, "a.rxf"};
    if (command == std::string("show")) arguments.insert(arguments.end(), {"s", "--json"});
    if (command == std::string("pivot")) {
      arguments.insert(arguments.end(), {"cost", "--rows", "1", "--columns", "2", "--json"});
    }
    if (command == std::string("check")) arguments.insert(arguments.end(), {"--domains", "--json"});
    if (command == std::string("info")) arguments.emplace_back("--json");
    const std::string text = ztb(arguments).output;
    EXPECT_FALSE(has(text, "\x7F") || has(text, "\xC2\x9B") || has(text, "\u202E") ||
                 has(text, "\x1b") || has(text, "\u2028"))
        << command;
  }
}

TEST_F(HostileTextTest, ForProgramsItIsExact) {
  const auto json = nlohmann::json::parse(ztbFine({"show", "a.rxf", "s", "--json"}));
  const std::string text = json.dump();
  EXPECT_TRUE(has(text, "\xC2\x9B")) << "the escape reads back as the character";
  EXPECT_TRUE(has(text, "\u202E"));
  EXPECT_TRUE(has(text, "\u2028gone\U000E0041"));
  EXPECT_EQ(ztbFine({"show", "a.rxf", "cost", "--csv"}), "part,dim_2,value\n" + kByteLabel + "," +
                                                             kC1Label + ",1\n" + kTurnedLabel +
                                                             "," + kHalfLabel + ",2\n");
  ztbFine({"export", "a.rxf", "--all", "--csv", "out"});
  ztbFine({"import", "back.rxf", "--dir", "out"});
  EXPECT_EQ(read("back.rxf"), read("a.rxf"));
}

TEST_F(HostileTextTest, ArgumentsInMessages) {
  const std::string name = "\x1b[2J" + kRawArgument + "\u202E\r\nx";
  const std::string shown = "\\x1b[2J" + kRawShown + "<U+202E>\\x0d\\nx";
  EXPECT_TRUE(has(safely({"info", name}), shown));
  EXPECT_TRUE(has(safely({"show", "a.rxf", name}), shown));
  EXPECT_TRUE(has(safely({"show", "a.rxf", "cost", "--slice", "\x1b[2J" + kRawArgument + "x,*"}),
                  "\\x1b[2J" + kRawShown + "x"));
  EXPECT_TRUE(has(safely({"show", "a.rxf", "cost", "--field", name}), "\\x1b[2J"));
  EXPECT_TRUE(has(safely({"show", "a.rxf", "cost", "--head", name}), shown));
  EXPECT_TRUE(has(safely({"show", "a.rxf", "cost", "--" + name}), shown));
  EXPECT_TRUE(has(safely({name}), shown));
  EXPECT_TRUE(has(safely({"export", "a.rxf", name, "--csv", "out"}), shown));
  EXPECT_TRUE(has(safely({"solve", name + ".lp"}), shown));
  EXPECT_TRUE(
      has(safely({"sweep", name + ".lp", "--scenarios", name, "--over", "s", "--out", "o.rxf"}),
          shown));
}

// An end of line would let a domain or a file say what the command has not said.
TEST_F(HostileTextTest, NoNameSpeaksForTheCommand) {
  const std::string domain = "x\nd.rxf: fine\x1b[2J\u202E";
  const std::string shown = "x\\nd.rxf: fine\\x1b[2J<U+202E>";
  const std::string file = "a\nd.rxf: fine";
  const std::string shownFile = "a\\nd.rxf: fine";
  for (const double level : {1., 2.}) {
    ztb::Database database;
    database.addParameter("cost", {domain}, "c").add("l").setLevel(level);
    database.write(path(level == 1 ? "d.rxf" : file));
  }
  const std::string header = "parameter cost(" + shown + ")";
  EXPECT_EQ(safely({"show", "d.rxf", "cost"}).substr(0, header.size()), header);
  EXPECT_EQ(safely({"check", file, "--domains"}),
            "cost(" + shown + "): position 1 is not checked: " + shown +
                " is no set of one position in this file\n" + shownFile +
                ": fine: 1 symbol, 1 label, 1 record\n");
  EXPECT_EQ(safely({"diff", "d.rxf", file}),
            "~ " + header +
                "\n    records: 0 gone, 0 added, 1 changed\n    ~ (\"l\") 1 -> 2\n"
                "d.rxf and " +
                shownFile + " differ in 1 symbol\n");
  const std::string counts = ": 1 symbol, 1 label, 1 record\n";
  EXPECT_TRUE(safely({"info", file})
                  .ends_with("\n" + shownFile + ": 1 symbol (1 parameter), 1 label, 1 record\n"));
  EXPECT_EQ(safely({"copy", "d.rxf", "cost", file}), shownFile + counts);
  EXPECT_EQ(safely({"export", "d.rxf", "--all", "--csv", "f\nolder"}), "f\\nolder" + counts);
  EXPECT_EQ(safely({"import", file, "--dir", "f\nolder"}), shownFile + counts);
}

// No symbol of a file has such a name, whatever its checksums say.
TEST_F(HostileTextTest, ForgedNamesOfSymbols) {
  ztb::Database database;
  database.addParameter("cost", {"*"}).add("l").setLevel(1);
  database.write(path("f.rxf"));
  std::string bytes = read("f.rxf");
  const std::size_t at = bytes.rfind("cost");
  ASSERT_NE(at, std::string::npos);
  bytes.replace(at, 4, "c\x1b[m");
  rxftest::reseal(bytes);
  write("f.rxf", bytes);
  write("m.lp", "minimize\n obj: x\nsubject to\n c: x >= 1\nend\n");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"info", "f.rxf"},
        {"check", "f.rxf"},
        {"show", "f.rxf", "c\x1b[m"},
        {"export", "f.rxf", "--all", "--csv", "out"},
        {"copy", "f.rxf", "c\x1b[m", "o.rxf"},
        {"diff", "a.rxf", "f.rxf"},
        {"pivot", "f.rxf", "c\x1b[m", "--rows", "1", "--columns", "1"},
        {"solve", "m.lp", "--data", "f.rxf"},
        {"sweep", "m.lp", "--scenarios", "f.rxf", "--over", "c\x1b[m", "--out", "o.rxf"}}) {
    EXPECT_EQ(
        safely(arguments),
        "ztb: File is damaged: symbol table of f.rxf, chunk 1, entry 1: name: it holds something "
        "else than letters, digits and underscores\n")
        << arguments.front();
  }
  EXPECT_FALSE(exists("out") || exists("o.rxf"));
}

TEST_F(HostileTextTest, CellsOfTables) {
  write("t.csv", std::string("k,v\na,12\x1b[2J\x9b\nb,3\0"
                             "4\nc\x1b[2J,5\n",
                             28));
  EXPECT_EQ(safely({"import", "o.rxf", "--from", "t.csv", "--parameter", "v(k)"}),
            "t.csv:2:3: v: '12\\x1b[2J\\x9b' is not a number\n"
            "t.csv:3:3: v: '3\\x004' is not a number\n"
            "t.csv:4:1: k: label 'c\\x1b[2J' holds a control character\n"
            "ztb: o.rxf: not written: 3 problems in the input\n");
}

TEST_F(HostileTextTest, LongOnesAreToldByTheirLength) {
  const std::string beginning(40, 'a');
  const std::string longest(std::size_t{1} << 20U, 'a');
  write("t.csv", "k,v\n" + longest + ",1\nb," + longest + "\n");
  EXPECT_EQ(safely({"import", "o.rxf", "--from", "t.csv", "--parameter", "v(k)"}),
            "t.csv:2:1: k: label '" + beginning +
                "...' (1048576 bytes) has 1048576 bytes, at most 63 are allowed\n"
                "t.csv:3:3: v: '" +
                beginning +
                "...' (1048576 bytes) is not a number\n"
                "ztb: o.rxf: not written: 2 problems in the input\n");
  // Windows takes lines of 32767 characters.
  const std::string argument(30000, 'a');
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"show", "a.rxf", "s", "--slice", argument},
        {"show", "a.rxf", "s", "--field", argument},
        {"show", "a.rxf", "s", "--head", argument},
        {"show", "a.rxf", "s", argument},
        {argument},
        {"info", argument}}) {
    const std::string text = safely(arguments);
    EXPECT_LT(text.size(), 1000U) << arguments.front();
    EXPECT_TRUE(has(text, beginning + "... (30000 bytes)") ||
                has(text, beginning + "...' (30000 bytes)"))
        << text;
  }
}

TEST_F(HostileTextTest, ModelsAndTheirSolvers) {
  write("m.lp", "minimize\n obj: x\nsubject to\n c: x >= \x1b[2J\x9b\nend\n");
  EXPECT_TRUE(has(safely({"solve", "m.lp"}), "m.lp"));
  write("n.lp", "minimize\n obj: x\nsubject to\n c: x >= 1\nend\n");
  EXPECT_TRUE(has(safely({"solve", "n.lp", "--solver", "\x1b[2J"}), "\\x1b[2J"));
  EXPECT_TRUE(has(safely({"solve", "n.lp", "--set", "\x1b[2J=1"}), "\\x1b[2J"));
}

}  // namespace
