// A database for a test, and the few things that every test does with one. All that is done goes
// through the exported names; a step that a test only needs on its way throws when it fails.
#ifndef ZTB_TESTS_SUPPORT_DATABASE_H_
#define ZTB_TESTS_SUPPORT_DATABASE_H_

#include <ztb/types.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/library.h"

namespace ztbtest {

// A text with a number at its end, such as "label12".
std::string numbered(std::string_view stem, int number);

// Labels as the array of pointers that the interface takes.
class Keys {
 public:
  Keys(std::initializer_list<const char*> labels) : labels_(labels) {}
  explicit Keys(const std::vector<std::string>& labels) {
    for (const std::string& label : labels) {
      labels_.push_back(label.c_str());
    }
  }

  operator const char**() { return labels_.data(); }

 private:
  std::vector<const char*> labels_;
};

// A record handle that is freed at the end of its scope. Must not outlive its database.
class Record {
 public:
  Record(ztbRec* database, void* handle) : database_(database), handle_(handle) {}
  Record(Record&& other) noexcept
      : database_(other.database_), handle_(std::exchange(other.handle_, nullptr)) {}
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  Record& operator=(Record&&) = delete;
  ~Record() {
    if (handle_ != nullptr) {
      lib().c__ztbfreesymboliterator(database_, handle_);
    }
  }

  operator void*() const { return handle_; }

 private:
  ztbRec* database_;
  void* handle_;
};

using Labels = std::vector<std::string>;

// A record as it is read back: its labels and its level.
struct Row {
  Labels labels;
  double level = 0;

  bool operator==(const Row&) const = default;
};

// Where a database looks for its peer libraries.
struct SystemDirectory {
  std::string path;
};

class Database {
 public:
  Database();
  explicit Database(const SystemDirectory& directory);
  // A mirror of an exchange file.
  explicit Database(const std::string& fileName);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  operator ztbRec*() const { return database_; }

  std::string lastError() const;
  // Makes lastError() a text that no other operation writes, and asks whether it still is.
  void markError();
  bool errorUntouched() const;

  int info(int key) const;
  int symbolInfo(void* symbol, int key) const;
  std::string symbolText(void* symbol, int key) const;
  int recordCount(void* symbol) const { return symbolInfo(symbol, ZTB_SYMBOL_INFO_RECORD_COUNT); }

  void* add(const char* name, int dim, int type, int userInfo = 0, const char* text = "");
  void* addSet(const char* name, int dim = 1) { return add(name, dim, ZTB_SET); }
  void* addParameter(const char* name, int dim = 1) { return add(name, dim, ZTB_PARAMETER); }
  void* addVariable(const char* name, int dim = 1, int subtype = 0) {
    return add(name, dim, ZTB_VARIABLE, subtype);
  }
  void* addEquation(const char* name, int dim = 1, int subtype = 0) {
    return add(name, dim, ZTB_EQUATION, subtype);
  }
  void* addAlias(const char* name, void* set);
  // Adds a symbol over the given domains.
  void* addOver(const char* name, int type, std::vector<void*> domains);
  // Adds a symbol over domains that are known by name only.
  void* addOverNames(const char* name, int type, std::vector<const char*> domainNames);

  void* find(const char* name);
  void* findWithAlias(const char* name);
  void* universe() { return find("*"); }

  int uel(const char* label);
  int findUel(const char* label);

  // Finds or makes a record; with a value, its level is set.
  Record put(void* symbol, Keys keys);
  Record put(void* symbol, Keys keys, double level);
  Record record(void* symbol, Keys keys);
  Record first(void* symbol);
  Record last(void* symbol);

  double level(void* record) const;
  std::string elementText(void* record) const;
  Labels labels(void* record, int dim) const;
  // All records of a symbol in the order of a walk forwards.
  std::vector<Row> rows(void* symbol);

 private:
  ztbRec* database_ = nullptr;
};

}  // namespace ztbtest

// The call gives 0, and its text is exactly the one given. (database, text, call)
#define EXPECT_FAILURE(database, text, ...)    \
  do {                                         \
    (database).markError();                    \
    EXPECT_EQ(0, (__VA_ARGS__));               \
    EXPECT_EQ((text), (database).lastError()); \
  } while (false)

// The call gives 0 and leaves the text of the last failure alone. (database, call)
#define EXPECT_SILENT_FAILURE(database, ...)                                        \
  do {                                                                              \
    (database).markError();                                                         \
    EXPECT_EQ(0, (__VA_ARGS__));                                                    \
    EXPECT_TRUE((database).errorUntouched()) << "text: " << (database).lastError(); \
  } while (false)

// The call gives 1 and leaves the text of the last failure alone. (database, call)
#define EXPECT_SUCCESS(database, ...)                                               \
  do {                                                                              \
    (database).markError();                                                         \
    EXPECT_EQ(1, (__VA_ARGS__));                                                    \
    EXPECT_TRUE((database).errorUntouched()) << "text: " << (database).lastError(); \
  } while (false)

// The call gives 0 with the text of an operation that met what it cannot do: the fixed words with
// the operation's name, then any reason. (database, operation, call)
#define EXPECT_UNEXPECTED(database, operation, ...)                                          \
  do {                                                                                       \
    (database).markError();                                                                  \
    EXPECT_EQ(0, (__VA_ARGS__));                                                             \
    const std::string wanted = std::string("Unexpected exception in ") + (operation) + ": "; \
    EXPECT_EQ(wanted, (database).lastError().substr(0, wanted.size()));                      \
    EXPECT_LT(wanted.size(), (database).lastError().size()) << "no reason given";            \
  } while (false)

#endif  // ZTB_TESTS_SUPPORT_DATABASE_H_
