#include "formats/sql/table.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>
#include <ztb/column_names.hpp>

namespace formats {

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
  estimates_.reset();
  ascends_.clear();
  seen_ = database_->changes();
}

int SqlTable::recordCount() {
  return isUniverse() ? database_->labels.count() : symbol().recordCount();
}

SqlEstimates& SqlTable::estimates() {
  const ztb::Symbol& records = symbol();
  if (!estimates_) {
    estimates_.emplace(records, database_->labels);
  }
  return *estimates_;
}

// Labels that all ascend do so in each position. Otherwise those that are used count, and a
// position whose labels so far do not ascend need not be looked at further.
void SqlTable::findOrder() {
  SqlLabels& labels = database_->labels;
  const auto size = static_cast<std::size_t>(labels.count()) + 1;
  const auto ascend = [&](const std::vector<bool>& used) {
    int before = 0;
    for (int number = 1; number < static_cast<int>(size); ++number) {
      if (!used[static_cast<std::size_t>(number)]) continue;
      if (before != 0 && compareFolded(labels.text(before), labels.text(number)) >= 0) return false;
      before = number;
    }
    return true;
  };
  const auto positions = static_cast<std::size_t>(dimension_);
  ascends_.assign(positions, true);
  const ztb::Symbol& records = symbol();
  const auto count = static_cast<std::size_t>(recordCount());
  if (count == 0 || ascend(std::vector<bool>(size, true))) {
    return;
  }
  if (isUniverse()) {
    ascends_.assign(positions, false);
    return;
  }
  std::vector<std::vector<bool>> used(positions, std::vector<bool>(size, false));
  constexpr std::size_t most = 4096;
  std::vector<std::vector<int>> columns(positions, std::vector<int>(most));
  const std::array<double*, ztb::fieldCount> values{};
  const ztb::detail::OwnedRecord record =
      ztb::detail::firstRecord({database_->handle, records.handle()});
  std::size_t seen = 0;
  std::size_t nextCheck = most;
  while (seen < count) {
    if (seen > 0) {
      ztb::detail::require(c__ztbrecordmovenext(database_->handle, record.get()), database_->handle,
                           "ztbRecordMoveNext");
    }
    std::array<int*, ZTB_MAX_DIMENSION> keys{};
    for (std::size_t at = 0; at < positions; ++at) {
      keys[at] = ascends_[at] ? columns[at].data() : nullptr;
    }
    const int read = ztbReadRecords(database_->handle, record.get(), static_cast<int>(most),
                                    keys.data(), values.data());
    ztb::detail::require(read, database_->handle, "ztbReadRecords");
    for (std::size_t at = 0; at < positions; ++at) {
      if (!ascends_[at]) continue;
      for (const int label : std::span(columns[at]).first(static_cast<std::size_t>(read))) {
        used[at][static_cast<std::size_t>(label)] = true;
      }
    }
    seen += static_cast<std::size_t>(read);
    if (seen < std::min(nextCheck, count)) continue;
    nextCheck *= 2;
    for (std::size_t at = 0; at < positions; ++at) {
      ascends_[at] = ascends_[at] && ascend(used[at]);
    }
    if (std::ranges::find(ascends_, true) == ascends_.end()) return;
  }
}

bool SqlTable::ascends(int position) {
  static_cast<void>(symbol());
  if (ascends_.empty()) {
    findOrder();
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
