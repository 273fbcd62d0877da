// Parquet files where there is no library of DuckDB's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/formats/job.h"
#include "tests/support/environment_setting.h"

namespace {

using formatstest::Job;
using testing::HasSubstr;
using testing::StartsWith;

TEST(WithoutDuckdb, ParquetFilesAreRefusedWithAWordOnHowToGetIt) {
  const ztbtest::TempFolder folder;
  const std::string nowhere = folder.file("nowhere");
  std::filesystem::create_directory(nowhere);
  const ztbtest::EnvironmentSetting setting("ZTB_DUCKDB", nowhere.c_str());
  ztb::Database database;
  database.addSet("food", {"*"}).add("Milk");
  const std::string target = folder.file("food.parquet");
  Job out({{"symbol", "food"}, {"to", target}});
  EXPECT_FALSE(out.exportDatabase(database.handle()));
  EXPECT_EQ(ZTB_ERROR_NO_LIBRARY, out.kind());
  EXPECT_THAT(out.errors(folder), StartsWith("Parquet files need DuckDB's library " ZTB_DUCKDB_FILE
                                             ", which cannot be opened (nowhere"));
  EXPECT_THAT(out.errors(folder), HasSubstr("by the npm package @duckdb/node-bindings-"));
  EXPECT_THAT(out.errors(folder), HasSubstr("the environment variable ZTB_DUCKDB"));
  EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
