#include "formats/arrow/file_blocks.h"

#include "formats/arrow/dictionary.h"
#include "formats/tables/exact_text.h"
#include "tools/text/failure.h"

namespace formats {

FileBlocks::FileBlocks(const tool::ExchangeFile& file, const tool::FileSymbol& symbol, bool spells)
    : file_(file),
      records_(file.file(), file.file().symbol(symbol.number)),
      isSet_(symbol.type == ztb::Type::set),
      spells_(spells) {}

std::string_view FileBlocks::shown(std::string_view text) {
  return spells_ ? spelled(text, TextForm::json, room_) : text;
}

RecordBlock FileBlocks::next() {
  RecordBlock block;
  try {
    if (!records_.next()) {
      return block;
    }
  } catch (const ztb::Error& error) {
    throw tool::failureOf(file_.path(), error);
  }
  block.count = records_.size();
  for (int position = 0; position < records_.dimension(); ++position) {
    const std::span<const int> keys = records_.keys(position);
    block.keys.emplace_back(keys.begin(), keys.end());
  }
  for (int slot = 0; slot < records_.valueCount(); ++slot) {
    const std::span<const double> values = records_.values(slot);
    if (!isSet_) {
      block.values.emplace_back(values.begin(), values.end());
      continue;
    }
    for (const double text : values) {
      const std::string_view shownText = shown(file_.file().text(static_cast<int>(text)));
      requireUtf8(shownText, "text");
      block.texts.add(shownText);
    }
  }
  return block;
}

std::string_view FileBlocks::label(int number) {
  return shown(file_.label(number));
}

}  // namespace formats
