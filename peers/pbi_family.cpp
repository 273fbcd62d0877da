#include "peers/pbi_family.h"

namespace ztb::peers {
namespace {

constexpr FamilyTable pbiTable{.libraryBaseName = "lomudclib",
                               .apiVersion = ZTB_PEER_PBI_VERSION,
                               .createName = "pbiXCreate",
                               .createInDirectoryName = "CpbiXCreateD",
                               .freeName = "pbiXFree",
                               .checkName = "CpbiXCheck",
                               .versionName = "CpbiXAPIVersion",
                               .setLoadPathName = nullptr,
                               .getLoadPathName = nullptr,
                               .readBlockStartName = nullptr,
                               .readBlockName = nullptr};

}  // namespace

constinit PeerFamily pbiFamily{pbiTable};

bool pbiGetReady(char* msg, int msgSize) {
  return pbiFamily.makeReady(nullptr, msg, msgSize);
}

bool pbiGetReadyD(const char* directory, char* msg, int msgSize) {
  return pbiFamily.makeReady(directory, msg, msgSize);
}

}  // namespace ztb::peers
