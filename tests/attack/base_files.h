// The files that are damaged: small ones, and one of several blocks.
#ifndef ZTB_TESTS_ATTACK_BASE_FILES_H_
#define ZTB_TESTS_ATTACK_BASE_FILES_H_

#include <string>

namespace attack {

inline constexpr int kBaseFiles = 4;

// Writes base file 0 to kBaseFiles - 1: every kind of symbol with domains, aliases, texts and
// special values; 20 positions and five values; 66,000 records and 70,000 elements with texts, two
// blocks each; labels alone.
void writeBaseFile(int number, const std::string& path);

}  // namespace attack

#endif  // ZTB_TESTS_ATTACK_BASE_FILES_H_
