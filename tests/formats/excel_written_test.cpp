// Workbooks that are written, by programs and limits of the system: another program that reads and
// changes them, and a disk that is full.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/formats/job.h"
#include "tests/support/comma_language.h"

namespace {

using formatstest::Job;

TEST(ExcelWritten, WritesASheetThatAnotherProgramReads) {
  const ztbtest::TempFolder folder;
  ztb::Database database;
  ztb::Symbol value = database.addParameter("price", {"food"}, "Cents");
  value.add("Milk").setLevel(11.25);
  value.add("a<b>&\"c").setLevel(0.1 + 0.2);
  const std::string target = folder.file("written.xlsx");
  Job job({{"all", ""}, {"to", target}});
  ASSERT_TRUE(job.exportDatabase(database.handle())) << job.errors(folder);
  const std::string command =
      "/usr/bin/python3 -c \"import openpyxl; b = openpyxl.load_workbook('" + target +
      "'); s = b['price']; assert b.sheetnames == ['_symbols', '_labels', 'price'], b.sheetnames; "
      "assert s.freeze_panes == 'B2', s.freeze_panes; "
      "assert s.column_dimensions['C'].hidden; "
      "assert [c.value for c in s[2]][:2] == ['Milk', 11.25]; "
      "assert s['A3'].value == 'a<b>&\\\"c' and abs(s['B3'].value - 0.3) < 1e-15\"";
  EXPECT_EQ(std::system(command.c_str()), 0);

  // What was typed over in another program counts, not the bits that were kept.
  const std::string change = "/usr/bin/python3 -c \"import openpyxl; b = openpyxl.load_workbook('" +
                             target + "'); b['price']['B3'] = 0.5; b.save('" + target + "')\"";
  ASSERT_EQ(std::system(change.c_str()), 0);
  Job in({{"from", target}});
  ASSERT_TRUE(in.import(folder.file("back.rxf"))) << in.errors(folder);
  const ztb::Database back = ztb::Database::open(folder.file("back.rxf"));
  EXPECT_EQ(back["price"].find("a<b>&\"c")->level(), 0.5);
  EXPECT_EQ(back["price"].find("Milk")->level(), 11.25);
}

// The same of the table of one symbol, read as any table: labels, words and signs of zeros too.
TEST(ExcelWritten, ReadsATableThatAnotherProgramChanged) {
  const ztbtest::TempFolder folder;
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"food"});
  price.add("Milk").setLevel(0.1 + 0.2);
  price.add("2020").setLevel(1.0 / 3);
  price.add("\\x").setLevel(1.0 / 7);
  price.add("Ham").setLevel(-0.0);
  price.add("TRUE").setLevel(2.0 / 3);
  price.add("Soy").setLevel(4);
  const std::string target = folder.file("p.xlsx");
  Job out({{"symbol", "price"}, {"to", target}});
  ASSERT_TRUE(out.exportDatabase(database.handle())) << out.errors(folder);
  const std::string change =
      "/usr/bin/python3 -c \"import openpyxl; b = openpyxl.load_workbook('" + target +
      "'); s = b['price']; row = {r[0].value: r for r in s.iter_rows(min_row=2)}; "
      "row['Milk'][1].value = 0.5; row['2020'][1].value = 'eps'; row['TRUE'][0].value = 'FALSE'; "
      "s.append(['Curd', 0.25]); s.delete_rows(row['Soy'][0].row); b.save('" +
      target + "')\"";
  ASSERT_EQ(std::system(change.c_str()), 0);
  Job in({{"from", target}, {"parameter", "price(food)"}});
  ASSERT_TRUE(in.import(folder.file("back.rxf"))) << in.errors(folder);
  const ztb::Database back = ztb::Database::open(folder.file("back.rxf"));
  const ztb::Symbol read = back["price"];
  EXPECT_EQ(read.recordCount(), 6);
  EXPECT_EQ(read.find("Milk")->level(), 0.5);
  EXPECT_EQ(read.find("2020")->level(), 4.94065645841246544e-324);
  EXPECT_EQ(read.find("\\x")->level(), 1.0 / 7);
  EXPECT_TRUE(std::signbit(read.find("Ham")->level()));
  EXPECT_EQ(read.find("FALSE")->level(), 2.0 / 3);
  EXPECT_EQ(read.find("Curd")->level(), 0.25);
}

TEST(ExcelWritten, WritesNumbersWithAPointInALanguageWithCommas) {
  const ztbtest::TempFolder folder;
  auto language = std::make_unique<ztbtest::CommaLanguage>();
  ztb::Database database;
  database.addParameter("price", {"food"}).add("Milk").setLevel(1.5);
  const std::string target = folder.file("price.xlsx");
  Job out({{"all", ""}, {"to", target}});
  EXPECT_TRUE(out.exportDatabase(database.handle())) << out.errors(folder);
  Job in({{"from", target}});
  EXPECT_TRUE(in.import(folder.file("back.rxf"))) << in.errors(folder);
  // What the program has set stays.
  EXPECT_TRUE(ztbtest::CommaLanguage::isSet());
  language.reset();
  const std::string command =
      "/usr/bin/python3 -c \"import openpyxl; s = openpyxl.load_workbook('" + target +
      "')['price']; assert s['B2'].value == 1.5, s['B2'].value; "
      "assert s.column_dimensions['A'].width > 16\"";
  EXPECT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(ztb::Database::open(folder.file("back.rxf"))["price"].find("Milk")->level(), 1.5);
}

TEST(ExcelWritten, TellsAFullDiskThatTheLibraryOverlooks) {
  // Parts of the workbook are larger than any file may become, and the packed workbook is smaller.
  constexpr rlim_t largest = 100000;
  const ztbtest::TempFolder folder;
  ztb::Database database;
  ztb::Symbol value = database.addParameter("price", {"food"});
  for (int food = 0; food < 5000; ++food) value.add(std::to_string(food)).setLevel(1);
  const std::string rxf = folder.file("many.rxf");
  const std::string target = folder.file("many.xlsx");
  database.write(rxf);
  const pid_t child = fork();
  if (child == 0) {
    const rlimit limit{largest, largest};
    signal(SIGXFSZ, SIG_IGN);
    Job job({{"all", ""}, {"to", target}});
    const bool refused = setrlimit(RLIMIT_FSIZE, &limit) == 0 && !job.exportFile(rxf) &&
                         job.errors(folder).starts_with("many.xlsx: cannot be written");
    _exit(refused ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(std::filesystem::exists(target));
  Job job({{"all", ""}, {"to", target}});
  EXPECT_TRUE(job.exportFile(rxf)) << job.errors(folder);
}

}  // namespace
