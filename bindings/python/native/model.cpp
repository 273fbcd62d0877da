#include "bindings/python/native/model.h"

#include <pybind11/stl.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <ztb/model_fills.hpp>

#include "bindings/python/native/hand_made.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

using Clock = std::chrono::steady_clock;

// Builds the names of a family of rows or columns, as name['label','label'].
class FamilyNames {
 public:
  FamilyNames(const py::object& name, const std::vector<Model::Position>& positions,
              py::ssize_t count)
      : positions_(positions) {
    if (py::isinstance<py::list>(name)) {
      for (const py::handle one : name) whole_.push_back(fromPython(one));
      if (static_cast<py::ssize_t>(whole_.size()) != count) {
        throw py::value_error(std::to_string(whole_.size()) + " names for " +
                              std::to_string(count) + " rows or columns");
      }
      return;
    }
    name_ = fromPython(name);
    for (const Model::Position& position : positions) {
      if (position.second.ndim() != 1 || position.second.size() != count) {
        throw py::value_error(name_ + ": " + std::to_string(count) + " rows or columns, " +
                              std::to_string(position.second.size()) + " labels for them");
      }
      quoted_.emplace_back();
      for (const py::handle label : position.first) {
        quoted_.back().push_back(quoted(labelFromPython(label)));
      }
    }
  }

  // REQUIRES: 0 <= number < count.
  [[nodiscard]] std::string at(py::ssize_t number) const {
    if (!whole_.empty()) return whole_[static_cast<std::size_t>(number)];
    std::string text = name_;
    for (std::size_t k = 0; k < positions_.size(); ++k) {
      const int place = positions_[k].second.at(number);
      if (place < 0 || static_cast<std::size_t>(place) >= quoted_[k].size()) {
        throw py::value_error(name_ + ": there is no label number " + std::to_string(place));
      }
      text += (k == 0 ? '[' : ',') + quoted_[k][static_cast<std::size_t>(place)];
    }
    return positions_.empty() ? text : text + ']';
  }

 private:
  static std::string quoted(const std::string& label) {
    std::string text = "'";
    for (const char c : label) {
      text += c;
      if (c == '\'') text += c;
    }
    return text + '\'';
  }

  std::vector<std::string> whole_;
  std::string name_;
  const std::vector<Model::Position>& positions_;
  std::vector<std::vector<std::string>> quoted_;
};

void requireSameSize(const py::array& one, const py::array& other) {
  if (one.ndim() != 1 || other.ndim() != 1 || one.size() != other.size()) {
    throw py::value_error("arrays of the same length are expected, not of " +
                          std::to_string(one.size()) + " and " + std::to_string(other.size()));
  }
}

// What is asked now and then during a solve.
class SolveWatch {
 public:
  // Without `progress`, nobody is told.
  SolveWatch(const ztb::Model& model, Interruption& interruption, py::handle progress, double every)
      : model_(model),
        interruption_(interruption),
        progress_(progress),
        every_(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(every))),
        next_(start_ + every_) {}

  static int asked(void* watch) { return static_cast<SolveWatch*>(watch)->ends() ? 1 : 0; }

  // Throws what the callback raised. REQUIRES: the interpreter's lock.
  void raise() {
    if (error_) throw py::error_already_set(std::move(*error_));
  }

 private:
  bool ends() {
    if (ended_ || interruption_.asked()) return true;
    if (!progress_ || Clock::now() < next_) return false;
    const py::gil_scoped_acquire acquired;
    try {
      const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
      const ztb::Model::Progress progress = model_.progress();
      ended_ = progress_(seconds, progress.objective, progress.bound).is(py::bool_(false));
    } catch (py::error_already_set& error) {
      error_.emplace(std::move(error));
      ended_ = true;
    }
    next_ = Clock::now() + every_;
    return ended_;
  }

  const ztb::Model& model_;
  Interruption& interruption_;
  py::handle progress_;
  Clock::duration every_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_;
  bool ended_ = false;
  std::optional<py::error_already_set> error_;
};

// The value of an option of a model.
std::string optionOf(const ztb::Model& model, const std::string& name) {
  std::array<char, 4096> value{};
  if (ztbModelGetOption(model.handle(), name.c_str(), value.data(),
                        static_cast<int>(value.size())) == 0) {
    throw ztb::Error("ztbModelGetOption", model.message());
  }
  return value.data();
}

// A limit of time that a model has in its scope, if there is one; that of before comes back.
class TimeLimit {
 public:
  TimeLimit(ztb::Model& model, const std::optional<std::string>& seconds) : model_(model) {
    if (!seconds) return;
    before_ = optionOf(model, kName);
    model.setOption(kName, *seconds);
  }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;
  ~TimeLimit() {
    if (before_) ztbModelSetOption(model_.handle(), kName, before_->c_str());
  }

 private:
  static constexpr const char* kName = "TimeLimit";

  ztb::Model& model_;
  std::optional<std::string> before_;
};

// A model that is watched in its scope.
class Watched {
 public:
  Watched(ztbModel* model, SolveWatch& watch) : model_(model) {
    ztbModelSetWatch(model_, &SolveWatch::asked, &watch);
  }
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;
  ~Watched() { ztbModelSetWatch(model_, nullptr, nullptr); }

 private:
  ztbModel* model_;
};

}  // namespace

void Model::setObjective(const py::str& name, bool maximize, double constant) {
  model().setObjective(fromPython(name), maximize, constant);
}

int Model::addColumns(const py::object& name, const std::vector<Position>& positions,
                      const Numbers& kinds, const Values& lower, const Values& upper) {
  requireSameSize(lower, kinds);
  requireSameSize(lower, upper);
  const FamilyNames names(name, positions, lower.size());
  int first = 0;
  for (py::ssize_t k = 0; k < lower.size(); ++k) {
    const int number = model().addColumn(names.at(k), lower.at(k), upper.at(k), kinds.at(k));
    if (k == 0) first = number;
  }
  return first;
}

int Model::addRows(const py::object& name, const std::vector<Position>& positions,
                   const Numbers& types, const Values& rhs, const Values& range) {
  requireSameSize(rhs, types);
  requireSameSize(rhs, range);
  const FamilyNames names(name, positions, rhs.size());
  int first = 0;
  for (py::ssize_t k = 0; k < rhs.size(); ++k) {
    const int number = model().addRow(names.at(k), types.at(k), rhs.at(k), range.at(k));
    if (k == 0) first = number;
  }
  return first;
}

void Model::addSets(const py::object& name, const std::vector<Position>& positions, int count,
                    int kind, const Numbers& sets, const Numbers& columns, const Values& weights) {
  requireSameSize(sets, columns);
  requireSameSize(sets, weights);
  const FamilyNames names(name, positions, count);
  const auto size = static_cast<std::size_t>(sets.size());
  for (std::size_t first = 0, end = 0; first < size; first = end) {
    const int set = sets.data()[first];
    while (end < size && sets.data()[end] == set) ++end;
    model().addSet(names.at(set), kind, {columns.data() + first, end - first},
                   {weights.data() + first, end - first});
  }
}

void Model::addTerms(const Numbers& rows, const Numbers& columns, const Values& values) {
  requireSameSize(rows, columns);
  requireSameSize(rows, values);
  const int* const row = rows.data();
  const int* const column = columns.data();
  const double* const value = values.data();
  for (py::ssize_t k = 0; k < values.size(); ++k) model().addTerm(row[k], column[k], value[k]);
}

void Model::drive(const py::str& statement) {
  model().drive(fromPython(statement));
}

py::str Model::option(const py::str& name) {
  return toPython(optionOf(model(), fromPython(name)));
}

py::list Model::notes() {
  py::list result;
  for (int n = 0; n < model().noteCount(); ++n) result.append(toPython(model().note(n)));
  return result;
}

void Model::tie(const Database& database) {
  const Shared& connection = database.connection();
  const Use use(*connection);
  tie_.emplace(connection->database(), model());
  connection_ = connection;
}

ztb::Model& Model::model() {
  if (!model_) throw ztb::Error("Model", "The model is closed", ztb::ErrorKind::closed);
  return *model_;
}

// A solve of another thread ends first. The database goes first: its symbols read the solution out
// of the model.
void Model::close() {
  if (!model_) return;
  if (const Shared connection = std::exchange(connection_, nullptr)) {
    const Use use(*connection);
    const py::gil_scoped_release released;
    tie_.reset();
    connection->close();
  }
  model_.reset();
}

ztb::ModelTie& Model::requireTie() {
  static_cast<void>(model());
  if (!tie_) throw py::value_error("the model is not tied to a database");
  static_cast<void>(connection_->database());
  return *tie_;
}

int Model::update(const Symbol& modelSymbol, int action, const Symbol& data, int missing) {
  ztb::ModelTie& tie = requireTie();
  const Use use(*connection_);
  connection_->requireSame(*modelSymbol.connection());
  connection_->requireSame(*data.connection());
  return tie.update(modelSymbol.client(), static_cast<ztb::Action>(action), data.client(),
                    static_cast<ztb::Missing>(missing));
}

int Model::updatedKind() {
  requireTie();
  const Use use(*connection_);
  return model().updatedKind();
}

SolveResult Model::solve(py::handle solver, const SolveSettings& settings) {
  ztb::ModelTie& tie = requireTie();
  const std::string name = fromPython(solver);
  const Use use(*connection_);
  for (const auto& [option, value] : settings.options) model().setOption(option, value);
  const TimeLimit limit(model(), settings.timeLimit);
  std::optional<SolveWatch> watch;
  runWithoutInterpreter([&](Interruption& interruption) {
    watch.emplace(model(), interruption, settings.progress, settings.every);
    const Watched watched(model().handle(), *watch);
    tie.solve(name);
  });
  watch->raise();
  return result();
}

SolveResult Model::result() {
  return {.status = model().status(),
          .solveStatus = model().solveStatus(),
          .objective = model().objective(),
          .bound = model().bound(),
          .seconds = model().seconds(),
          .processorSeconds = model().processorSeconds(),
          .iterations = model().iterations()};
}

int Model::countOf(const std::string& symbol) {
  const auto known = counts_.find(symbol);
  if (known != counts_.end()) return known->second;
  const int count = ztbModelGetField(model().handle(), symbol.c_str(), ZTB_LEVEL, nullptr, 0);
  if (count < 0) throw ztb::Error("ztbModelGetField", model().message(), ztb::ErrorKind::notFound);
  return counts_[symbol] = count;
}

py::object Model::field(py::handle symbol, int number) {
  requireTie();
  const Use use(*connection_);
  const std::string name = fromPython(symbol);
  const int count = countOf(name);
  // As pybind11's own constructor, which takes three times as long.
  const auto& numpy = py::detail::npy_api::get();
  const std::array<Py_intptr_t, 1> shape{count};
  auto array = py::reinterpret_steal<py::object>(
      numpy.PyArray_NewFromDescr_(numpy.PyArray_Type_, py::dtype::of<double>().release().ptr(), 1,
                                  shape.data(), nullptr, nullptr, 0, nullptr));
  if (!array) throw py::error_already_set();
  auto* const values = reinterpret_cast<double*>(py::detail::array_proxy(array.ptr())->data);
  ztbModelGetField(model().handle(), name.c_str(), number, values, count);
  return array;
}

Values Model::fields(const py::str& symbol) {
  requireTie();
  const Use use(*connection_);
  const std::string name = fromPython(symbol);
  const int count = countOf(name);
  Values values({static_cast<py::ssize_t>(ztb::fieldCount), static_cast<py::ssize_t>(count)});
  for (int number = 0; number < static_cast<int>(ztb::fieldCount); ++number) {
    ztbModelGetField(model().handle(), name.c_str(), number, values.mutable_data(number, 0), count);
  }
  return values;
}

py::tuple Model::explain(double seconds) {
  requireTie();
  const Use use(*connection_);
  ztb::Model::Conflict conflict;
  runWithoutInterpreter([&](Interruption& interruption) {
    SolveWatch watch(model(), interruption, {}, 0);
    const Watched watched(model().handle(), watch);
    conflict = model().explain(seconds);
  });
  py::list members;
  for (const auto& member : conflict.members) {
    members.append(py::make_tuple(toPython(member.text), member.part, member.number));
  }
  return py::make_tuple(conflict.irreducible, conflict.byIntegers, conflict.condition, members);
}

py::tuple Model::ranging() {
  requireTie();
  const Use use(*connection_);
  ztb::Model::Ranging ranging;
  runWithoutInterpreter([&](Interruption& interruption) {
    SolveWatch watch(model(), interruption, {}, 0);
    const Watched watched(model().handle(), watch);
    ranging = model().ranging();
  });
  const auto listOf = [](const std::vector<ztb::Model::Ranging::Range>& ranges) {
    py::list result;
    for (const auto& range : ranges) {
      py::list labels;
      for (const std::string& label : range.labels) labels.append(toPython(label));
      result.append(
          py::make_tuple(toPython(range.symbol), py::tuple(labels), range.lower, range.upper));
    }
    return result;
  };
  return py::make_tuple(listOf(ranging.costs), listOf(ranging.sides));
}

namespace {

// The model, and the names of the parameters among the records that it did not take.
py::tuple openModel(const std::string& file, const std::string& dataFile, const Database* records) {
  std::optional<ztb::Model> model;
  std::optional<ztb::DatabaseFills> fills;
  std::optional<Use> use;
  if (records != nullptr) use.emplace(*records->connection());
  runWithoutInterpreter([&](Interruption&) {
    if (records == nullptr) {
      model = ztb::Model::open(file, dataFile);
      return;
    }
    fills.emplace(records->connection()->database());
    model = ztb::Model::open(file, dataFile, fills->all());
  });
  py::list left;
  if (fills) {
    for (const std::string& name : fills->parametersLeft()) left.append(toPython(name));
  }
  return py::make_tuple(Model(std::move(*model)), left);
}

}  // namespace

void bindModel(py::module_& module) {
  py::class_<Model> type(module, "Model", py::is_final());
  refuseHandMade(type);
  type.def("set_objective", &Model::setObjective)
      .def("add_columns", &Model::addColumns)
      .def("add_rows", &Model::addRows)
      .def("add_sets", &Model::addSets)
      .def("add_terms", &Model::addTerms)
      .def("drive", &Model::drive)
      .def("option", &Model::option)
      .def("close", &Model::close)
      .def_property_readonly("closed", &Model::closed)
      .def("kind", &Model::kind)
      .def("updated_kind", &Model::updatedKind)
      .def("notes", &Model::notes)
      .def("tie", &Model::tie)
      .def("update", &Model::update)
      .def("fields", &Model::fields)
      .def("explain", &Model::explain)
      .def("ranging", &Model::ranging)
      .def("read_basis", &Model::readBasis)
      .def("write_basis", &Model::writeBasis)
      .def("write", &Model::write)
      .def("start_taken", &Model::startTaken)
      .def("basis_taken", &Model::basisTaken);
  module.def("new_model", [] { return Model(ztb::Model()); });
  module.def("open_model",
             [](const py::object& path, const py::object& data, const Database* records) {
               const std::string file = pathFromPython(path);
               const std::string dataFile = data.is_none() ? std::string() : pathFromPython(data);
               return openModel(file, dataFile, records);
             });
  module.def("status_text", [](int status) { return std::string(ztbModelStatusText(status)); });
  module.def("solve_status_text",
             [](int status) { return std::string(ztbModelSolveStatusText(status)); });
}

}  // namespace python
