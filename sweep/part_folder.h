// The folder in which the parts of sweeps stand.
//
// A part KEY-FIRST-END.rxf has the results of the scenarios from number FIRST, counted from 0, to
// before END; KEY stands for what the sweep is made from. KEY.basis is the basis that chunks start
// from, KEY.sweep the options; KEY.job and KEY.K.log are what a batch system's job leaves. Files of
// other names, and those of other keys, are left alone.
#ifndef ZTB_SWEEP_PART_FOLDER_H_
#define ZTB_SWEEP_PART_FOLDER_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sweep {

struct Part {
  std::string file;
  int first = 0;
  int end = 0;
};

class PartFolder {
 public:
  PartFolder(std::string folder, std::string key)
      : folder_(std::move(folder)), key_(std::move(key)) {}

  // Makes the folder where there is none. Throws Failure.
  void make() const;

  [[nodiscard]] std::string part(int first, int end) const;
  [[nodiscard]] std::string basis() const;
  // The parts of this sweep, by their scenarios; none in a folder that is not there. Throws
  // Failure where the folder cannot be read.
  [[nodiscard]] std::vector<Part> parts() const;
  // A part of another sweep; nothing where there is none.
  [[nodiscard]] std::optional<std::string> foreign() const;
  // Removes the files of this sweep, or of all sweeps, and the folder if it is empty then. Throws
  // Failure if a file stays.
  void remove(bool ofAll) const;

  // The options that sweeps left in a folder.
  [[nodiscard]] static std::vector<std::string> saved(const std::string& folder);
  [[nodiscard]] static std::string saved(const std::string& folder, const std::string& key);

 private:
  [[nodiscard]] std::string path(const std::string& name) const;

  std::string folder_;
  std::string key_;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_PART_FOLDER_H_
