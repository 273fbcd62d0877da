// RXF files that come from standard input or go to standard output, both called "-". A file is read
// and written in places, which a pipe has none of, so that it stands in a temporary file meanwhile.
#ifndef ZTB_TOOLS_FILES_STANDARD_STREAMS_H_
#define ZTB_TOOLS_FILES_STANDARD_STREAMS_H_

#include <string>

namespace tool {

// The name to open a file by: the path itself; for "-" that of a temporary file, which has all of
// standard input and goes with the process. Throws Failure if it cannot be made,
// and UsageError for a second "-".
std::string inputFile(const std::string& path);

// To be called by whoever reads standard input: it gives its content once. Throws UsageError from
// the second call on.
void takeStandardInput();

// The name of a file in messages: "-" is standard input there.
std::string inputName(const std::string& path);

// Where a result is written.
class OutputFile {
 public:
  // For "-" all that is printed to standard output from now on goes to standard error, so that only
  // the result goes there. Throws UsageError where that is a terminal.
  explicit OutputFile(const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Removes what is temporary.
  ~OutputFile();

  // The name to write to, and the one for messages.
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::string& name() const { return name_; }

  // Hands what was written to standard output. Throws Failure if that does not take everything.
  void finish();

 private:
  std::string name_;
  std::string path_;
  std::string folder_;  // of the temporary file; empty where there is none
  int output_ = -1;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_STANDARD_STREAMS_H_
