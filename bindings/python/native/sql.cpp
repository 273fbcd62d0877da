#include "bindings/python/native/sql.h"

#include <pybind11/numpy.h>
#include <ztb/sql.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bindings/python/native/database.h"
#include "bindings/python/native/message.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

using Named = std::pair<py::str, const Database*>;

struct CloseSql {
  void operator()(ztbSql* sql) const { ztbSqlClose(&sql); }
};
struct CloseRows {
  void operator()(ztbSqlRows* rows) const { ztbSqlRowsClose(&rows); }
};
using Rows = std::unique_ptr<ztbSqlRows, CloseRows>;

// A column of a result: doubles as long as there are only reals and nulls, which are NaNs there,
// and Python's own objects from the first other thing on.
class Column {
 public:
  void add(const ztbSqlRows* rows, int column) {
    const int type = ztbSqlType(rows, column);
    if (type != ZTB_SQL_NULL && type != ZTB_SQL_REAL) {
      toObjects();
    }
    if (!isObjects_) {
      isNull_.push_back(type == ZTB_SQL_NULL);
      reals_.push_back(type == ZTB_SQL_NULL ? std::numeric_limits<double>::quiet_NaN()
                                            : ztbSqlReal(rows, column));
      return;
    }
    switch (type) {
      case ZTB_SQL_NULL:
        objects_.append(py::none());
        break;
      case ZTB_SQL_INTEGER:
        objects_.append(ztbSqlInteger(rows, column));
        break;
      case ZTB_SQL_REAL:
        objects_.append(ztbSqlReal(rows, column));
        break;
      case ZTB_SQL_BLOB: {
        const auto* bytes = static_cast<const char*>(ztbSqlBlob(rows, column));
        objects_.append(py::bytes(bytes, static_cast<std::size_t>(ztbSqlSize(rows, column))));
        break;
      }
      default: {
        const char* text = ztbSqlText(rows, column);
        const auto size = static_cast<std::size_t>(ztbSqlSize(rows, column));
        objects_.append(toPython(std::string_view(text, size)));
      }
    }
  }

  [[nodiscard]] py::object result() const {
    return isObjects_ ? py::object(objects_)
                      : py::array_t<double>(static_cast<py::ssize_t>(reals_.size()), reals_.data());
  }

 private:
  void toObjects() {
    if (isObjects_) {
      return;
    }
    isObjects_ = true;
    for (std::size_t row = 0; row < reals_.size(); ++row) {
      objects_.append(isNull_[row] ? py::object(py::none()) : py::object(py::float_(reals_[row])));
    }
  }

  std::vector<double> reals_;
  std::vector<bool> isNull_;
  py::list objects_;
  bool isObjects_ = false;
};

long long integerFrom(const py::object& value, int number) {
  const auto integer = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
  if (!integer) {
    throw py::error_already_set();
  }
  int overflow = 0;
  const long long result = PyLong_AsLongLongAndOverflow(integer.ptr(), &overflow);
  if (overflow != 0) {
    throw py::value_error("parameter " + std::to_string(number) +
                          " is an integer beyond the 64 bits that SQL has");
  }
  return result;
}

int sizeOf(const std::string& bytes, int number) {
  if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    throw py::value_error("parameter " + std::to_string(number) +
                          " is longer than the 2^31 bytes that SQL has");
  }
  return static_cast<int>(bytes.size());
}

void bindOne(ztbSqlRows* rows, int number, const py::object& value) {
  // Integers of numpy are no int of Python, but give one.
  if (value.is_none()) {
    ztbSqlBindNull(rows, number);
  } else if (PyIndex_Check(value.ptr()) != 0) {
    ztbSqlBindInteger(rows, number, integerFrom(value, number));
  } else if (py::isinstance(value, py::module_::import("numbers").attr("Real"))) {
    ztbSqlBindReal(rows, number, py::float_(value).cast<double>());
  } else if (py::isinstance<py::bytes>(value)) {
    const auto bytes = value.cast<std::string>();
    ztbSqlBindBlob(rows, number, bytes.data(), sizeOf(bytes, number));
  } else {
    const std::string text =
        PyUnicode_Check(value.ptr()) != 0 ? bytesOfText(value) : labelFromPython(value);
    ztbSqlBindChars(rows, number, text.data(), sizeOf(text, number));
  }
}

void bind(ztbSqlRows* rows, const py::sequence& parameters) {
  const int count = ztbSqlParameterCount(rows);
  if (static_cast<int>(py::len(parameters)) != count) {
    const std::size_t given = py::len(parameters);
    throw py::value_error("the query has " + std::to_string(count) +
                          (count == 1 ? " parameter, " : " parameters, ") + std::to_string(given) +
                          (given == 1 ? " is given" : " are given"));
  }
  for (int number = 1; number <= count; ++number) {
    bindOne(rows, number, parameters[static_cast<std::size_t>(number) - 1]);
  }
}

// Lets other threads run, and tells whether a signal handler raised something.
int askForSignals(void* /*owner*/) {
  { const py::gil_scoped_release released; }
  return PyErr_CheckSignals();
}

// The names of the columns, and for each its content. Each database is used in its turn.
py::tuple query(const std::vector<Named>& databases, const py::str& text,
                const py::sequence& parameters) {
  std::vector<std::shared_ptr<Connection>> connections;
  for (const auto& [name, database] : databases) {
    connections.push_back(database->connection());
  }
  // Two threads that query the same databases take them in the same order.
  std::ranges::sort(connections);
  connections.erase(std::unique(connections.begin(), connections.end()), connections.end());
  std::vector<std::unique_ptr<Use>> turns;
  for (const auto& connection : connections) {
    turns.push_back(std::make_unique<Use>(*connection));
  }
  Message message{};
  const auto size = static_cast<int>(message.size());
  ztbSql* opened = nullptr;
  require(ztbSqlOpen(&opened, message.data(), size), message, "ztbSqlOpen");
  const std::unique_ptr<ztbSql, CloseSql> sql(opened);
  for (const auto& [name, database] : databases) {
    require(ztbSqlAttach(opened, fromPython(name).c_str(), database->connection()->handle(),
                         message.data(), size),
            message, "ztbSqlAttach");
  }
  ztbSqlAsk(opened, askForSignals, nullptr);
  ztbSqlRows* begun = nullptr;
  require(ztbSqlQuery(&begun, opened, fromPython(text).c_str(), message.data(), size), message,
          "ztbSqlQuery");
  const Rows rows(begun);
  bind(begun, parameters);
  std::vector<Column> columns(static_cast<std::size_t>(ztbSqlColumnCount(begun)));
  int state = 0;
  while ((state = ztbSqlNext(begun)) > 0) {
    for (std::size_t column = 0; column < columns.size(); ++column) {
      columns[column].add(begun, static_cast<int>(column));
    }
  }
  if (PyErr_Occurred() != nullptr) {
    throw py::error_already_set();
  }
  if (state < 0) {
    throw ztb::Error("ztbSqlNext", ztbSqlMessage(begun));
  }
  py::list names;
  py::list contents;
  for (std::size_t column = 0; column < columns.size(); ++column) {
    names.append(toPython(ztbSqlColumnName(begun, static_cast<int>(column))));
    contents.append(columns[column].result());
  }
  return py::make_tuple(names, contents);
}

}  // namespace

void bindSql(py::module_& module) {
  module.def("sql", &query);
}

}  // namespace python
