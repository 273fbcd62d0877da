#include "bindings/python/native/records.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "bindings/python/native/strings.h"

namespace python {

namespace {

namespace guard = ztb::detail;

// Labels of a key as the array of pointers that the library takes.
class Key {
 public:
  Key(const Symbol& symbol, const py::tuple& labels) : count_(labels.size()) {
    if (count_ != static_cast<std::size_t>(symbol.dimension())) {
      throw py::value_error(std::to_string(count_) + " labels given, symbol " + symbol.name() +
                            " has " + std::to_string(symbol.dimension()) + " positions");
    }
    for (std::size_t position = 0; position < count_; ++position) {
      labels_[position] = labelFromPython(labels[position]);
      pointers_[position] = labels_[position].c_str();
    }
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  operator guard::KeyLabels() const { return {pointers_.data(), count_}; }
  operator ztb::Keys() const { return guard::KeyLabels(*this); }

 private:
  std::array<std::string, ZTB_MAX_DIMENSION> labels_;
  std::array<const char*, ZTB_MAX_DIMENSION> pointers_{};
  std::size_t count_;
};

// The operations that write the fields of a record, at the places of their values.
using FieldSetter = void (ztb::Record::*)(double);
constexpr std::array<FieldSetter, ztb::fieldCount> fieldSetters = {
    &ztb::Record::setLevel, &ztb::Record::setMarginal, &ztb::Record::setLower,
    &ztb::Record::setUpper, &ztb::Record::setScale};

std::optional<ztb::Record> find(const Symbol& symbol, const Key& key) {
  symbol.load();
  return symbol.client().find(key);
}

[[noreturn]] void failFind(const Symbol& symbol, const Key& key) {
  // Here the library was not asked, and has no text of its own.
  if (symbol.dimension() == 0 || guard::anyBlank(key)) {
    throw ztb::Error("ztbFindRecord",
                     "Cannot find record " + guard::keyText(key) + " in Symbol " + symbol.name(),
                     ztb::ErrorKind::notFound);
  }
  guard::fail(symbol.connection()->handle(), "ztbFindRecord");
}

ztb::Record requireFound(const Symbol& symbol, const py::tuple& labels) {
  const Key key(symbol, labels);
  std::optional<ztb::Record> record = find(symbol, key);
  if (!record) {
    failFind(symbol, key);
  }
  return std::move(*record);
}

ztb::Record make(const Symbol& symbol, const py::tuple& labels) {
  const Key key(symbol, labels);
  requireRecords(symbol);
  symbol.load();
  for (const char* label : static_cast<guard::KeyLabels>(key)) {
    requireNotBlank(label);
  }
  return symbol.client().merge(key);
}

// Writes the first fields of a record, as many as there are values.
void writeValues(ztb::Record& record, std::span<const double> values) {
  for (std::size_t field = 0; field < values.size(); ++field) {
    (record.*fieldSetters[field])(values[field]);
  }
}

}  // namespace

void requireRecords(const Symbol& symbol) {
  if (symbol.type() == ZTB_ALIAS) {
    throw py::value_error(symbol.name() + " is an alias, which has no records of its own");
  }
  const int subtypes = symbol.type() == ZTB_VARIABLE ? 10 : symbol.type() == ZTB_EQUATION ? 7 : 0;
  if (subtypes == 0) {
    return;
  }
  const int subtype = symbol.userInfo();
  if (subtype < 0 || subtype >= subtypes) {
    throw py::value_error("symbol " + symbol.name() + " has the subtype " +
                          std::to_string(subtype) + ", expected 0 to " +
                          std::to_string(subtypes - 1));
  }
}

void requireSet(const Symbol& symbol) {
  if (symbol.type() != ZTB_SET) {
    throw py::value_error("symbol " + symbol.name() + " is no set");
  }
}

void clear(const Symbol& symbol) {
  symbol.client().clear();
}

py::tuple recordValues(const Symbol& symbol, const py::tuple& labels) {
  const ztb::Record record = requireFound(symbol, labels);
  std::array<int, ZTB_MAX_DIMENSION> keys{};
  FieldValues values{};
  record.raw(keys.data(), values.data());
  py::tuple result(symbol.valueCount());
  for (std::size_t field = 0; field < result.size(); ++field) {
    result[field] = values[field];
  }
  return result;
}

py::str recordText(const Symbol& symbol, const py::tuple& labels) {
  return toPython(requireFound(symbol, labels).text());
}

bool hasRecord(const Symbol& symbol, const py::tuple& labels) {
  return find(symbol, Key(symbol, labels)).has_value();
}

void putRecord(const Symbol& symbol, const py::tuple& labels, const py::tuple& values) {
  if (values.size() > static_cast<std::size_t>(symbol.valueCount())) {
    throw py::value_error("too many values for a record of " + symbol.name());
  }
  FieldValues numbers{};
  for (std::size_t field = 0; field < values.size(); ++field) {
    numbers[field] = py::cast<double>(values[field]);
  }
  ztb::Record record = make(symbol, labels);
  writeValues(record, {numbers.data(), values.size()});
}

void putText(const Symbol& symbol, const py::tuple& labels, const py::str& text) {
  const std::string bytes = textFromPython(text, "");
  make(symbol, labels).setText(bytes);
}

void removeRecord(const Symbol& symbol, const py::tuple& labels) {
  const Key key(symbol, labels);
  symbol.load();
  if (!symbol.client().remove(key)) {
    failFind(symbol, key);
  }
}

}  // namespace python
