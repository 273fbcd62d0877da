// A host engine whose answers a test lays down: symbols with their records, texts, and which of its
// entries refuse. It logs every call.
#ifndef ZTB_TESTS_TRANSFER_SCRIPTED_HOST_H_
#define ZTB_TESTS_TRANSFER_SCRIPTED_HOST_H_

#include <map>
#include <string>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {

struct HostRecord {
  std::vector<int> keys;
  std::vector<double> values;
};

class ScriptedHost {
 public:
  ScriptedHost() = default;
  ScriptedHost(const ScriptedHost&) = delete;
  ScriptedHost& operator=(const ScriptedHost&) = delete;

  // Offers a symbol under a number. A symbol that is not offered is not found.
  void add(const std::string& name, int number, std::vector<HostRecord> records);

  // Attaches a database to this host; the host must outlive the database's reading.
  void attach(ztbRec* database);

  std::map<int, std::string> texts;
  bool refuseStart = false;
  bool refuseDone = false;
  // The record, from 0, at which reading fails, or -1.
  int refuseRecord = -1;
  std::vector<std::string> calls;
  // Short strings that the log received: the length byte, and all 255 chars behind it.
  std::vector<std::pair<unsigned, std::string>> logged;

 private:
  struct Symbol {
    int number;
    std::vector<HostRecord> records;
  };

  static int findSymbol(const char* name, int* number, void* userMem);
  static int dataReadRawStart(int number, int* count, void* userMem);
  static int dataReadRaw(int* keys, double* values, int* unused, void* userMem);
  static int dataReadDone(void* userMem);
  static int getElemText(int number, char* text, int size, void* userMem);
  static void log(const char* text, void* userMem);

  std::map<std::string, Symbol> symbols_;
  const Symbol* reading_ = nullptr;
  std::size_t record_ = 0;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_TRANSFER_SCRIPTED_HOST_H_
