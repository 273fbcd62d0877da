#include "formats/sql/table.h"

#include <algorithm>
#include <bit>
#include <ztb/column_names.hpp>

namespace formats {

namespace {

// Records that are looked at to guess how many labels a position has.
constexpr int sampleSize = 1024;

}  // namespace

SqlTable::SqlTable(SqlDatabase& database, int position)
    : database_(&database), position_(position) {
  const ztb::Symbol& records = symbol();
  dimension_ = records.dimension();
  type_ = records.type();
  overUniverse_ = records.number() == universe;
  std::string name = overUniverse_ ? "*" : records.name().str();
  if (position != universe) {
    void* own = nullptr;
    ztb::detail::require(c__ztbgetsymbolbynumber(database.handle, position, &own), database.handle,
                         "ztbGetSymbolByNumber");
    name = ztb::Symbol(database.handle, own).name().str();
  }
  std::vector<std::string> domains;
  if (overUniverse_) {
    domains.emplace_back("*");
  } else {
    for (const ztb::Domain& domain : records.domains()) {
      domains.push_back(domain.name.str());
    }
  }
  columns_ = ztb::keyColumns(overUniverse_ ? "*" : name, type_, domains);
  if (!overUniverse_) {
    const std::vector<std::string> content = ztb::contentColumns(type_);
    columns_.insert(columns_.end(), content.begin(), content.end());
  }
}

const ztb::Symbol& SqlTable::symbol() {
  if (!symbol_ || seen_ != database_->changes()) {
    renew();
  }
  return *symbol_;
}

void SqlTable::renew() {
  void* handle = nullptr;
  ztb::detail::require(c__ztbgetsymbolbynumber(database_->handle, position_, &handle),
                       database_->handle, "ztbGetSymbolByNumber");
  symbol_.reset();
  symbol_.emplace(ztb::Symbol(database_->handle, handle).unaliased());
  distinct_.clear();
  ascends_.clear();
  seen_ = database_->changes();
}

int SqlTable::recordCount() {
  return isUniverse() ? database_->labels.count() : symbol().recordCount();
}

// The first records tell how many labels a position has. At the first position they stand for their
// part of all, between the labels of the first record and the last.
void SqlTable::sample() {
  const auto positions = static_cast<std::size_t>(dimension_);
  std::vector<std::vector<int>> labels(positions);
  std::vector<int> last(positions);
  int looked = 0;
  for (const ztb::Row row : symbol().rows()) {
    for (std::size_t position = 0; position < positions; ++position) {
      labels[position].push_back(row.keys[position]);
    }
    if (++looked == sampleSize) {
      break;
    }
  }
  const double count = symbol().recordCount();
  distinct_.assign(positions, 1);
  for (std::size_t position = 0; position < positions && looked > 0; ++position) {
    std::vector<int>& seen = labels[position];
    const int first = seen.front();
    std::ranges::sort(seen);
    seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
    const auto found = static_cast<double>(seen.size());
    const bool goesOn = position == 0 || seen.size() > static_cast<std::size_t>(looked) / 2;
    double guess = goesOn ? found * count / looked : found;
    if (position == 0) {
      std::array<double, ztb::fieldCount> values{};
      const ztb::Record end(
          *symbol_, ztb::detail::lastRecord({database_->handle, symbol_->handle()}).release());
      end.raw(last.data(), values.data());
      guess = std::min(guess, last[0] - first + 1.0);
    }
    distinct_[position] = std::max(guess, 1.0);
  }
}

double SqlTable::estimate(const std::vector<bool>& given) {
  const double count = recordCount();
  if (isUniverse()) {
    return given[0] ? 1 : count;
  }
  if (std::ranges::count(given, true) == dimension_) {
    return 1;
  }
  if (distinct_.empty()) {
    sample();
  }
  double rows = count;
  for (std::size_t position = 0; position < given.size(); ++position) {
    if (given[position]) {
      rows /= distinct_[position];
    }
  }
  return std::max(rows, 1.0);
}

bool SqlTable::ascends(int position) {
  const ztb::Symbol& records = symbol();
  if (ascends_.empty()) {
    SqlLabels& labels = database_->labels;
    const auto size = static_cast<std::size_t>(labels.count()) + 1;
    std::vector<std::vector<bool>> used(static_cast<std::size_t>(dimension_),
                                        std::vector<bool>(size, isUniverse()));
    if (!isUniverse()) {
      for (const ztb::Row row : records.rows()) {
        for (std::size_t at = 0; at < used.size(); ++at) {
          used[at][static_cast<std::size_t>(row.keys[at])] = true;
        }
      }
    }
    for (const std::vector<bool>& marks : used) {
      bool ascending = true;
      int before = 0;
      for (int number = 1; ascending && number < static_cast<int>(size); ++number) {
        if (marks[static_cast<std::size_t>(number)]) {
          ascending = before == 0 || compareFolded(labels.text(before), labels.text(number)) < 0;
          before = number;
        }
      }
      ascends_.push_back(ascending);
    }
  }
  return ascends_[static_cast<std::size_t>(position)];
}

std::int64_t SqlTable::rowNumber(const int* keys) {
  constexpr int bits = 63;
  const int each = dimension_ == 0 ? 0 : bits / dimension_;
  const int needed = std::bit_width(static_cast<unsigned>(database_->labels.count()));
  if (needed <= each || dimension_ <= 1) {
    std::int64_t number = 0;
    for (int position = 0; position < dimension_; ++position) {
      number = (number << each) | keys[position];
    }
    return number;
  }
  const std::string key(reinterpret_cast<const char*>(keys),
                        static_cast<std::size_t>(dimension_) * sizeof *keys);
  // Below zero, where no number above is.
  const std::int64_t next = -static_cast<std::int64_t>(rowNumbers_.size()) - 1;
  return rowNumbers_.try_emplace(key, next).first->second;
}

}  // namespace formats
