// Collects what is wrong with the input of an import, so that one run reports many mistakes.
#ifndef ZTB_FORMATS_TABLES_PROBLEM_LIST_H_
#define ZTB_FORMATS_TABLES_PROBLEM_LIST_H_

#include <cstddef>
#include <string>
#include <vector>

namespace formats {

// A place in a text file. Lines and columns (bytes within the line) count from 1; 0 is for a
// problem of the whole file.
struct TextPosition {
  std::size_t line = 0;
  std::size_t column = 0;
};

// "FILE:LINE:COLUMN", without the places that are 0.
std::string placeText(const std::string& file, TextPosition at);

// Problems in the order in which they were found. The first limit of them keep their text, the
// others are only counted.
class ProblemList {
 public:
  explicit ProblemList(std::size_t limit) : limit_(limit) {}

  // Adds "PLACE: TEXT", fit for a terminal.
  void add(const std::string& place, const std::string& text);
  // The same of a place in a text file.
  void add(const std::string& file, TextPosition at, const std::string& text) {
    add(placeText(file, at), text);
  }

  [[nodiscard]] bool empty() const { return count_ == 0; }
  [[nodiscard]] std::size_t count() const { return count_; }

  // All kept problems a line each, then how many more there were.
  [[nodiscard]] std::string report() const;

 private:
  std::size_t limit_;
  std::size_t count_ = 0;
  std::vector<std::string> lines_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_PROBLEM_LIST_H_
