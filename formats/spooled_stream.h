// Standard input and output of formats whose files are read and written in places, which a pipe has
// none of: what comes or goes stands in a private temporary file meanwhile.
#ifndef ZTB_FORMATS_SPOOLED_STREAM_H_
#define ZTB_FORMATS_SPOOLED_STREAM_H_

#include <string>

#include "tools/files/scratch_folder.h"

namespace formats {

class SpooledInput {
 public:
  // Reads all of standard input. Throws Failure where that cannot be done.
  SpooledInput();

  [[nodiscard]] std::string path() const { return folder_.file("input"); }

 private:
  tool::ScratchFolder folder_;
};

class SpooledOutput {
 public:
  // `option` and `format` stand in the UsageError that is thrown where standard output is a
  // terminal.
  SpooledOutput(const std::string& option, const char* format);

  // Where the file is to be written.
  [[nodiscard]] std::string path() const { return folder_.file("output"); }
  // Hands it to standard output. Throws Failure if that does not take everything.
  void finish() const;

 private:
  tool::ScratchFolder folder_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SPOOLED_STREAM_H_
