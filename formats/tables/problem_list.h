// Collects what is wrong with the input of an import, so that one run reports many mistakes.
#ifndef ZTB_FORMATS_TABLES_PROBLEM_LIST_H_
#define ZTB_FORMATS_TABLES_PROBLEM_LIST_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/text/failure.h"

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
// others are only counted. What a whole file or table failed with is such a problem too, so that it
// hides none of the others; of those the first limit are kept on their own.
class ProblemList {
 public:
  explicit ProblemList(std::size_t limit) : limit_(limit) {}

  // Adds "PLACE: TEXT", fit for a terminal.
  void add(const std::string& place, const std::string& text);
  // The same of a place in a text file.
  void add(const std::string& file, TextPosition at, const std::string& text) {
    add(placeText(file, at), text);
  }
  // Adds what a file or table failed with; what several tables of a file fail with stands once.
  void add(const tool::Failure& failure);

  // Runs `body`, and adds the Failure that it throws; whether there was none. What no other source
  // can do anything about, such as memory that is lacking, passes.
  template <typename Body>
  bool attempt(const Body& body) {
    try {
      body();
      return true;
    } catch (const tool::Failure& failure) {
      if (failure.kind() == ZTB_ERROR_OUT_OF_MEMORY) throw;
      add(failure);
      return false;
    }
  }

  [[nodiscard]] bool empty() const { return count_ == 0; }
  [[nodiscard]] std::size_t count() const { return count_; }
  // The failure that is all there is to tell; nothing where there are other problems, or none.
  [[nodiscard]] std::optional<tool::Failure> onlyFailure() const;
  // The ZTB_ERROR_ code of all: that of the failures where they are all of one kind and there is
  // nothing else, otherwise that of damaged files.
  [[nodiscard]] int kind() const;

  // All kept problems a line each, then how many more there were.
  [[nodiscard]] std::string report() const;

 private:
  std::size_t limit_;
  std::size_t count_ = 0;
  std::size_t kept_ = 0;  // of the lines, those of problems that are no failures
  std::vector<std::string> lines_;
  std::vector<tool::Failure> failures_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_PROBLEM_LIST_H_
