// The columns under which the records of a symbol are shown, exported and read back.
#ifndef ZTB_TOOLS_TABLES_SYMBOL_COLUMNS_H_
#define ZTB_TOOLS_TABLES_SYMBOL_COLUMNS_H_

#include <string>
#include <string_view>
#include <vector>
#include <ztb/ztb.hpp>

namespace tool {

// Names of the columns behind the keys: "text" for a set, "value" for a parameter, the five field
// words for a variable or equation, none for the universe.
std::vector<std::string> contentColumns(ztb::Type type);

// A name for the column of each position of a symbol: that of its domain; over the universe, the
// symbol's own name for a one-dimensional set and key1, key2, ... otherwise. All differ from each
// other and from contentColumns(type) under case folding. The universe, "*", has a label.
std::vector<std::string> keyColumns(const std::string& symbol, ztb::Type type,
                                    const std::vector<std::string>& domains);

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_SYMBOL_COLUMNS_H_
