// The creation names.

#include <ztb/ztb.h>

#include <cstring>

#include "core/exports/short_string.h"
#include "core/operations.h"

namespace {

// What a creation name that reports in words tells its caller.
int reportCreation(bool made, char* msg, int msgLen) {
  if (!made) {
    if (msgLen > 0) {
      std::strncpy(msg, "Error while creating object", static_cast<std::size_t>(msgLen));
      msg[msgLen - 1] = '\0';
    }
    return 0;
  }
  if (msgLen > 0) {
    msg[0] = '\0';
  }
  return 1;
}

}  // namespace

int ztbcreate(ztbRec** ztb, char* msg, int msgLen) {
  char unused[ZTB_TEXT_BUFFER_SIZE];
  *ztb = nullptr;
  ztb::ztbCreate(ztb, unused);
  return reportCreation(*ztb != nullptr, msg, msgLen);
}

int ztbcreated(ztbRec** ztb, const char* sysDir, char* msg, int msgLen) {
  char unused[ZTB_TEXT_BUFFER_SIZE];
  if (ztb != nullptr) {
    ztb::ztbCreateD(ztb, sysDir, unused);
  }
  return reportCreation(ztb != nullptr, msg, msgLen);
}

int d__ztbcreated(ztbRec** ztb, const char* sysDir, char* msg, int msgLen) {
  return ztbcreated(ztb, ztb::exports::ShortStringIn(sysDir), msg, msgLen);
}

int ztbfree(ztbRec** ztb) {
  if (*ztb == nullptr) {
    return 1;
  }
  ztb::ztbFree(ztb);
  return *ztb == nullptr ? 1 : 0;
}

void xcreate(ztbRec** ztb) {
  char unused[ZTB_TEXT_BUFFER_SIZE];
  ztb::ztbCreate(ztb, unused);
}

void xcreated(ztbRec** ztb, const char* sysDir) {
  char unused[ZTB_TEXT_BUFFER_SIZE];
  ztb::ztbCreateD(ztb, sysDir, unused);
}

void d__xcreated(ztbRec** ztb, const char* sysDir) {
  xcreated(ztb, ztb::exports::ShortStringIn(sysDir));
}

void xfree(ztbRec** ztb) {
  if (*ztb != nullptr) {
    ztb::ztbFree(ztb);
  }
}

extern "C" {
[[gnu::alias("xcreate"), gnu::visibility("default")]] void ztbxcreate(ztbRec** ztb);
[[gnu::alias("xcreated"), gnu::visibility("default")]] void ztbxcreated(ztbRec** ztb,
                                                                        const char* sysDir);
[[gnu::alias("xfree"), gnu::visibility("default")]] void ztbxfree(ztbRec** ztb);
[[gnu::alias("d__xcreated"), gnu::visibility("default")]] void d__ztbxcreated(ztbRec** ztb,
                                                                              const char* sysDir);
}
