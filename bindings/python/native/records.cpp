#include "bindings/python/native/records.h"

#include <array>

#include "bindings/python/native/strings.h"

namespace python {

namespace {

// Labels of a key as the array of pointers that the library takes.
class Key {
 public:
  Key(const Symbol& symbol, const py::tuple& labels) {
    if (labels.size() != static_cast<std::size_t>(symbol.dimension())) {
      throw py::value_error(std::to_string(labels.size()) + " labels given, symbol " +
                            symbol.name() + " has " + std::to_string(symbol.dimension()) +
                            " positions");
    }
    for (std::size_t position = 0; position < labels.size(); ++position) {
      labels_[position] = fromPython(labels[position]);
      pointers_[position] = labels_[position].c_str();
    }
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  [[nodiscard]] const char** data() { return pointers_.data(); }

  // Throws if a label is none that a database can hold: the library then leaves no text that says
  // so, or none at all.
  void requireLabels(ztbRec* database, const char* operation, std::size_t positions) const {
    for (std::size_t position = 0; position < positions; ++position) {
      int number = 0;
      if (c__ztbfinduel(database, pointers_[position], &number) == 0) {
        ztb::detail::failLabel(database, operation, pointers_[position]);
      }
    }
  }

 private:
  std::array<std::string, ZTB_MAX_DIMENSION> labels_;
  std::array<const char*, ZTB_MAX_DIMENSION> pointers_{};
};

void* findRecord(const Symbol& symbol, const py::tuple& labels) {
  Key key(symbol, labels);
  int status = 0;
  void* record = c__ztbfindrecordpy(symbol.database(), symbol.handle(), key.data(), &status);
  if (status == 0) {
    key.requireLabels(symbol.database(), "ztbFindRecord", labels.size());
    symbol.connection()->failLookup("ztbFindRecord");
  }
  return record;
}

void* mergeRecord(const Symbol& symbol, const py::tuple& labels) {
  Key key(symbol, labels);
  int status = 0;
  void* record = c__ztbmergerecordpy(symbol.database(), symbol.handle(), key.data(), &status);
  if (status == 0) {
    key.requireLabels(symbol.database(), "ztbMergeRecord", labels.size());
    ztb::detail::fail(symbol.database(), "ztbMergeRecord");
  }
  return record;
}

}  // namespace

py::tuple recordValues(const Symbol& symbol, const py::tuple& labels) {
  const RecordHandle record(*symbol.connection(), findRecord(symbol, labels));
  std::array<int, ZTB_MAX_DIMENSION> keys{};
  std::array<double, ZTB_SCALE + 1> values{};
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
  const RecordHandle record(*symbol.connection(), findRecord(symbol, labels));
  ztb::Text text;
  symbol.require(c__ztbgetelemtext(symbol.database(), record.get(), text.buffer()),
                 "ztbGetElemText");
  return toPython(text.view());
}

bool hasRecord(const Symbol& symbol, const py::tuple& labels) {
  try {
    const RecordHandle record(*symbol.connection(), findRecord(symbol, labels));
    return true;
  } catch (const NotFound&) {
    return false;
  }
}

void putRecord(const Symbol& symbol, const py::tuple& labels, const py::tuple& values) {
  if (values.size() > static_cast<std::size_t>(symbol.valueCount())) {
    throw py::value_error("too many values for a record of " + symbol.name());
  }
  std::array<double, ZTB_SCALE + 1> numbers{};
  for (std::size_t field = 0; field < values.size(); ++field) {
    numbers[field] = py::cast<double>(values[field]);
  }
  const RecordHandle record(*symbol.connection(), mergeRecord(symbol, labels));
  for (std::size_t field = 0; field < values.size(); ++field) {
    symbol.require(fieldSetters[field](symbol.database(), record.get(), numbers[field]),
                   "ztbSetLevel");
  }
}

void putText(const Symbol& symbol, const py::tuple& labels, const py::str& text) {
  const std::string bytes = fromPython(text);
  if (bytes.size() > ZTB_MAX_TEXT_LENGTH) {
    throw py::value_error("a text of " + std::to_string(bytes.size()) + " bytes, at most " +
                          std::to_string(ZTB_MAX_TEXT_LENGTH) + " are allowed");
  }
  const RecordHandle record(*symbol.connection(), mergeRecord(symbol, labels));
  symbol.require(c__ztbsetelemtext(symbol.database(), record.get(), bytes.c_str()),
                 "ztbSetElemText");
}

void removeRecord(const Symbol& symbol, const py::tuple& labels) {
  const RecordHandle record(*symbol.connection(), findRecord(symbol, labels));
  symbol.require(c__ztbdeleterecord(symbol.database(), record.get()), "ztbDeleteRecord");
}

}  // namespace python
