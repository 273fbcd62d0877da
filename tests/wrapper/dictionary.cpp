#include "tests/wrapper/dictionary.h"

#include <limits>

namespace wrappertest {

std::vector<const char*> pointersTo(const std::vector<std::string>& labels) {
  std::vector<const char*> pointers;
  for (const std::string& label : labels) {
    pointers.push_back(label.c_str());
  }
  return pointers;
}

Entries::value_type read(const ztb::Record& record, const ztb::Symbol& symbol) {
  std::array<int, ZTB_MAX_DIMENSION> numbers{};
  Entry entry;
  record.raw(numbers.data(), entry.values.data());
  if (symbol.type() == ztb::Type::set) {
    entry.values[0] = 0;
    entry.text = record.text().str();
  }
  return {Key(numbers.data(), numbers.data() + symbol.dimension()), entry};
}

Entries read(const ztb::Symbol& symbol) {
  Entries entries;
  for (const ztb::Record& record : symbol.records()) {
    entries.insert(entries.end(), read(record, symbol));
  }
  return entries;
}

Entries readBackward(const ztb::Symbol& symbol, const std::vector<std::string>& last) {
  Entries entries;
  std::optional<ztb::Record> record = symbol.find(ztb::Keys(pointersTo(last)));
  if (record) {
    do {
      entries.insert(entries.begin(), read(*record, symbol));
    } while (record->movePrevious());
  }
  return entries;
}

Entries readSlice(const ztb::Symbol& symbol, const std::vector<std::string>& labels) {
  Entries entries;
  for (const ztb::Record& record : symbol.slice(ztb::Keys(pointersTo(labels)))) {
    entries.insert(entries.end(), read(record, symbol));
  }
  return entries;
}

ztb::Symbol addSymbol(ztb::Database& database, const Shape& shape) {
  const std::vector<ztb::DomainArgument> domains(static_cast<std::size_t>(shape.dimension), "*");
  const int subtype = shape.type == ztb::Type::variable   ? 3
                      : shape.type == ztb::Type::equation ? 1
                                                          : 0;
  return database.addSymbol("p", shape.type, domains, "", subtype);
}

Entry defaults(const Shape& shape) {
  if (shape.type == ztb::Type::variable || shape.type == ztb::Type::equation) {
    return {.values = {0, 0, 0, std::numeric_limits<double>::infinity(), 1}, .text = ""};
  }
  return {};
}

}  // namespace wrappertest
