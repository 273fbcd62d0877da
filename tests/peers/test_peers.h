// Where the peers made for these tests are, and what they wrote down.

#ifndef ZTB_TESTS_PEERS_TEST_PEERS_H_
#define ZTB_TESTS_PEERS_TEST_PEERS_H_

#include <algorithm>
#include <string>
#include <vector>

#include "peers/peer_family.h"

namespace peertest {

inline constexpr const char* rxfFile = "librxfcclib64.so";
inline constexpr const char* lomudFile = "liblomudclib64.so";
inline constexpr const char* nmtmdFile = "libnmtmdclib64.so";

// Directory of the peers of one kind, such as "complete", without a final separator.
std::string peerDirectory(const std::string& kind);

// The log of the recording peer in this file, in lines. The peer must be open already.
std::vector<std::string> peerLog(const std::string& kind, const char* fileName);

inline int countLines(const std::vector<std::string>& lines, const std::string& wanted) {
  return static_cast<int>(std::ranges::count(lines, wanted));
}

// Returns once another thread had each lock of the family; never if this thread holds one.
void enterAllLocksFromAnotherThread(ztb::peers::PeerFamily& family);

// The platform's words for a library that cannot be opened.
std::string openError(const std::string& fileName);

// The platform's words for a symbol that the recording peer in this file lacks.
std::string symbolError(const std::string& kind, const char* fileName, const char* symbol);

}  // namespace peertest

#endif  // ZTB_TESTS_PEERS_TEST_PEERS_H_
