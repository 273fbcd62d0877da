#include "bindings/python/native/bulk.h"

#include <algorithm>
#include <array>
#include <string>

#include "bindings/python/native/row_order.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

using py::ssize_t;

void* firstRecord(const Symbol& symbol) {
  int status = 0;
  void* record = c__ztbfindfirstrecordpy(symbol.database(), symbol.handle(), &status);
  symbol.require(status, "ztbFindFirstRecord");
  return record;
}

// Calls `visit` with the handle of each of `count` records.
template <class Visit>
void forEachRecord(const Symbol& symbol, ssize_t count, Visit&& visit) {
  if (count == 0) {
    return;
  }
  const RecordHandle record(*symbol.connection(), firstRecord(symbol));
  for (ssize_t place = 0; place < count; ++place) {
    if (place > 0) {
      symbol.require(c__ztbrecordmovenext(symbol.database(), record.get()), "ztbRecordMoveNext");
    }
    visit(place, record.get());
  }
}

int labelCount(const Symbol& symbol) {
  int count = 0;
  symbol.require(c__ztbinfo(symbol.database(), ZTB_INFO_UEL_COUNT, &count, nullptr, nullptr),
                 "ztbInfo");
  return count;
}

// Throws unless keys are rows of label numbers for this symbol.
void requireKeys(const Symbol& symbol, const Numbers& keys) {
  if (keys.ndim() != 2 || keys.shape(1) != symbol.dimension()) {
    throw py::value_error("keys of symbol " + symbol.name() + " are rows of " +
                          std::to_string(symbol.dimension()) + " label numbers");
  }
  const int labels = labelCount(symbol);
  const int* numbers = keys.data();
  for (ssize_t place = 0; place < keys.size(); ++place) {
    if (numbers[place] < 1 || numbers[place] > labels) {
      throw py::value_error("row " + std::to_string(place / keys.shape(1)) +
                            ": no label has the number " + std::to_string(numbers[place]));
    }
  }
}

RowOrder requireOrder(const Symbol& symbol, const Numbers& keys) {
  requireKeys(symbol, keys);
  RowOrder order(keys.data(), static_cast<std::size_t>(keys.shape(0)),
                 static_cast<std::size_t>(keys.shape(1)), labelCount(symbol));
  if (order.duplicate()) {
    throw py::value_error("row " + std::to_string(*order.duplicate()) +
                          ": another row has the same labels");
  }
  if (symbol.dimension() == 0 && keys.shape(0) > 1) {
    throw py::value_error("symbol " + symbol.name() + " has no position and so one record at most");
  }
  return order;
}

void clear(const Symbol& symbol) {
  symbol.require(c__ztbclearsymbol(symbol.database(), symbol.handle()), "ztbClearSymbol");
}

// The values that a new record of an empty symbol has: a record with this key shows them, and is
// taken away again.
std::array<double, ZTB_SCALE + 1> defaults(const Symbol& symbol, const int* key) {
  symbol.require(
      c__ztbmergerecordint(symbol.database(), symbol.handle(), key, 0, 0, nullptr, 0, nullptr),
      "ztbMergeRecordInt");
  std::array<int, ZTB_MAX_DIMENSION> numbers{};
  std::array<double, ZTB_SCALE + 1> values{};
  forEachRecord(symbol, 1, [&](ssize_t, void* record) {
    symbol.require(c__ztbgetrecordraw(symbol.database(), record, symbol.dimension(), numbers.data(),
                                      values.data()),
                   "ztbGetRecordRaw");
  });
  clear(symbol);
  return values;
}

// Whether a record and its values can be written in one call. Stores other than the tree map
// overwrite whatever row they come upon, also for a key that is new; there, values follow in a walk
// over the new records.
bool overwrites(const Symbol& symbol) {
  int storage = 0;
  symbol.require(c__ztbsymbolinfo(symbol.database(), symbol.handle(), ZTB_SYMBOL_INFO_STORAGE,
                                  &storage, nullptr, nullptr),
                 "ztbSymbolInfo");
  return storage == ZTB_STORAGE_TREE_MAP;
}

std::vector<void*> handlesOf(const Symbol& symbol, const std::vector<Symbol>& domains) {
  if (domains.size() != static_cast<std::size_t>(symbol.dimension())) {
    throw py::value_error(std::to_string(domains.size()) + " domains given, symbol " +
                          symbol.name() + " has " + std::to_string(symbol.dimension()) +
                          " positions");
  }
  std::vector<void*> handles(domains.size());
  std::ranges::transform(domains, handles.begin(), &Symbol::handle);
  return handles;
}

// Sizes of a cube that came from Python.
std::vector<int> sizesOf(const Symbol& symbol, const py::array& cube) {
  if (cube.ndim() != symbol.dimension()) {
    throw py::value_error("an array of " + std::to_string(cube.ndim()) + " dimensions, symbol " +
                          symbol.name() + " has " + std::to_string(symbol.dimension()) +
                          " positions");
  }
  std::vector<int> sizes;
  for (ssize_t d = 0; d < cube.ndim(); ++d) {
    sizes.push_back(static_cast<int>(cube.shape(d)));
  }
  return sizes;
}

template <class Cell>
py::tuple toCube(const Symbol& symbol, const std::vector<Symbol>& domains, int field) {
  std::vector<void*> handles = handlesOf(symbol, domains);
  std::vector<int> sizes(domains.size());
  std::ranges::transform(domains, sizes.begin(), &Symbol::recordCount);
  py::array_t<Cell> cube(std::vector<ssize_t>(sizes.begin(), sizes.end()));
  int dropped = 0;
  symbol.require(
      c__ztbsparsesymboltodensearray(symbol.database(), cube.mutable_data(), sizes.data(),
                                     symbol.handle(), handles.data(), field, &dropped),
      "ztbSparseSymbolToDenseArray");
  return py::make_tuple(cube, dropped);
}

// The label numbers of a set in the order of its records.
std::vector<int> labelsOf(const Symbol& set) {
  std::vector<int> labels(static_cast<std::size_t>(set.recordCount()));
  std::array<double, ZTB_SCALE + 1> values{};
  forEachRecord(set, static_cast<ssize_t>(labels.size()), [&](ssize_t place, void* record) {
    set.require(c__ztbgetrecordraw(set.database(), record, 1,
                                   &labels[static_cast<std::size_t>(place)], values.data()),
                "ztbGetRecordRaw");
  });
  return labels;
}

}  // namespace

py::tuple rows(const Symbol& symbol) {
  const ssize_t count = symbol.recordCount();
  const ssize_t dimension = symbol.dimension();
  const ssize_t slots = symbol.valueCount();
  py::array_t<int> keys({count, dimension});
  py::array_t<double> values({count, slots});
  int* const number = keys.mutable_data();
  double* const value = values.mutable_data();
  // A scalar has no place for keys, which the library is given all the same.
  std::array<int, ZTB_MAX_DIMENSION> noKeys{};
  forEachRecord(symbol, count, [&](ssize_t place, void* record) {
    symbol.require(c__ztbgetrecordraw(symbol.database(), record, static_cast<int>(dimension),
                                      dimension == 0 ? noKeys.data() : number + place * dimension,
                                      value + place * slots),
                   "ztbGetRecordRaw");
  });
  return py::make_tuple(keys, values);
}

py::list texts(const Symbol& symbol) {
  const ssize_t count = symbol.recordCount();
  py::list result(count);
  ztb::Text text;
  forEachRecord(symbol, count, [&](ssize_t place, void* record) {
    symbol.require(c__ztbgetelemtext(symbol.database(), record, text.buffer()), "ztbGetElemText");
    result[static_cast<std::size_t>(place)] = toPython(text.view());
  });
  return result;
}

void putRows(const Symbol& symbol, const Numbers& keys, const Values& values,
             const std::vector<int>& fields) {
  const auto columns = static_cast<ssize_t>(fields.size());
  if (values.ndim() != 2 || values.shape(1) != columns || values.shape(0) != keys.shape(0)) {
    throw py::value_error("values are not " + std::to_string(keys.shape(0)) + " rows of " +
                          std::to_string(columns));
  }
  for (const int field : fields) {
    if (field < 0 || field >= symbol.valueCount()) {
      throw py::value_error("symbol " + symbol.name() + " has no field " + std::to_string(field));
    }
  }
  const RowOrder order = requireOrder(symbol, keys);
  const ssize_t count = keys.shape(0);
  clear(symbol);
  if (count == 0) {
    return;
  }
  const double* const value = values.data();
  const auto keyOf = [&](ssize_t row) { return keys.data() + row * symbol.dimension(); };
  std::array<double, ZTB_SCALE + 1> slots{};
  if (columns < symbol.valueCount()) {
    slots = defaults(symbol, keyOf(static_cast<ssize_t>(order.row(0))));
  }
  const auto fill = [&](ssize_t place) {
    const auto row = static_cast<ssize_t>(order.row(static_cast<std::size_t>(place)));
    for (ssize_t column = 0; column < columns; ++column) {
      slots[static_cast<std::size_t>(fields[static_cast<std::size_t>(column)])] =
          value[row * columns + column];
    }
    return row;
  };
  const bool inOneCall = overwrites(symbol);
  for (ssize_t place = 0; place < count; ++place) {
    const ssize_t row = fill(place);
    symbol.require(c__ztbmergerecordint(symbol.database(), symbol.handle(), keyOf(row), 0, 0,
                                        nullptr, inOneCall ? 1 : 0, slots.data()),
                   "ztbMergeRecordInt");
  }
  if (!inOneCall) {
    forEachRecord(symbol, count, [&](ssize_t place, void* record) {
      fill(place);
      for (std::size_t field = 0; field < static_cast<std::size_t>(symbol.valueCount()); ++field) {
        symbol.require(fieldSetters[field](symbol.database(), record, slots[field]), "ztbSetLevel");
      }
    });
  }
}

void putElements(const Symbol& symbol, const Numbers& keys, const py::object& texts) {
  const RowOrder order = requireOrder(symbol, keys);
  const ssize_t count = keys.shape(0);
  std::vector<std::string> given;
  if (!texts.is_none()) {
    for (const py::handle text : texts) {
      given.push_back(fromPython(text));
      if (given.back().size() > ZTB_MAX_TEXT_LENGTH) {
        throw py::value_error("row " + std::to_string(given.size() - 1) + ": a text of " +
                              std::to_string(given.back().size()) + " bytes, at most " +
                              std::to_string(ZTB_MAX_TEXT_LENGTH) + " are allowed");
      }
    }
    if (static_cast<ssize_t>(given.size()) != count) {
      throw py::value_error(std::to_string(given.size()) + " texts given for " +
                            std::to_string(count) + " records");
    }
  }
  clear(symbol);
  const auto textOf = [&](std::size_t row) {
    return given.empty() || given[row].empty() ? nullptr : given[row].c_str();
  };
  const bool inOneCall = overwrites(symbol);
  for (ssize_t place = 0; place < count; ++place) {
    const std::size_t row = order.row(static_cast<std::size_t>(place));
    symbol.require(
        c__ztbmergesetrecordint(symbol.database(), symbol.handle(),
                                keys.data() + static_cast<ssize_t>(row) * symbol.dimension(), 0, 0,
                                nullptr, inOneCall ? textOf(row) : nullptr),
        "ztbMergeSetRecordInt");
  }
  if (!inOneCall && !given.empty()) {
    forEachRecord(symbol, count, [&](ssize_t place, void* record) {
      const char* const text = textOf(order.row(static_cast<std::size_t>(place)));
      if (text != nullptr) {
        symbol.require(c__ztbsetelemtext(symbol.database(), record, text), "ztbSetElemText");
      }
    });
  }
}

py::tuple toDense(const Symbol& symbol, const std::vector<Symbol>& domains, int field) {
  return symbol.type() == ZTB_SET ? toCube<int>(symbol, domains, field)
                                  : toCube<double>(symbol, domains, field);
}

void fromDense(const Symbol& symbol, const std::vector<Symbol>& domains, const Values& cube,
               bool keepZeros) {
  std::vector<void*> handles = handlesOf(symbol, domains);
  const std::vector<int> sizes = sizesOf(symbol, cube);
  if (keepZeros) {
    symbol.require(c__ztbdensearraytosymbol(symbol.database(), symbol.handle(), handles.data(),
                                            cube.data(), sizes.data()),
                   "ztbDenseArrayToSymbol");
  } else {
    symbol.require(
        c__ztbdensearrayslicestosymbol(symbol.database(), symbol.handle(), handles.data(),
                                       handles.data(), cube.data(), sizes.data()),
        "ztbDenseArraySlicesToSymbol");
  }
}

void elementsFromDense(const Symbol& symbol, const std::vector<Symbol>& domains,
                       const py::array_t<bool, py::array::c_style | py::array::forcecast>& cube) {
  handlesOf(symbol, domains);
  const std::vector<int> sizes = sizesOf(symbol, cube);
  std::vector<std::vector<int>> labels;
  for (std::size_t position = 0; position < domains.size(); ++position) {
    labels.push_back(labelsOf(domains[position]));
    if (static_cast<int>(labels.back().size()) != sizes[position]) {
      throw py::value_error("the array has " + std::to_string(sizes[position]) +
                            " cells at position " + std::to_string(position) + ", set " +
                            domains[position].name() + " has " +
                            std::to_string(labels.back().size()) + " elements");
    }
  }
  clear(symbol);
  const bool* const cells = cube.data();
  std::array<int, ZTB_MAX_DIMENSION> key{};
  for (ssize_t cell = 0; cell < cube.size(); ++cell) {
    if (!cells[cell]) {
      continue;
    }
    auto rest = static_cast<std::size_t>(cell);
    for (std::size_t position = labels.size(); position-- > 0;) {
      key[position] = labels[position][rest % labels[position].size()];
      rest /= labels[position].size();
    }
    symbol.require(c__ztbmergesetrecordint(symbol.database(), symbol.handle(), key.data(), 0, 0,
                                           nullptr, nullptr),
                   "ztbMergeSetRecordInt");
  }
}

void copyFrom(const Symbol& symbol, const Symbol& source) {
  // The source must be open, too.
  static_cast<void>(source.recordCount());
  symbol.require(c__ztbcopysymbol(symbol.database(), symbol.handle(), source.handle()),
                 "ztbCopySymbol");
}

py::tuple violations(const Symbol& symbol) {
  // A symbol shows none before it is read.
  static_cast<void>(symbol.recordCount());
  const auto dimension = static_cast<std::size_t>(symbol.dimension());
  std::vector<int> numbers;
  std::vector<int> outside;
  int status = 0;
  void* violation = c__ztbgetfirstdvinsymbolpy(symbol.database(), symbol.handle(), &status);
  symbol.require(status, "ztbGetFirstDVInSymbol");
  struct Free {
    ztbRec* database;
    void* violation;
    ~Free() { c__ztbfreedvhandle(database, violation); }
  } const owner{symbol.database(), violation};
  std::array<int, ZTB_MAX_DIMENSION> buffer{};
  std::array<double, ZTB_SCALE + 1> values{};
  for (int more = violation != nullptr ? 1 : 0; more != 0;) {
    symbol.require(c__ztbgetdvindicator(symbol.database(), violation, buffer.data()),
                   "ztbGetDVIndicator");
    outside.insert(outside.end(), buffer.data(), buffer.data() + dimension);
    const RecordHandle record(*symbol.connection(),
                              c__ztbgetdvsymbolrecordpy(symbol.database(), violation, &status));
    symbol.require(status, "ztbGetDVSymbolRecord");
    symbol.require(c__ztbgetrecordraw(symbol.database(), record.get(), symbol.dimension(),
                                      buffer.data(), values.data()),
                   "ztbGetRecordRaw");
    numbers.insert(numbers.end(), buffer.data(), buffer.data() + dimension);
    symbol.require(c__ztbmovenextdvinsymbol(symbol.database(), violation, &more),
                   "ztbMoveNextDVInSymbol");
  }
  const auto count = static_cast<ssize_t>(dimension == 0 ? 0 : numbers.size() / dimension);
  const std::vector<ssize_t> shape = {count, static_cast<ssize_t>(dimension)};
  py::array_t<int> keys(shape);
  py::array_t<bool> flags(shape);
  std::ranges::copy(numbers, keys.mutable_data());
  std::ranges::transform(outside, flags.mutable_data(), [](int flag) { return flag != 0; });
  return py::make_tuple(keys, flags);
}

}  // namespace python
