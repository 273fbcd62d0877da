// A file that is written beside its target and takes the target's place in one step.
//
// Until publish() the target is untouched; when the object ends before, the temporary file is
// removed. The temporary file lies in the target's folder, is called "." + target + ".N.rxftmp" and
// is locked while its writer lives, so that the next writer of the same target can tell a file left
// by a killed process, which it removes, from one that is being written. Only its owner may read
// it: it gets the permission bits of the target, or those of a new file, when it is whole. A target
// that is a symbolic link is written through: the file that it leads to is replaced.
#ifndef ZTB_PROVIDERS_RXF_OUTPUT_FILE_H_
#define ZTB_PROVIDERS_RXF_OUTPUT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "providers/rxf/bytes.h"
#include "providers/rxf/system_calls.h"

namespace rxffile {

class OutputFile {
 public:
  // Makes the temporary file. Failures: noSuchFile (no folder), noPermission (folder or existing
  // target not writable), isFolder, notRegularFile, diskFull, cannotOpen. Their details leave the
  // file's name to the caller.
  OutputFile(SystemCalls& calls, const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  // The name that the caller gave.
  [[nodiscard]] const std::string& path() const { return path_; }

  // Place of the next appended byte.
  [[nodiscard]] std::uint64_t position() const { return flushed_ + pending_.size(); }

  // Adds bytes at the end. Failures of this and of the following: diskFull, writeFailed, with the
  // file in the detail.
  void append(const void* data, std::size_t size);

  // Writes over bytes before position().
  void overwrite(std::uint64_t offset, const void* data, std::size_t size);

  // Drops everything from `length` on. What was published stays as it is: the object then goes on
  // in a new temporary file, which begins with that many bytes of it. Further failures: those of
  // the constructor. REQUIRES: length <= position().
  void rewindTo(std::uint64_t length);

  // Brings everything to the disk.
  void sync();

  // Takes the target's place and brings the folder to the disk. Further failure: noPermission.
  // After a failure the target is the old one, unless only the folder could not be brought to the
  // disk, which the detail then says. REQUIRES: sync() before, nothing written since.
  void publish();

  [[nodiscard]] bool published() const { return published_; }

 private:
  void resolveTarget();
  void checkTarget();
  void makeTemporary();
  bool tryTemporary(const std::string& name);
  bool removeIfLeft(const std::string& name);
  void discard();
  void flush();
  void writeAll(std::uint64_t offset, const void* data, std::size_t size);
  void goOnBeside(std::uint64_t length);
  void copyFrom(int fd, std::uint64_t length);
  void openToOthers();
  void replaceTarget();
  [[nodiscard]] int openFolder() const;
  void syncFolder(int fd) const;
  [[nodiscard]] std::string shownName() const;
  [[noreturn]] void failWriting(int error) const;
  [[noreturn]] void failReplacing(int error) const;

  SystemCalls& calls_;
  std::string path_;
  std::string target_;
  std::string folder_;
  std::string temporary_;
  int fd_ = -1;
  bool published_ = false;
  bool hasBits_ = false;
  std::uint64_t flushed_ = 0;
  Bytes pending_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_OUTPUT_FILE_H_
