// Names of files outside of ASCII, in each format: they are UTF-8 on every system.

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>
#include <ztb/formats.hpp>
#include <ztb/ztb.hpp>

#include "tests/formats/job.h"
#include "tests/formats/random_database.h"

namespace {

using formatstest::describe;
using formatstest::Job;
using formatstest::Options;

// The names in a folder, as the system has them, in UTF-8.
std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::u8string name = entry.path().filename().u8string();
    names.emplace_back(name.begin(), name.end());
  }
  return names;
}

class FileNameTest : public testing::TestWithParam<const char*> {};

TEST_P(FileNameTest, IsTheOneThatIsGiven) {
  const ztbtest::TempFolder folder;
  // German, Japanese, and a character beyond the first 65536.
  const std::filesystem::path place = folder.path() / u8"K\u00e4se \u65e5\u672c \U0001F9C0";
  std::filesystem::create_directory(place);
  const std::string inner = folder.file("K\xC3\xA4se \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\xA7\x80/");
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"food"}, "Cents");
  price.add("Tof\xC3\xBC").setLevel(0.1 + 0.2);
  price.add("Milk").setLevel(11);
  const std::string ending = GetParam();
  const std::string target = inner + "\xC3\xB6" + ending;
  Options options{{"all", ""}, {"to", target}};
  if (ending == "/parquet") options.emplace_back("format", "parquet");
  Job out(options);
  ASSERT_TRUE(out.exportDatabase(database.handle())) << out.errors(folder);
  // Nothing of what was made on the way is left.
  EXPECT_THAT(namesIn(place),
              testing::ElementsAre("\xC3\xB6" + ending.substr(0, ending.find('/'))));
  Job in({{"from", target}});
  const std::string back = inner + "\xC3\xBC.rxf";
  ASSERT_TRUE(in.import(back)) << in.errors(folder);
  EXPECT_EQ(describe(ztb::Database::open(back)), describe(database));
}

INSTANTIATE_TEST_SUITE_P(Formats, FileNameTest,
                         testing::Values(".db", ".xlsx", ".jsonl", ".jsonl.gz", ".jsonl.zst", "/",
                                         "/parquet"),
                         [](const testing::TestParamInfo<const char*>& target) {
                           std::string name = target.param;
                           for (char& c : name) c = c == '.' || c == '/' ? '_' : c;
                           return name;
                         });

TEST(FileNames, OfTablesAndSetsOfDataToo) {
  const ztbtest::TempFolder folder;
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"food"});
  price.add("Milk").setLevel(11);
  price.add("Tofu").setLevel(30);
  const std::string rxf = folder.file("\xC3\xA4.rxf");
  database.write(rxf);
  const std::string csv = folder.file("\xC3\xA4.csv");
  ASSERT_TRUE(Job({{"symbol", "price"}, {"to", csv}}).exportFile(rxf));
  const std::string table = folder.file("\xC3\xB6.rxf");
  Job in({{"from", csv}, {"parameter", "price(food) = value"}});
  ASSERT_TRUE(in.import(table)) << in.errors(folder);
  ztb::Formats({{"file", table}, {"where", "value > 20"}}).whereTo(folder.file("\xC3\xBC.rxf"));
  // Over one of its sources.
  ztb::Formats({{"file", table}, {"label", "Milk = Cream"}}).renameTo(table);
  ztb::Formats merged({{"file", table}, {"file", rxf}, {"case", "file"}});
  merged.mergeTo(rxf);
  // Cases are called as the files.
  EXPECT_EQ(ztb::Database::open(rxf)["price"].find("\xC3\xB6", "Cream")->level(), 11);
  EXPECT_EQ(ztb::Database::open(rxf)["price"].find("\xC3\xA4", "Milk")->level(), 11);
  EXPECT_EQ(ztb::Database::open(folder.file("\xC3\xBC.rxf"))["price"].recordCount(), 1);
  EXPECT_THAT(namesIn(folder.path()),
              testing::UnorderedElementsAre("\xC3\xA4.rxf", "\xC3\xA4.csv", "\xC3\xB6.rxf",
                                            "\xC3\xBC.rxf"));
  Job none({{"from", folder.file("\xC3\x9F.csv")}, {"set", "s"}});
  EXPECT_FALSE(none.import(table));
  EXPECT_THAT(none.errors(folder),
              testing::StartsWith("\xC3\x9F.csv: cannot be read: No such file"));
}

TEST(FileNames, NoneIsLeftOfAWorkbookThatFails) {
  const ztbtest::TempFolder folder;
  ztb::Database database;
  database.addParameter("price", {"food", "year"}).add("\xFF", "2020").setLevel(11);
  Job out({{"symbol", "price"}, {"wide", "year"}, {"to", folder.file("price.xlsx")}});
  EXPECT_FALSE(out.exportDatabase(database.handle()));
  EXPECT_THAT(out.errors(folder), testing::HasSubstr("cannot stand in a cell of a workbook"));
  EXPECT_THAT(namesIn(folder.path()), testing::IsEmpty());
}

#ifdef _WIN32

TEST(FileNames, OfDevicesAreRefused) {
  const ztbtest::TempFolder folder;
  for (const char* name : {"con", "aux", "nul"}) {
    ztb::Database database;
    database.addParameter(name, {"food"}).add("Milk").setLevel(11);
    Job out({{"all", ""}, {"to", folder.file(name) + "s/"}});
    EXPECT_FALSE(out.exportDatabase(database.handle()));
    EXPECT_THAT(out.errors(folder),
                testing::StartsWith(std::string(name) + "s/" + name + ".csv: "));
    Job other({{"all", ""}, {"to", folder.file(name) + "s.db"}});
    EXPECT_TRUE(other.exportDatabase(database.handle())) << other.errors(folder);
  }
}

#endif

}  // namespace
