// Elements of symbols as a user types them.
#include "tools/models/element_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using tool::ElementText;
using tool::parseElement;

struct Typed {
  std::string text;
  std::string symbol;
  std::vector<std::string> labels;
};

class ElementTexts : public testing::TestWithParam<Typed> {};

TEST_P(ElementTexts, AreTakenApart) {
  std::string problem = "an old one";
  const ElementText element = parseElement(GetParam().text, problem);
  EXPECT_EQ(problem, "");
  EXPECT_EQ(element.symbol, GetParam().symbol);
  EXPECT_EQ(element.labels, GetParam().labels);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ElementTexts,
    testing::Values(Typed{"budget", "budget", {}}, Typed{" budget ", "budget", {}},
                    Typed{"demand[oslo]", "demand", {"oslo"}},
                    Typed{"ship( seville , new york )", "ship", {"seville", "new york"}},
                    Typed{"ship['a b',7]", "ship", {"a b", "7"}},
                    Typed{"x['it''s', \"a,b\" ]", "x", {"it's", "a,b"}},
                    Typed{"buy[Liver (Beef)]", "buy", {"Liver (Beef)"}}));

struct Refused {
  std::string text;
  std::string problem;
};

class RefusedElementTexts : public testing::TestWithParam<Refused> {};

TEST_P(RefusedElementTexts, SayWhatIsWrong) {
  std::string problem;
  parseElement(GetParam().text, problem);
  EXPECT_EQ(problem, GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(Reasons, RefusedElementTexts,
                         testing::Values(Refused{"", "the name of a symbol is missing"},
                                         Refused{"[a]", "the name of a symbol is missing"},
                                         Refused{"x[a", "the labels have to end with ]"},
                                         Refused{"x(a]", "the labels have to end with )"},
                                         Refused{"x['a]", "a quote is left open"},
                                         Refused{"x['a'b]", "a comma has to follow a quoted label"},
                                         Refused{"x[]", "a label is empty"},
                                         Refused{"x[a,]", "a label is empty"},
                                         Refused{"x[,a]", "a label is empty"},
                                         Refused{"x['']", "a label is empty"}));

}  // namespace
