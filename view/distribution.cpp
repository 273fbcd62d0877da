#include "view/distribution.h"

#include <algorithm>

#include "tools/text/number_text.h"
#include "view/record_scan.h"

namespace view {

void Distribution::measure(double value) {
  if (tool::isSpecial(value)) {
    ++special_[std::string(tool::NumberText(value).view())];
    return;
  }
  least_ = ordinary_ == 0 ? value : std::min(least_, value);
  greatest_ = ordinary_ == 0 ? value : std::max(greatest_, value);
  sum_ += value;
  ++ordinary_;
}

void Distribution::divide(std::size_t classes) {
  const std::size_t used = ordinary_ == 0 ? 0 : least_ == greatest_ ? 1 : classes;
  counts_.assign(used, 0);
}

void Distribution::count(double value) {
  if (tool::isSpecial(value)) return;
  // Halves, so that the width of all numbers is one.
  const double share = (value / 2 - least_ / 2) / (greatest_ / 2 - least_ / 2);
  const auto place = least_ == greatest_
                         ? 0
                         : static_cast<std::size_t>(share * static_cast<double>(counts_.size()));
  ++counts_[std::min(place, counts_.size() - 1)];
}

void Distribution::write(formats::JsonText& answer) const {
  answer.beginObject();
  answer.name("edges");
  answer.beginArray();
  for (std::size_t edge = 0; !counts_.empty() && edge <= counts_.size(); ++edge) {
    const double share = static_cast<double>(edge) / static_cast<double>(counts_.size());
    answer.number(edge == counts_.size() ? greatest_ : least_ * (1 - share) + greatest_ * share);
  }
  answer.endArray();
  answer.name("counts");
  answer.beginArray();
  for (const std::size_t count : counts_) answer.count(count);
  answer.endArray();
  answer.name("special");
  answer.beginObject();
  for (const auto& [word, count] : special_) {
    answer.name(word);
    answer.count(count);
  }
  answer.endObject();
  answer.name("count");
  answer.count(ordinary_);
  const auto number = [&](const char* name, double value) {
    answer.name(name);
    if (ordinary_ == 0) {
      answer.null();
    } else {
      answer.number(value);
    }
  };
  number("min", least_);
  number("max", greatest_);
  number("mean",
         ordinary_ == 0 ? 0 : static_cast<double>(sum_ / static_cast<long double>(ordinary_)));
  answer.endObject();
}

void answerHistogram(Question& question) {
  RecordScan scan(question, 2);
  const int slot = scan.slot(question.parameters);
  const std::size_t classes = question.parameters.number("bins", usualClasses, mostClasses);
  Distribution distribution;
  const auto walk = [&](const auto& use) {
    while (scan.next()) {
      const std::span<const double> values = scan.block().values(slot);
      for (std::size_t at = 0; at < values.size(); ++at) {
        if (scan.chosen()[at] != 0) use(values[at]);
      }
    }
  };
  walk([&](double value) { distribution.measure(value); });
  distribution.divide(std::max<std::size_t>(classes, 1));
  scan.rewind();
  walk([&](double value) { distribution.count(value); });
  distribution.write(question.answer);
}

}  // namespace view
