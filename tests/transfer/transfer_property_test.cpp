// Random data through bulk transfers against plain models.
#include <rapidcheck.h>

#include <map>
#include <numeric>
#include <set>

#include "tests/transfer/arrays.h"
#include "tests/transfer/violations.h"

namespace ztbtest {
namespace {

// RapidCheck prints what failed; a test only needs to know that nothing did.
template <class Property>
bool holds(Property property) {
  return rc::check(property);
}

using Key = std::vector<int>;

std::vector<std::string> labelTexts(int count) {
  std::vector<std::string> texts;
  for (int n = 0; n < count; ++n) {
    texts.push_back(numbered("l", n));
  }
  return texts;
}

// Some of the labels, by their places from 0.
std::set<int> anySubset(int count) {
  std::set<int> subset;
  for (int place = 0; place < count; ++place) {
    if (*rc::gen::arbitrary<bool>()) {
      subset.insert(place);
    }
  }
  return subset;
}

Key anyKey(int dim, int labelCount) {
  return *rc::gen::container<Key>(static_cast<std::size_t>(dim), rc::gen::inRange(0, labelCount));
}

// Records over `labelCount` labels with values that are not zero.
std::map<Key, double> anyRecords(int dim, int labelCount) {
  std::map<Key, double> records;
  const int count = *rc::gen::inRange(0, 30);
  for (int n = 0; n < count; ++n) {
    records[anyKey(dim, labelCount)] = *rc::gen::nonZero<int>() / 8.0;
  }
  return records;
}

Labels labelsOf(const Key& key, const Labels& texts) {
  Labels labels;
  for (const int place : key) {
    labels.push_back(texts[static_cast<std::size_t>(place)]);
  }
  return labels;
}

void putAll(Database& db, void* symbol, const std::map<Key, double>& records, const Labels& texts) {
  for (const auto& [key, value] : records) {
    db.put(symbol, Keys(labelsOf(key, texts)), value);
  }
}

std::map<Labels, double> labelled(const std::vector<Row>& rows) {
  std::map<Labels, double> result;
  for (const Row& row : rows) {
    result[row.labels] = row.level;
  }
  return result;
}

std::map<Labels, double> labelled(const std::map<Key, double>& records, const Labels& texts) {
  std::map<Labels, double> result;
  for (const auto& [key, value] : records) {
    result[labelsOf(key, texts)] = value;
  }
  return result;
}

// Domains over labels of a database, and cubes over them worked out cell by cell.
class CubeModel {
 public:
  CubeModel(Database& db, const Labels& texts, std::vector<std::set<int>> domains)
      : domains_(std::move(domains)) {
    for (const std::set<int>& domain : domains_) {
      void* const set = db.addSet(numbered("d", static_cast<int>(symbols_.size())).c_str());
      for (const int place : domain) {
        db.put(set, {texts[static_cast<std::size_t>(place)].c_str()});
      }
      symbols_.push_back(set);
      sizes_.push_back(static_cast<int>(domain.size()));
    }
  }

  Symbols& symbols() { return symbols_; }
  const Sizes& sizes() const { return sizes_; }
  std::size_t cellCount() const {
    return std::accumulate(
        sizes_.begin(), sizes_.end(), std::size_t{1},
        [](std::size_t count, int size) { return count * static_cast<std::size_t>(size); });
  }

  bool contains(const Key& key) const {
    for (std::size_t d = 0; d < key.size(); ++d) {
      if (!domains_[d].contains(key[d])) {
        return false;
      }
    }
    return true;
  }
  std::size_t cellOf(const Key& key) const {
    std::size_t cell = 0;
    for (std::size_t d = 0; d < key.size(); ++d) {
      const auto rank = std::distance(domains_[d].begin(), domains_[d].find(key[d]));
      cell = cell * domains_[d].size() + static_cast<std::size_t>(rank);
    }
    return cell;
  }

 private:
  std::vector<std::set<int>> domains_;
  Symbols symbols_;
  Sizes sizes_;
};

std::vector<std::set<int>> anyDomains(int dim, int labelCount) {
  std::vector<std::set<int>> domains;
  for (int d = 0; d < dim; ++d) {
    std::set<int> domain = anySubset(labelCount);
    domain.insert(*rc::gen::inRange(0, labelCount));
    domains.push_back(std::move(domain));
  }
  return domains;
}

TEST(ArrayProperty, aSparseSymbolFillsTheCellsOfItsLabelsAndNoOthers) {
  EXPECT_TRUE(holds([] {
    const int dim = *rc::gen::inRange(1, 4);
    const int labelCount = *rc::gen::inRange(1, 7);
    const Labels texts = labelTexts(labelCount);
    Database db;
    for (const std::string& text : texts) {
      db.uel(text.c_str());
    }
    CubeModel model(db, texts, anyDomains(dim, labelCount));
    const auto records = anyRecords(dim, labelCount);
    void* const data = db.addParameter("p", dim);
    putAll(db, data, records, texts);
    Doubles expected(model.cellCount());
    int outside = 0;
    for (const auto& [key, value] : records) {
      if (model.contains(key)) {
        expected[model.cellOf(key)] = value;
      } else {
        ++outside;
      }
    }
    Cube<double> cube(model.cellCount());
    int dropped = 77;
    RC_ASSERT(lib().c__ztbsparsesymboltodensearray(db, cube, model.sizes().data(), data,
                                                   model.symbols().data(), 0, &dropped) == 1);
    RC_ASSERT(dropped == outside);
    RC_ASSERT(cube.cells() == expected);
  }));
}

TEST(ArrayProperty, aCubeThroughASymbolIsTheSameCube) {
  EXPECT_TRUE(holds([] {
    const int dim = *rc::gen::inRange(1, 4);
    const int labelCount = *rc::gen::inRange(1, 6);
    const Labels texts = labelTexts(labelCount);
    Database db;
    CubeModel model(db, texts, anyDomains(dim, labelCount));
    const auto cells = *rc::gen::container<Doubles>(
        model.cellCount(), rc::gen::map(rc::gen::inRange(-3, 4), [](int n) { return n / 4.0; }));
    void* const data = db.addParameter("p", dim);
    RC_ASSERT(lib().c__ztbdensearraytosymbol(db, data, model.symbols().data(), cells.data(),
                                             model.sizes().data()) == 1);
    RC_ASSERT(db.recordCount(data) == static_cast<int>(cells.size()));
    int dropped = 77;
    Cube<double> sparse(cells.size());
    RC_ASSERT(lib().c__ztbsparsesymboltodensearray(db, sparse, model.sizes().data(), data,
                                                   model.symbols().data(), 0, &dropped) == 1);
    RC_ASSERT(sparse.cells() == cells);
    Cube<double> dense(cells.size());
    RC_ASSERT(lib().c__ztbdensesymboltodensearray(db, dense, model.sizes().data(), data, 0) == 1);
    RC_ASSERT(dense.cells() == cells);
    RC_ASSERT(lib().c__ztbdensearrayslicestosymbol(db, data, model.symbols().data(),
                                                   model.symbols().data(), cells.data(),
                                                   model.sizes().data()) == 1);
    RC_ASSERT(db.recordCount(data) ==
              std::count_if(cells.begin(), cells.end(), [](double cell) { return cell != 0; }));
    Cube<double> nonzero(cells.size());
    RC_ASSERT(lib().c__ztbsparsesymboltosqzdarray(db, nonzero, model.sizes().data(), data,
                                                  model.symbols().data(), model.symbols().data(), 0,
                                                  &dropped) == 1);
    RC_ASSERT(dropped == 0);
    RC_ASSERT(nonzero.cells() == cells);
  }));
}

TEST(CopyProperty, recordsKeepTheirLabelsAcrossDatabasesWithShuffledLabels) {
  EXPECT_TRUE(holds([] {
    const int dim = *rc::gen::inRange(0, 4);
    const int labelCount = *rc::gen::inRange(1, 8);
    const Labels texts = labelTexts(labelCount);
    Database source;
    for (const std::string& text : texts) {
      source.uel(text.c_str());
    }
    const auto records = anyRecords(dim, labelCount);
    void* const from = source.addParameter("p", dim);
    putAll(source, from, records, texts);
    Database target;
    // Each label once, in any order; some of them are not known before the copy.
    const auto order = *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, labelCount));
    for (const int place : order) {
      target.uel(texts[static_cast<std::size_t>(place)].c_str());
    }
    void* const to = target.addParameter("q", dim);
    RC_ASSERT(lib().c__ztbcopysymbol(target, to, from) == 1);
    RC_ASSERT(labelled(target.rows(to)) == labelled(records, texts));
    void* const back = source.addParameter("back", dim);
    RC_ASSERT(lib().c__ztbcopysymbol(source, back, to) == 1);
    RC_ASSERT(source.rows(back) == source.rows(from));
    Database copy;
    RC_ASSERT(lib().c__ztbinitfromdb(copy, source) == 1);
    RC_ASSERT(copy.rows(copy.find("p")) == source.rows(from));
  }));
}

TEST(ViolationProperty, areThoseThatASearchThroughTheSetsFinds) {
  EXPECT_TRUE(holds([] {
    const int labelCount = *rc::gen::inRange(1, 7);
    const Labels texts = labelTexts(labelCount);
    Database db;
    for (const std::string& text : texts) {
      db.uel(text.c_str());
    }
    const int setCount = *rc::gen::inRange(1, 4);
    std::vector<std::set<int>> sets;
    Symbols domains;
    for (int s = 0; s < setCount; ++s) {
      sets.push_back(anySubset(labelCount));
      void* set = db.addSet(numbered("s", s).c_str());
      for (const int place : sets.back()) {
        db.put(set, {texts[static_cast<std::size_t>(place)].c_str()});
      }
      const bool throughAlias = *rc::gen::arbitrary<bool>();
      domains.push_back(throughAlias ? db.addAlias(numbered("a", s).c_str(), set) : set);
    }
    std::vector<Violating> expected;
    const int symbolCount = *rc::gen::inRange(1, 5);
    for (int n = 0; n < symbolCount; ++n) {
      const int dim = *rc::gen::inRange(1, 4);
      // The domain of each position: a set, or the universe beyond the sets.
      const auto picks = *rc::gen::container<std::vector<int>>(static_cast<std::size_t>(dim),
                                                               rc::gen::inRange(0, setCount + 1));
      Symbols over;
      for (const int pick : picks) {
        over.push_back(pick == setCount ? db.universe() : domains[static_cast<std::size_t>(pick)]);
      }
      const std::string name = numbered("p", n);
      void* const symbol = db.addOver(name.c_str(), ZTB_PARAMETER, over);
      const auto records = anyRecords(dim, labelCount);
      putAll(db, symbol, records, texts);
      for (const auto& [key, value] : records) {
        Violating violating{name, labelsOf(key, texts), {}};
        for (std::size_t d = 0; d < key.size(); ++d) {
          const bool bad =
              picks[d] != setCount && !sets[static_cast<std::size_t>(picks[d])].contains(key[d]);
          violating.positions.push_back(bad ? 1 : 0);
        }
        if (std::count(violating.positions.begin(), violating.positions.end(), 1) > 0) {
          expected.push_back(violating);
        }
      }
    }
    RC_ASSERT(violates(db) == !expected.empty());
    RC_ASSERT(violationsOf(db) == expected);
    std::vector<Violating> bySymbol;
    for (int n = 0; n < symbolCount; ++n) {
      const auto ofOne = violationsOf(db, db.find(numbered("p", n).c_str()));
      bySymbol.insert(bySymbol.end(), ofOne.begin(), ofOne.end());
    }
    RC_ASSERT(bySymbol == expected);
  }));
}

TEST(LabelCountProperty, isThatOfAWalkOverAllKeys) {
  EXPECT_TRUE(holds([] {
    const int labelCount = *rc::gen::inRange(1, 6);
    const Labels texts = labelTexts(labelCount);
    Database db;
    for (const std::string& text : texts) {
      db.uel(text.c_str());
    }
    Integers expected(static_cast<std::size_t>(labelCount) + 1);
    Symbols symbols;
    for (int n = 0; n < 3; ++n) {
      const int dim = *rc::gen::inRange(0, 4);
      symbols.push_back(db.addParameter(numbered("p", n).c_str(), dim));
      const auto records = anyRecords(dim, labelCount);
      putAll(db, symbols.back(), records, texts);
      for (const auto& [key, value] : records) {
        for (const int place : key) {
          ++expected[static_cast<std::size_t>(place) + 1];
        }
      }
    }
    Integers counts(expected.size(), 77);
    RC_ASSERT(lib().c__ztbgetsymbolsuels(db, symbols.data(), 3, counts.data(), labelCount + 1) ==
              1);
    RC_ASSERT(counts == expected);
  }));
}

}  // namespace
}  // namespace ztbtest
