#include "peers/snv_family.h"

namespace ztb::peers {
namespace {

constexpr FamilyTable snvTable{.libraryBaseName = "lomudclib",
                               .apiVersion = ZTB_PEER_SNV_VERSION,
                               .createName = "snvXCreate",
                               .createInDirectoryName = "CsnvXCreateD",
                               .freeName = "snvXFree",
                               .checkName = "CsnvXCheck",
                               .versionName = "CsnvXAPIVersion",
                               .setLoadPathName = nullptr,
                               .getLoadPathName = nullptr,
                               .readBlockStartName = nullptr,
                               .readBlockName = nullptr};

}  // namespace

constinit PeerFamily snvFamily{snvTable};

bool snvGetReady(char* msg, int msgSize) {
  return snvFamily.makeReady(nullptr, msg, msgSize);
}

bool snvGetReadyD(const char* directory, char* msg, int msgSize) {
  return snvFamily.makeReady(directory, msg, msgSize);
}

}  // namespace ztb::peers
