// libztbformats.so, opened when a command first needs it, so that it costs the start of the others
// nothing: the files of other programs are read and written by it alone.
#ifndef ZTB_TOOLS_FILES_FORMATS_LIBRARY_H_
#define ZTB_TOOLS_FILES_FORMATS_LIBRARY_H_

#include <ztb/formats.h>

#include <cstddef>
#include <string>

namespace tool {

// A job of the library. Each member throws Failure where the library cannot be opened, and what the
// library refuses as Failure or UsageError with its text.
class FormatsJob {
 public:
  FormatsJob();
  FormatsJob(const FormatsJob&) = delete;
  FormatsJob& operator=(const FormatsJob&) = delete;
  ~FormatsJob();

  void option(const std::string& name, const std::string& value);
  void import(const std::string& path);
  void exportFile(const std::string& path);
  // What makes an exchange file of others.
  enum class Making { merge, concat, rename, where, aggregate };
  void make(Making making, const std::string& path);

  // What ztbFormatsProblems, ztbFormatsWarnings and ztbFormatsCounted give.
  [[nodiscard]] std::string problems() const;
  [[nodiscard]] std::string warnings() const;
  [[nodiscard]] std::size_t counted(int what) const;

 private:
  void require(int result) const;

  ztbFormatsJob* job_ = nullptr;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_FORMATS_LIBRARY_H_
