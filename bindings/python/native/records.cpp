#include "bindings/python/native/records.h"

#include <array>
#include <string>
#include <ztb/store_removal.hpp>

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
      labels_[position] = fromPython(labels[position]);
      pointers_[position] = labels_[position].c_str();
    }
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  [[nodiscard]] guard::KeyLabels labels() const { return {pointers_.data(), count_}; }

 private:
  std::array<std::string, ZTB_MAX_DIMENSION> labels_;
  std::array<const char*, ZTB_MAX_DIMENSION> pointers_{};
  std::size_t count_;
};

guard::OwnedRecord find(const Symbol& symbol, const Key& key) {
  symbol.load();
  return guard::findRecord(symbol.place(), key.labels());
}

guard::OwnedRecord requireFound(const Symbol& symbol, const py::tuple& labels) {
  const Key key(symbol, labels);
  guard::OwnedRecord record = find(symbol, key);
  if (!record) {
    // Here the library was not asked, and has no text of its own.
    if (symbol.dimension() == 0 || guard::anyBlank(key.labels())) {
      throw NotFound("ztbFindRecord", "Cannot find record " + guard::keyText(key.labels()) +
                                          " in Symbol " + symbol.name());
    }
    symbol.connection()->failLookup("ztbFindRecord");
  }
  return record;
}

guard::OwnedRecord make(const Symbol& symbol, const py::tuple& labels) {
  const Key key(symbol, labels);
  requireRecords(symbol);
  symbol.load();
  for (const char* label : key.labels()) {
    requireNotBlank(label);
  }
  return guard::makeRecord(symbol.place(), "ztbMergeRecord", key.labels(), guard::Present::found);
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

void clear(const Symbol& symbol) {
  guard::clearRecords(symbol.place());
}

py::tuple recordValues(const Symbol& symbol, const py::tuple& labels) {
  const guard::OwnedRecord record = requireFound(symbol, labels);
  guard::KeyNumbers keys{};
  guard::Slots values{};
  symbol.require(c__ztbgetrecordraw(symbol.database(), record.get(), symbol.dimension(),
                                    keys.data(), values.data()),
                 "ztbGetRecordRaw");
  py::tuple result(symbol.valueCount());
  for (std::size_t field = 0; field < result.size(); ++field) {
    result[field] = values[field];
  }
  return result;
}

py::str recordText(const Symbol& symbol, const py::tuple& labels) {
  const guard::OwnedRecord record = requireFound(symbol, labels);
  ztb::Text text;
  symbol.require(c__ztbgetelemtext(symbol.database(), record.get(), text.buffer()),
                 "ztbGetElemText");
  return toPython(text.view());
}

bool hasRecord(const Symbol& symbol, const py::tuple& labels) {
  return static_cast<bool>(find(symbol, Key(symbol, labels)));
}

void putRecord(const Symbol& symbol, const py::tuple& labels, const py::tuple& values) {
  if (values.size() > static_cast<std::size_t>(symbol.valueCount())) {
    throw py::value_error("too many values for a record of " + symbol.name());
  }
  guard::Slots numbers{};
  for (std::size_t field = 0; field < values.size(); ++field) {
    numbers[field] = py::cast<double>(values[field]);
  }
  const guard::OwnedRecord record = make(symbol, labels);
  for (std::size_t field = 0; field < values.size(); ++field) {
    symbol.require(fieldSetters[field](symbol.database(), record.get(), numbers[field]),
                   "ztbSetLevel");
  }
}

void putText(const Symbol& symbol, const py::tuple& labels, const py::str& text) {
  const std::string bytes = textFromPython(text, "");
  const guard::OwnedRecord record = make(symbol, labels);
  symbol.require(c__ztbsetelemtext(symbol.database(), record.get(), bytes.c_str()),
                 "ztbSetElemText");
}

void removeRecord(const Symbol& symbol, const py::tuple& labels) {
  const guard::OwnedRecord record = requireFound(symbol, labels);
  guard::removeRecord(symbol.place(), record.get());
}

}  // namespace python
