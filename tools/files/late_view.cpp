// The functions of ztb/view.h that the command calls, each of which goes on to the library ztbview:
// a command that calls none starts without it.
#include <ztb/view.h>

#include "tools/files/late_library.h"

namespace {

constexpr tool::LateLibrary viewLibrary("ztbview");

}  // namespace

int ztbViewCreate(ztbView** view) {
  return ZTB_LATE(viewLibrary, ztbViewCreate)(view);
}

void ztbViewFree(ztbView** view) {
  ZTB_LATE(viewLibrary, ztbViewFree)(view);
}

int ztbViewOption(ztbView* view, const char* name, const char* value) {
  return ZTB_LATE(viewLibrary, ztbViewOption)(view, name, value);
}

int ztbViewOpen(ztbView* view) {
  return ZTB_LATE(viewLibrary, ztbViewOpen)(view);
}

const char* ztbViewLink(const ztbView* view) {
  return ZTB_LATE(viewLibrary, ztbViewLink)(view);
}

int ztbViewRun(ztbView* view) {
  return ZTB_LATE(viewLibrary, ztbViewRun)(view);
}

void ztbViewStop(ztbView* view) {
  ZTB_LATE(viewLibrary, ztbViewStop)(view);
}

const char* ztbViewMessage(const ztbView* view) {
  return ZTB_LATE(viewLibrary, ztbViewMessage)(view);
}

int ztbViewIsUsage(const ztbView* view) {
  return ZTB_LATE(viewLibrary, ztbViewIsUsage)(view);
}
