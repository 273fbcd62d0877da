// A test's way to the control functions of the scripted exchange-file peer (scripted_rxf.h).
//
// The peer's library is opened by its path, so the library under test, which opens the same file
// from directory() at its own time, meets the same state.

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_RXF_CLIENT_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_RXF_CLIENT_H_

#include <dlfcn.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/library_name.h"
#include "tests/support/scripted_rxf/control.h"
#include "tests/support/scripted_rxf/scripted_rxf.h"

namespace scripted {

// Opens the peer and stays with it; the library stays open when the object ends. The constructor
// throws std::runtime_error if the library or a function in it isn't there.
class Client {
 private:
  static void* open() {
    void* library =
        dlopen((directory() + "/" ZTB_LIBRARY_NAME("rxfcclib64")).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    return library;
  }

  void* library_ = open();

 public:
  // Where the peer's library file is.
  static std::string directory() { return SCRIPTED_RXF_DIRECTORY; }

  // The log in lines, without the newlines.
  std::vector<std::string> lines() const {
    std::vector<std::string> result;
    std::string line;
    for (const char* c = log(); *c != '\0'; ++c) {
      if (*c != '\n') {
        line += *c;
      } else {
        result.push_back(line);
        line.clear();
      }
    }
    return result;
  }

  Control<decltype(scriptedLog)> log{library_, "scriptedLog"};
  Control<decltype(scriptedClearLog)> clearLog{library_, "scriptedClearLog"};
  Control<decltype(scriptedObjects)> objects{library_, "scriptedObjects"};
  Control<decltype(scriptedReset)> reset{library_, "scriptedReset"};
  Control<decltype(scriptedFail)> fail{library_, "scriptedFail"};
  Control<decltype(scriptedFailAlways)> failAlways{library_, "scriptedFailAlways"};
  Control<decltype(scriptedRaise)> raise{library_, "scriptedRaise"};
  Control<decltype(scriptedErrorText)> errorText{library_, "scriptedErrorText"};
  Control<decltype(scriptedLack)> lack{library_, "scriptedLack"};
  Control<decltype(scriptedRefuseVersion)> refuseVersion{library_, "scriptedRefuseVersion"};
  Control<decltype(scriptedFile)> file{library_, "scriptedFile"};
  Control<decltype(scriptedAddText)> addText{library_, "scriptedAddText"};
  Control<decltype(scriptedAddLabel)> addLabel{library_, "scriptedAddLabel"};
  Control<decltype(scriptedAddSymbol)> addSymbol{library_, "scriptedAddSymbol"};
  Control<decltype(scriptedAddRecord)> addRecord{library_, "scriptedAddRecord"};
  Control<decltype(scriptedSetDomain)> setDomain{library_, "scriptedSetDomain"};
  Control<decltype(scriptedSpecialValue)> specialValue{library_, "scriptedSpecialValue"};
  Control<decltype(scriptedTableEntry)> tableEntry{library_, "scriptedTableEntry"};
  Control<decltype(scriptedDump)> dump{library_, "scriptedDump"};
};

}  // namespace scripted

#endif  // ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_RXF_CLIENT_H_
