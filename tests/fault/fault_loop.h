// Runs an operation again and again, each time on a database of its own, with its first allocation
// failing, then its second, and so on until it needs no further one.
#ifndef ZTB_TESTS_FAULT_FAULT_LOOP_H_
#define ZTB_TESTS_FAULT_FAULT_LOOP_H_

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {

// What a client can see of a database: its labels, and all symbols with their records.
struct Contents {
  Labels labels;
  std::vector<std::pair<std::string, std::vector<Row>>> symbols;

  bool operator==(const Contents&) const = default;
};

Contents contentsOf(Database& db);

struct FaultCase {
  // The operation's name in the text of a failure.
  std::string name;
  // Fills the new database.
  std::function<void(Database&)> prepare;
  // The operation. It must allocate nothing itself, and end any handle that it was given.
  std::function<int(Database&)> operate;
  // The result when no allocation fails.
  int result = 1;
  // Runs before the database ends, to end what `prepare` made beside it.
  std::function<void(Database&)> finish = [](Database&) {};
};

// Expects, for each allocation that fails: result 0, "Out of memory in NAME" as the last error and
// on standard output, the database as before but for labels that may have been added, success of
// the repeated operation with the outcome of one that never failed, and nothing left allocated.
// Every case must make at least one allocation.
void expectEveryAllocationIsSurvived(const FaultCase& one);

}  // namespace ztbtest

#endif  // ZTB_TESTS_FAULT_FAULT_LOOP_H_
