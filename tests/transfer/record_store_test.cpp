// Bulk transfers on each record store, and where the stores answer differently.
#include "tests/transfer/arrays.h"
#include "tests/transfer/scripted_host.h"
#include "tests/transfer/violations.h"

namespace ztbtest {
namespace {

constexpr int allStores[] = {ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE};

void useStore(const Database& db, int storage) {
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, storage));
}

// A database that makes its symbols on a store.
class OnStore {
 public:
  explicit OnStore(int storage) { useStore(db, storage); }

  Database db;
};

// Symbols that are filled on the tree map and moved to the store under test.
class TransferOnStore : public testing::TestWithParam<int> {
 protected:
  TransferOnStore() {
    for (const char* label : {"a", "b", "c", "x", "y"}) {
      db.uel(label);
    }
    i = addSetOf(db, "i", {"a", "b", "c"});
    j = addSetOf(db, "j", {"x", "y"});
    ends = addSetOf(db, "ends", {"a", "c"});
    data = db.addParameter("p", 2);
    db.put(data, {"a", "x"}, 11);
    db.put(data, {"a", "y"}, 12);
    db.put(data, {"c", "x"}, 31);
    rows = db.rows(data);
    for (void** symbol : {&i, &j, &ends, &data}) {
      if (lib().c__ztbselectrecordstorage(db, symbol, GetParam()) != 1) {
        throw std::runtime_error(db.lastError());
      }
    }
    useStore(db, GetParam());
  }

  Database db;
  void* i;
  void* j;
  void* ends;
  void* data;
  std::vector<Row> rows;
  Sizes sizes{3, 2};
  int dropped = 77;
};

TEST_P(TransferOnStore, aSymbolGoesIntoACubeAndBack) {
  Symbols domains = {i, j};
  Cube<double> cube(6);
  EXPECT_SUCCESS(db, lib().c__ztbsparsesymboltodensearray(db, cube, sizes.data(), data,
                                                          domains.data(), 0, &dropped));
  EXPECT_EQ((Doubles{11, 12, 0, 0, 31, 0}), cube.cells());
  void* const whole = db.addParameter("whole", 2);
  EXPECT_SUCCESS(db, lib().c__ztbdensearraytosymbol(db, whole, domains.data(), cube, sizes.data()));
  EXPECT_EQ(6, db.recordCount(whole));
  Cube<double> again(6);
  EXPECT_SUCCESS(db, lib().c__ztbdensesymboltodensearray(db, again, sizes.data(), whole, 0));
  EXPECT_EQ(cube.cells(), again.cells());
  void* const sparse = db.addParameter("sparse", 2);
  EXPECT_SUCCESS(db, lib().c__ztbdensearrayslicestosymbol(db, sparse, domains.data(),
                                                          domains.data(), cube, sizes.data()));
  EXPECT_EQ(rows, db.rows(sparse));
}

TEST_P(TransferOnStore, aSymbolGoesIntoASqueezedCube) {
  Symbols domains = {i, j};
  Symbols squeeze = {ends, j};
  const Sizes squeezedSizes = {2, 2};
  Cube<double> cube(4);
  EXPECT_SUCCESS(
      db, lib().c__ztbsparsesymboltosqzdarray(db, cube, squeezedSizes.data(), data, squeeze.data(),
                                              domains.data(), 0, &dropped));
  EXPECT_EQ(0, dropped);
  EXPECT_EQ((Doubles{11, 12, 31, 0}), cube.cells());
}

TEST_P(TransferOnStore, aSymbolIsCopiedToEveryStoreWithinAndAcrossDatabases) {
  for (const int storage : allStores) {
    OnStore other(storage);
    void* const copy = other.db.addParameter("copy", 2);
    EXPECT_SUCCESS(db, lib().c__ztbcopysymbol(db, copy, data));
    EXPECT_EQ(rows, other.db.rows(copy));
    useStore(db, storage);
    void* const neighbour = db.addParameter(numbered("copy", storage).c_str(), 2);
    EXPECT_SUCCESS(db, lib().c__ztbcopysymbol(db, neighbour, data));
    EXPECT_EQ(rows, db.rows(neighbour));
  }
}

TEST_P(TransferOnStore, violationsAreFound) {
  void* const over = db.addOver("over", ZTB_PARAMETER, {ends, j});
  void* everything = addSetOf(db, "everything", {"a", "b", "c", "x", "y"});
  Symbols domains = {everything, everything};
  const Sizes all = {5, 5};
  Doubles cells(25);
  const auto cell = [&cells](std::size_t row, std::size_t column) -> double& {
    return cells[5 * row + column];
  };
  cell(0, 4) = 1;  // (a,y)
  cell(1, 0) = 2;  // (b,a)
  cell(1, 3) = 3;  // (b,x)
  cell(2, 3) = 4;  // (c,x)
  EXPECT_SUCCESS(db, lib().c__ztbdensearrayslicestosymbol(db, over, domains.data(), domains.data(),
                                                          cells.data(), all.data()));
  EXPECT_EQ((std::vector<Violating>{{"over", {"b", "a"}, {1, 1}}, {"over", {"b", "x"}, {1, 0}}}),
            violationsOf(db));
}

TEST_P(TransferOnStore, labelsAreCounted) {
  Symbols symbols = {data, i};
  Integers counts(6);
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolsuels(db, symbols.data(), 2, counts.data(), 6));
  EXPECT_EQ((Integers{0, 3, 1, 2, 2, 1}), counts);
}

std::string storeName(const testing::TestParamInfo<int>& storage) {
  return std::array{"treeMap", "vector", "trie"}.at(static_cast<std::size_t>(storage.param));
}

INSTANTIATE_TEST_SUITE_P(EveryStore, TransferOnStore, testing::ValuesIn(allStores), storeName);

// A vector store keeps the records of a host in the order of their arrival.
class UnorderedDomain : public testing::Test {
 protected:
  UnorderedDomain() {
    for (const char* label : {"a", "b", "c"}) {
      db.uel(label);
    }
    useStore(db, ZTB_STORAGE_VECTOR);
    domain = db.addSet("i");
    host.add("i", 1, {{{3}, {0}}, {{1}, {0}}, {{2}, {0}}});
    host.attach(db);
    EXPECT_EQ(3, db.recordCount(domain));
  }

  Database db;
  ScriptedHost host;
  void* domain = nullptr;
  int size = 3;
};

TEST_F(UnorderedDomain, ranksLabelsByTheOrderOfItsRecords) {
  useStore(db, ZTB_STORAGE_TREE_MAP);
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1);
  db.put(data, {"c"}, 3);
  Cube<double> cube(3);
  int dropped = 77;
  EXPECT_SUCCESS(db,
                 lib().c__ztbsparsesymboltodensearray(db, cube, &size, data, &domain, 0, &dropped));
  EXPECT_EQ((Doubles{3, 1, 0}), cube.cells());
  const Doubles cells = {30, 10, 20};
  EXPECT_SUCCESS(db, lib().c__ztbdensearraytosymbol(db, data, &domain, cells.data(), &size));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 10}, {{"b"}, 20}, {{"c"}, 30}}), db.rows(data));
  EXPECT_SUCCESS(
      db, lib().c__ztbdensearrayslicestosymbol(db, data, &domain, &domain, cells.data(), &size));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 10}, {{"b"}, 20}, {{"c"}, 30}}), db.rows(data));
}

TEST_F(UnorderedDomain, bringsEveryCellIntoAVectorInTheOrderOfTheKeys) {
  void* const data = db.addParameter("p");
  const Doubles cells = {30, 10, 20};
  EXPECT_SUCCESS(db, lib().c__ztbdensearraytosymbol(db, data, &domain, cells.data(), &size));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 10}, {{"b"}, 20}, {{"c"}, 30}}), db.rows(data));
  EXPECT_SUCCESS(
      db, lib().c__ztbdensearrayslicestosymbol(db, data, &domain, &domain, cells.data(), &size));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 10}, {{"b"}, 20}, {{"c"}, 30}}), db.rows(data));
}

TEST_F(UnorderedDomain, bringsEveryCellOfTwoPositionsIntoAVectorInTheOrderOfTheKeys) {
  void* const data = db.addParameter("p", 2);
  Symbols domains = {domain, domain};
  const Sizes sizes = {3, 3};
  // By the order of the domain: c, a, b.
  const Doubles cells = {33, 31, 32, 13, 11, 12, 23, 21, 22};
  EXPECT_SUCCESS(
      db, lib().c__ztbdensearraytosymbol(db, data, domains.data(), cells.data(), sizes.data()));
  EXPECT_EQ((std::vector<Row>{{{"a", "a"}, 11},
                              {{"a", "b"}, 12},
                              {{"a", "c"}, 13},
                              {{"b", "a"}, 21},
                              {{"b", "b"}, 22},
                              {{"b", "c"}, 23},
                              {{"c", "a"}, 31},
                              {{"c", "b"}, 32},
                              {{"c", "c"}, 33}}),
            db.rows(data));
}

TEST_F(UnorderedDomain, bringsTheCellsOfASetIntoAVectorInTheOrderOfTheKeys) {
  void* const set = db.addSet("s");
  const Integers cells = {3, 0, 2};
  EXPECT_SUCCESS(db, lib().c__ztbdensearraytosymbol(db, set, &domain, cells.data(), &size));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 2}, {{"c"}, 3}}), db.rows(set));
}

TEST(VectorCopy, takesLabelsInAnotherOrderWhileEachHasItsPlaceBesideTheLastOne) {
  OnStore vector(ZTB_STORAGE_VECTOR);
  Database source;
  void* const from = source.addParameter("p");
  for (const char* label : {"a", "b", "c", "d"}) {
    source.put(from, {label}, 1);
  }
  for (const char* label : {"a", "c", "d", "b"}) {
    vector.db.uel(label);
  }
  void* const to = vector.db.addParameter("p");
  // The order of arrival by the target's numbers is 1, 4, 2, 3: two fits in before four, the
  // record written last, but three belongs behind two and before four.
  EXPECT_UNEXPECTED(vector.db, "ztbCopySymbol", lib().c__ztbcopysymbol(vector.db, to, from));
  EXPECT_EQ(3, vector.db.recordCount(to));
}

}  // namespace
}  // namespace ztbtest
