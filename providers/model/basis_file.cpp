#include "providers/model/basis_file.h"

#include <ztb/solver.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "providers/model/model_error.h"
#include "providers/model/platform.h"
#include "providers/model/text_target.h"

namespace lomu {

namespace {

constexpr std::string_view kFirstLine = "ztb basis 1";
constexpr std::string_view kLetters = "LUBS";  // by ztbSolverPosition
constexpr std::size_t kLineLength = 64;

std::string lettersOf(const std::vector<std::int32_t>& positions) {
  std::string letters;
  letters.reserve(positions.size());
  for (const std::int32_t position : positions) {
    letters += kLetters.at(static_cast<std::size_t>(position));
  }
  return letters;
}

[[noreturn]] void refuse(const std::string& file, int line, const std::string& what) {
  throw ModelError(file + ":" + std::to_string(line) + ": is no saved basis: " + what);
}

}  // namespace

bool Basis::isWhole() const {
  const auto basics = std::ranges::count(columns, std::int32_t{ztbSolverBasic}) +
                      std::ranges::count(rows, std::int32_t{ztbSolverBasic});
  return !isEmpty() && static_cast<std::size_t>(basics) == rows.size();
}

void writeBasis(const Basis& basis, const std::string& file) {
  std::array<char, 96> head{};
  std::snprintf(head.data(), head.size(), "%zu columns %zu rows %016llx names\n",
                basis.columns.size(), basis.rows.size(),
                static_cast<unsigned long long>(basis.names));
  TextTarget target(file);
  target << kFirstLine << "\n" << head.data();
  const std::string letters = lettersOf(basis.columns) + lettersOf(basis.rows);
  for (std::size_t begin = 0; begin < letters.size(); begin += kLineLength) {
    target << std::string_view(letters).substr(begin, kLineLength) << "\n";
  }
  target.publish();
}

Basis readBasis(const std::string& file) {
  std::ifstream stream(platform::pathOf(file));
  if (!stream) throw ModelError(file + ": cannot be opened");
  std::string line;
  std::getline(stream, line);
  if (line != kFirstLine) refuse(file, 1, "expected \"" + std::string(kFirstLine) + "\"");
  std::getline(stream, line);
  unsigned long long columns = 0;
  unsigned long long rows = 0;
  unsigned long long names = 0;
  int end = 0;
  const int found = std::sscanf(line.c_str(), "%10llu columns %10llu rows %16llx names%n", &columns,
                                &rows, &names, &end);
  if (found != 3 || end == 0 || static_cast<std::size_t>(end) != line.size()) {
    refuse(file, 2, "expected counts of columns and rows and a checksum of names");
  }
  Basis basis;
  basis.names = names;
  int number = 2;
  while (std::getline(stream, line)) {
    ++number;
    for (const char letter : line) {
      const std::size_t position = kLetters.find(letter);
      if (position == std::string_view::npos) refuse(file, number, "expected letters of LUBS");
      (basis.columns.size() < columns ? basis.columns : basis.rows)
          .push_back(static_cast<std::int32_t>(position));
    }
  }
  if (basis.columns.size() != columns || basis.rows.size() != rows) {
    refuse(file, number,
           "expected " + std::to_string(columns + rows) + " letters, found " +
               std::to_string(basis.columns.size() + basis.rows.size()));
  }
  return basis;
}

}  // namespace lomu
