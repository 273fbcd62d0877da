// Content of one file of the scripted exchange-file peer.

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_FILE_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_FILE_H_

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace scripted {

inline constexpr int setType = 0;
inline constexpr int variableType = 2;
inline constexpr int equationType = 3;
inline constexpr int aliasType = 4;

// Codes of the five special values in a file; no test data has them by chance.
inline constexpr std::array<double, 5> specialValues{8.25e290, 8.50e290, 8.75e290, -8.75e290,
                                                     8.125e-290};
// Entries of a table of special values; the file's own further values stand behind the five.
inline constexpr std::size_t tableSize = 16;

struct Record {
  std::vector<int> keys;
  std::vector<double> values;
};

struct Symbol {
  std::string name;
  int dim = 0;
  int type = 0;
  int userInfo = 0;
  std::string text;
  std::vector<std::string> domain;  // empty: no domain was set
  bool relaxed = false;             // the domain's names are only noted
  std::vector<Record> records;

  int valueCount() const { return type == variableType || type == equationType ? 5 : 1; }
};

struct File {
  std::vector<std::string> texts;
  std::vector<std::string> labels;
  std::vector<Symbol> symbols;

  // Number of the symbol whose name is `name` but for the case of ASCII letters, from 1; 0 for "*",
  // -1 if there is none.
  int find(const std::string& name) const;

  // The lines that scriptedDump() promises.
  std::string dump() const;
};

// How names, keys and values are spelled in the log and in dumps.
std::string quoted(const std::string& text);
std::string bracketed(const std::vector<int>& keys);
std::string bracketed(const std::vector<double>& values);
std::string parenthesised(const std::vector<std::string>& names);

}  // namespace scripted

#endif  // ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_FILE_H_
