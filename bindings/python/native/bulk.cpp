#include "bindings/python/native/bulk.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <ztb/store_guard.hpp>

#include "bindings/python/native/interruption.h"
#include "bindings/python/native/records.h"
#include "bindings/python/native/row_order.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

using py::ssize_t;
namespace guard = ztb::detail;

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

// Throws unless keys are rows of label numbers for this symbol.
void requireKeys(const Symbol& symbol, const Numbers& keys, int labels) {
  if (keys.ndim() != 2 || keys.shape(1) != symbol.dimension()) {
    throw py::value_error("keys of symbol " + symbol.name() + " are rows of " +
                          std::to_string(symbol.dimension()) + " label numbers");
  }
  const int* numbers = keys.data();
  for (ssize_t place = 0; place < keys.size(); ++place) {
    if (numbers[place] < 1 || numbers[place] > labels) {
      throw py::value_error("row " + std::to_string(place / keys.shape(1)) +
                            ": no label has the number " + std::to_string(numbers[place]));
    }
  }
}

RowOrder requireOrder(const Symbol& symbol, const Numbers& keys, const NewLabels& newLabels) {
  symbol.connection()->requireSame(*newLabels.connection());
  requireKeys(symbol, keys, newLabels.largest());
  const int* const numbers = keys.data();
  const auto rows = static_cast<std::size_t>(keys.shape(0));
  std::optional<RowOrder> order;
  runWithoutInterpreter([&](Interruption&) {
    order.emplace(numbers, rows, static_cast<std::size_t>(symbol.dimension()), newLabels.largest());
  });
  if (order->duplicate()) {
    throw py::value_error("row " + std::to_string(*order->duplicate()) +
                          ": another row has the same labels");
  }
  if (symbol.dimension() == 0 && rows > 1) {
    throw py::value_error("symbol " + symbol.name() + " has no position and so one record at most");
  }
  return std::move(*order);
}

// Adds records to a symbol that is empty, in ascending order of their keys, which every store
// takes.
class Filling {
 public:
  explicit Filling(const Symbol& symbol)
      : place_(symbol.place()),
        firstInTrie_(place_.store == ZTB_STORAGE_TRIE && place_.dimension > 0) {}

  // Whether records get their content when they are added. Stores other than the tree map overwrite
  // whatever row they come upon when content comes with a key, also for one that is new; there,
  // content is to follow in a walk over the new records.
  [[nodiscard]] bool takesContent() const { return place_.onMap(); }

  void add(const int* key, const guard::Content& content) {
    const std::span<const int> numbers(key, place_.positions());
    if (std::exchange(firstInTrie_, false)) {
      guard::storeFirstInTrie(place_, numbers, {}, false);
    } else {
      guard::storeDirectly(place_, numbers, takesContent() ? content : guard::Content{}, false);
    }
  }

 private:
  const guard::SymbolPlace& place_;
  bool firstInTrie_;
};

// The values that a new record of an empty symbol has: a record with this key shows them, and is
// taken away again.
std::array<double, ZTB_SCALE + 1> defaults(const Symbol& symbol, const int* key) {
  Filling(symbol).add(key, {});
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

std::vector<void*> handlesOf(const Symbol& symbol, const std::vector<Symbol>& domains) {
  if (domains.size() != static_cast<std::size_t>(symbol.dimension())) {
    throw py::value_error(std::to_string(domains.size()) + " domains given, symbol " +
                          symbol.name() + " has " + std::to_string(symbol.dimension()) +
                          " positions");
  }
  std::vector<void*> handles;
  for (const Symbol& domain : domains) {
    symbol.connection()->requireSame(*domain.connection());
    handles.push_back(domain.handle());
  }
  return handles;
}

// The sizes of a cube over sets.
std::vector<int> sizesOf(const std::vector<Symbol>& domains) {
  std::vector<int> sizes(domains.size());
  std::ranges::transform(domains, sizes.begin(), &Symbol::recordCount);
  return sizes;
}

// Throws unless an int counts the cells of a cube, as some operations do.
void requireCountable(const std::vector<int>& sizes) {
  std::uint64_t cells = 1;
  for (const int size : sizes) {
    if (size == 0) {
      return;
    }
  }
  for (const int size : sizes) {
    cells *= static_cast<std::uint64_t>(size);
    if (cells > std::numeric_limits<int>::max()) {
      throw py::value_error("the array has more than " +
                            std::to_string(std::numeric_limits<int>::max()) + " cells");
    }
  }
}

// Throws unless a cube that came from Python has the sizes of its sets.
void requireSizes(const std::vector<Symbol>& domains, const std::vector<int>& sizes,
                  const py::array& cube) {
  if (cube.ndim() != static_cast<ssize_t>(sizes.size())) {
    throw py::value_error("an array of " + std::to_string(cube.ndim()) + " dimensions for " +
                          std::to_string(sizes.size()) + " positions");
  }
  for (std::size_t position = 0; position < sizes.size(); ++position) {
    const ssize_t cells = cube.shape(static_cast<ssize_t>(position));
    if (cells != sizes[position]) {
      throw py::value_error("the array has " + std::to_string(cells) + " cells at position " +
                            std::to_string(position) + ", set " + domains[position].name() +
                            " has " + std::to_string(sizes[position]) + " elements");
    }
  }
}

template <class Cell>
py::tuple toCube(const Symbol& symbol, const std::vector<Symbol>& domains, int field) {
  std::vector<void*> handles = handlesOf(symbol, domains);
  const std::vector<int> sizes = sizesOf(domains);
  requireCountable(sizes);
  symbol.load();
  py::array_t<Cell> cube(std::vector<ssize_t>(sizes.begin(), sizes.end()));
  Cell* const cells = cube.mutable_data();
  int dropped = 0;
  runWithoutInterpreter([&](Interruption&) {
    symbol.require(c__ztbsparsesymboltodensearray(symbol.database(), cells, sizes.data(),
                                                  symbol.handle(), handles.data(), field, &dropped),
                   "ztbSparseSymbolToDenseArray");
  });
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

void requireSet(const Symbol& symbol) {
  if (symbol.type() != ZTB_SET) {
    throw py::value_error("symbol " + symbol.name() + " is no set");
  }
}

// The texts of `count` records as bytes; none at all where none are given.
std::vector<std::string> textsFrom(const py::object& texts, ssize_t count) {
  std::vector<std::string> given;
  if (texts.is_none()) {
    return given;
  }
  for (const py::handle text : texts) {
    given.push_back(textFromPython(text, "row " + std::to_string(given.size()) + ": "));
  }
  if (static_cast<ssize_t>(given.size()) != count) {
    throw py::value_error(std::to_string(given.size()) + " texts given for " +
                          std::to_string(count) + " records");
  }
  return given;
}

// A label of an axis, and how far into the cube its place there is.
struct AxisLabel {
  int label;
  ssize_t offset;
};

// The labels of an axis in the order of their numbers.
std::vector<AxisLabel> axisOf(const Symbol& set, ssize_t stride) {
  std::vector<AxisLabel> axis;
  for (const int label : labelsOf(set)) {
    axis.push_back({label, static_cast<ssize_t>(axis.size()) * stride});
  }
  std::ranges::sort(axis, {}, &AxisLabel::label);
  return axis;
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
  runWithoutInterpreter([&](Interruption& interruption) {
    forEachRecord(symbol, count, [&](ssize_t place, void* record) {
      if (place % recordsBetweenQuestions == 0) {
        interruption.check();
      }
      symbol.require(c__ztbgetrecordraw(symbol.database(), record, static_cast<int>(dimension),
                                        dimension == 0 ? noKeys.data() : number + place * dimension,
                                        value + place * slots),
                     "ztbGetRecordRaw");
    });
  });
  return py::make_tuple(keys, values);
}

py::list texts(const Symbol& symbol) {
  const ssize_t count = symbol.recordCount();
  py::list result(count);
  ztb::Text text;
  forEachRecord(symbol, count, [&](ssize_t place, void* record) {
    if (place % recordsBetweenQuestions == 0 && PyErr_CheckSignals() != 0) {
      throw py::error_already_set();
    }
    symbol.require(c__ztbgetelemtext(symbol.database(), record, text.buffer()), "ztbGetElemText");
    result[static_cast<std::size_t>(place)] = toPython(text.view());
  });
  return result;
}

void putRows(const Symbol& symbol, const Numbers& keys, const Values& values,
             const std::vector<int>& fields, NewLabels& newLabels) {
  const auto columns = static_cast<ssize_t>(fields.size());
  if (keys.ndim() != 2 || values.ndim() != 2 || values.shape(1) != columns ||
      values.shape(0) != keys.shape(0)) {
    throw py::value_error("keys and values are not the same number of rows, or values are not " +
                          std::to_string(columns) + " columns");
  }
  for (const int field : fields) {
    if (field < 0 || field >= symbol.valueCount()) {
      throw py::value_error("symbol " + symbol.name() + " has no field " + std::to_string(field));
    }
  }
  requireRecords(symbol);
  const RowOrder order = requireOrder(symbol, keys, newLabels);
  newLabels.add();
  const ssize_t count = keys.shape(0);
  const int* const numbers = keys.data();
  const double* const value = values.data();
  runWithoutInterpreter([&](Interruption&) {
    clear(symbol);
    if (count == 0) {
      return;
    }
    const auto keyOf = [&](ssize_t row) { return numbers + row * symbol.dimension(); };
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
    Filling filling(symbol);
    for (ssize_t place = 0; place < count; ++place) {
      const ssize_t row = fill(place);
      filling.add(keyOf(row), {.values = slots.data()});
    }
    if (!filling.takesContent()) {
      forEachRecord(symbol, count, [&](ssize_t place, void* record) {
        fill(place);
        for (std::size_t field = 0; field < static_cast<std::size_t>(symbol.valueCount());
             ++field) {
          symbol.require(fieldSetters[field](symbol.database(), record, slots[field]),
                         "ztbSetLevel");
        }
      });
    }
  });
}

void putElements(const Symbol& symbol, const Numbers& keys, const py::object& texts,
                 NewLabels& newLabels) {
  if (keys.ndim() != 2) {
    throw py::value_error("keys are not rows of label numbers");
  }
  const ssize_t count = keys.shape(0);
  const std::vector<std::string> given = textsFrom(texts, count);
  const Use use(*symbol.connection());
  requireSet(symbol);
  requireRecords(symbol);
  const RowOrder order = requireOrder(symbol, keys, newLabels);
  newLabels.add();
  const int* const numbers = keys.data();
  const auto textOf = [&](ssize_t place) {
    const std::size_t row = order.row(static_cast<std::size_t>(place));
    return given.empty() || given[row].empty() ? nullptr : given[row].c_str();
  };
  runWithoutInterpreter([&](Interruption&) {
    clear(symbol);
    Filling filling(symbol);
    for (ssize_t place = 0; place < count; ++place) {
      const auto row = static_cast<ssize_t>(order.row(static_cast<std::size_t>(place)));
      filling.add(numbers + row * symbol.dimension(), {.text = textOf(place)});
    }
    if (!filling.takesContent() && !given.empty()) {
      forEachRecord(symbol, count, [&](ssize_t place, void* record) {
        if (const char* const text = textOf(place); text != nullptr) {
          symbol.require(c__ztbsetelemtext(symbol.database(), record, text), "ztbSetElemText");
        }
      });
    }
  });
}

py::tuple toDense(const Symbol& symbol, const std::vector<Symbol>& domains, int field) {
  return symbol.type() == ZTB_SET ? toCube<int>(symbol, domains, field)
                                  : toCube<double>(symbol, domains, field);
}

void fromDense(const Symbol& symbol, const std::vector<Symbol>& domains, const Values& cube,
               bool keepZeros) {
  std::vector<void*> handles = handlesOf(symbol, domains);
  const std::vector<int> sizes = sizesOf(domains);
  requireSizes(domains, sizes, cube);
  requireCountable(sizes);
  if (symbol.type() != ZTB_PARAMETER) {
    throw py::value_error("symbol " + symbol.name() + " is no parameter");
  }
  const double* const cells = cube.data();
  runWithoutInterpreter([&](Interruption&) {
    clear(symbol);
    if (keepZeros) {
      symbol.require(c__ztbdensearraytosymbol(symbol.database(), symbol.handle(), handles.data(),
                                              cells, sizes.data()),
                     "ztbDenseArrayToSymbol");
    } else {
      symbol.require(
          c__ztbdensearrayslicestosymbol(symbol.database(), symbol.handle(), handles.data(),
                                         handles.data(), cells, sizes.data()),
          "ztbDenseArraySlicesToSymbol");
    }
  });
}

void elementsFromDense(const Symbol& symbol, const std::vector<Symbol>& domains,
                       const py::array_t<bool, py::array::c_style | py::array::forcecast>& cube) {
  static_cast<void>(handlesOf(symbol, domains));
  requireSizes(domains, sizesOf(domains), cube);
  requireSet(symbol);
  const std::size_t positions = domains.size();
  std::vector<std::vector<AxisLabel>> axes(positions);
  ssize_t stride = 1;
  for (std::size_t position = positions; position-- > 0;) {
    axes[position] = axisOf(domains[position], stride);
    stride *= cube.shape(static_cast<ssize_t>(position));
  }
  const bool* const cells = cube.data();
  const ssize_t count = cube.size();
  runWithoutInterpreter([&](Interruption&) {
    clear(symbol);
    Filling filling(symbol);
    std::vector<std::size_t> at(positions);
    std::array<int, ZTB_MAX_DIMENSION> key{};
    for (ssize_t visited = 0; visited < count; ++visited) {
      ssize_t cell = 0;
      for (std::size_t position = 0; position < positions; ++position) {
        cell += axes[position][at[position]].offset;
        key[position] = axes[position][at[position]].label;
      }
      if (cells[cell]) {
        filling.add(key.data(), {});
      }
      for (std::size_t position = positions; position-- > 0;) {
        if (++at[position] < axes[position].size()) {
          break;
        }
        at[position] = 0;
      }
    }
  });
}

namespace {

// What an alias stands for; any other symbol itself.
Symbol unaliased(const Symbol& symbol) {
  if (symbol.type() != ZTB_ALIAS) {
    return symbol;
  }
  void* target = nullptr;
  symbol.require(c__ztbfindsymbol(symbol.database(), symbol.name().c_str(), &target),
                 "ztbFindSymbol");
  return {symbol.connection(), target};
}

}  // namespace

void copyFrom(const Symbol& symbol, const Symbol& source) {
  // Turns are taken in one order everywhere, so that no two threads wait for each other.
  Connection* first = symbol.connection().get();
  Connection* second = source.connection().get();
  if (std::less<>()(second, first)) {
    std::swap(first, second);
  }
  const Use useFirst(*first);
  std::optional<Use> useSecond;
  if (first != second) {
    useSecond.emplace(*second);
  }
  const Symbol from = unaliased(source);
  if (from == unaliased(symbol)) {
    throw ztb::Error("ztbCopySymbol", "Cannot copy symbol " + source.name() + " onto " +
                                          (source == symbol ? "itself" : symbol.name()) +
                                          ": the copy would empty it first");
  }
  from.load();
  runWithoutInterpreter([&](Interruption&) {
    symbol.require(c__ztbcopysymbol(symbol.database(), symbol.handle(), from.handle()),
                   "ztbCopySymbol");
  });
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
