// Opens the exchange files that a new one is made of.
#ifndef ZTB_FORMATS_SETS_OPEN_FILES_H_
#define ZTB_FORMATS_SETS_OPEN_FILES_H_

#include <memory>
#include <vector>

#include "formats/sets/set_options.h"
#include "tools/files/exchange_file.h"

namespace formats {

// The files of a run. Throws Failure for what is missing or no such file; of several that cannot be
// opened the result of the run tells all.
std::vector<std::unique_ptr<tool::ExchangeFile>> openFiles(const SetRun& run);

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_OPEN_FILES_H_
