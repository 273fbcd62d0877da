// A folder with tables in files of other programs, and what imports of them give.
#ifndef ZTB_TESTS_FORMATS_TABLE_FIXTURE_H_
#define ZTB_TESTS_FORMATS_TABLE_FIXTURE_H_

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/formats/job.h"

namespace formatstest {

class TableTest : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& content) {
    std::ofstream(folder_.file(name), std::ios::binary) << content;
  }
  std::string read(const std::string& name) {
    std::ostringstream content;
    content << std::ifstream(folder_.file(name), std::ios::binary).rdbuf();
    return content.str();
  }
  void gzip(const std::string& name, const std::string& content) {
    gzFile file = gzopen(folder_.file(name).c_str(), "wb");
    gzwrite(file, content.data(), static_cast<unsigned>(content.size()));
    gzclose(file);
  }
  void sql(const std::string& name, const char* statements) {
    sqlite3* file = nullptr;
    ASSERT_EQ(sqlite3_open(folder_.file(name).c_str(), &file), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(file, statements, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(file);
    sqlite3_close(file);
  }

  // Imports a source with options behind it and opens what was made.
  ztb::Database imported(const std::string& source, const Options& options) {
    Options all{{"from", folder_.file(source)}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    const std::string out = folder_.file("out" + std::to_string(++outs_) + ".rxf");
    EXPECT_TRUE(job.import(out)) << job.errors(folder_);
    return ztb::Database::open(out);
  }
  // What is told of an import that fails and leaves nothing.
  std::string errorsOf(const std::string& source, const Options& options) {
    Options all{{"from", folder_.file(source)}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    EXPECT_FALSE(job.import(folder_.file("none.rxf")));
    EXPECT_FALSE(std::filesystem::exists(folder_.file("none.rxf")));
    return job.errors(folder_);
  }

  ztbtest::TempFolder folder_;
  // Files that were made: one that is open cannot be replaced everywhere.
  int outs_ = 0;
};

inline const Options price{{"parameter", "price(food) = cents"}};
inline constexpr const char* foods = "food,cents\nMilk,11\nTofu,7.5\n";

}  // namespace formatstest

#endif  // ZTB_TESTS_FORMATS_TABLE_FIXTURE_H_
