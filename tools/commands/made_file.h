// What the commands that make an exchange file of others have in common.
#ifndef ZTB_TOOLS_COMMANDS_MADE_FILE_H_
#define ZTB_TOOLS_COMMANDS_MADE_FILE_H_

#include <string>

#include "tools/files/formats_library.h"

namespace tool {

// Runs a job that has its options: makes the file `out`, "-" being standard output, and prints what
// is in it.
void makeFile(FormatsJob& job, FormatsJob::Making making, const std::string& out);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_MADE_FILE_H_
