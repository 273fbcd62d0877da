// ztb plot: pictures of tiny data, each worked out by hand.
#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/support/environment_setting.h"
#include "tests/support/matches.h"
#include "tests/tools/program.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using tooltest::ProgramTest;

class PlotTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztbtest::setVariable("LC_ALL", "C.UTF-8");
    ztb::Database database;
    ztb::Symbol rise = database.addParameter("rise", {"*"}, "Going up");
    rise.add("w1").setLevel(0);
    rise.add("w2").setLevel(10);
    ztb::Symbol sold = database.addParameter("sold", {"*", "*"});
    sold.add("w1", "Ulm").setLevel(4);
    sold.add("w1", "Bern").setLevel(2);
    sold.add("w2", "Ulm").setLevel(-4);
    ztb::Symbol place = database.addParameter("place", {"*"});
    for (const char* label : {"10", "0", "2"}) place.add(label).setLevel(std::atoi(label));
    ztb::Symbol odd = database.addParameter("odd", {"*"});
    odd.add("w1").setLevel(1e300);
    odd.add("w2").setLevel(INFINITY);
    odd.add("w3").setLevel(NAN);
    odd.add("w4").setLevel(5e-324);
    odd.add("w5").setLevel(1);
    ztb::Symbol mix = database.addParameter("mix", {"*"});
    for (const int value : {1, 2, 2, 3, 10}) {
      mix.add("v" + std::to_string(mix.recordCount())).setLevel(value);
    }
    database.addVariable("flow", 5, {"*"}).add("w1").setMarginal(3);
    database.addSet("week", {"*"}).add("w1");
    database.addParameter("empty", {"*"});
    ztb::Symbol hostile = database.addParameter("hostile", {"*"}, "a < b & \"c\"");
    hostile.add("<script>alert(1)</script>").setLevel(1);
    hostile.add("\xE2\x80\xAEright to left").setLevel(1);
    ztb::Symbol many = database.addParameter("many", {"*", "*"});
    for (int label = 0; label < 27; ++label) {
      many.add("w1", "m" + std::to_string(label)).setLevel(label);
    }
    database.write(path("a.rxf"));
  }
  void TearDown() override { ztbtest::setVariable("LC_ALL", ""); }

  std::string plot(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"plot", "a.rxf"});
    return ztbFine(arguments);
  }
  void expectWrong(const std::string& errors, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"plot", "a.rxf"});
    expectFails(2, "ztb: " + errors + "\n", arguments);
  }
};

// From the lower left to the upper right corner of 10 by 4 characters.
TEST_F(PlotTest, DrawsALineInAscii) {
  EXPECT_EQ(plot({"rise", "--x", "1", "--ascii", "--height", "4", "--width", "14"}),
            "parameter\nrise(*): Going\nup\n\n"
            "10 +        **\n"
            "   |     ***\n"
            "   |  ***\n"
            " 0 +**\n"
            "   +----------\n"
            "    w1      w2\n");
}

// Twice as many dots across, and four times as many down: 20 by 8, one up for every 19/7 to the
// right.
TEST_F(PlotTest, DrawsALineInBraille) {
  EXPECT_EQ(plot({"rise", "--x", "1", "--height", "2", "--width", "14"}),
            "parameter\nrise(*): Going\nup\n\n"
            "10 ┤     ⣀⡠⠔⠒⠉\n"
            " 0 ┤⣀⠤⠔⠊⠉\n"
            "   └──────────\n"
            "    w1      w2\n");
}

TEST_F(PlotTest, FallsBackToAsciiWhereTheLocaleIsNotUtf8) {
  const std::vector<std::string> arguments{"rise", "--x", "1", "--height", "4", "--width", "40"};
  std::vector<std::string> ascii = arguments;
  ascii.emplace_back("--ascii");
  EXPECT_THAT(plot(arguments), HasSubstr("┤"));
  ztbtest::setVariable("LC_ALL", "C");
  EXPECT_EQ(plot(arguments), plot(ascii));
  EXPECT_THAT(plot(arguments), Not(HasSubstr("┤")));
}

// Two labels of x at the corners, 0 and 2 at a fifth of the way that 10 is.
TEST_F(PlotTest, LabelsThatAreNumbersStandAtTheirNumbers) {
  EXPECT_EQ(plot({"place", "--x", "1", "--type", "scatter", "--ascii", "--height", "11", "--width",
                  "15"}),
            "parameter\nplace(*)\n\n"
            "10 +          *\n"
            "   |\n   |\n   |\n   |\n"
            " 5 +\n"
            "   |\n   |\n"
            "   |  *\n"
            "   |\n"
            " 0 +*\n"
            "   +-----------\n"
            "    0 2      10\n");
}

// 40 places less 14 for label, name, axis and value leave 26 for 8 units: 2 takes six and a half.
TEST_F(PlotTest, DrawsBarsOnBothSidesOfZero) {
  EXPECT_EQ(plot({"sold", "--x", "1", "--by", "2", "--type", "bar", "--width", "40"}),
            "parameter sold(*, *)\n\n"
            "w1  Ulm                │█████████████ 4\n"
            "    Bern               │██████▌ 2\n"
            "w2  Ulm   █████████████│-4\n");
  EXPECT_EQ(plot({"sold", "--x", "1", "--by", "2", "--type", "bar", "--width", "40", "--ascii"}),
            "parameter sold(*, *)\n\n"
            "w1  Ulm                |############# 4\n"
            "    Bern               |####### 2\n"
            "w2  Ulm   #############|-4\n");
}

// Five lines from -10 to 10: 4 is 1.2 lines below the upper one, 2 is 1.6, and -4 is 2.8.
TEST_F(PlotTest, TellsSeriesApartByLettersWithoutColours) {
  EXPECT_EQ(plot({"sold", "--x", "1", "--by", "2", "--type", "scatter", "--height", "5", "--width",
                  "15"}),
            "parameter\nsold(*, *)\n\n"
            " 10 ┤\n"
            "    │a\n"
            "  0 ┤b\n"
            "    │         a\n"
            "-10 ┤\n"
            "    └──────────\n"
            "     w1      w2\n"
            "a Ulm  b Bern\n");
}

// 4 and 2 on each other are 6 of 10, 4.8 of 8 lines, the lower ones 3.2.
TEST_F(PlotTest, PilesAreas) {
  EXPECT_EQ(plot({"sold", "--x", "1", "--by", "2", "--type", "area", "--slice", "w1,*", "--height",
                  "8", "--width", "13", "--ascii"}),
            "parameter\nsold(*, *)\n\n"
            "10 +\n   |\n   |\n"
            "   |bbbbbbbbbb\n 5 +bbbbbbbbbb\n"
            "   |aaaaaaaaaa\n   |aaaaaaaaaa\n"
            " 0 +aaaaaaaaaa\n"
            "   +----------\n"
            "        w1\n"
            "a Ulm  b Bern\n");
  expectWrong("--type area: values below zero make no pile",
              {"sold", "--x", "1", "--by", "2", "--type", "area"});
}

// 1, 2, 2, 3 and 10: steps of 2 in about five bins. 21 places are left for a count of 3.
TEST_F(PlotTest, CountsValuesInBins) {
  EXPECT_EQ(plot({"mix", "--bins", "5", "--width", "38", "--ascii"}),
            "parameter mix(*)\n\n"
            "0 to below 2  |####### 1\n"
            "2 to below 4  |##################### 3\n"
            "4 to below 6  | 0\n"
            "6 to below 8  | 0\n"
            "8 to 10       |####### 1\n");
}

TEST_F(PlotTest, LeavesOutWhatIsNoNumber) {
  EXPECT_EQ(plot({"odd", "--x", "1", "--type", "bar", "--width", "20", "--ascii"}),
            "parameter odd(*)\n\n"
            "w4  | 0\n"
            "w5  |############# 1\n"
            "\n3 records without a\nnumber, not drawn\n");
  EXPECT_THAT(plot({"odd", "--width", "60"}),
              HasSubstr("\n3 records without a number, not drawn\n"));
  EXPECT_THAT(plot({"empty", "--x", "1"}), StartsWith("parameter empty(*)\n\nnothing to draw\n"));
  EXPECT_THAT(plot({"empty"}), StartsWith("parameter empty(*)\n\nnothing to draw\n"));
}

TEST_F(PlotTest, ShowsAFieldOfAVariable) {
  EXPECT_EQ(plot({"flow", "--x", "1", "--type", "bar", "--field", "marginal", "--width", "20",
                  "--ascii"}),
            "variable flow(*),\nmarginal\n\nw1  |############# 3\n");
}

// From 32 + 2 characters of 7 to 776, with 8 free at both ends; 330 high from 48 on.
TEST_F(PlotTest, WritesSvg) {
  EXPECT_EQ(plot({"rise", "--x", "1", "--out", "rise.svg"}), "");
  const std::string svg = read("rise.svg");
  EXPECT_THAT(svg, StartsWith("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 800 "));
  EXPECT_THAT(svg, HasSubstr("<title>parameter rise(*): Going up</title>"));
  EXPECT_THAT(svg, HasSubstr("<path d=\"M54.0 378.0L768.0 48.0\" stroke=\"#0072b2\""));
  plot({"sold", "--x", "1", "--by", "2", "--type", "bar", "--out", "sold.svg"});
  EXPECT_THAT(read("sold.svg"), HasSubstr("<title>w2, Ulm: -4</title></rect>"));
  EXPECT_THAT(read("sold.svg"), HasSubstr(">Bern</text>"));
  plot({"mix", "--bins", "5", "--out", "mix.svg"});
  EXPECT_THAT(read("mix.svg"), HasSubstr("<title>2 to below 4: 3</title></rect>"));
}

TEST_F(PlotTest, LabelsAreNoMarkup) {
  plot({"hostile", "--x", "1", "--type", "bar", "--out", "hostile.svg"});
  const std::string svg = read("hostile.svg");
  EXPECT_THAT(svg, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;: 1"));
  EXPECT_THAT(svg, HasSubstr("a &lt; b &amp; &quot;c&quot;"));
  EXPECT_THAT(svg, Not(HasSubstr("<script")));
  EXPECT_THAT(svg, Not(HasSubstr("\xE2\x80\xAE")));
  EXPECT_THAT(svg, HasSubstr("&lt;U+202E&gt;right to left"));
  EXPECT_THAT(plot({"hostile", "--x", "1", "--type", "bar", "--width", "60"}),
              HasSubstr("<U+202E>right to left"));
}

// Eight bytes of signature, then width and height of the first piece: twice those of the SVG.
TEST_F(PlotTest, WritesPng) {
  EXPECT_EQ(plot({"rise", "--x", "1", "--out", "rise.png"}), "");
  const std::string png = read("rise.png");
  ASSERT_GT(png.size(), 1000U);
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  EXPECT_EQ(png.substr(16, 4), std::string("\0\0\x06\x40", 4));
}

TEST_F(PlotTest, SaysWhatPngNeeds) {
  ztbtest::setVariable("ZTB_RSVG", path("nowhere.so"));
  expectFails(
      1,
      "ztb: a PNG picture is made by librsvg, which cannot be opened: " + path("nowhere.so") +
          ": cannot open shared object file: No such file or directory; install Debian's "
          "librsvg2-2, or write SVG\n",
      {"plot", "a.rxf", "rise", "--x", "1", "--out", "rise.png"});
  EXPECT_FALSE(exists("rise.png"));
  ztbtest::setVariable("ZTB_RSVG", "libc.so.6");
  expectFails(1,
              "ztb: librsvg has no function rsvg_handle_new_from_data: a version from 2.52 on is "
              "expected\n",
              {"plot", "a.rxf", "rise", "--x", "1", "--out", "rise.png"});
  ztbtest::setVariable("ZTB_RSVG", "");
}

TEST_F(PlotTest, RefusesWhatCannotBeDrawn) {
  expectWrong("week(*) is a set; a parameter, variable or equation is drawn", {"week", "--x", "1"});
  expectWrong(
      "sold(*, *) has several records at (w1); choose one of them with --slice, or sum them up "
      "with ztb aggregate first",
      {"sold", "--x", "1"});
  expectWrong("--x: 'week' is no position of rise(*), expected 1 to 1 or one of label",
              {"rise", "--x", "week"});
  ztb::Database database;
  database.addParameter("pi", {}).add().setLevel(3);
  database.write(path("pi.rxf"));
  expectFails(2, "ztb: --x: pi has no positions\n", {"plot", "pi.rxf", "pi", "--x", "1"});
  expectWrong("--by: position 1 (label) is named twice", {"rise", "--x", "1", "--by", "label"});
  expectWrong("--by: --x is missing, a position", {"rise", "--by", "1"});
  expectWrong("--type bar: --x is missing, a position", {"rise", "--type", "bar"});
  expectWrong("--type histogram: it is of values alone; leave out --x",
              {"rise", "--x", "1", "--type", "histogram"});
  expectWrong("--type: 'pie' is no type, expected line, bar, area, scatter or histogram",
              {"rise", "--x", "1", "--type", "pie"});
  expectWrong("--bins 0: 1 to 1000 are allowed", {"rise", "--bins", "0"});
  expectWrong("--height 1: 2 to 200 are allowed", {"rise", "--x", "1", "--height", "1"});
  expectWrong("--out 'rise.jpg': a name that ends in .svg or .png is expected",
              {"rise", "--x", "1", "--out", "rise.jpg"});
  expectWrong("--by: 27 labels are too many to tell apart, 26 are allowed; choose with --slice",
              {"many", "--x", "1", "--by", "2"});
}

TEST_F(PlotTest, RefusesMoreThanAPictureHolds) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  for (int label = 0; label <= 100'000; ++label) p.add("l" + std::to_string(label)).setLevel(1);
  database.write(path("b.rxf"));
  expectFails(2, "ztb: p(*) has more than 100000 records to draw; choose with --slice\n",
              {"plot", "b.rxf", "p", "--x", "1"});
  EXPECT_THAT(ztbFine({"plot", "b.rxf", "p", "--width", "60"}), HasSubstr(" 100001\n"));
}

// The whole range of doubles, and steps that are lost in the last digit.
TEST_F(PlotTest, DrawsAnyValues) {
  ztb::Database database;
  ztb::Symbol wide = database.addParameter("wide", {"*"});
  wide.add("a").setLevel(-1.7e308);
  wide.add("b").setLevel(1.7e308);
  ztb::Symbol tight = database.addParameter("tight", {"*"});
  tight.add("a").setLevel(1e15);
  tight.add("b").setLevel(std::nextafter(1e15, 2e15));
  ztb::Symbol tiny = database.addParameter("tiny", {"*"});
  tiny.add("a").setLevel(1e-310);
  tiny.add("b").setLevel(2e-310);
  database.write(path("b.rxf"));
  for (const char* symbol : {"wide", "tight", "tiny"}) {
    for (const char* type : {"line", "bar", "scatter"}) {
      EXPECT_THAT(ztbFine({"plot", "b.rxf", symbol, "--x", "1", "--type", type}),
                  ztbtest::HasMatch("\\(\\*\\)\n\n(.*\n)+"))
          << symbol << ' ' << type;
    }
    EXPECT_THAT(ztbFine({"plot", "b.rxf", symbol}), ztbtest::HasMatch(" [12]\n")) << symbol;
  }
}

}  // namespace
