// ztb/formats.hpp, the C++ wrapper.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <utility>
#include <ztb/formats.hpp>

#include "tests/support/temp_folder.h"

namespace {

TEST(FormatsWrapper, TakesADatabaseOutAndBringsItBack) {
  const ztbtest::TempFolder folder;
  ztb::Database database;
  database.addParameter("price", {"food"}).add("Milk").setLevel(0.1 + 0.2);
  ztb::Formats({{"all", ""}, {"to", folder.file("a.db")}}).exportFrom(database);
  ztb::Formats job({{"from", folder.file("a.db")}});
  job.importTo(folder.file("a.rxf"));
  EXPECT_EQ(job.counted(ZTB_FORMATS_RECORDS), 1);
  EXPECT_EQ(job.warnings(), "");
  ztb::Formats({{"all", ""}, {"to", folder.file("b.jsonl")}}).exportFrom(folder.file("a.rxf"));
  ztb::Database back;
  ztb::Formats({{"from", folder.file("b.jsonl")}}).importInto(back);
  EXPECT_EQ(back["price"].find("Milk")->level(), 0.1 + 0.2);
}

TEST(FormatsWrapper, MakesFilesOfOthers) {
  const ztbtest::TempFolder folder;
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"food"});
  price.add("Milk").setLevel(11);
  price.add("Tofu").setLevel(30);
  database.write(folder.file("a.rxf"));
  const std::string a = folder.file("a.rxf");
  const std::string b = folder.file("b.rxf");
  ztb::Formats({{"file", a}, {"where", "value > 20"}}).whereTo(b);
  EXPECT_EQ(ztb::Database::open(b)["price"].recordCount(), 1);
  ztb::Formats({{"file", a}, {"rename", "price = cost"}, {"label", "Milk = Cream"}}).renameTo(b);
  EXPECT_EQ(ztb::Database::open(b)["cost"].find("Cream")->level(), 11);
  ztb::Formats merge({{"file", a}, {"file", b}});
  merge.mergeTo(b);
  EXPECT_EQ(merge.counted(ZTB_FORMATS_RECORDS), 4);
  ztb::Formats({{"file", b}, {"symbol", "cost"}, {"sum", ""}, {"name", "all"}}).aggregateTo(b);
  EXPECT_EQ(ztb::Database::open(b)["all"].find()->level(), 41);
  try {
    ztb::Formats({{"file", a}, {"file", a}}).concatTo(b);
    FAIL() << "nothing is thrown";
  } catch (const ztb::Error& error) {
    EXPECT_EQ(error.kind(), ztb::ErrorKind::refused);
    EXPECT_NE(std::string(error.text()).find("price(\"Milk\"): stands in "), std::string::npos);
    EXPECT_STREQ(error.operation(), "ztbFormatsConcat");
  }
  EXPECT_THROW(ztb::Formats({{"file", a}, {"to", "a.db"}}), ztb::Error);
  EXPECT_THROW(
      ztb::Formats({{"file", folder.file("none.rxf")}, {"where", "value > 20"}}).whereTo(b),
      ztb::Error);
}

TEST(FormatsWrapper, ThrowsWithTheKindOfTheFailure) {
  const ztbtest::TempFolder folder;
  try {
    ztb::Formats({{"from", folder.file("none.db")}}).importTo(folder.file("a.rxf"));
    FAIL() << "nothing is thrown";
  } catch (const ztb::Error& error) {
    EXPECT_EQ(error.kind(), ztb::ErrorKind::noFile);
    EXPECT_STREQ(error.operation(), "ztbFormatsImport");
  }
  std::ofstream(folder.file("a.csv")) << "i,v\na,x\n";
  ztb::Database database;
  try {
    ztb::Formats({{"from", folder.file("a.csv")}, {"parameter", "p(i) = v"}}).importInto(database);
    FAIL() << "nothing is thrown";
  } catch (const ztb::Error& error) {
    EXPECT_EQ(error.kind(), ztb::ErrorKind::damagedFile);
    EXPECT_NE(std::string(error.text()).find("a.csv:2:3: v: 'x' is not a number\n"),
              std::string::npos);
  }
  EXPECT_THROW(ztb::Formats({{"colour", "red"}}), ztb::Error);
}

void cutInHalf(const std::string& path) {
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
}

TEST(FormatsWrapper, TellsWhatIsDamagedFromWhatIsMissing) {
  const ztbtest::TempFolder folder;
  const std::string whole = folder.file("whole.rxf");
  const std::string cut = folder.file("cut.rxf");
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"*"});
  price.add("Milk").setLevel(11);
  database.write(whole);
  std::filesystem::copy_file(whole, cut);
  cutInHalf(cut);
  for (const char* name : {"no.db", "no.xlsx", "no.jsonl", "no.csv.gz"}) {
    std::ofstream(folder.file(name)) << "hello, world\n";
  }
  const std::string out = folder.file("out.rxf");
  const auto kindOf = [](const auto& run) {
    try {
      run();
    } catch (const ztb::Error& error) {
      return error.kind();
    }
    return ztb::ErrorKind::none;
  };
  const auto imported = [&](std::initializer_list<std::pair<const char*, std::string>> options) {
    return kindOf([&] { ztb::Formats(options).importTo(out); });
  };
  const auto exported = [&](const std::string& to) {
    return kindOf([&] { ztb::Formats({{"to", to}, {"all", ""}}).exportFrom(whole); });
  };
  EXPECT_EQ(kindOf([&] {
              ztb::Formats({{"file", cut}, {"where", "value > 2"}}).whereTo(out);
            }),
            ztb::ErrorKind::damagedFile);
  EXPECT_EQ(kindOf([&] {
              ztb::Formats({{"file", cut}, {"file", whole}}).mergeTo(out);
            }),
            ztb::ErrorKind::damagedFile);
  EXPECT_EQ(kindOf([&] {
              ztb::Formats({{"to", folder.file("a.db")}, {"all", ""}}).exportFrom(cut);
            }),
            ztb::ErrorKind::damagedFile);
  EXPECT_EQ(imported({{"from", folder.file("no.db")}}), ztb::ErrorKind::damagedFile);
  EXPECT_EQ(imported({{"from", folder.file("no.xlsx")}}), ztb::ErrorKind::damagedFile);
  EXPECT_EQ(imported({{"from", folder.file("no.csv.gz")}, {"set", "x"}}),
            ztb::ErrorKind::damagedFile);
  ztb::Formats({{"to", folder.file("a.db")}, {"all", ""}}).exportFrom(whole);
  ztb::Formats({{"to", folder.file("a.xlsx")}, {"all", ""}}).exportFrom(whole);
  EXPECT_EQ(imported({{"from", folder.file("a.db#nix")}, {"set", "x"}}), ztb::ErrorKind::notFound);
  EXPECT_EQ(imported({{"from", folder.file("a.xlsx#nix")}, {"set", "x"}}),
            ztb::ErrorKind::notFound);
  cutInHalf(folder.file("a.db"));
  EXPECT_EQ(imported({{"from", folder.file("a.db")}}), ztb::ErrorKind::damagedFile);
  for (const char* name : {"none/a.db", "none/a.xlsx", "none/a.jsonl"}) {
    EXPECT_EQ(exported(folder.file(name)), ztb::ErrorKind::noFile) << name;
  }
  EXPECT_EQ(kindOf([&] {
              ztb::Formats({{"file", whole}, {"where", "value > 2"}})
                  .whereTo(folder.file("none/out.rxf"));
            }),
            ztb::ErrorKind::noFile);
  EXPECT_EQ(kindOf([&] {
              ztb::Formats({{"from", folder.file("no.jsonl")}}).importTo(out);
            }),
            ztb::ErrorKind::damagedFile);
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
