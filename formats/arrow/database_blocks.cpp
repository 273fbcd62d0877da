#include "formats/arrow/database_blocks.h"

#include <algorithm>
#include <span>

#include "formats/arrow/dictionary.h"
#include "tools/text/number_text.h"

namespace formats {

namespace {

constexpr const char* operation = "ztbArrowExport";

}  // namespace

DatabaseBlocks::DatabaseBlocks(const ztb::Symbol& symbol, std::size_t most)
    : database_(symbol.database()),
      symbol_(symbol.handle()),
      positions_(static_cast<std::size_t>(symbol.dimension())),
      slots_(symbol.valueCount()),
      most_(most),
      isSet_(symbol.type() == ztb::Type::set),
      changes_(0),
      // Reads the records, if that was not done before.
      left_(static_cast<std::size_t>(symbol.recordCount())) {
  changes_ = ztbRecordChanges(database_);
}

// The first record that was not read yet.
ztb::detail::OwnedRecord DatabaseBlocks::toNext() const {
  const ztb::detail::SymbolPlace place(database_, symbol_);
  if (read_ == 0) {
    return ztb::detail::firstRecord(place);
  }
  ztb::detail::OwnedRecord record = ztb::detail::findRecord(
      place, ztb::detail::LabelsOf(place, std::span(last_).first(positions_)));
  if (!record || c__ztbrecordmovenext(database_, record.get()) == 0) {
    throw ztb::Error(operation, "records of symbol " + place.name() + " are not in their order");
  }
  return record;
}

RecordBlock DatabaseBlocks::next() {
  if (ztbRecordChanges(database_) != changes_) {
    throw ztb::Error(operation, "records of the database were changed while they were read");
  }
  RecordBlock block;
  if (left_ == 0) {
    return block;
  }
  block.count = std::min(left_, most_);
  const ztb::detail::OwnedRecord record = toNext();
  if (isSet_) {
    readTexts(block);
  } else if (!showInPlace(block)) {
    block.values.assign(slots_, std::vector<double>(block.count));
  }
  block.keys.assign(positions_, std::vector<int>(block.count));
  std::array<int*, ZTB_MAX_DIMENSION> keys{};
  std::array<double*, ztb::fieldCount> values{};
  std::ranges::transform(block.keys, keys.begin(), [](auto& column) { return column.data(); });
  std::ranges::transform(block.values, values.begin(), [](auto& column) { return column.data(); });
  const int read = ztbReadRecords(database_, record.get(), static_cast<int>(block.count),
                                  keys.data(), values.data());
  ztb::detail::require(read, database_, operation);
  if (static_cast<std::size_t>(read) != block.count) {
    throw ztb::Error(operation, "records are not as many as their symbol has");
  }
  for (std::size_t position = 0; position < positions_; ++position) {
    last_[position] = block.keys[position].back();
  }
  left_ -= block.count;
  read_ += block.count;
  return block;
}

// Whether the values of the block can be shown where they lie: none is spelled otherwise.
bool DatabaseBlocks::showInPlace(RecordBlock& block) const {
  const std::shared_ptr<const ztbHeldValues> held = holdValues();
  if (held == nullptr) {
    return false;
  }
  const std::span values(held->values + read_, block.count);
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> inside{};
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> shown{};
  c__ztbgetspecialvalues(database_, inside.data());
  c__ztbgetuserspecialvalues(database_, shown.data());
  for (std::size_t code = 0; code < inside.size(); ++code) {
    if (!tool::sameBits(inside[code], shown[code]) &&
        std::ranges::any_of(values,
                            [&](double value) { return tool::sameBits(value, inside[code]); })) {
      return false;
    }
  }
  block.inPlace = values.data();
  block.held = held;
  return true;
}

// The values of the symbol where they lie as a column, or null.
std::shared_ptr<const ztbHeldValues> DatabaseBlocks::holdValues() const {
  ztbHeldValues* held = nullptr;
  ztb::detail::require(ztbHoldValues(database_, symbol_, &held), database_, operation);
  return held == nullptr ? nullptr
                         : std::shared_ptr<const ztbHeldValues>(
                               held, [held](const ztbHeldValues*) { ztbReleaseValues(held); });
}

void DatabaseBlocks::readTexts(RecordBlock& block) const {
  const ztb::detail::OwnedRecord record = toNext();
  ztb::Text text;
  for (std::size_t i = 0; i < block.count; ++i) {
    ztb::detail::require(c__ztbgetelemtext(database_, record.get(), text.buffer()), database_,
                         operation);
    requireUtf8(text.view(), "text");
    block.texts.add(text.view());
    if (i + 1 < block.count) {
      ztb::detail::require(c__ztbrecordmovenext(database_, record.get()), database_, operation);
    }
  }
}

std::string_view DatabaseBlocks::label(int number) {
  ztb::detail::require(c__ztbgetuelbyindex(database_, number, label_.buffer()), database_,
                       operation);
  return label_.view();
}

}  // namespace formats
