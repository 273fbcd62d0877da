#include "formats/sql/estimates.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace formats {

namespace {

// Records of a condition are counted up to here.
constexpr int mostCounted = 1024;
// Records that are looked at in one place, and labels that are asked for between two: at the first
// position, and below each choice of labels.
constexpr int recordsOfLook = 512;
constexpr int probes = 64;
constexpr int probesBelow = 16;
// Choices of labels below which a position is looked at.
constexpr std::size_t branchesOfLook = 8;

// The i-th of `count` numbers that are spread evenly from `low` to `high`.
int spread(int low, int high, int i, int count) {
  return count == 1 ? low
                    : low + static_cast<int>(static_cast<long long>(high - low) * i / (count - 1));
}

void keepSome(std::vector<std::vector<int>>& prefixes) {
  if (prefixes.size() <= branchesOfLook) return;
  std::vector<std::vector<int>> kept;
  for (std::size_t i = 0; i < branchesOfLook; ++i) {
    kept.push_back(std::move(prefixes[i * (prefixes.size() - 1) / (branchesOfLook - 1)]));
  }
  prefixes = std::move(kept);
}

}  // namespace

SqlEstimates::SqlEstimates(ztb::Symbol symbol, SqlLabels& labels)
    : symbol_(std::move(symbol)), labels_(&labels), count_(symbol_.recordCount()) {}

ztb::detail::OwnedRecord SqlEstimates::find(std::span<const int> prefix, bool last) {
  std::array<const char*, ZTB_MAX_DIMENSION> keys{};
  keys.fill(ztb::anyLabel);
  for (std::size_t at = 0; at < prefix.size(); ++at) keys[at] = labels_->text(prefix[at]).data();
  void* record = nullptr;
  const auto call = last ? c__ztbfindlastrecordslice : c__ztbfindfirstrecordslice;
  if (call(symbol_.database(), symbol_.handle(), keys.data(), &record) == 0) {
    const auto positions = static_cast<std::size_t>(symbol_.dimension());
    ztb::detail::requireNotFound(symbol_.database(), "ztbFindFirstRecordSlice",
                                 {keys.data(), positions});
  }
  return {symbol_.database(), record};
}

SqlEstimates::Key SqlEstimates::keyAt(void* record) const {
  Key keys{};
  std::array<double, ztb::fieldCount> values{};
  ztb::detail::require(c__ztbgetrecordraw(symbol_.database(), record, symbol_.dimension(),
                                          keys.data(), values.data()),
                       symbol_.database(), "ztbGetRecordRaw");
  return keys;
}

int SqlEstimates::countUpTo(std::span<const int> prefix, int most) {
  const ztb::detail::OwnedRecord record = find(prefix, false);
  if (!record) return 0;
  const std::array<int*, ZTB_MAX_DIMENSION> keys{};
  const std::array<double*, ztb::fieldCount> values{};
  const int count =
      ztbReadRecords(symbol_.database(), record.get(), most, keys.data(), values.data());
  ztb::detail::require(count, symbol_.database(), "ztbReadRecords");
  return count;
}

// Labels at the position behind the prefix, of which some that exist go to `next` with it.
double SqlEstimates::childrenOf(const std::vector<int>& prefix,
                                std::vector<std::vector<int>>& next) {
  const std::size_t position = prefix.size();
  const ztb::detail::OwnedRecord record = find(prefix, false);
  if (!record) return 0;
  // What stands at the beginning.
  std::vector<std::vector<int>> columns(seen_.size(), std::vector<int>(recordsOfLook));
  std::array<int*, ZTB_MAX_DIMENSION> keys{};
  std::ranges::transform(columns, keys.begin(), [](auto& column) { return column.data(); });
  const std::array<double*, ztb::fieldCount> values{};
  const int count =
      ztbReadRecords(symbol_.database(), record.get(), recordsOfLook, keys.data(), values.data());
  ztb::detail::require(count, symbol_.database(), "ztbReadRecords");
  for (std::size_t at = 0; at < columns.size(); ++at) {
    columns[at].resize(static_cast<std::size_t>(count));
    seen_[at].insert(seen_[at].end(), columns[at].begin(), columns[at].end());
  }
  std::vector<int>& found = columns[position];
  found.erase(std::unique(found.begin(), found.end()), found.end());
  const auto extended = [&](int label) {
    std::vector<int> longer = prefix;
    longer.push_back(label);
    return longer;
  };
  if (count < recordsOfLook) {
    std::ranges::transform(found, std::back_inserter(next), extended);
    return static_cast<double>(found.size());
  }
  // What stands between there and the end.
  const int low = found.front();
  const int high = keyAt(find(prefix, true).get())[position];
  const int range = high - low + 1;
  const int asked = std::min(range, position == 0 ? probes : probesBelow);
  int hits = 0;
  for (int i = 0; i < asked; ++i) {
    std::vector<int> longer = extended(spread(low, high, i, asked));
    if (exists(longer)) {
      ++hits;
      next.push_back(std::move(longer));
    }
  }
  constexpr int ends = 2;  // which are there anyway
  constexpr int enough = 8;
  if (asked == range || hits >= enough) {
    return asked == range ? hits : ends + (range - ends) * (hits - ends) / double(asked - ends);
  }
  // Of few labels in a wide range those at the beginning tell more.
  const double span = found.back() - low;
  const double dense = span > 0 ? static_cast<double>(found.size() - 1) / span : 0;
  return std::max<double>(hits, 1 + dense * (range - 1));
}

void SqlEstimates::look() {
  if (!below_.empty()) return;
  const auto positions = static_cast<std::size_t>(symbol_.dimension());
  seen_.assign(positions, {});
  std::vector<std::vector<int>> prefixes{{}};
  double above = 1;
  for (std::size_t position = 0; position < positions; ++position) {
    std::vector<std::vector<int>> next;
    double labels = count_ / above;
    if (position + 1 < positions) {
      double sum = 0;
      for (const std::vector<int>& prefix : prefixes) sum += childrenOf(prefix, next);
      labels =
          std::min(labels, sum / static_cast<double>(std::max<std::size_t>(prefixes.size(), 1)));
    }
    below_.push_back(std::max(labels, 1.0));
    above *= below_.back();
    keepSome(next);
    prefixes = std::move(next);
  }
  distinct_.assign(positions, 0);
}

double SqlEstimates::distinctAt(std::size_t position) {
  if (distinct_[position] > 0) return distinct_[position];
  std::vector<int> labels = std::move(seen_[position]);
  const double looked = std::max<double>(1, static_cast<double>(labels.size()));
  std::ranges::sort(labels);
  labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
  auto found = static_cast<double>(labels.size());
  // Where most are new, more records have more of them.
  constexpr double most = 0.5;
  if (found > most * looked) found *= count_ / looked;
  return distinct_[position] = std::max(found, below_[position]);
}

double SqlEstimates::firstCount() {
  look();
  return below_[0];
}

double SqlEstimates::ofPositions(const std::vector<bool>& given) {
  look();
  double rows = count_;
  bool isPrefix = true;
  for (std::size_t position = 0; position < given.size(); ++position) {
    isPrefix = isPrefix && given[position];
    if (given[position]) rows /= isPrefix ? below_[position] : distinctAt(position);
  }
  return std::max(rows, 1.0);
}

double SqlEstimates::jumpsTo(const std::vector<bool>& given) {
  look();
  double jumps = 1;
  double above = 1;
  for (std::size_t position = 0; position < given.size(); ++position) {
    if (given[position]) {
      jumps = std::max(jumps, above);
    } else {
      above *= below_[position];
    }
  }
  return std::min(jumps, count_);
}

double SqlEstimates::ofPrefix(std::span<const int> prefix) {
  const int counted = countUpTo(prefix, mostCounted);
  if (counted < mostCounted) return counted;
  std::vector<bool> given(static_cast<std::size_t>(symbol_.dimension()), false);
  std::fill_n(given.begin(), prefix.size(), true);
  return std::max<double>(counted, ofPositions(given));
}

double SqlEstimates::ofFirsts(const std::vector<int>& firsts) {
  if (firsts.empty()) return 0;
  const int asked = static_cast<int>(std::min<std::size_t>(firsts.size(), probes));
  int counted = 0;
  int hits = 0;
  for (int i = 0; i < asked; ++i) {
    const int at = spread(0, static_cast<int>(firsts.size()) - 1, i, asked);
    const int records = countUpTo(std::span(&firsts[static_cast<std::size_t>(at)], 1),
                                  std::max(mostCounted - counted, 1));
    counted += records;
    hits += records > 0 ? 1 : 0;
  }
  if (static_cast<std::size_t>(asked) == firsts.size() && counted < mostCounted) return counted;
  const double share = static_cast<double>(hits) / asked;
  const double rows = share * static_cast<double>(firsts.size()) * count_ / firstCount();
  return std::clamp<double>(rows, std::min<double>(counted, count_), count_);
}

}  // namespace formats
