// Makes the checksums of a changed exchange file right again, so that what was changed reaches the
// code behind the checksums.
#ifndef ZTB_TESTS_RXF_RESEAL_H_
#define ZTB_TESTS_RXF_RESEAL_H_

#include <string>

namespace rxftest {

// Sets the checksum of the header, and walks the blocks and chunks from byte 96 on, setting the
// checksums of their heads and bodies, as far as their lengths stay within the bytes.
void reseal(std::string& bytes);

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_RESEAL_H_
