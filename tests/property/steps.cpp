#include "tests/property/steps.h"

#include <limits>
#include <ostream>

namespace ztbtest {

std::ostream& operator<<(std::ostream& out, const Step& step) {
  return out << "{operation " << static_cast<int>(step.operation) << ", symbol " << step.symbol
             << ", picks " << step.picks[0] << ' ' << step.picks[1] << ' ' << step.picks[2]
             << ", number " << step.number << ", flags " << step.flag << step.otherFlag << '}';
}

const std::vector<std::string>& someLabels() {
  static const std::vector<std::string> labels{"a",
                                               "b",
                                               "c",
                                               "d",
                                               "A",
                                               "b  ",
                                               "C ",
                                               " d",
                                               "it's",
                                               "6\"",
                                               "'\"",
                                               "\t",
                                               "",
                                               " ",
                                               "   ",
                                               "e",
                                               "f",
                                               "caf\xE9",
                                               "CAF\xE9",
                                               "g",
                                               "x y",
                                               "*",
                                               std::string(63, 'L'),
                                               std::string(64, 'L')};
  return labels;
}

const std::vector<std::string>& someNames() {
  static const std::vector<std::string> names{
      "i",   "j",         "p", "q",    "v",
      "e",   "Long_Name", "P", "1a",   "_a",
      "a b", "*",         "",  "cost", "longest_name_of_a_symbol_that_is_still_accepted_x"};
  return names;
}

const std::vector<std::string>& someTexts() {
  static const std::vector<std::string> texts{"",      "one",
                                              "two",   "ONE",
                                              " ",     "t\t",
                                              "three", std::string(255, 't'),
                                              "One",   std::string(256, 't')};
  return texts;
}

const std::vector<double>& someValues() {
  static const std::vector<double> values = [] {
    std::vector<double> all{
        0.0,  -0.0, 1.0,  2.0, -1.0, 11.0,  12.0,
        13.0, 14.0, 15.0, 0.1, 1e9,  1e299, std::numeric_limits<double>::denorm_min()};
    all.insert(all.end(), internalSpecialValues().begin(), internalSpecialValues().end());
    return all;
  }();
  return values;
}

const std::vector<std::array<double, 5>>& someSpellings() {
  static const std::vector<std::array<double, 5>> spellings = [] {
    const std::array<double, 5>& own = internalSpecialValues();
    std::vector<std::array<double, 5>> all{
        own, {own[0], own[1], own[2], own[3], 0.0}, {11, 12, 13, 14, 15}, {1, 1, 2, 2, 1}};
    all.push_back({own[0], 12, own[2], own[3], own[4]});
    return all;
  }();
  return spellings;
}

}  // namespace ztbtest
