// A run of an import: from its options, in words, to an exchange file or into a database.
#ifndef ZTB_FORMATS_IMPORT_RUN_H_
#define ZTB_FORMATS_IMPORT_RUN_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/format_table.h"
#include "formats/shown_names.h"
#include "formats/spooled_stream.h"
#include "formats/tables/table_import.h"
#include "tools/text/failure.h"

namespace formats {

// What a run did and found.
struct RunResult {
  std::size_t symbols = 0;
  std::size_t labels = 0;
  std::size_t records = 0;
  std::size_t problemCount = 0;
  // Lines, each with its end.
  std::string problems;
  std::string warnings;
  // Of files that stand under another name for a while; to be applied to all that is told.
  ShownNames names;
};

class ImportRun {
 public:
  // Takes an option of ztb import by its name without hyphens. Options that belong to a source
  // follow its "from". False for a name that is none; throws UsageError for a bad value.
  bool option(const std::string& name, const std::string& value);

  [[nodiscard]] bool hasSources() const { return !sources_.empty(); }

  // Makes an exchange file. With problems in the input nothing is written, and it throws Failure;
  // `result` has them then.
  void write(const std::string& path, bool shows, RunResult& result);
  // Adds the symbols to a database that has none of their names. With problems in the input, or a
  // name that is taken, the database is left as it was.
  void addTo(ztbRec* database, bool shows, RunResult& result);

 private:
  struct Source {
    std::string argument;
    const Format* format = nullptr;
    ImportSource tables;
  };

  Source& lastSource(const std::string& option);
  // Throws UsageError where the last source has the option already.
  void requireOnce(const std::string& option, const std::string& value, bool isThere) const;
  void checkUsage() const;
  static void resolve(Source& source);
  // Puts standard input into a file where a format needs one.
  void spool(RunResult& result);
  // Fills a database with what the sources have, and tells what is wrong with them.
  void fill(ztb::Database& database, RecordImport& records, ProblemList& problems,
            ProblemList& warnings, RunResult& result);

  std::vector<Source> sources_;
  std::optional<SpooledInput> spooled_;
  std::optional<std::string> folder_;
  std::string shownName_;
  std::string separator_ = ",";
  std::string decimal_ = ".";
  ztb::Store store_ = ztb::Store::map;
  bool checkDomains_ = false;
  bool skipEmpty_ = false;
  std::size_t maxErrors_ = 20;
  std::optional<std::size_t> chunkBytes_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_IMPORT_RUN_H_
