// The check of a domain set, which all array transfers share, and domains that come from a file.
#include <functional>

#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class ArrayDomainCheck : public ArrayTest {
 protected:
  ArrayDomainCheck() : data(db.addParameter("p")) {}

  // Calls each operation that takes domains with this one, for a cube of so many cells.
  void refusedByAll(const std::string& text, void* domain, int size = 3) {
    Cube<double> cube(3);
    EXPECT_FAILURE(db, text, sparse(cube, {size}, data, {domain}));
    EXPECT_FAILURE(db, text, squeezed(cube, {3}, data, {i}, {domain}));
    EXPECT_FAILURE(db, text, squeezed(cube, {size}, data, {domain}, {i}));
    EXPECT_FAILURE(db, text, fromDense(data, {domain}, cube, {size}));
    EXPECT_FAILURE(db, text, fromSlices(data, {i}, {domain}, cube, {size}));
    EXPECT_FAILURE(db, text, fromSlices(data, {domain}, {i}, cube, {3}));
  }

  void* data;
};

TEST_F(ArrayDomainCheck, refusesNoDomain) {
  refusedByAll("No domain symbol handle specified for symbol p", nullptr);
}

TEST_F(ArrayDomainCheck, refusesTheUniverseUnderTheNameOfTheSymbol) {
  refusedByAll("Cannot use universe as domain symbol p", db.universe());
}

TEST_F(ArrayDomainCheck, refusesADomainOfAnotherDatabase) {
  Database other;
  refusedByAll("Symbol p and domain symbol k in different databases",
               addSetOf(other, "k", {"a", "b", "c"}));
  refusedByAll("Symbol p and domain symbol wide in different databases", other.addSet("wide", 2));
}

TEST_F(ArrayDomainCheck, looksForTheUniverseBeforeTheDatabase) {
  Database other;
  refusedByAll("Cannot use universe as domain symbol p", other.universe());
}

TEST_F(ArrayDomainCheck, refusesADomainThatIsNotOneDimensional) {
  refusedByAll("Domain symbol wide has dimension 2, needs to be 1", db.addSet("wide", 2));
  refusedByAll("Domain symbol scalar has dimension 0, needs to be 1", db.addParameter("scalar", 0));
}

TEST_F(ArrayDomainCheck, comparesTheRecordsOfTheDomainWithTheCube) {
  Cube<double> cube(4);
  const std::string text = "Cube dimension 1 is 4 while card(i) is 3.";
  EXPECT_FAILURE(db, text, sparse(cube, {4}, data, {i}));
  EXPECT_FAILURE(db, text, squeezed(cube, {4}, data, {i}, {j}));
  EXPECT_FAILURE(db, text, fromDense(data, {i}, cube, {4}));
  EXPECT_FAILURE(db, text, fromSlices(data, {j}, {i}, cube, {4}));
}

TEST_F(ArrayDomainCheck, findsNoRecordsInAnAlias) {
  void* const alias = db.addAlias("ali", i);
  Cube<double> cube(3);
  const std::string text = "Cube dimension 1 is 3 while card(ali) is 0.";
  EXPECT_FAILURE(db, text, sparse(cube, {3}, data, {alias}));
  EXPECT_FAILURE(db, text, squeezed(cube, {3}, data, {alias}, {i}));
  EXPECT_FAILURE(db, text, fromDense(data, {alias}, cube, {3}));
  EXPECT_FAILURE(db, text, fromSlices(data, {i}, {alias}, cube, {3}));
  EXPECT_SUCCESS(db, fromSlices(data, {alias}, {i}, cube, {3}));
  EXPECT_EQ(0, db.recordCount(data)) << "as a slice set it has no size to keep";
}

TEST_F(ArrayDomainCheck, leavesTheTablesOfACheckOfTheDatabaseAlone) {
  void* const over = db.addOver("over", ZTB_PARAMETER, {i});
  db.put(over, {"nowhere"}, 1);
  db.put(over, {"offside"}, 1);
  void* violation = nullptr;
  ASSERT_EQ(1, lib().c__ztbgetfirstdbdv(db, &violation));
  ASSERT_NE(nullptr, violation);
  Cube<double> cube(3);
  EXPECT_SUCCESS(db, sparse(cube, {3}, over, {i}));
  EXPECT_EQ(2, dropped);
  int more = 0;
  EXPECT_SUCCESS(db, lib().c__ztbmovenextdvinsymbol(db, violation, &more));
  EXPECT_EQ(1, more);
  EXPECT_EQ(1, lib().c__ztbfreedvhandle(db, violation));
  EXPECT_EQ(1, lib().c__ztbdomaincheckdone(db));
}

class ArrayOfFile : public testing::Test {
 protected:
  ArrayOfFile() {
    Database source;
    void* const set = addSetOf(source, "i", {"a", "b", "c"});
    source.addAlias("ali", set);
    void* const data = source.addParameter("p");
    source.put(data, {"b"}, 2);
    file = folder.file("data.rxf");
    if (lib().c__ztbwriterxf(source, file.c_str(), 0) != 1) {
      throw std::runtime_error(source.lastError());
    }
  }

  int sparse(Database& db, const char* domain) {
    void* handle = db.findWithAlias(domain);
    const int size = 3;
    return lib().c__ztbsparsesymboltodensearray(db, cube, &size, db.find("p"), &handle, 0,
                                                &dropped);
  }

  TempFolder folder;
  std::string file;
  Cube<double> cube{3};
  int dropped = 99;
};

TEST_F(ArrayOfFile, symbolAndDomainAreReadWhenTheyAreNeeded) {
  Database db(file);
  EXPECT_SUCCESS(db, sparse(db, "i"));
  EXPECT_EQ((Doubles{0, 2, 0}), cube.cells());
  Cube<int> numbers(3);
  Database fresh(file);
  const int size = 3;
  EXPECT_SUCCESS(fresh,
                 lib().c__ztbdensesymboltodensearray(fresh, numbers, &size, fresh.find("i"), 0));
  EXPECT_EQ((Integers{1, 2, 3}), numbers.cells());
}

TEST_F(ArrayOfFile, anAliasOfAFileCannotBeLoadedOnceAndIsEmptyThen) {
  Database db(file);
  EXPECT_FAILURE(db, "Cannot load alias ali", sparse(db, "ali"));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Cube dimension 1 is 3 while card(ali) is 0.", sparse(db, "ali"));
}

TEST_F(ArrayOfFile, aSymbolThatCannotBeReadAnymoreFailsOnceAndIsEmptyThen) {
  Database db(file);
  void* const data = db.find("p");
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  const std::string text = "Symbol p not initialized from RXF or PBI: 3";
  EXPECT_FAILURE(db, text, sparse(db, "i"));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Symbol i not initialized from RXF or PBI: 3", sparse(db, "i"));
  EXPECT_TRUE(cube.untouched());
  EXPECT_FAILURE(db, "Cube dimension 1 is 3 while card(i) is 0.", sparse(db, "i"));
  EXPECT_EQ(0, db.recordCount(data));
}

TEST_F(ArrayOfFile, aCubeReplacesRecordsThatWereNeverRead) {
  Database db(file);
  void* domain = db.find("i");
  const int size = 3;
  const Doubles cells = {7, 8, 9};
  EXPECT_SUCCESS(db,
                 lib().c__ztbdensearraytosymbol(db, db.find("p"), &domain, cells.data(), &size));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 7}, {{"b"}, 8}, {{"c"}, 9}}), db.rows(db.find("p")));
}

TEST_F(ArrayOfFile, aRefusedCubeLosesRecordsThatWereNeverRead) {
  Database db(file);
  void* domain = nullptr;
  const int size = 3;
  const Doubles cells = {7, 8, 9};
  EXPECT_FAILURE(db, "No domain symbol handle specified for symbol p",
                 lib().c__ztbdensearraytosymbol(db, db.find("p"), &domain, cells.data(), &size));
  EXPECT_EQ(0, db.recordCount(db.find("p")));
  Database sliced(file);
  EXPECT_FAILURE(sliced, "No domain symbol handle specified for symbol p",
                 lib().c__ztbdensearrayslicestosymbol(sliced, sliced.find("p"), &domain, &domain,
                                                      cells.data(), &size));
  EXPECT_EQ(0, sliced.recordCount(sliced.find("p")));
}

}  // namespace
}  // namespace ztbtest
