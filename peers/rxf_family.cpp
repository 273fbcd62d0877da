#include "peers/rxf_family.h"

namespace ztb::peers {
namespace {

constexpr FamilyTable rxfTable {
  .libraryBaseName = "rxfcclib", .apiVersion = ZTB_PEER_RXF_VERSION, .createName = "XCreate",
  .createInDirectoryName = "XCreateD", .freeName = "XFree", .checkName = "C__XCheck",
  .versionName = "C__XAPIVersion", .setLoadPathName = "C__rxfSetLoadPath",
  .getLoadPathName = "C__rxfGetLoadPath",
#if defined(ZTB_PLAIN_STORES)
  // One record after the other, as from a peer without blocks.
      .readBlockStartName = nullptr, .readBlockName = nullptr
};
#else
  .readBlockStartName = "C__rxfDataReadBlockStart", .readBlockName = "C__rxfDataReadBlock"
};
#endif

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
