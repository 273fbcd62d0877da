#include "peers/rgy_family.h"

namespace ztb::peers {
namespace {

constexpr FamilyTable rgyTable{.libraryBaseName = "lomudclib",
                               .apiVersion = ZTB_PEER_RGY_VERSION,
                               .createName = "rgyXCreate",
                               .createInDirectoryName = nullptr,
                               .freeName = "rgyXFree",
                               .checkName = "CrgyXCheck",
                               .versionName = "CrgyXAPIVersion",
                               .setLoadPathName = nullptr,
                               .getLoadPathName = nullptr,
                               .readBlockStartName = nullptr,
                               .readBlockName = nullptr};

}  // namespace

constinit PeerFamily rgyFamily{rgyTable};

bool rgyCreate(void** handleOut, char* msg, int msgSize) {
  return rgyFamily.createObject(handleOut, nullptr, msg, msgSize);
}

bool rgyCreateD(void** handleOut, const char* directory, char* msg, int msgSize) {
  return rgyFamily.createObject(handleOut, directory, msg, msgSize);
}

int rgyFree(void** handleRef) {
  return rgyFamily.freeObject(handleRef);
}

}  // namespace ztb::peers
