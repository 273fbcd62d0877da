// The kind of a failure, by which programs tell failures apart.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <ztb/model.hpp>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

using ztb::ErrorKind;

template <class Use>
ErrorKind kindOf(Use&& use) {
  try {
    use();
  } catch (const ztb::Error& error) {
    return error.kind();
  }
  return ErrorKind::none;
}

class ErrorKindTest : public testing::Test {
 protected:
  void write(const std::string& text) const { std::ofstream(path_, std::ios::binary) << text; }

  ztb::Database database_;
  ztbtest::TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
};

TEST_F(ErrorKindTest, IsNoneBeforeAnythingFailedAndStaysWhenSomethingSucceeds) {
  EXPECT_EQ(database_.lastErrorKind(), ErrorKind::none);
  EXPECT_EQ(kindOf([&] { static_cast<void>(database_.symbol("q")); }), ErrorKind::notFound);
  database_.addSet("i", {"*"});
  EXPECT_EQ(database_.lastErrorKind(), ErrorKind::notFound);
}

TEST_F(ErrorKindTest, TellsWhatIsNotThere) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  EXPECT_EQ(kindOf([&] { static_cast<void>(database_["q"]); }), ErrorKind::notFound);
  EXPECT_EQ(kindOf([&] { static_cast<void>(p["a"]); }), ErrorKind::notFound);
  p.add("b");
  EXPECT_EQ(kindOf([&] { static_cast<void>(p["a"]); }), ErrorKind::notFound);
}

TEST_F(ErrorKindTest, TellsWhatIsThereAlready) {
  for (const ztb::Store store : {ztb::Store::map, ztb::Store::vector, ztb::Store::trie}) {
    ztb::Database database;
    database.selectStore(store);
    ztb::Symbol p = database.addParameter("p", {"*"});
    EXPECT_EQ(kindOf([&] { database.addParameter("P", {"*"}); }), ErrorKind::exists);
    p.add("a");
    EXPECT_EQ(kindOf([&] { p.add("A"); }), ErrorKind::exists);
  }
}

TEST_F(ErrorKindTest, TellsWhatIsRefused) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  // A failure of another kind came before: that of a label without a text is not its.
  EXPECT_EQ(kindOf([&] { static_cast<void>(database_["q"]); }), ErrorKind::notFound);
  EXPECT_EQ(kindOf([&] { p.add("a\tb"); }), ErrorKind::refused);
  EXPECT_EQ(database_.lastErrorKind(), ErrorKind::refused);
  EXPECT_EQ(kindOf([&] { p.add(std::string(64, 'x')); }), ErrorKind::refused);
  EXPECT_EQ(kindOf([&] { static_cast<void>(p.find("a\tb")); }), ErrorKind::refused);
  EXPECT_EQ(kindOf([&] { p.add("a", "b"); }), ErrorKind::refused);
  EXPECT_EQ(kindOf([&] { database_.addSet("1a", {"*"}); }), ErrorKind::refused);
  EXPECT_EQ(kindOf([&] { static_cast<void>(database_.label(7)); }), ErrorKind::refused);
}

TEST_F(ErrorKindTest, TellsDomains) {
  const ztb::Symbol p = database_.addParameter("p", {"*"});
  EXPECT_EQ(kindOf([&] { database_.addParameter("q", {p}); }), ErrorKind::domain);
  const ztb::Symbol i = database_.addSet("i", {"*"});
  ztb::Symbol r = database_.addParameter("r", {i});
  r.add("outside");
  EXPECT_EQ(kindOf([&] { database_.write(path_, true); }), ErrorKind::domain);
  const double cell[] = {1};
  const ztb::Symbol domains[] = {database_.universe()};
  EXPECT_EQ(kindOf([&] { r.assignCube(domains, cell); }), ErrorKind::domain);
}

TEST_F(ErrorKindTest, TellsFilesThatAreNotThereDamagedOrNotToBeHad) {
  EXPECT_EQ(kindOf([&] { static_cast<void>(ztb::Database::open(path_)); }), ErrorKind::noFile);
  EXPECT_EQ(kindOf([&] { ztb::RxfFile{path_}; }), ErrorKind::noFile);
  write("no exchange file");
  EXPECT_EQ(kindOf([&] { static_cast<void>(ztb::Database::open(path_)); }), ErrorKind::damagedFile);
  EXPECT_EQ(kindOf([&] { ztb::RxfFile{path_}; }), ErrorKind::damagedFile);
  const std::string folder = folder_.file("");
  EXPECT_EQ(kindOf([&] { static_cast<void>(ztb::Database::open(folder)); }), ErrorKind::io);
  EXPECT_EQ(kindOf([&] { ztb::RxfFile{folder}; }), ErrorKind::io);
  EXPECT_EQ(kindOf([&] { database_.write(folder_.file("none/a.rxf")); }), ErrorKind::noFile);
  EXPECT_EQ(kindOf([&] { ztb::RxfOutput(folder_.file("none/a.rxf")); }), ErrorKind::noFile);
}

// The first use of a symbol that its file does not give whole, and every further one.
TEST_F(ErrorKindTest, IsKeptWithASymbolThatCannotBeRead) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  p.add("a").setLevel(0.1234567);
  database_.write(path_);
  ztb::Database opened = ztb::Database::open(path_);
  std::filesystem::resize_file(path_, 40);
  const ztb::Symbol cut = opened["p"];
  for (int use = 0; use < 2; ++use) {
    static_cast<void>(opened.findSymbol("q"));
    EXPECT_EQ(kindOf([&] { static_cast<void>(cut.recordCount()); }), ErrorKind::damagedFile);
  }
}

TEST_F(ErrorKindTest, TellsALimitOnMemory) {
  database_.addParameter("p", {"*"}).add("a");
  database_.write(path_);
  const ztb::Database opened = ztb::Database::open(path_, {.maxMemory = 1});
  EXPECT_EQ(kindOf([&] { static_cast<void>(opened["p"].recordCount()); }), ErrorKind::limit);
}

// A process opens the library once; this one has none yet.
TEST(ErrorKindDeathTest, TellsALibraryThatIsMissing) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const ztbtest::TempFolder folder;
  EXPECT_EXIT(
      {
        ztb::Database database(folder.file(""));
        const bool told = database.lastErrorKind() == ErrorKind::noLibrary &&
                          kindOf([&] { database.openFile("a.rxf"); }) == ErrorKind::noLibrary;
        std::exit(told ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(ErrorKindTest, OfAnExchangeFileTellsNumbersAndNamesThatAreNotThere) {
  database_.addParameter("p", {"*"}).add("a");
  database_.write(path_);
  const ztb::RxfFile file(path_);
  EXPECT_EQ(kindOf([&] { static_cast<void>(file["q"]); }), ErrorKind::notFound);
  EXPECT_EQ(kindOf([&] { static_cast<void>(file.symbol(2)); }), ErrorKind::notFound);
  EXPECT_EQ(kindOf([&] { static_cast<void>(file.label(2)); }), ErrorKind::notFound);
  EXPECT_EQ(file["P"].recordCount, 1);
}

TEST_F(ErrorKindTest, OfModelsTellsFilesAndRefusals) {
  const std::string model = folder_.file("a.lp");
  EXPECT_EQ(kindOf([&] { static_cast<void>(ztb::Model::open(model)); }), ErrorKind::noFile);
  std::ofstream(model) << "neither min nor max";
  EXPECT_EQ(kindOf([&] { static_cast<void>(ztb::Model::open(model)); }), ErrorKind::damagedFile);
  EXPECT_EQ(kindOf([&] { static_cast<void>(ztb::Model::open(folder_.file("a.txt"))); }),
            ErrorKind::refused);
  ztb::Model built;
  EXPECT_EQ(kindOf([&] { built.addColumn("", 0, 1); }), ErrorKind::refused);
}

TEST_F(ErrorKindTest, TellsASolverThatThereIsNot) {
  ztb::Model model;
  model.addRow("r", ztbRowLessOrEqual, 4);
  model.addColumn("x", 0, 1);
  model.addTerm(1, 0, 1);
  ztb::ModelTie tie(database_, model);
  EXPECT_EQ(kindOf([&] { tie.solve("no such solver"); }), ErrorKind::notFound);
}

}  // namespace
