// Reads a whole exchange file through one door, and tells how that went.
#ifndef ZTB_TESTS_ATTACK_DOORS_H_
#define ZTB_TESTS_ATTACK_DOORS_H_

#include <cstdint>
#include <string>

namespace attack {

struct Verdict {
  enum Kind {
    openRefused,  // the file could not be opened; text says why
    readRefused,  // it could, but not every symbol could be read; text says why
    delivered,    // all of it was read; digest stands for all that was said of it
    broken        // the door broke its promise; text says which
  };
  Kind kind = broken;
  std::uint64_t digest = 0;
  std::string text;
};

// Through the exported c__ names, and through the C++ wrapper. Both hold records in the store given
// (0 map, 1 vector, 2 trie). `scratch` is a file that may be written and removed: a database with a
// symbol that could not be read must not replace it, and one that was read whole must come back
// from it as it was.
Verdict readThroughC(const std::string& file, int store, const std::string& scratch);
Verdict readThroughCpp(const std::string& file, int store, const std::string& scratch);

}  // namespace attack

#endif  // ZTB_TESTS_ATTACK_DOORS_H_
