#include "peers/nmt_family.h"

namespace ztb::peers {
namespace {

constexpr FamilyTable nmtTable{.libraryBaseName = "nmtmdclib",
                               .apiVersion = ZTB_PEER_NMT_VERSION,
                               .createName = "nmtXCreate",
                               .createInDirectoryName = "CnmtXCreateD",
                               .freeName = "nmtXFree",
                               .checkName = "CnmtXCheck",
                               .versionName = "CnmtXAPIVersion",
                               .setLoadPathName = nullptr,
                               .getLoadPathName = nullptr,
                               .readBlockStartName = nullptr,
                               .readBlockName = nullptr};

}  // namespace

constinit PeerFamily nmtFamily{nmtTable};

bool nmtGetReady(char* msg, int msgSize) {
  return nmtFamily.makeReady(nullptr, msg, msgSize);
}

bool nmtGetReadyD(const char* directory, char* msg, int msgSize) {
  return nmtFamily.makeReady(directory, msg, msgSize);
}

}  // namespace ztb::peers
