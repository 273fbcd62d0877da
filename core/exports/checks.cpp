// The version check and the signature check. Neither uses a database.

#include <ztb/ztb.h>

#include <cstdio>
#include <cstring>

#include "core/exports/operation_table.h"
#include "core/exports/short_string.h"

namespace {

using ztb::exports::OperationRow;
using ztb::exports::operationTable;

constexpr int libraryVersion = 5;
constexpr int oldestCompatibleVersion = 2;

enum Compatibility { incompatible, sameVersion, olderClient, newerClient };

void say(char* msg, const char* text) {
  std::snprintf(msg, ZTB_TEXT_BUFFER_SIZE, "%s", text);
}

const OperationRow* findRow(const char* name) {
  for (const OperationRow& row : operationTable) {
    if (std::strcmp(row.name, name) == 0) {
      return &row;
    }
  }
  return nullptr;
}

bool sameCodes(const OperationRow& row, const int* codes) {
  if (codes[0] != row.result) {
    return false;
  }
  for (int i = 0; i < row.argCount; ++i) {
    if (codes[i + 1] != row.arguments[static_cast<std::size_t>(i)]) {
      return false;
    }
  }
  return true;
}

}  // namespace

int c__xapiversion(int api, char* msg, int* compatibility) {
  if (api < oldestCompatibleVersion) {
    *compatibility = incompatible;
    std::snprintf(msg, ZTB_TEXT_BUFFER_SIZE,
                  "ztbcclib: The API is too old for the used library, API version: %d, library "
                  "version: %d",
                  api, libraryVersion);
    return 0;
  }
  if (api == libraryVersion) {
    *compatibility = sameVersion;
    say(msg, "ztbcclib: Client version and DLL version are the same.");
  } else if (api > libraryVersion) {
    *compatibility = newerClient;
    say(msg, "ztbcclib: Client version is newer than this DLL.");
  } else {
    *compatibility = olderClient;
    say(msg, "ztbcclib: Client version is compatible to this version of the DLL.");
  }
  return 1;
}

int c__xcheck(const char* name, int argCount, const int* codes, char* msg) {
  msg[0] = '\0';
  const char* complaint = nullptr;
  const OperationRow* row = name == nullptr ? nullptr : findRow(name);
  if (row == nullptr) {
    complaint = "cannot be found in library.";
  } else if (argCount != row->argCount) {
    complaint = "has wrong number of arguments.";
  } else if (!sameCodes(*row, codes)) {
    complaint = "has wrong argument types.";
  }
  if (complaint == nullptr) {
    return 1;
  }
  std::snprintf(msg, ZTB_TEXT_BUFFER_SIZE, "ztbcclib: %s %s", name == nullptr ? "" : name,
                complaint);
  return 0;
}

int d__xapiversion(int api, char* msg, int* compatibility) {
  return c__xapiversion(api, ztb::exports::ShortStringOut(msg), compatibility);
}

int d__xcheck(const char* name, int argCount, const int* codes, char* msg) {
  return c__xcheck(ztb::exports::ShortStringIn(name), argCount, codes,
                   ztb::exports::ShortStringOut(msg));
}

extern "C" {
[[gnu::alias("d__xapiversion"), gnu::visibility("default")]] int d__ztbxapiversion(
    int api, char* msg, int* compatibility);
[[gnu::alias("d__xcheck"), gnu::visibility("default")]] int d__ztbxcheck(const char* name,
                                                                         int argCount,
                                                                         const int* codes,
                                                                         char* msg);
}
