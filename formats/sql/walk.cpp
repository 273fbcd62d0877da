#include "formats/sql/walk.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

namespace formats {

namespace {

// As many records are looked at in the time in which one slice is found, about.
constexpr std::size_t recordsOfSlice = 16;
// The first block is small, since many queries want few records.
constexpr std::size_t firstBlock = 16;
constexpr std::size_t largestBlock = 512;

}  // namespace

// Slices of a list that take less time than a look at all records.
std::size_t SqlWalk::mostSlices(std::size_t count) const {
  // Below a position that any label may stand at, a slice is sought all over.
  const bool isDeep = selection_.listPosition > 0 && selection_.labels[0] == 0;
  return isDeep ? recordsOfSlice : count / recordsOfSlice;
}

void SqlWalk::failChanged() const {
  throw ztb::Error("ztbSqlNext",
                   "records of the database were changed while the query was reading");
}

void SqlWalk::begin(SqlSelection selection, unsigned columns) {
  asked_ = std::move(selection);
  selection_ = asked_;
  columns_ = columns;
  passed_ = 0;
  record_ = {};
  at_ = 0;
  filled_ = 0;
  left_ = 0;
  place_ = 0;
  mayGoOn_ = false;
  isListed_.clear();
  const ztb::Symbol& symbol = table_->symbol();
  changes_ = table_->database().changes();
  const auto count = static_cast<std::size_t>(table_->recordCount());
  if (selection_.nothing || count == 0) {
    return;
  }
  readSpecialValues();
  const auto positions = static_cast<std::size_t>(table_->dimension());
  const auto given = static_cast<std::size_t>(std::count_if(selection_.labels.data(),
                                                            selection_.labels.data() + positions,
                                                            [](int l) { return l != 0; }));
  if (table_->isUniverse()) {
    kind_ = Kind::numbers;
    if (!selection_.listed && given > 0) {
      selection_.listed = {selection_.labels[0]};
    }
    left_ = selection_.listed ? selection_.listed->size() : count;
  } else if (selection_.listed && selection_.listed->size() > mostSlices(count)) {
    kind_ = given > 0 ? Kind::slices : Kind::all;
    keepListed();
  } else {
    kind_ = selection_.listed || given > 0 ? Kind::slices : Kind::all;
  }
  if (kind_ == Kind::all) {
    record_ = ztb::detail::firstRecord({symbol.database(), symbol.handle()});
    left_ = count;
  }
  // The text of a record is asked of the handle that stands on it.
  const std::size_t listed = selection_.listed && kind_ == Kind::slices ? 1 : 0;
  isOne_ = given + listed == positions && positions > 0;
  const bool withTexts = table_->isSet() && !table_->isUniverse() && isAsked(positions);
  most_ = withTexts || isOne_ ? 1 : largestBlock;
  blockSize_ = std::min(firstBlock, most_);
  keys_.resize(positions);
  values_.resize(symbol.valueCount());
  fill();
}

void SqlWalk::readSpecialValues() {
  ztb::SpecialValues own{};
  c__ztbgetspecialvalues(database_, own.data());
  c__ztbgetuserspecialvalues(database_, special_.data());
  epsilon_ = own[ZTB_EPSILON];
  leastSpecial_ = std::numeric_limits<double>::infinity();
  for (const double special : special_) {
    // Epsilon mostly stays what it is, and less than all numbers is.
    if (special != epsilon_) leastSpecial_ = std::fmin(leastSpecial_, std::abs(special));
  }
}

// Looks at all records for a long list of labels.
void SqlWalk::keepListed() {
  isListed_.assign(static_cast<std::size_t>(selection_.listed->back()) + 1, false);
  for (const int label : *selection_.listed) {
    isListed_[static_cast<std::size_t>(label)] = true;
  }
  selection_.listed.reset();
}

// Makes the next block of records that are wanted; an empty one is the end.
void SqlWalk::fill() {
  do {
    at_ = 0;
    passed_ += filled_;
    filled_ = 0;
    if (!toRecords()) {
      return;
    }
    if (kind_ == Kind::all && columns_ == 0 && isListed_.empty()) {
      // Records that are counted alone need not be met.
      filled_ = std::exchange(left_, 0);
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
  if (kind_ != Kind::slices) {
    if (left_ > 0 && mayGoOn_) {
      ztb::detail::require(c__ztbrecordmovenext(database_, record_.get()), database_,
                           "ztbRecordMoveNext");
    }
    return left_ > 0;
  }
  if (mayGoOn_) {
    if (ztb::detail::answer(database_, "ztbRecordMoveNext",
                            [&] { return c__ztbrecordmovenext(database_, record_.get()) != 0; })) {
      return true;
    }
  }
  if (!selection_.listed) {
    return place_++ == 0 && toFirst();
  }
  while (place_ < selection_.listed->size()) {
    selection_.labels[selection_.listPosition] = (*selection_.listed)[place_++];
    if (toFirst()) {
      return true;
    }
  }
  return false;
}

void SqlWalk::readBlock() {
  std::array<int*, ZTB_MAX_DIMENSION> keys{};
  std::array<double*, ztb::fieldCount> values{};
  for (std::size_t position = 0; position < keys_.size(); ++position) {
    const bool isWanted =
        isAsked(position) || (position == selection_.listPosition && !isListed_.empty());
    keys[position] = isWanted ? keys_[position].data() : nullptr;
  }
  for (std::size_t slot = 0; slot < values_.size(); ++slot) {
    values[slot] = isAsked(keys_.size() + slot) ? values_[slot].data() : nullptr;
  }
  const int read = ztbReadRecords(database_, record_.get(), static_cast<int>(blockSize_),
                                  keys.data(), values.data());
  ztb::detail::require(read, database_, "ztbReadRecords");
  filled_ = static_cast<std::size_t>(read);
  for (std::size_t slot = 0; slot < values_.size(); ++slot) {
    if (values[slot] != nullptr) spell(values_[slot]);
  }
  mayGoOn_ = !isOne_ && filled_ == blockSize_;
  left_ -= std::min(left_, filled_);
  if (!isListed_.empty()) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < filled_; ++i) {
      const auto label = static_cast<std::size_t>(keys_[selection_.listPosition][i]);
      if (label >= isListed_.size() || !isListed_[label]) {
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
    keys_[0][i] = selection_.listed ? (*selection_.listed)[place_] : static_cast<int>(place_) + 1;
  }
}

const std::array<int, ZTB_MAX_DIMENSION>& SqlWalk::keys() {
  requireUnchanged();
  askFor((1U << keys_.size()) - 1);
  for (std::size_t position = 0; position < keys_.size(); ++position) {
    allKeys_[position] = keys_[position][at_];
  }
  return allKeys_;
}

void SqlWalk::show(int column) {
  requireUnchanged();
  askFor(1U << static_cast<unsigned>(column));
}

// Goes to the same record again, with these columns in the blocks.
void SqlWalk::askFor(unsigned columns) {
  if ((columns_ & columns) == columns) return;
  const std::size_t here = passed_ + at_;
  begin(asked_, columns_ | columns);
  while (passed_ + filled_ <= here) fill();
  at_ = here - passed_;
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

void SqlWalk::spell(std::vector<double>& column) const {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const std::span<double> block = std::span(column).first(filled_);
  // Most blocks have none, which several values at once are looked at for.
  int odd = 0;
  for (const double value : block) odd |= static_cast<int>(!(std::abs(value) < leastSpecial_));
  if (odd == 0) return;
  for (double& value : block) {
    if (value == special_[ZTB_PLUS_INFINITY]) {
      value = infinity;
    } else if (value == special_[ZTB_MINUS_INFINITY]) {
      value = -infinity;
    } else if (value == special_[ZTB_UNDEFINED] || value == special_[ZTB_NOT_AVAILABLE]) {
      value = std::numeric_limits<double>::quiet_NaN();
    } else if (value == special_[ZTB_EPSILON]) {
      value = epsilon_;
    }
  }
}

ztb::Text SqlWalk::text() const {
  requireUnchanged();
  ztb::Text text;
  ztb::detail::require(c__ztbgetelemtext(database_, record_.get(), text.buffer()), database_,
                       "ztbGetElemText");
  return text;
}

}  // namespace formats
