// A database of ours behind its C interface, as a C++ program holds it. Failures throw
// std::runtime_error with the database's text.
#ifndef ZTB_BENCH_DATABASE_H_
#define ZTB_BENCH_DATABASE_H_

#include <ztb/ztb.h>

#include <memory>

#include "bench/data.h"

namespace bench {

class Database {
 public:
  Database();
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Throws unless the status of an operation is 1.
  void require(int status) const {
    if (status != 1) {
      fail();
    }
  }

  // Adds the labels in the order of their numbers.
  void addLabels(const Data& data);
  // Adds a parameter over the universe.
  void* addParameter(const char* name);
  // Adds the records [first, last) by label numbers, in their order.
  void addRecords(void* symbol, const Data& data, std::size_t first, std::size_t last);

  [[nodiscard]] ztbRec* handle() const { return handle_; }

 private:
  [[noreturn]] void fail() const;

  ztbRec* handle_ = nullptr;
};

// A database with one parameter that holds all records; shared by the contests that read.
struct FilledDatabase {
  Database database;
  void* symbol = nullptr;
};
FilledDatabase& filledDatabase(const Data& data);

}  // namespace bench

#endif  // ZTB_BENCH_DATABASE_H_
