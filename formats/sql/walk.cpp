#include "formats/sql/walk.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace formats {

namespace {

// As many records are looked at in the time in which one slice is found, about.
constexpr std::size_t recordsOfSlice = 16;
// The first block is small, since many queries want few records.
constexpr std::size_t firstBlock = 16;
constexpr std::size_t largestBlock = 512;

}  // namespace

void SqlWalk::failChanged() const {
  throw ztb::Error("ztbSqlNext",
                   "records of the database were changed while the query was reading");
}

void SqlWalk::begin(SqlSelection selection, bool withTexts) {
  selection_ = std::move(selection);
  record_ = {};
  at_ = 0;
  filled_ = 0;
  left_ = 0;
  place_ = 0;
  mayGoOn_ = false;
  isFirst_.clear();
  const ztb::Symbol& symbol = table_->symbol();
  changes_ = table_->database().changes();
  const auto count = static_cast<std::size_t>(table_->recordCount());
  if (selection_.nothing || count == 0) {
    return;
  }
  c__ztbgetuserspecialvalues(symbol.database(), special_.data());
  const auto positions = static_cast<std::size_t>(table_->dimension());
  const auto given = static_cast<std::size_t>(std::count_if(selection_.labels.data(),
                                                            selection_.labels.data() + positions,
                                                            [](int l) { return l != 0; }));
  if (table_->isUniverse()) {
    kind_ = Kind::numbers;
    if (!selection_.firsts && given > 0) {
      selection_.firsts = {selection_.labels[0]};
    }
    left_ = selection_.firsts ? selection_.firsts->size() : count;
  } else if (selection_.firsts && selection_.firsts->size() > count / recordsOfSlice) {
    kind_ = given > 0 ? Kind::slices : Kind::all;
    keepFirsts();
  } else {
    kind_ = selection_.firsts || given > 0 ? Kind::slices : Kind::all;
  }
  if (kind_ == Kind::all) {
    record_ = ztb::detail::firstRecord({symbol.database(), symbol.handle()});
    left_ = count;
  }
  // The text of a record is asked of the handle that stands on it.
  isOne_ = given == positions && positions > 0;
  most_ = withTexts || isOne_ ? 1 : largestBlock;
  blockSize_ = std::min(firstBlock, most_);
  keys_.resize(positions);
  values_.resize(symbol.valueCount());
  fill();
}

// Looks at all records for a long list of first labels.
void SqlWalk::keepFirsts() {
  isFirst_.assign(static_cast<std::size_t>(selection_.firsts->back()) + 1, false);
  for (const int label : *selection_.firsts) {
    isFirst_[static_cast<std::size_t>(label)] = true;
  }
  selection_.firsts.reset();
}

// Makes the next block of records that are wanted; an empty one is the end.
void SqlWalk::fill() {
  do {
    at_ = 0;
    filled_ = 0;
    if (!toRecords()) {
      return;
    }
    for (std::vector<int>& column : keys_) column.resize(blockSize_);
    for (std::vector<double>& column : values_) column.resize(blockSize_);
    if (kind_ == Kind::numbers) {
      readNumbers();
    } else {
      readBlock();
    }
    constexpr std::size_t growth = 4;
    blockSize_ = std::min(blockSize_ * growth, most_);
  } while (filled_ == 0);
}

// Puts the handle on the first record behind the block.
bool SqlWalk::toRecords() {
  ztbRec* database = table_->database().handle;
  if (kind_ != Kind::slices) {
    if (left_ > 0 && mayGoOn_) {
      ztb::detail::require(c__ztbrecordmovenext(database, record_.get()), database,
                           "ztbRecordMoveNext");
    }
    return left_ > 0;
  }
  if (mayGoOn_) {
    if (ztb::detail::answer(database, "ztbRecordMoveNext",
                            [&] { return c__ztbrecordmovenext(database, record_.get()) != 0; })) {
      return true;
    }
  }
  if (!selection_.firsts) {
    return place_++ == 0 && toFirst();
  }
  while (place_ < selection_.firsts->size()) {
    selection_.labels[0] = (*selection_.firsts)[place_++];
    if (toFirst()) {
      return true;
    }
  }
  return false;
}

void SqlWalk::readBlock() {
  ztbRec* database = table_->database().handle;
  std::array<int*, ZTB_MAX_DIMENSION> keys{};
  std::array<double*, ztb::fieldCount> values{};
  std::ranges::transform(keys_, keys.begin(), [](auto& column) { return column.data(); });
  std::ranges::transform(values_, values.begin(), [](auto& column) { return column.data(); });
  const int read = ztbReadRecords(database, record_.get(), static_cast<int>(blockSize_),
                                  keys.data(), values.data());
  ztb::detail::require(read, database, "ztbReadRecords");
  filled_ = static_cast<std::size_t>(read);
  mayGoOn_ = !isOne_ && filled_ == blockSize_;
  left_ -= std::min(left_, filled_);
  if (!isFirst_.empty()) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < filled_; ++i) {
      const auto first = static_cast<std::size_t>(keys_[0][i]);
      if (first >= isFirst_.size() || !isFirst_[first]) {
        continue;
      }
      for (std::vector<int>& column : keys_) column[kept] = column[i];
      for (std::vector<double>& column : values_) column[kept] = column[i];
      ++kept;
    }
    filled_ = kept;
  }
}

void SqlWalk::readNumbers() {
  filled_ = std::min(blockSize_, left_);
  left_ -= filled_;
  for (std::size_t i = 0; i < filled_; ++i, ++place_) {
    keys_[0][i] = selection_.firsts ? (*selection_.firsts)[place_] : static_cast<int>(place_) + 1;
  }
}

// Finds the first record with the chosen labels.
bool SqlWalk::toFirst() {
  const ztb::Symbol& symbol = table_->symbol();
  SqlLabels& labels = table_->database().labels;
  std::array<const char*, ZTB_MAX_DIMENSION> keys{};
  const auto positions = static_cast<std::size_t>(table_->dimension());
  for (std::size_t position = 0; position < positions; ++position) {
    const int label = selection_.labels[position];
    keys[position] = label == 0 ? ztb::anyLabel : labels.text(label).data();
  }
  mayGoOn_ = false;
  void* record = nullptr;
  const auto find = isOne_ ? c__ztbfindrecord : c__ztbfindfirstrecordslice;
  if (find(symbol.database(), symbol.handle(), keys.data(), &record) == 0) {
    ztb::detail::requireNotFound(symbol.database(), "ztbFindFirstRecordSlice",
                                 {keys.data(), positions});
  }
  record_ = {symbol.database(), record};
  return record != nullptr;
}

double SqlWalk::spelled(double value) const {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  if (value == special_[ZTB_PLUS_INFINITY]) {
    return infinity;
  }
  return value == special_[ZTB_MINUS_INFINITY] ? -infinity
                                               : std::numeric_limits<double>::quiet_NaN();
}

ztb::Text SqlWalk::text() const {
  requireUnchanged();
  ztb::Text text;
  ztbRec* database = table_->database().handle;
  ztb::detail::require(c__ztbgetelemtext(database, record_.get(), text.buffer()), database,
                       "ztbGetElemText");
  return text;
}

}  // namespace formats
