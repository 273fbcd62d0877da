// What a table is read from and written to, in the words of the command line.
#ifndef ZTB_FORMATS_TABLE_SOURCE_H_
#define ZTB_FORMATS_TABLE_SOURCE_H_

#include <string>
#include <vector>

namespace formats {

// The columns of a table that an import uses, by their names in the file.
struct UsedColumns {
  // All of them, whatever they are called.
  bool all = true;
  // Otherwise these: each is one of several names, the case of letters aside.
  std::vector<std::vector<std::string>> names{};
};

struct TableSource {
  std::string path;
  // What stands behind '#': a table, sheet, range or query; empty for the only or first one.
  std::string part;
  char separator = ',';  // of the formats that part fields by a char
  // The table belongs to a whole database, and has what TableHead::exact tells.
  bool exact = false;
  UsedColumns used{};

  // As messages name it.
  [[nodiscard]] std::string name() const { return part.empty() ? path : path + '#' + part; }
};

struct TableTarget {
  std::string path;
  char separator = ',';
  char decimal = '.';
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLE_SOURCE_H_
