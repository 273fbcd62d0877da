// A language in which numbers have a comma, made for the purpose, since a machine may have none.
#ifndef ZTB_TESTS_SUPPORT_COMMA_LANGUAGE_H_
#define ZTB_TESTS_SUPPORT_COMMA_LANGUAGE_H_

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include "tests/support/temp_folder.h"

namespace ztbtest {

// The program has it set as long as this lives.
class CommaLanguage {
 public:
  CommaLanguage() {
    std::ofstream(folder_.file("source")) << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\n"
                                             "grouping -1\nEND LC_NUMERIC\n";
    // It tells of what the language lacks besides, by its exit code too.
    static_cast<void>(std::system(("localedef -c -i " + folder_.file("source") + " " +
                                   folder_.file("comma") + " >" + folder_.file("told") + " 2>&1")
                                      .c_str()));
    setenv("LOCPATH", folder_.file("").c_str(), 1);
    if (std::setlocale(LC_NUMERIC, "comma") == nullptr || !isSet()) {
      throw std::runtime_error("there is no language with commas");
    }
  }
  CommaLanguage(const CommaLanguage&) = delete;
  CommaLanguage& operator=(const CommaLanguage&) = delete;
  ~CommaLanguage() {
    std::setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
  }

  [[nodiscard]] static bool isSet() { return std::string(std::localeconv()->decimal_point) == ","; }

 private:
  TempFolder folder_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_COMMA_LANGUAGE_H_
