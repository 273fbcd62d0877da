// A plain dictionary beside a symbol of the C++ wrapper: what the symbol must hold after each
// operation on any store.
#ifndef ZTB_TESTS_WRAPPER_DICTIONARY_H_
#define ZTB_TESTS_WRAPPER_DICTIONARY_H_

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace wrappertest {

// Labels by their numbers, in the order of the positions.
using Key = std::vector<int>;

struct Entry {
  std::array<double, ztb::fieldCount> values{};
  std::string text;
  bool operator==(const Entry&) const = default;
};

using Entries = std::map<Key, Entry>;

// A symbol that a dictionary stands beside.
struct Shape {
  int dimension;
  ztb::Type type;
};

// What a symbol holds, read by one walk forward or backward; the latter begins at the key given.
Entries read(const ztb::Symbol& symbol);
Entries readBackward(const ztb::Symbol& symbol, const std::vector<std::string>& last);
// What the records of a slice hold.
Entries readSlice(const ztb::Symbol& symbol, const std::vector<std::string>& labels);
// What the record under a handle holds, by its key.
Entries::value_type read(const ztb::Record& record, const ztb::Symbol& symbol);

// The labels of a key as the wrapper takes them.
std::vector<const char*> pointersTo(const std::vector<std::string>& labels);

// Makes the symbol p.
ztb::Symbol addSymbol(ztb::Database& database, const Shape& shape);
// Values of a new record: a variable is of subtype 3, an equation of subtype 1.
Entry defaults(const Shape& shape);

}  // namespace wrappertest

#endif  // ZTB_TESTS_WRAPPER_DICTIONARY_H_
