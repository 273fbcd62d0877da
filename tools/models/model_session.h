// A model, and a database of its own that it is tied to: what `ztb solve` and `ztb sweep` work on.
//
// A parameter `price` drives the columns price_var of the model, which stand in its file or come of
// a statement such as "price(food) = cost of buy". Data files and the command line name parameters,
// variables and equations of the model by their names in the database.
#ifndef ZTB_TOOLS_MODELS_MODEL_SESSION_H_
#define ZTB_TOOLS_MODELS_MODEL_SESSION_H_

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>
#include <ztb/model.hpp>

#include "tools/models/model_fills.h"

namespace tool {

// Opens a model file; `dataFile` belongs to a .mod and may be empty, as does what fills its sets
// and parameters. Throws Failure.
ztb::Model openModel(const std::string& file, const std::string& dataFile,
                     ModelFills* fills = nullptr);

class ModelSession {
 public:
  // When the database is made. A model that is solved once, with no data and no symbol read, needs
  // none, and then the libraries of the database are not opened.
  enum class Tied { atOnce, whenAsked };

  // Opens a model file; `dataFile` belongs to a .mod and may be empty, as may what fills its sets
  // and parameters. `drives` are statements of what symbols drive in it. Throws Failure.
  ModelSession(const std::string& modelFile, const std::string& dataFile,
               ModelFills* fills = nullptr, const std::vector<std::string>& drives = {},
               Tied tied = Tied::atOnce);
  ModelSession(const ModelSession&) = delete;
  ModelSession& operator=(const ModelSession&) = delete;

  [[nodiscard]] ztb::Model& model() { return model_; }
  // Made now where they were not yet; all below but solve(), standardSolver() and notes() REQUIRE
  // that they are there.
  [[nodiscard]] ztb::Database& database();
  [[nodiscard]] ztb::ModelTie& tie();
  [[nodiscard]] const std::string& file() const { return file_; }

  // Solves, through the database where there is one. Throws ztb::Error.
  void solve(const std::string& solver);

  // The solver for the kind that the next solve will find, or that a solve will find once
  // parameters were applied.
  [[nodiscard]] std::string standardSolver();
  [[nodiscard]] std::string standardSolverOfParameters();

  // Updates the model; the same as tie().update.
  int update(const ztb::Symbol& modelSymbol, ztb::Action action, const ztb::Symbol& data,
             ztb::Missing missing);

  // What data drive in the model, to be put behind a message that something does not.
  [[nodiscard]] std::string drivingText() const;
  // Whether the model has columns NAME_var.
  [[nodiscard]] bool drives(const std::string& name) const;
  // The parameter that drives NAME_var, made without records when it is first asked for. It has
  // another name where a variable or equation of the model has this one. Throws Failure when the
  // model has no such columns or they have another dimension.
  ztb::Symbol parameter(const std::string& name, int dimension);
  // Writes the parameter's records into the model; columns without a record go back to their first
  // value. Gives the records that met no column. Throws Failure that names the first record whose
  // value no column can have.
  int applyParameter(const ztb::Symbol& parameter);

  // What there is to be set by name, and the names of all variables and equations, to be put behind
  // a message that something is neither.
  [[nodiscard]] std::string settableText() const;
  [[nodiscard]] std::string solvedText() const;

  // What the reading of the file noted, and names that had to be changed: all, or one line with
  // their count and the first.
  [[nodiscard]] std::vector<std::string> notes(bool all) const;

  // Puts the model back to how it was opened and gives it a database of its own anew, without a
  // live solver: what is solved from then on depends on nothing that was solved or applied before.
  // Symbols of the database of before are gone.
  void renew();

 private:
  [[nodiscard]] std::vector<std::string> driving() const;

  std::string file_;
  ztb::Model model_;
  std::optional<ztb::Database> database_;
  std::optional<ztb::ModelTie> tie_;
  std::map<std::string, ztb::Symbol> parameters_;  // by folded NAME
  std::map<std::string, ztb::Symbol> columns_;     // that a parameter drives, by its own name
};

// The members of a conflict with `separator` between them, and what is to be known of them all.
std::string conflictText(const ztb::Model::Conflict& conflict, const std::string& separator);

// The first names of a list, as "a, b and c" or "a, b and 8 more".
std::string listed(const std::vector<std::string>& names);

// Throws Failure where no file can be made or replaced, before any work is done for it.
void requirePlace(const std::string& out);

// Throws UsageError when the result file `out` is one of the files that are read.
void refuseReplacing(std::initializer_list<std::string> inputs, const std::string& out);

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_MODEL_SESSION_H_
