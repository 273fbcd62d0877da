// What is asked of files that are made of others.
#ifndef ZTB_FORMATS_SETS_SET_OPTIONS_H_
#define ZTB_FORMATS_SETS_SET_OPTIONS_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "formats/import_run.h"

namespace formats {

// Which value a record has that files have different ones of.
enum class Preferred { none, first, last };

enum class Statistic { none, sum, mean, min, max, count };

struct SetOptions {
  std::vector<std::string> files;
  // Of merge: the set of cases, empty without one.
  std::string caseSet;
  Preferred preferred = Preferred::none;
  // Of rename: old and new names.
  std::vector<std::pair<std::string, std::string>> symbols;
  std::vector<std::pair<std::string, std::string>> labels;
  // Of where.
  std::string condition;
  // Of where those that are looked at, of aggregate the one.
  std::vector<std::string> chosen;
  // Of aggregate.
  std::string by;
  Statistic statistic = Statistic::none;
  std::string field;
  std::string name;
  bool skipsMissing = false;

  std::size_t maxErrors = 20;
  // The name of the new file in messages.
  std::string shownName;
};

// Where a new file goes, and what is told of the way.
struct SetRun {
  const SetOptions& options;
  std::string path;
  std::string shownName;
  tool::Progress& progress;
  RunResult& result;

  // A folder for temporary files: where the new file comes, there is room.
  [[nodiscard]] std::string folder() const;
};

// Each makes the file of a run. Throws UsageError, Failure or Conflict, and nothing is written
// then.
void mergeFiles(const SetRun& run);
void concatenateFiles(const SetRun& run);
void renameIn(const SetRun& run);
void selectWhere(const SetRun& run);
void aggregateSymbol(const SetRun& run);

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_SET_OPTIONS_H_
