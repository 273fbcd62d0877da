// The words in which the command line says what a symbol is made from.
//
//   --set        NAME                                       the labels of column NAME
//   --set        NAME(KEY, ...) [: TEXTCOLUMN] ["text"]
//   --parameter  NAME(KEY, ...) [= VALUECOLUMN] ["text"]    the value column is NAME if not given,
//                                                           or value where no column is called NAME
//   --variable   [KIND] NAME(KEY, ...) [= LEVELCOLUMN] ["text"]
//   --variable   [KIND] NAME(KEY, ...) = FIELD: COLUMN, ... ["text"]
//   KEY          COLUMN [in SET]
//   KIND         free (if not given), positive, negative, binary or integer
//   FIELD        level, marginal, lower, upper or scale; without "=", all columns of these names
//
// A column or text with a comma, bracket, colon, equals sign or quote in it stands in single or
// double quotes. "in SET" names the domain, "in *" the universe; without it, the domain is the
// one-dimensional set of the column's name, if one was made before, and otherwise the column's name
// alone, which no set stands behind.
#ifndef ZTB_FORMATS_TABLES_SYMBOL_SPEC_H_
#define ZTB_FORMATS_TABLES_SYMBOL_SPEC_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace formats {

enum class SpecKind { set, distinctSet, parameter, variable };

struct KeySpec {
  std::string column;
  std::optional<std::string> domain;
};

// A field of a variable, as its place among ztb::fieldNames, and the column that it is read from.
struct FieldSpec {
  std::size_t field = 0;
  std::string column;
};

struct SymbolSpec {
  SpecKind kind = SpecKind::set;
  // The option and its argument as typed, for messages.
  std::string source;
  std::string name;
  std::vector<KeySpec> keys;
  // Column of the explanatory texts of a set (empty for none) or of the values of a parameter.
  std::string contentColumn;
  bool contentIsGiven = false;
  // Of a variable; empty for all columns that have the names of fields.
  std::vector<FieldSpec> fields;
  // Subtype of a variable, which the bounds come from that no column gives.
  int subtype = 0;
  // Explanatory text of the symbol itself.
  std::string text;
};

// Name of the option of a kind: "--set", "--distinct-set", "--parameter", "--variable".
const char* optionOf(SpecKind kind);

// Throws UsageError, which says what is expected and where, for anything else. `option` is what the
// argument stands behind, in errors, where that is none of the above.
SymbolSpec parseSymbolSpec(SpecKind kind, const std::string& argument,
                           const char* option = nullptr);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_SYMBOL_SPEC_H_
