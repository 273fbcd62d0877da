// Elements of symbols as people and models write them.
#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <ztb/model_names.hpp>

namespace {

using ztb::ElementText;
using ztb::readElement;

struct Typed {
  std::string text;
  std::string symbol;
  std::vector<std::string> labels;
};

class ElementTexts : public testing::TestWithParam<Typed> {};

TEST_P(ElementTexts, AreTakenApart) {
  std::string problem = "an old one";
  const ElementText element = readElement(GetParam().text, problem);
  EXPECT_EQ(problem, "");
  EXPECT_EQ(element.symbol, GetParam().symbol);
  EXPECT_EQ(element.labels, GetParam().labels);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ElementTexts,
    testing::Values(Typed{"budget", "budget", {}}, Typed{"demand[oslo]", "demand", {"oslo"}},
                    Typed{"ship( seville , new york )", "ship", {"seville", "new york"}},
                    Typed{"ship['a b',7]", "ship", {"a b", "7"}},
                    Typed{"x['it''s', \"a,b\" ]", "x", {"it's", "a,b"}},
                    Typed{"x[ 'a ' ]", "x", {"a "}}, Typed{"x[a'b,c\"]", "x", {"a'b", "c\""}},
                    Typed{"buy[Liver (Beef)]", "buy", {"Liver (Beef)"}},
                    Typed{"x[f(1,2),3]", "x", {"f(1,2)", "3"}},
                    Typed{"x['f(1',2]", "x", {"f(1", "2"}},
                    Typed{"x[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20]",
                          "x",
                          {"1",  "2",  "3",  "4",  "5",  "6",  "7",  "8",  "9",  "10",
                           "11", "12", "13", "14", "15", "16", "17", "18", "19", "20"}}));

struct Refused {
  std::string text;
  std::string problem;
};

class RefusedElementTexts : public testing::TestWithParam<Refused> {};

TEST_P(RefusedElementTexts, SayWhatIsWrong) {
  std::string problem;
  readElement(GetParam().text, problem);
  EXPECT_EQ(problem, GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(
    Reasons, RefusedElementTexts,
    testing::Values(Refused{"", "the name of a symbol is missing"},
                    Refused{"[a]", "the name of a symbol is missing"},
                    Refused{"x[a", "the labels have to end with ]"},
                    Refused{"x(a]", "the labels have to end with )"},
                    Refused{"x['a]", "a quote is left open"},
                    Refused{"x['a'b]", "a comma has to follow a quoted label"},
                    Refused{"x[]", "a label is empty"}, Refused{"x[a,]", "a label is empty"},
                    Refused{"x[,a]", "a label is empty"}, Refused{"x['']", "a label is empty"},
                    Refused{"x[f(1,2]", "brackets in a label have to be balanced"},
                    Refused{"x[a]]", "brackets in a label have to be balanced"},
                    Refused{"x[a](b]", "brackets in a label have to be balanced"},
                    Refused{"x[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21]",
                            "there are more than 20 labels"}));

}  // namespace
