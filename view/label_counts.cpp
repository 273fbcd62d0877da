// The labels at a position, with how many records each has.

#include <algorithm>
#include <numeric>

#include "tools/text/words.h"
#include "view/record_scan.h"

namespace view {

namespace {

constexpr std::size_t mostLabels = 1000;

}  // namespace

void answerCounts(Question& question) {
  RecordScan scan(question);
  const std::size_t position = scan.position(question.parameters, "pos");
  const std::size_t limit = question.parameters.number("limit", 100, mostLabels);
  const std::string like = tool::folded(question.parameters.text("like", ""));
  std::vector<std::size_t> counts(static_cast<std::size_t>(scan.file().exchange().labelCount()) +
                                  1);
  while (scan.next()) {
    const std::span<const int> keys = scan.block().keys(static_cast<int>(position));
    for (std::size_t at = 0; at < keys.size(); ++at) {
      counts[static_cast<std::size_t>(keys[at])] += scan.chosen()[at];
    }
  }
  std::vector<int> labels;
  for (int number = 1; number < static_cast<int>(counts.size()); ++number) {
    if (counts[static_cast<std::size_t>(number)] == 0) continue;
    const bool isLike = like.empty() || tool::folded(std::string(scan.label(number))).find(like) !=
                                            std::string::npos;
    if (isLike) labels.push_back(number);
  }
  const auto countOf = [&](int number) { return counts[static_cast<std::size_t>(number)]; };
  std::ranges::stable_sort(labels, std::ranges::greater(), countOf);
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("labels");
  answer.beginArray();
  for (std::size_t at = 0; at < std::min(limit, labels.size()); ++at) {
    answer.beginObject();
    answer.name("label");
    answer.text(scan.label(labels[at]));
    answer.name("count");
    answer.count(countOf(labels[at]));
    answer.endObject();
  }
  answer.endArray();
  answer.name("total");
  answer.count(labels.size());
  answer.name("more");
  answer.boolean(labels.size() > limit);
  answer.endObject();
}

}  // namespace view
