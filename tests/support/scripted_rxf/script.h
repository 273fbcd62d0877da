// What the scripted exchange-file peer was told to do, what it did, and the files it has: one of
// each for the process.

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPT_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPT_H_

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/scripted_rxf/scripted_file.h"

namespace scripted {

// An object of the peer: one file being read or written, and the errors that came up.
struct Object {
  int number = 0;
  int errorCount = 0;
  std::vector<int> pendingErrors;
  std::vector<double> readSpecialValues;
  std::vector<double> writeSpecialValues;

  enum class Mode { closed, reading, writing };
  Mode mode = Mode::closed;
  std::string fileName;
  File file;
  const Symbol* source = nullptr;  // the symbol being read
  std::size_t nextRecord = 0;
};

struct Plan {
  std::string operation;
  int callsToGo = 0;
  bool fails = false;  // gives `number` as result; otherwise raises it as an error
  int number = 0;
  bool once = true;
};

struct Script {
  std::string log;
  std::vector<Plan> plans;
  std::map<std::string, std::string> lacking;  // reason by operation
  std::optional<std::string> versionRefusal;
  std::map<int, std::string> errorTexts;
  std::array<double, tableSize> latestTable{};  // of special values, as it was set
  std::map<std::string, File> files;
  std::string currentFile;
  int objectsMade = 0;
  int objectsAlive = 0;
};

Script& script();

// One call of an operation: writes it down and carries out what is planned for it.
class Call {
 public:
  // `arguments` as they stand in the log, with a blank before each.
  Call(void* object, const char* operation, const std::string& arguments = "");

  Object& object() { return *object_; }
  // Set if the call must do nothing but give this result.
  const std::optional<int>& failure() const { return failure_; }

 private:
  Object* object_;
  std::optional<int> failure_;
};

}  // namespace scripted

#endif  // ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPT_H_
