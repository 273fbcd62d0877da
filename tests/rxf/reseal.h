// Makes the checksums of a changed exchange file right again, so that what was changed reaches the
// code behind the checksums.
#ifndef ZTB_TESTS_RXF_RESEAL_H_
#define ZTB_TESTS_RXF_RESEAL_H_

#include <string>

namespace rxftest {

// Sets the checksum of the header, and walks the blocks and chunks from byte 96 on, setting the
// checksums of their heads and bodies, as far as their lengths stay within the bytes.
void reseal(std::string& bytes);

// Puts bytes in the place of others, which the file has exactly once, and makes the checksums
// right. Throws std::runtime_error when it has not.
void forgeFile(const std::string& path, const std::string& from, const std::string& to);

// The text numbers of a set's block of two records or more without gaps, as they stand in a file:
// the first is 1, each further one `step` more.
std::string ascendingTexts(char step);

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_RESEAL_H_
