// A loaded model: the instance, its dictionary and its environment. The model handle of a database
// is a pointer to one.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_H_
#define ZTB_PROVIDERS_MODEL_MODEL_H_

#include <exception>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "providers/model/basis_file.h"
#include "providers/model/conflict.h"
#include "providers/model/dictionary.h"
#include "providers/model/environment.h"
#include "providers/model/instance.h"
#include "providers/model/ranging.h"

namespace lomu {

struct Model {
  // The notes of the reading go to the log.
  Model(const ModelData& data, std::shared_ptr<Environment> itsEnvironment,
        const DrivenNumbers& driven = {});

  // Throws ModelError that names the data with which the model cannot be solved, if there are any.
  void requireUsableData() const;

  // Finds out why the last solve had no solution, and leaves it as `conflict`. Throws ModelError.
  void explain(double mostSeconds);
  // Finds out how far costs and right-hand sides can move, and leaves it as `ranging`. Throws
  // ModelError.
  void findRanges();
  // A member of the conflict, such as "demand(oslo) >= 30", and what data drive its number.
  [[nodiscard]] std::string memberText(const ConflictMember& member) const;

  // The basis that the last solve left, to a file. Throws ModelError when it left none.
  void saveBasis(const std::string& file) const;
  // Has the next solver that is handed the model begin with the basis of a file; one of another
  // model is passed over. Throws ModelError for what is no such file.
  void loadBasis(const std::string& file);

  // Names as in the database.
  [[nodiscard]] std::string columnName(int column) const;
  [[nodiscard]] std::string rowName(int row) const;

  // A field, ZTB_LEVEL to ZTB_SCALE, of all elements of a variable or equation, in their order: as
  // many as there is place for. Gives how many there are. Throws ModelError for what there is not.
  int copyField(std::string_view symbol, int field, std::span<double> values) const;

  // Leaves the text of a failure as the message and in the log.
  void noteFailure(const std::exception& error) noexcept;

  Instance instance;
  Dictionary dictionary;
  std::shared_ptr<Environment> environment;
  int coldSolves = 0;              // how often a live solver was not believed
  bool startTaken = false;         // by the last solve
  bool basisTaken = false;         // likewise
  double seconds = 0;              // of the last solve, by the wall clock
  double processorSeconds = 0;     // and by that of the thread
  std::string message;             // why the last solve or call failed
  std::vector<std::string> notes;  // of the reading of the file, then of the dictionary
  std::string solver;              // of the last solve
  Ranging ranging;
  Conflict conflict;
  std::vector<std::string> conflictTexts;  // of its members

 private:
  [[nodiscard]] Basis basis() const;
};

// The text of an exception for a user.
const char* failureText(const std::exception& error) noexcept;

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_H_
