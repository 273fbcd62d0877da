// Airline routes through every bulk operation, equal at every step.
#include "tests/transfer/air_routes.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <set>
#include <utility>

#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"
#include "tests/transfer/violations.h"

namespace ztbtest {
namespace {

using Data = std::map<Labels, double>;

Data dataOf(Database& db, void* symbol) {
  Data data;
  for (const Row& row : db.rows(symbol)) {
    data[row.labels] = row.level;
  }
  return data;
}

enum class Source { madeUp, real };

const std::filesystem::path& realFolder() {
  static const std::filesystem::path folder = ZTB_AIR_ROUTES;
  return folder;
}

const AirRoutes& routesOf(Source source) {
  static std::map<Source, AirRoutes> made;
  if (!made.contains(source)) {
    made[source] = source == Source::madeUp ? madeUpAirRoutes() : readAirRoutes(realFolder());
  }
  return made[source];
}

class AirRoutesTest : public testing::TestWithParam<Source> {
 protected:
  static const AirRoutes& routes() { return routesOf(GetParam()); }

  // The routes over the sets of airlines and of the given airports.
  void import(const Labels& airports) {
    airline = addSetOf(db, "airline", routes().airlines);
    airport = addSetOf(db, "airport", airports);
    types = db.addOver("types", ZTB_PARAMETER, {airline, airport, airport});
    for (const auto& [labels, count] : routes().types) {
      db.put(types, Keys(labels), count);
    }
  }

  Database db;
  void* airline = nullptr;
  void* airport = nullptr;
  void* types = nullptr;
};

TEST_P(AirRoutesTest, areImportedWrittenAndReadBack) {
  import(routes().airports);
  EXPECT_EQ(66934, db.recordCount(types));
  EXPECT_TRUE(routes().types == dataOf(db, types));
  const TempFolder folder;
  const std::string file = folder.file("routes.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 1)) << db.lastError();
  Database opened(file);
  EXPECT_TRUE(routes().types == dataOf(opened, opened.find("types")));
  Database copy;
  const Database unread(file);
  EXPECT_SUCCESS(copy, lib().c__ztbinitfromdb(copy, unread));
  EXPECT_TRUE(routes().types == dataOf(copy, copy.find("types")));
}

TEST_P(AirRoutesTest, areWholeOrAnErrorWhereTheirFileIsDamaged) {
  import(routes().airports);
  const TempFolder folder;
  const std::string file = folder.file("routes.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 1)) << db.lastError();
  const std::uintmax_t size = std::filesystem::file_size(file);
  int refused = 0;
  for (std::uintmax_t at = 0; at < size; at += size / 12) {
    SCOPED_TRACE(at);
    const auto turnByte = [&] {
      std::fstream bytes(file, std::ios::binary | std::ios::in | std::ios::out);
      bytes.seekg(static_cast<std::streamoff>(at));
      const char byte = static_cast<char>(bytes.get() ^ 0x10);
      bytes.seekp(static_cast<std::streamoff>(at)).put(byte);
    };
    turnByte();
    Database opened;
    if (lib().c__ztbinitfromrxf(opened, file.c_str()) == 0) {
      EXPECT_EQ(0U, opened.lastError().find("Error opening RXF file: ")) << opened.lastError();
      ++refused;
    } else {
      bool whole = true;
      for (const auto& [name, symbol] :
           {std::pair("airline", airline), std::pair("airport", airport),
            std::pair("types", types)}) {
        void* record = nullptr;
        if (lib().c__ztbfindfirstrecord(opened, opened.find(name), &record) == 1) {
          lib().c__ztbfreesymboliterator(opened, record);
          EXPECT_TRUE(dataOf(db, symbol) == dataOf(opened, opened.find(name)));
          continue;
        }
        const std::string text = opened.lastError();
        EXPECT_EQ(0U, text.find(std::string("Symbol ") + name + " could not be read from "))
            << text;
        EXPECT_FAILURE(opened, text, lib().c__ztbwriterxf(opened, folder.file("b.rxf").c_str(), 1));
        whole = false;
      }
      refused += whole ? 0 : 1;
    }
    turnByte();
  }
  EXPECT_LE(12, refused);
  EXPECT_FALSE(std::filesystem::exists(folder.file("b.rxf")));
}

TEST_P(AirRoutesTest, breakTheirDomainsWhereAnAirportIsMissing) {
  Labels known;
  std::set<std::string> missing;
  for (std::size_t n = 0; n < routes().airports.size(); ++n) {
    if (n % 40 == 7) {
      missing.insert(routes().airports[n]);
    } else {
      known.push_back(routes().airports[n]);
    }
  }
  const std::set<std::string> knownSet(known.begin(), known.end());
  import(known);
  std::map<Labels, Integers> expected;
  for (const auto& [labels, count] : routes().types) {
    const int badFrom = knownSet.contains(labels[1]) ? 0 : 1;
    const int badTo = knownSet.contains(labels[2]) ? 0 : 1;
    if (badFrom + badTo > 0) {
      expected[labels] = {0, badFrom, badTo};
    }
  }
  ASSERT_LT(100U, expected.size());
  std::map<Labels, Integers> found;
  for (const Violating& violating : violationsOf(db)) {
    EXPECT_EQ("types", violating.symbol);
    EXPECT_TRUE(found.emplace(violating.labels, violating.positions).second);
  }
  EXPECT_TRUE(expected == found);
  for (const std::string& label : missing) {
    db.put(airport, {label.c_str()});
  }
  std::set<std::string> unlisted;
  for (const auto& [labels, positions] : expected) {
    for (const std::size_t d : {1U, 2U}) {
      if (positions[d] == 1 && !missing.contains(labels[d])) {
        unlisted.insert(labels[d]);
      }
    }
  }
  EXPECT_EQ(!unlisted.empty(), violates(db));
}

TEST_P(AirRoutesTest, areCopiedToADatabaseWithOtherNumbersAndBack) {
  import(routes().airports);
  Labels shuffled = routes().airports;
  shuffled.insert(shuffled.end(), routes().airlines.begin(), routes().airlines.end());
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
  Database other;
  for (const std::string& label : shuffled) {
    other.uel(label.c_str());
  }
  void* const copy = other.addParameter("types", 3);
  EXPECT_SUCCESS(db, lib().c__ztbcopysymbol(db, copy, types));
  EXPECT_TRUE(routes().types == dataOf(other, copy));
  void* const back = db.addParameter("back", 3);
  EXPECT_SUCCESS(db, lib().c__ztbcopysymbol(db, back, copy));
  EXPECT_TRUE(db.rows(types) == db.rows(back));
}

TEST_P(AirRoutesTest, areCountedByLabel) {
  import(routes().airports);
  std::map<std::string, int> expected;
  for (const auto& [labels, count] : routes().types) {
    for (const std::string& label : labels) {
      ++expected[label];
    }
  }
  Integers counts(static_cast<std::size_t>(db.info(ZTB_INFO_UEL_COUNT)) + 1, 77);
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolsuels(db, &types, 1, counts.data(),
                                                static_cast<int>(counts.size())));
  int total = 0;
  for (const auto& [label, count] : expected) {
    EXPECT_EQ(count, counts.at(static_cast<std::size_t>(db.findUel(label.c_str())))) << label;
    total += count;
  }
  EXPECT_EQ(total, std::accumulate(counts.begin(), counts.end(), 0)) << "and no other label";
}

// The cube over all airlines and airports would hold six thousand million cells; each airline has a
// small one of its own.
TEST_P(AirRoutesTest, goThroughACubeForEachAirlineAndBack) {
  import(routes().airports);
  void* const one = db.addSet("one");
  void* const from = db.addSet("from");
  void* const to = db.addSet("to");
  void* const whole = db.addParameter("whole", 3);
  void* const sparse = db.addParameter("sparse", 3);
  Data gathered;
  auto route = routes().types.begin();
  for (const std::string& code : routes().airlines) {
    for (void* set : {one, from, to}) {
      ASSERT_EQ(1, lib().c__ztbclearsymbol(db, set));
    }
    db.put(one, {code.c_str()});
    Data own;
    for (; route != routes().types.end() && route->first[0] == code; ++route) {
      own.insert(*route);
      db.put(from, {route->first[1].c_str()});
      db.put(to, {route->first[2].c_str()});
    }
    Symbols domains = {one, from, to};
    const Sizes sizes = {1, db.recordCount(from), db.recordCount(to)};
    const auto size = static_cast<std::size_t>(sizes[1]) * static_cast<std::size_t>(sizes[2]);
    Cube<double> cube(size);
    int dropped = 77;
    ASSERT_EQ(1, lib().c__ztbsparsesymboltodensearray(db, cube, sizes.data(), types, domains.data(),
                                                      0, &dropped));
    EXPECT_EQ(routes().types.size() - own.size(), static_cast<std::size_t>(dropped));
    ASSERT_EQ(1, lib().c__ztbdensearraytosymbol(db, whole, domains.data(), cube, sizes.data()));
    EXPECT_EQ(size, static_cast<std::size_t>(db.recordCount(whole)));
    Cube<double> again(size);
    ASSERT_EQ(1, lib().c__ztbdensesymboltodensearray(db, again, sizes.data(), whole, 0));
    EXPECT_TRUE(cube.cells() == again.cells());
    ASSERT_EQ(1, lib().c__ztbdensearrayslicestosymbol(db, sparse, domains.data(), domains.data(),
                                                      cube, sizes.data()));
    std::erase_if(own, [](const auto& entry) { return entry.second == 0; });
    const Data returned = dataOf(db, sparse);
    EXPECT_TRUE(own == returned) << code;
    gathered.insert(returned.begin(), returned.end());
  }
  Data expected = routes().types;
  std::erase_if(expected, [](const auto& entry) { return entry.second == 0; });
  EXPECT_TRUE(expected == gathered);
}

std::string sourceName(const testing::TestParamInfo<Source>& info) {
  return info.param == Source::madeUp ? "madeUp" : "real";
}

// The real ones where they are at hand.
std::vector<Source> sources() {
  std::vector<Source> result = {Source::madeUp};
  if (std::filesystem::exists(realFolder() / "routes.csv")) {
    result.push_back(Source::real);
  }
  return result;
}

INSTANTIATE_TEST_SUITE_P(Of, AirRoutesTest, testing::ValuesIn(sources()), sourceName);

}  // namespace
}  // namespace ztbtest
