// A pseudo terminal that a program under test writes to.
#ifndef ZTB_TESTS_TOOLS_TERMINAL_H_
#define ZTB_TESTS_TOOLS_TERMINAL_H_

#include <string>

namespace tooltest {

class Terminal {
 public:
  Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal();

  // What a program opens to write to the terminal.
  [[nodiscard]] const std::string& path() const { return path_; }
  // To be called once the programs that use the terminal have been started: without any, it ends.
  void leaveToPrograms();

  // Blocks until a piece of all that was written looks like this; false if all programs have ended
  // without it.
  bool waitFor(const std::string& regex);
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  int screen_ = -1;
  int keptOpen_ = -1;
  std::string path_;
  std::string text_;
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_TERMINAL_H_
