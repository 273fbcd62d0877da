// Opens the exchange files that a new one is made of.
#ifndef ZTB_FORMATS_SETS_OPEN_FILES_H_
#define ZTB_FORMATS_SETS_OPEN_FILES_H_

#include <memory>
#include <string>
#include <vector>

#include "tools/files/exchange_file.h"
#include "tools/text/progress.h"

namespace formats {

// Throws MissingFile, or Failure for what is no such file.
std::vector<std::unique_ptr<tool::ExchangeFile>> openFiles(const std::vector<std::string>& paths,
                                                           tool::Progress& progress);

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_OPEN_FILES_H_
