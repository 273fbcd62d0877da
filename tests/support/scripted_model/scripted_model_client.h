// A test's way to the control functions of the scripted model peers (scripted_model.h).
//
// The library is opened by its path, so the library under test, which opens the same file from
// directory() at its own time, meets the same state.

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPTED_MODEL_CLIENT_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPTED_MODEL_CLIENT_H_

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "tests/support/library_name.h"
#include "tests/support/scripted_model/scripted_model.h"
#include "tests/support/scripted_rxf/control.h"

namespace scripted {

// Opens the peers and stays with them; the library stays open when the object ends. The constructor
// throws std::runtime_error if the library or a function in it isn't there.
class ModelClient {
 private:
  static void* open() {
    void* library =
        dlopen((directory() + "/" ZTB_LIBRARY_NAME("lomudclib64")).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    return library;
  }

  void* library_ = open();

 public:
  // Where the peers' library files are.
  static std::string directory() { return SCRIPTED_MODEL_DIRECTORY; }

  Control<decltype(scriptedModelLog)> log{library_, "scriptedModelLog"};
  Control<decltype(scriptedModelClearLog)> clearLog{library_, "scriptedModelClearLog"};
  Control<decltype(scriptedModelAlive)> alive{library_, "scriptedModelAlive"};
  Control<decltype(scriptedModelReset)> reset{library_, "scriptedModelReset"};
  Control<decltype(scriptedModelAnswer)> answer{library_, "scriptedModelAnswer"};
  Control<decltype(scriptedModelMessage)> message{library_, "scriptedModelMessage"};
  Control<decltype(scriptedModelLack)> lack{library_, "scriptedModelLack"};
  Control<decltype(scriptedModelRefuseVersion)> refuseVersion{library_,
                                                              "scriptedModelRefuseVersion"};
  Control<decltype(scriptedModelHandle)> handle{library_, "scriptedModelHandle"};
  Control<decltype(scriptedModelType)> type{library_, "scriptedModelType"};
  Control<decltype(scriptedModelDirectory)> environmentDirectory{library_,
                                                                 "scriptedModelDirectory"};
  Control<decltype(scriptedModelAddSolver)> addSolver{library_, "scriptedModelAddSolver"};
  Control<decltype(scriptedModelAddLabel)> addLabel{library_, "scriptedModelAddLabel"};
  Control<decltype(scriptedModelAddSymbol)> addSymbol{library_, "scriptedModelAddSymbol"};
  Control<decltype(scriptedModelAddColumn)> addColumn{library_, "scriptedModelAddColumn"};
  Control<decltype(scriptedModelAddRow)> addRow{library_, "scriptedModelAddRow"};
  Control<decltype(scriptedModelDump)> dump{library_, "scriptedModelDump"};
};

}  // namespace scripted

#endif  // ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPTED_MODEL_CLIENT_H_
