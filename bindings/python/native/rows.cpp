#include "bindings/python/native/rows.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "bindings/python/native/filling.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/records.h"
#include "bindings/python/native/row_order.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

using py::ssize_t;

// Calls `visit` with the places and records of a symbol, `count` at most.
template <class Visit>
void forEachRecord(const Symbol& symbol, ssize_t count, Visit&& visit) {
  ssize_t place = 0;
  for (const ztb::Record& record : symbol.client().records()) {
    if (place == count) {
      break;
    }
    visit(place++, record);
  }
}

// How many records there are, `most` at most.
ssize_t countOf(const Symbol& symbol, const std::optional<ssize_t>& most) {
  const ssize_t count = symbol.recordCount();
  return most ? std::clamp<ssize_t>(*most, 0, count) : count;
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

// The values that a new record of an empty symbol has: a record with this key shows them, and is
// taken away again.
FieldValues defaults(const Symbol& symbol, const int* key) {
  Filling(symbol).add(key, {});
  std::array<int, ZTB_MAX_DIMENSION> numbers{};
  FieldValues values{};
  forEachRecord(symbol, 1, [&](ssize_t, const ztb::Record& record) {
    record.raw(numbers.data(), values.data());
  });
  clear(symbol);
  return values;
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

}  // namespace

py::tuple rows(const Symbol& symbol, const std::optional<py::ssize_t>& most) {
  const ssize_t count = countOf(symbol, most);
  const ssize_t dimension = symbol.dimension();
  const ssize_t slots = symbol.valueCount();
  py::array_t<int> keys({count, dimension});
  py::array_t<double> values({count, slots});
  int* const number = keys.mutable_data();
  double* const value = values.mutable_data();
  // A scalar has no place for keys, which the library is given all the same.
  std::array<int, ZTB_MAX_DIMENSION> noKeys{};
  runWithoutInterpreter([&](Interruption& interruption) {
    forEachRecord(symbol, count, [&](ssize_t place, const ztb::Record& record) {
      if (place % recordsBetweenQuestions == 0) {
        interruption.check();
      }
      record.raw(dimension == 0 ? noKeys.data() : number + place * dimension,
                 value + place * slots);
    });
  });
  return py::make_tuple(keys, values);
}

py::list texts(const Symbol& symbol, const std::optional<py::ssize_t>& most) {
  const ssize_t count = countOf(symbol, most);
  py::list result(count);
  forEachRecord(symbol, count, [&](ssize_t place, const ztb::Record& record) {
    if (place % recordsBetweenQuestions == 0 && PyErr_CheckSignals() != 0) {
      throw py::error_already_set();
    }
    result[static_cast<std::size_t>(place)] = toPython(record.text());
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
    FieldValues slots{};
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
      filling.writeContents([&](std::size_t place) {
        fill(static_cast<ssize_t>(place));
        return ztb::detail::Content{.values = slots.data()};
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
      filling.writeContents([&](std::size_t place) {
        return ztb::detail::Content{.text = textOf(static_cast<ssize_t>(place))};
      });
    }
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
  FieldValues values{};
  for (int more = violation != nullptr ? 1 : 0; more != 0;) {
    symbol.require(c__ztbgetdvindicator(symbol.database(), violation, buffer.data()),
                   "ztbGetDVIndicator");
    outside.insert(outside.end(), buffer.data(), buffer.data() + dimension);
    const ztb::detail::OwnedRecord record(
        symbol.database(), c__ztbgetdvsymbolrecordpy(symbol.database(), violation, &status));
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
