#include "peers/rxf_family.h"

namespace ztb::peers {
namespace {

#if defined(ZTB_PLAIN_STORES)
// One record after the other, as from a peer without blocks.
constexpr const char* readBlockStart = nullptr;
constexpr const char* readBlock = nullptr;
#else
constexpr const char* readBlockStart = "C__rxfDataReadBlockStart";
constexpr const char* readBlock = "C__rxfDataReadBlock";
#endif

constexpr FamilyTable rxfTable{.libraryBaseName = "rxfcclib",
                               .apiVersion = ZTB_PEER_RXF_VERSION,
                               .createName = "XCreate",
                               .createInDirectoryName = "XCreateD",
                               .freeName = "XFree",
                               .checkName = "C__XCheck",
                               .versionName = "C__XAPIVersion",
                               .setLoadPathName = "C__rxfSetLoadPath",
                               .getLoadPathName = "C__rxfGetLoadPath",
                               .readBlockStartName = readBlockStart,
                               .readBlockName = readBlock};

}  // namespace

constinit PeerFamily rxfFamily{rxfTable};

bool rxfCreate(void** handleOut, char* msg, int msgSize) {
  return rxfFamily.createObject(handleOut, nullptr, msg, msgSize);
}

bool rxfCreateD(void** handleOut, const char* directory, char* msg, int msgSize) {
  return rxfFamily.createObject(handleOut, directory, msg, msgSize);
}

int rxfFree(void** handleRef) {
  return rxfFamily.freeObject(handleRef);
}

}  // namespace ztb::peers
