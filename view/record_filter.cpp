#include "view/record_filter.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

#include "formats/tables/exact_text.h"
#include "tools/text/words.h"

namespace view {

RecordFilter::RecordFilter(const OpenedFile& file, const tool::FileSymbol& symbol,
                           const Parameters& parameters) {
  const std::string* where = parameters.find("where");
  if (where != nullptr && !where->empty()) {
    condition_ = std::make_unique<formats::SymbolCondition>(formats::parseCondition(*where),
                                                            file.exchange(), symbol);
    if (!condition_->missing().empty()) {
      throw RequestError(400, fmt::format("{} has no field or position {}", symbol.name,
                                          tool::inQuotes(condition_->missing())));
    }
    words_ = fmt::format("where {}:{}", where->size(), *where);
  }
  for (std::size_t position = 0; position < static_cast<std::size_t>(symbol.dimension);
       ++position) {
    readPosition(file, parameters, position);
  }
}

void RecordFilter::readPosition(const OpenedFile& file, const Parameters& parameters,
                                std::size_t position) {
  const std::string* pattern = parameters.find(fmt::format("p{}", position));
  const std::vector<std::string> listed = parameters.all(fmt::format("in{}", position));
  const bool hasPattern = pattern != nullptr && !pattern->empty();
  if (!hasPattern && listed.empty()) return;
  AllowedLabels allowed{position, {0}};
  const formats::LabelPattern wanted(hasPattern ? *pattern : "*");
  // Labels come back as they went out.
  const std::unordered_set<std::string_view> list(listed.begin(), listed.end());
  std::string room;
  for (int number = 1; number <= file.exchange().labelCount(); ++number) {
    const std::string_view label = file.exchange().label(number);
    const bool isListed =
        list.empty() || list.contains(formats::spelled(label, formats::TextForm::json, room));
    allowed.labels.push_back(isListed && wanted.matches(label) ? 1 : 0);
  }
  allowed_.push_back(std::move(allowed));
  words_ += fmt::format("\nposition {}", position);
  if (hasPattern) words_ += fmt::format(" like {}:{}", pattern->size(), *pattern);
  for (const std::string& label : listed) words_ += fmt::format(" in {}:{}", label.size(), label);
}

std::size_t RecordFilter::evaluate(const ztb::RxfRecords& block,
                                   std::vector<std::uint8_t>& chosen) const {
  if (condition_) {
    condition_->evaluate(block, chosen);
  } else {
    chosen.assign(block.size(), 1);
  }
  for (const AllowedLabels& allowed : allowed_) {
    const std::span<const int> keys = block.keys(static_cast<int>(allowed.position));
    for (std::size_t at = 0; at < chosen.size(); ++at) {
      chosen[at] &= allowed.labels[static_cast<std::size_t>(keys[at])];
    }
  }
  return static_cast<std::size_t>(std::ranges::count(chosen, 1));
}

}  // namespace view
