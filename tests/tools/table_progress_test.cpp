// What is told of tables that are written and read, at a terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/database_export.h"
#include "formats/excel/xlsx_tables.h"
#include "formats/sqlite/sqlite_tables.h"
#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;

// A writer that looks what is told as each of its calls works.
class LookingWriter : public formats::TableWriter {
 public:
  LookingWriter(tool::Progress& progress, std::string file)
      : progress_(progress), file_(std::move(file)) {}

  void begin(const formats::TableHead& head) override { static_cast<void>(head); }
  void label(std::string_view text) override { static_cast<void>(text); }
  void text(std::string_view text) override { static_cast<void>(text); }
  void number(double value) override { static_cast<void>(value); }
  void missing() override {}
  void endRow() override {}
  [[nodiscard]] std::string_view ending() const override { return file_.empty() ? "" : "indexing"; }
  void end() override { seen.push_back(progress_.line()); }
  [[nodiscard]] std::string growingFile() const override { return file_; }
  void finish() override { seen.push_back(progress_.line()); }

  std::vector<std::string> seen;

 private:
  tool::Progress& progress_;
  std::string file_;
};

TEST(TableProgress, TellsTheWorkBehindTheRows) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("a.rxf");
  ztb::Database database;
  database.addParameter("p", {"*"}).add("a").setLevel(1);
  database.write(path);
  const tool::ExchangeFile file(path);
  std::vector<std::string> seen;
  tool::Progress progress(false);
  std::size_t records = 0;
  std::vector<std::string> notes;
  for (const bool isSlow : {true, false}) {
    LookingWriter writer(progress, isSlow ? path : "");
    formats::writeTables(writer, {.file = file,
                                  .symbols = {&file.symbol("p")},
                                  .path = "a.db",
                                  .progress = progress,
                                  .records = records,
                                  .notes = notes});
    ASSERT_EQ(writer.seen.size(), 4U);
    EXPECT_EQ(writer.seen[2], isSlow ? "indexing p" : "writing p: 1 records");
    EXPECT_EQ(writer.seen[3], isSlow ? "writing a.db: 0.0 MB" : "writing a.db");
  }
}

TEST(TableProgress, OfSqliteTellsTheIndexAndOfExcelTheFile) {
  const ztbtest::TempFolder folder;
  const auto sqlite = formats::makeSqlite({.path = folder.file("a.db")});
  EXPECT_EQ(sqlite->ending(), "");
  sqlite->begin({.name = "t", .columns = {{.name = "a"}}, .rows = 0, .keys = 1});
  EXPECT_EQ(sqlite->ending(), "indexing");
  EXPECT_EQ(sqlite->growingFile(), "");
  const auto excel = formats::makeXlsx({.path = folder.file("a.xlsx")});
  EXPECT_EQ(excel->ending(), "");
  EXPECT_THAT(excel->growingFile(), testing::StartsWith(folder.path().generic_string()));
}

TEST(TableProgress, OfAWorkbookIsTheShareOfTheSheet) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("a.xlsx");
  const auto writer = formats::makeXlsx({.path = path});
  writer->begin({.name = "t", .columns = {{.name = "a"}}, .rows = 20000, .keys = 1});
  for (int row = 0; row < 20000; ++row) {
    writer->label("label " + std::to_string(row));
    writer->endRow();
  }
  writer->end();
  writer->finish();
  const auto reader = formats::openXlsx({.path = path, .part = ""});
  formats::ProblemList problems(1);
  int row = 0;
  while (reader->next(problems)) {
    // Rows are of one length, but come by blocks.
    EXPECT_NEAR(reader->share(), row++ / 20000.0, 0.1);
  }
  EXPECT_EQ(row, 20001);
  EXPECT_EQ(reader->share(), 1);
}

}  // namespace
