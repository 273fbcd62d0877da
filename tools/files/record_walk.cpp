#include "tools/files/record_walk.h"

#include <algorithm>

#include "tools/text/failure.h"

namespace tool {

RecordWalk::RecordWalk(const ExchangeFile& file, const FileSymbol& symbol)
    : file_(file),
      records_(file.file(), file.file().symbol(symbol.number)),
      dimension_(static_cast<std::size_t>(symbol.dimension)),
      valueCount_(static_cast<std::size_t>(symbol.valueCount)),
      blockCount_((symbol.recordCount + ZTB_RXF_BLOCK_RECORDS - 1) / ZTB_RXF_BLOCK_RECORDS) {}

bool RecordWalk::enterBlock() {
  try {
    if (!records_.next()) {
      at_ = 0;
      return false;
    }
  } catch (const ztb::Error& error) {
    hasFailed_ = true;
    throw Failure(withFile(file_.path(), error.what()));
  }
  ++passed_;
  for (std::size_t position = 0; position < dimension_; ++position) {
    keyColumns_[position] = records_.keys(static_cast<int>(position));
  }
  for (std::size_t field = 0; field < valueCount_; ++field) {
    valueColumns_[field] = records_.values(static_cast<int>(field));
  }
  if (!spans_.empty()) {
    spans_[passed_ - 1] = {keyColumns_[0].front(), keyColumns_[0].back(), false};
  }
  at_ = 0;
  take();
  return true;
}

void RecordWalk::take() {
  for (std::size_t position = 0; position < dimension_; ++position) {
    keys_[position] = keyColumns_[position][at_];
  }
  for (std::size_t field = 0; field < valueCount_; ++field) {
    values_[field] = valueColumns_[field][at_];
  }
}

std::string_view RecordWalk::text() const {
  return file_.file().text(static_cast<int>(values_[0]));
}

void RecordWalk::rewind() {
  records_.rewind();
  at_ = 0;
  passed_ = 0;
  hasFailed_ = false;
}

void RecordWalk::seek(int number) {
  spans_.resize(blockCount_);
  const std::size_t block = findBlock(number);
  if (records_.size() == 0 || block + 1 != passed_) {
    moveBefore(block);
    if (!enterBlock()) return;
  }
  const auto found = std::ranges::lower_bound(keyColumns_[0], number);
  // Before that record: next() adds one.
  at_ = static_cast<std::size_t>(found - keyColumns_[0].begin()) - 1;
}

// The first block whose last record does not come before the number, or a damaged one that may be
// it; the number of blocks where there is none.
std::size_t RecordWalk::findBlock(int number) {
  std::size_t low = 0;
  std::size_t high = spans_.size();
  // Mostly it is the present block or the next one.
  const std::size_t present = records_.size() > 0 ? passed_ - 1 : high / 2;
  for (std::size_t middle = present; low < high;) {
    std::size_t whole = middle;
    while (whole < high && isDamaged(whole)) ++whole;
    if (whole == high) {
      high = middle;
    } else if (spans_[whole].last < number) {
      low = whole + 1;
    } else if (spans_[whole].first < number || whole == low) {
      return whole;
    } else {
      high = middle;
    }
    middle = low == present + 1 ? low : low + (high - low) / 2;
  }
  return low;
}

// Enters a block of which nothing is known yet.
bool RecordWalk::isDamaged(std::size_t block) {
  Span& span = spans_[block];
  if (span.last == 0 && !span.isDamaged) {
    moveBefore(block);
    try {
      enterBlock();
    } catch (const Failure&) {
      if (!records_.skipDamage()) throw;
      span.isDamaged = true;
    }
  }
  return span.isDamaged;
}

void RecordWalk::moveBefore(std::size_t block) {
  if (hasFailed_ || block < passed_) rewind();
  try {
    if (block > passed_) records_.skip(static_cast<int>(block - passed_));
  } catch (const ztb::Error& error) {
    hasFailed_ = true;
    throw Failure(withFile(file_.path(), error.what()));
  }
  passed_ = block;
}

}  // namespace tool
