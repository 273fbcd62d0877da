// The extension as a program that has SQLite loads it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class LoadedExtension : public testing::Test {
 protected:
  void SetUp() override {
    sqlite3* connection = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(":memory:", &connection));
    connection_.reset(connection);
    ASSERT_EQ(SQLITE_OK,
              sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 1, nullptr));
    char* message = nullptr;
    ASSERT_EQ(SQLITE_OK,
              sqlite3_load_extension(connection, ZTB_SQLITE_EXTENSION_FILE, nullptr, &message))
        << message;
    ztb::Database database;
    ztb::Symbol price = database.addParameter("price", {"food"});
    price.add("Milk").setLevel(11);
    price.add("Tofu").setLevel(2.5);
    database.write(file_);
  }

  // The rows of a query, cells parted by '|'; the message of a failure.
  std::vector<std::string> rows(const std::string& sql) {
    std::vector<std::string> result;
    char* message = nullptr;
    sqlite3_exec(
        connection_.get(), sql.c_str(),
        [](void* rows, int count, char** cells, char**) {
          std::string row;
          for (int cell = 0; cell < count; ++cell) {
            row += (cell == 0 ? "" : "|") + std::string(cells[cell] == nullptr ? "" : cells[cell]);
          }
          static_cast<std::vector<std::string>*>(rows)->push_back(row);
          return 0;
        },
        &result, &message);
    if (message != nullptr) result.emplace_back(message);
    sqlite3_free(message);
    return result;
  }

  ztbtest::TempFolder folder_;
  std::string file_ = folder_.file("K\xC3\xA4se.rxf");
  struct Close {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  };
  std::unique_ptr<sqlite3, Close> connection_;
};

TEST_F(LoadedExtension, ShowsTheSymbolsOfAFile) {
  EXPECT_THAT(rows("select * from ztb('" + file_ + "', 'price')"),
              ElementsAre("Milk||||11.0|", "Tofu||||2.5|"));
  EXPECT_THAT(rows("create virtual table temp.p using ztb_symbol('" + file_ +
                   "', 'price');"
                   "select food, value from p where food = 'milk'"),
              ElementsAre("Milk|11.0"));
}

TEST_F(LoadedExtension, TellsWhatIsNotThere) {
  EXPECT_THAT(rows("select * from ztb('" + file_ + "', 'nothing')"),
              ElementsAre(HasSubstr("there is no symbol nothing")));
  EXPECT_THAT(rows("select * from ztb('" + folder_.file("none.rxf") + "', 'price')"),
              ElementsAre(HasSubstr("none.rxf")));
}

}  // namespace
