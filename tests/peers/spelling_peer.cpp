// An exchange-file peer whose symbols stand in different spellings, for the order in which the
// loader tries them. An operation answers 1 from a symbol in lower case, 2 from one as it stands, 3
// from one in upper case; the check agrees to the three operations that are here.

#include <cstring>

#define EXPORT extern "C" __attribute__((visibility("default")))

EXPORT void XCREATE(void** object) {
  *object = new int(0);
}
EXPORT void xcreated(void** object, const char* /*directory*/) {
  *object = new int(0);
}
EXPORT void XFree(void** object) {
  delete static_cast<int*>(*object);
  *object = nullptr;
}

EXPORT int c__xcheck(const char* operation, int /*argCount*/, const int* /*codes*/, char* /*msg*/) {
  return std::strcmp(operation, "rxfClose") == 0 || std::strcmp(operation, "rxfErrorCount") == 0 ||
                 std::strcmp(operation, "rxfGetLastError") == 0
             ? 1
             : 0;
}

EXPORT int C__XAPIVERSION(int api, char* /*msg*/, int* compatibility) {
  *compatibility = api;
  return 1;
}

EXPORT int c__rxfclose(void* /*rxf*/) {
  return 1;
}
EXPORT int C__rxfClose(void* /*rxf*/) {
  return 2;
}
EXPORT int C__RXFCLOSE(void* /*rxf*/) {
  return 3;
}

EXPORT int C__rxfErrorCount(void* /*rxf*/) {
  return 2;
}
EXPORT int C__RXFERRORCOUNT(void* /*rxf*/) {
  return 3;
}

EXPORT int C__RXFGETLASTERROR(void* /*rxf*/) {
  return 3;
}
