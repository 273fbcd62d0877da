// A database and a small model on scripted peers, whose every call a test can see.
//
// The model, linear and of type 1, with the values as they stand before a solve:
//
//   cost                 equation, scalar, `=`      row 0
//   need(iron, protein)  equation, `>=`             rows 1 and 2
//   buy(flour, milk)     variable                   columns 0 and 1
//   price_var(..)        variable over flour, milk  columns 2 and 3
//   total                variable, scalar           column 4
//
// Solvers: 1 "dual" and 3 "primal" work in place, 2 "barrier" does not.
#ifndef ZTB_TESTS_BRIDGE_BRIDGE_FIXTURE_H_
#define ZTB_TESTS_BRIDGE_BRIDGE_FIXTURE_H_

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/scripted_model/scripted_model_client.h"
#include "tests/support/scripted_rxf/scripted_rxf_client.h"

namespace ztbtest {

using Lines = std::vector<std::string>;

inline constexpr double infinity = std::numeric_limits<double>::infinity();

// The lines of a text, without empty ones.
Lines lines(const std::string& text);

// One list behind the other.
Lines operator+(Lines left, const Lines& right);

class BridgeTest : public testing::Test {
 protected:
  BridgeTest();
  // Frees the database; then no catalogue or live solver may be left.
  ~BridgeTest() override;

  // ---- The model. ----

  void makeDiet();
  int symbol(const char* name, int dim, int type, int userInfo = 0, const char* text = "");
  int column(const std::vector<int>& keys, const std::vector<double>& values, int status = 0,
             int secondStatus = 0);
  int row(const std::vector<int>& keys, const std::vector<double>& values, int type = 0,
          int status = 0, int secondStatus = 0);

  // The calls of the model peers since the last time; the system directory stands as DIR.
  Lines log();
  // The same for calls of operations whose names begin so.
  Lines log(const std::string& operation);
  // The line of the model's state that begins so.
  std::string state(const std::string& beginning);

  // ---- The database. ----

  // A new database in the place of the present one.
  void renew();
  // Frees the database and gives the calls that this took.
  Lines freeDatabase();
  // Registers the model, fills the database from its dictionary, prepares updates, and forgets the
  // calls for it.
  void prepare();
  // A parameter with a record for each label.
  void* data(const char* name, const std::vector<std::pair<const char*, double>>& records);
  int update(void* modelSymbol, int action, void* dataSymbol, int updateType);
  int solve(const char* solver) { return lib().c__ztbcallsolver(db(), solver); }
  // A line for each record: its labels, a colon, its five values.
  Lines records(const char* symbol);

  Database& db() { return *db_; }

  scripted::ModelClient model_;
  scripted::Client rxf_;
  int noMatch_ = -1;

 private:
  std::unique_ptr<Database> db_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_BRIDGE_BRIDGE_FIXTURE_H_
