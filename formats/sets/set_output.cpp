#include "formats/sets/set_output.h"

#include <algorithm>
#include <utility>

#include "tools/text/failure.h"

namespace formats {

namespace {

ztb::RxfOutput begun(const std::string& path, const std::string& shownName) try {
  return ztb::RxfOutput(path);
} catch (const ztb::Error& error) {
  throw tool::failureOf(shownName, error);
}

}  // namespace

NewSymbol describeNew(const tool::ExchangeFile& file, const tool::FileSymbol& symbol) {
  NewSymbol result{.name = symbol.name,
                   .text = symbol.text,
                   .type = symbol.type,
                   .userInfo = symbol.userInfo,
                   .checked = file.file().symbol(symbol.number).domainKind != ZTB_RXF_DOMAIN_NAMES,
                   .domains = tool::domainNames(symbol),
                   .aliasOf = {}};
  if (symbol.isAlias()) result.aliasOf = file.resolved(symbol).name;
  return result;
}

SetOutput::SetOutput(const std::string& path, std::string shownName, tool::Progress& progress)
    : shownName_(std::move(shownName)), progress_(progress), output_(begun(path, shownName_)) {}

void SetOutput::addLabel(std::string_view label) {
  output_.addLabel(std::string(label));
}

void SetOutput::addLabels(const tool::ExchangeFile& file) {
  for (int number = 1; number <= file.labelCount(); ++number) addLabel(file.label(number));
}

void SetOutput::addSymbol(const NewSymbol& symbol) {
  flush();
  ++symbolCount_;
  ztbRxfSymbolInfo info{};
  info.name = symbol.name.c_str();
  info.text = symbol.text.c_str();
  info.type = static_cast<int>(symbol.type);
  info.dimension = static_cast<int>(symbol.dimension());
  info.userInfo = symbol.userInfo;
  std::vector<std::string> domains = symbol.domains;
  if (symbol.isAlias()) {
    domains = {symbol.aliasOf};
  } else if (std::ranges::any_of(domains, [](const std::string& name) { return name != "*"; })) {
    info.domainKind = symbol.checked ? ZTB_RXF_DOMAIN_CHECKED : ZTB_RXF_DOMAIN_NAMES;
  }
  output_.addSymbol(info, domains);
  const bool hasFields = symbol.type == ztb::Type::variable || symbol.type == ztb::Type::equation;
  keys_.assign(symbol.dimension(), {});
  values_.assign(hasFields ? ztb::fieldCount : 1, {});
}

void SetOutput::addColumns(std::size_t count, const std::vector<const int*>& keys,
                           const std::vector<const double*>& values) {
  output_.addRecords(count, keys, values);
  recordCount_ += count;
  progress_.count(recordCount_);
}

void SetOutput::addRecord(std::span<const int> keys, std::span<const double> values) {
  for (std::size_t position = 0; position < keys_.size(); ++position) {
    keys_[position].push_back(keys[position]);
  }
  for (std::size_t slot = 0; slot < values_.size(); ++slot) values_[slot].push_back(values[slot]);
  if (++held_ == ZTB_RXF_BLOCK_RECORDS) flush();
}

void SetOutput::flush() {
  if (held_ == 0) return;
  std::vector<const int*> keys;
  for (const std::vector<int>& column : keys_) keys.push_back(column.data());
  // A scalar has no keys, but the address of its keys is handed on all the same.
  keys.push_back(nullptr);
  std::vector<const double*> values;
  for (const std::vector<double>& column : values_) values.push_back(column.data());
  addColumns(std::exchange(held_, 0), keys, values);
  for (std::vector<int>& column : keys_) column.clear();
  for (std::vector<double>& column : values_) column.clear();
}

void SetOutput::copyRecords(const tool::ExchangeFile& file, const tool::FileSymbol& symbol) {
  for (BlockWalk walk(file, symbol); walk.next();) {
    const ztb::RxfRecords& block = walk.block();
    std::vector<const int*> keys;
    for (int position = 0; position < block.dimension(); ++position) {
      keys.push_back(block.keys(position).data());
    }
    keys.push_back(nullptr);
    std::vector<const double*> values;
    for (int slot = 0; slot < block.valueCount(); ++slot) {
      values.push_back(block.values(slot).data());
    }
    addColumns(block.size(), keys, values);
  }
}

void SetOutput::addText(std::string_view text) {
  flush();
  output_.addText(std::string(text));
}

void SetOutput::addTexts(const tool::ExchangeFile& file) {
  for (int number = 1; number <= file.file().textCount(); ++number) {
    addText(file.file().text(number));
  }
}

void SetOutput::publish(std::vector<std::unique_ptr<tool::ExchangeFile>>& sources) {
  flush();
  sources.clear();
  progress_.step("writing " + shownName_);
  try {
    output_.publish();
  } catch (const ztb::Error& error) {
    throw tool::failureOf(shownName_, error);
  }
}

BlockWalk::BlockWalk(const tool::ExchangeFile& file, const tool::FileSymbol& symbol)
    : file_(file), records_(file.file(), file.file().symbol(symbol.number)) {}

bool BlockWalk::next() {
  try {
    return records_.next();
  } catch (const ztb::Error& error) {
    throw tool::failureOf(file_.path(), error);
  }
}

}  // namespace formats
