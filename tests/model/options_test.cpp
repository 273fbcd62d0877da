// Options of a solver environment.
#include "providers/model/options.h"

#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_error.h"

namespace {

using lomu::ModelError;
using lomu::OptionId;
using lomu::Options;

std::string refusal(const char* name, const std::string& value) {
  Options options;
  try {
    options.set(name, value);
  } catch (const ModelError& error) {
    return error.what();
  }
  return "";
}

TEST(Options, HaveTheDefaultsOfTheTable) {
  const Options options;
  EXPECT_EQ(options.get("LogFile"), "");
  EXPECT_EQ(options.number(OptionId::timeLimit), 1e10);
  EXPECT_EQ(options.number(OptionId::iterationLimit), 2147483647);
  EXPECT_EQ(options.number(OptionId::relativeGap), 1e-9);
  EXPECT_EQ(options.number(OptionId::logScreen), 0);
}

TEST(Options, AreFoundWithCaseFolded) {
  Options options;
  options.set("timelimit", "2.5");
  EXPECT_EQ(options.get("TIMELIMIT"), "2.5");
  EXPECT_EQ(options.number(OptionId::timeLimit), 2.5);
}

TEST(Options, RefuseWhatIsNotInTheirRange) {
  EXPECT_EQ(refusal("LogScreen", "2"),
            "option \"LogScreen\" takes a whole number from 0 to 1, not \"2\"");
  EXPECT_EQ(refusal("LogScreen", "0.5"),
            "option \"LogScreen\" takes a whole number from 0 to 1, not \"0.5\"");
  EXPECT_EQ(refusal("RelativeGap", "nan"),
            "option \"RelativeGap\" takes a number from 0 to 1, not \"nan\"");
  EXPECT_EQ(refusal("TimeLimit", "soon"),
            "option \"TimeLimit\" takes a number from 1e-09 to 1e+10, not \"soon\"");
  EXPECT_EQ(refusal("TimeLimit", "1s"),
            "option \"TimeLimit\" takes a number from 1e-09 to 1e+10, not \"1s\"");
  EXPECT_EQ(refusal("IterationLimit", ""),
            "option \"IterationLimit\" takes a whole number from 0 to 2147483647, not \"\"");
}

TEST(Options, RefuseUnknownNamesAndLongTexts) {
  EXPECT_EQ(refusal("Speed", "1"),
            "there is no option \"Speed\"; options are NameSysDir, LogFile, LogScreen, TimeLimit, "
            "IterationLimit, RelativeGap, UseStart");
  EXPECT_EQ(refusal("LogFile", std::string(255, 'f')), "");
  EXPECT_EQ(refusal("LogFile", std::string(256, 'f')),
            "the value of option \"LogFile\" has 256 bytes, at most 255 are allowed");
  EXPECT_THROW((void)Options().get("Speed"), ModelError);
}

TEST(Options, ARefusedValueLeavesTheOneBefore) {
  Options options;
  options.set("RelativeGap", "0.5");
  EXPECT_THROW(options.set("RelativeGap", "2"), ModelError);
  EXPECT_EQ(options.get("RelativeGap"), "0.5");
}

}  // namespace
