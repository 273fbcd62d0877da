// A run of an export: from its options, in words, to the files of another program.
#ifndef ZTB_FORMATS_EXPORT_RUN_H_
#define ZTB_FORMATS_EXPORT_RUN_H_

#include <string>
#include <vector>

#include "formats/import_run.h"
#include "tools/files/exchange_file.h"

namespace formats {

class ExportRun {
 public:
  // Takes an option of ztb export by its name without hyphens; false for a name that is none.
  bool option(const std::string& name, const std::string& value);

  // Writes from an exchange file, "-" being standard input.
  void write(const std::string& source, bool shows, RunResult& result);

 private:
  void checkUsage() const;
  void requireKnownEnding() const;
  [[nodiscard]] std::vector<const tool::FileSymbol*> chosenSymbols(
      const tool::ExchangeFile& file) const;
  void writeTable(const Format& format, const tool::ExchangeFile& file,
                  const std::vector<const tool::FileSymbol*>& symbols, const std::string& path,
                  tool::Progress& progress, RunResult& result) const;

  std::vector<std::string> symbols_;
  bool all_ = false;
  std::string target_;
  std::string targetOption_;
  std::string format_;
  std::string wide_;
  std::string separator_ = ",";
  std::string decimal_ = ".";
};

}  // namespace formats

#endif  // ZTB_FORMATS_EXPORT_RUN_H_
