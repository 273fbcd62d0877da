// A model as the extension module hands it to the Python layer.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_MODEL_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_MODEL_H_

#include <pybind11/pybind11.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>
#include <ztb/model.hpp>

#include "bindings/python/native/connection.h"
#include "bindings/python/native/database.h"
#include "bindings/python/native/strings.h"
#include "bindings/python/native/symbol.h"

namespace python {

// What a solve left.
struct SolveResult {
  int status = 0;
  int solveStatus = 0;
  double objective = 0;
  double bound = 0;
  double seconds = 0;
  double processorSeconds = 0;
  double iterations = 0;
};

// How a solve is watched and what it is asked for.
struct SolveSettings {
  using Options = std::vector<std::pair<std::string, std::string>>;

  // Unless null, called about every `every` seconds with those that passed, the objective of the
  // best point so far and the bound; ends the solve when it raises, or gives False.
  py::handle progress;
  double every = 0;
  // Names and texts, which are set before and stay.
  Options options;
  // The limit of this solve, where there is one.
  std::optional<std::string> timeLimit;
};

// A model of the C++ wrapper, and the database that it is tied to once it is. After close() every
// use fails with ztb::Error. The database, whose
// symbols read solutions out of the model, does not keep it alive: the Python layer does.
class Model {
 public:
  explicit Model(ztb::Model model) : model_(std::move(model)) {}

  // The labels of one position: distinct ones, and the place among them for each row or column.
  using Position = std::pair<py::list, Numbers>;

  void setObjective(const py::str& name, bool maximize, double constant);
  // Adds special ordered sets of one kind, as many as `count`, each with a name as that of a
  // column. Members are told by their set, in ascending order of these, column and weight.
  void addSets(const py::object& name, const std::vector<Position>& positions, int count, int kind,
               const Numbers& sets, const Numbers& columns, const Values& weights);
  // Add a family of columns or rows, one for each lower bound or right-hand side, and give the
  // number of the first. `name` is that of the family, or a list with a whole name for each.
  int addColumns(const py::object& name, const std::vector<Position>& positions,
                 const Numbers& kinds, const Values& lower, const Values& upper);
  int addRows(const py::object& name, const std::vector<Position>& positions, const Numbers& types,
              const Values& rhs, const Values& range);
  void addTerms(const Numbers& rows, const Numbers& columns, const Values& values);
  void drive(const py::str& statement);

  // Frees the model and the database that it is tied to. May be called again.
  void close();
  [[nodiscard]] bool closed() const noexcept { return !model_; }

  [[nodiscard]] py::str option(const py::str& name);
  [[nodiscard]] int kind() { return model().kind(); }
  // Waits for the turn with the tied database.
  [[nodiscard]] int updatedKind();
  [[nodiscard]] py::list notes();
  void readBasis(const py::object& path) { model().readBasis(pathFromPython(path)); }
  void writeBasis(const py::object& path) { model().writeBasis(pathFromPython(path)); }
  [[nodiscard]] bool basisTaken() { return model().basisTaken(); }
  void write(const py::object& path) { model().write(pathFromPython(path)); }
  [[nodiscard]] bool startTaken() { return model().startTaken(); }

  // Ties an empty database to the model, which is then built and driven no further.
  void tie(const Database& database);
  // Writes the records of `data` into the model; the number of those that met nothing.
  int update(const Symbol& modelSymbol, int action, const Symbol& data, int missing);
  // Solves without the interpreter's lock, and gives what the solve left. A signal whose handler
  // raises ends it. All of it is in one turn: another thread's solve of the model has none of the
  // settings.
  SolveResult solve(py::handle solver, const SolveSettings& settings);
  // The same of the last solve, which an exception of the callback or Ctrl-C may have ended.
  SolveResult result();
  // A field of all records of a variable or equation, in their order, as a new array. Throws
  // ztb::Error of the kind notFound where the model has none of the name.
  py::object field(py::handle symbol, int number);
  // All fields, a row for each.
  Values fields(const py::str& symbol);
  // Why the last solve had no solution: whether that was shown to be irreducible, whether it is by
  // integers, and of each member the text, the part and the number.
  py::tuple explain(double seconds);
  // The ranges of costs and of right-hand sides, as (symbol, labels, lower, upper).
  py::tuple ranging();

 private:
  friend class Driving;

  ztb::Model& model();
  ztb::ModelTie& requireTie();
  int countOf(const std::string& symbol);

  std::optional<ztb::Model> model_;
  Shared connection_;
  std::optional<ztb::ModelTie> tie_;
  // Of the symbols that were asked for: the number of records, which stays once a model is tied.
  std::unordered_map<std::string, int> counts_;
};

// Adds the class to the module.
void bindModel(py::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_MODEL_H_
