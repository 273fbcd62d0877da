// What the commands that make an exchange file of others have in common.
#ifndef ZTB_TOOLS_COMMANDS_MADE_FILE_H_
#define ZTB_TOOLS_COMMANDS_MADE_FILE_H_

#include <functional>
#include <string>

#include "tools/commands/command_line.h"
#include "tools/files/formats_library.h"

namespace tool {

// The file that a command reads, and the one that it makes, which may be the same.
struct FileAndOut {
  std::string file;
  std::string out;
};
void addFileAndOut(Command command, FileAndOut& files);

// Runs a job that has its options: makes the file `out`, "-" being standard output, and prints what
// is in it. What is wrong with the input is printed, and Failure goes on.
void makeFile(FormatsJob& job, const std::string& out,
              const std::function<void(const std::string& path)>& make);
void makeFile(FormatsJob& job, FormatsJob::Making making, const std::string& out);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_MADE_FILE_H_
