#include "tools/files/record_walk.h"

#include "tools/text/failure.h"

namespace tool {

RecordWalk::RecordWalk(const ExchangeFile& file, const FileSymbol& symbol)
    : file_(file),
      records_(file.file(), file.file().symbol(symbol.number)),
      dimension_(static_cast<std::size_t>(symbol.dimension)),
      valueCount_(static_cast<std::size_t>(symbol.valueCount)) {}

bool RecordWalk::enterBlock() {
  try {
    if (!records_.next()) {
      at_ = 0;
      return false;
    }
  } catch (const ztb::Error& error) {
    throw Failure(withFile(file_.path(), error.what()));
  }
  for (std::size_t position = 0; position < dimension_; ++position) {
    keyColumns_[position] = records_.keys(static_cast<int>(position));
  }
  for (std::size_t field = 0; field < valueCount_; ++field) {
    valueColumns_[field] = records_.values(static_cast<int>(field));
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
}

}  // namespace tool
