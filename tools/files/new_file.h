// A file that is written beside its name and gets the name when it is whole.
//
// A link, pipe or device that stands under the name is refused, and one that is put there meanwhile
// is replaced and never written to. A file that stands there is replaced and hands on its
// permission bits. What a killed writer left under the name .NAME.N.ztbtmp, the next one removes.
#ifndef ZTB_TOOLS_FILES_NEW_FILE_H_
#define ZTB_TOOLS_FILES_NEW_FILE_H_

#include <sys/types.h>

#include <cstdio>
#include <string>

namespace tool {

class NewFile {
 public:
  // Throws Failure if the file cannot be made.
  explicit NewFile(std::string path);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  // Removes what was not published.
  ~NewFile();

  [[nodiscard]] std::FILE* stream() { return stream_; }
  // The name that it has until it is published, for a library that opens it itself.
  [[nodiscard]] const std::string& temporary() const { return temporary_; }
  // The same for a library that opens files for itself alone, where a system has such: there it is
  // no longer open here, and has no stream.
  const std::string& lend();

  // Gives the file its name. Throws Failure if not all could be written or the name is not to be
  // had. Called once.
  void publish();

 private:
  void lookAtOld();
  int makeTemporary();
  [[noreturn]] void fail() const;

  std::string path_;
  std::string temporary_;
  mode_t mode_ = 0;
  std::FILE* stream_ = nullptr;
  bool isLent_ = false;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_NEW_FILE_H_
