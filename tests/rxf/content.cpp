#include "tests/rxf/content.h"

#include <cmath>
#include <limits>

namespace rxftest {

Record record(std::vector<int> keys, const std::vector<double>& values) {
  Record made{std::move(keys), {}};
  for (const double value : values) made.bits.push_back(std::bit_cast<std::uint64_t>(value));
  return made;
}

Content smallContent() {
  const double infinity = std::numeric_limits<double>::infinity();
  Content content;
  content.labels = {"wheat", "corn", "rice", "", "it's", "north", "south"};
  content.texts = {"Wheat flour", "Bulgur", "say \"it\"", "Flour of wheat"};
  Symbol grain{"grain", kSet, 1, 0, "grains \xC3\xA9", {}, 0, {}, ""};
  grain.records = {record({1}, {1}), record({2}, {0}), record({3}, {4})};
  Symbol place{"place", kSet, 1, 0, "", {}, 2, {"anywhere"}, ""};
  place.records = {record({6}, {0}), record({7}, {3})};
  Symbol alias{"g", kAlias, 1, 1, "", {}, 0, {}, "grain"};
  Symbol every{"every", kAlias, 1, 0, "", {}, 0, {}, "*"};
  Symbol yield{"yield", kParameter, 2, 7, "tons", {}, 3, {"g", "place"}, ""};
  yield.records = {record({1, 6}, {1.5}), record({1, 7}, {-0.0}), record({2, 6}, {infinity}),
                   record({3, 6}, {std::bit_cast<double>(0x7FF800000000BEEFU)}),
                   record({3, 7}, {4.94e-324})};
  Symbol pi{"pi", kParameter, 0, 0, "", {record({}, {3.14159})}, 0, {}, ""};
  Symbol sold{"sold", kVariable, 1, 4, "", {}, 2, {"grain"}, ""};
  sold.records = {record({1}, {1, 0, 0, infinity, 1}), record({5}, {2.5, 0, -infinity, 0, 1})};
  Symbol balance{"balance", kEquation, 1, 55, "", {record({6}, {0, 1e-9, 0, 0, 1})}, 0, {}, ""};
  Symbol none{"none", kParameter, 3, 0, "no records", {}, 0, {}, ""};
  content.symbols = {grain, place, alias, every, yield, pi, sold, balance, none};
  return content;
}

std::vector<const char*> pointers(const std::vector<std::string>& texts) {
  std::vector<const char*> result;
  for (const std::string& text : texts) result.push_back(text.c_str());
  return result;
}

}  // namespace rxftest
