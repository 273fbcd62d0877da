// Copies across databases, and checks of domains.
#include <algorithm>
#include <stdexcept>
#include <unordered_set>

#include "bench/contests.h"
#include "bench/transfer_scene.h"

namespace bench {
namespace {

// A database that knows the labels under other numbers, and a parameter in it.
struct CopyTarget {
  Database database;
  void* symbol = nullptr;
};

CopyTarget& copyTarget(const Data& data) {
  static Shared<CopyTarget> shared;
  return shared.get(data, [](const Data& wanted) {
    auto target = std::make_unique<CopyTarget>();
    for (auto label = wanted.labels.rbegin(); label != wanted.labels.rend(); ++label) {
      int number = 0;
      target->database.require(c__ztbmergeuel(target->database.handle(), label->c_str(), &number));
    }
    target->symbol = target->database.addParameter("supply");
    return target;
  });
}

// Runs `copy(scene, target)` in every iteration; dropping the records isn't timed.
template <class Copy>
void measureCopy(benchmark::State& state, const Data& data, Copy&& copy) {
  TransferScene& scene = transferScene(data);
  CopyTarget& target = copyTarget(data);
  for ([[maybe_unused]] auto iteration : state) {
    copy(scene, target);
    state.PauseTiming();
    target.database.require(c__ztbclearsymbol(target.database.handle(), target.symbol));
    state.ResumeTiming();
  }
  countRecords(state, data.size());
}

void copySymbol(benchmark::State& state, const Data& data) {
  measureCopy(state, data, [](const TransferScene& scene, const CopyTarget& target) {
    scene.database.require(c__ztbcopysymbol(scene.database.handle(), target.symbol, scene.symbol));
  });
}

void copyByRecords(benchmark::State& state, const Data& data) {
  measureCopy(state, data, [](const TransferScene& scene, const CopyTarget& target) {
    std::array<std::array<char, ZTB_TEXT_BUFFER_SIZE>, ZTB_MAX_DIMENSION> buffers;
    std::array<char*, ZTB_MAX_DIMENSION> labels;
    std::array<const char*, dimension> keys;
    for (std::size_t d = 0; d < labels.size(); ++d) {
      labels[d] = buffers[d].data();
    }
    std::copy_n(labels.begin(), dimension, keys.begin());
    forEachRecord(scene.database, scene.symbol, [&](void* record) {
      double value = 0;
      void* copied = nullptr;
      scene.database.require(
          c__ztbgetkeys(scene.database.handle(), record, dimension, labels.data()));
      scene.database.require(c__ztbgetlevel(scene.database.handle(), record, &value));
      target.database.require(
          c__ztbmergerecord(target.database.handle(), target.symbol, keys.data(), &copied));
      target.database.require(c__ztbsetlevel(target.database.handle(), copied, value));
      target.database.require(c__ztbfreesymboliterator(target.database.handle(), copied));
    });
  });
}

void checkDomains(benchmark::State& state, const Data& data) {
  const TransferScene& scene = transferScene(data);
  for ([[maybe_unused]] auto iteration : state) {
    int violates = 1;
    scene.database.require(c__ztbchecksymboldv(scene.database.handle(), scene.symbol, &violates));
    if (violates != 0) {
      throw std::runtime_error("a record breaks its domain");
    }
  }
  countRecords(state, data.size());
}

using LabelSets = std::array<std::unordered_set<int>, dimension>;

LabelSets labelSets(const Data& data) {
  LabelSets sets;
  for (const Key& key : data.keys) {
    for (std::size_t d = 0; d < dimension; ++d) {
      sets[d].insert(key[d]);
    }
  }
  return sets;
}

bool isInside(const LabelSets& sets, const Key& key) {
  for (std::size_t d = 0; d < dimension; ++d) {
    if (!sets[d].contains(key[d])) {
      return false;
    }
  }
  return true;
}

void checkMap(benchmark::State& state, const Data& data) {
  const StdMap& map = filledMap<StdMap>(data).records;
  const LabelSets sets = labelSets(data);
  for ([[maybe_unused]] auto iteration : state) {
    for (const auto& [key, slots] : map) {
      if (!isInside(sets, key)) {
        throw std::runtime_error("a record breaks its domain");
      }
    }
  }
  countRecords(state, data.size());
}

void checkByRecords(benchmark::State& state, const Data& data) {
  const TransferScene& scene = transferScene(data);
  const LabelSets sets = labelSets(data);
  for ([[maybe_unused]] auto iteration : state) {
    forEachRecord(scene.database, scene.symbol, [&](void* record) {
      Key key;
      double value = 0;
      scene.database.require(
          c__ztbgetrecordraw(scene.database.handle(), record, dimension, key.data(), &value));
      if (!isInside(sets, key)) {
        throw std::runtime_error("a record breaks its domain");
      }
    });
  }
  countRecords(state, data.size());
}

}  // namespace

Contest copyAcross() {
  return {
      "copy across databases", Clock::processor, {{ours, copySymbol}, {recordLoop, copyByRecords}}};
}

Contest domainCheck() {
  return {"domain check",
          Clock::processor,
          {{ours, checkDomains},
           {"hash sets, exported names", checkByRecords},
           {"hash sets, std::map", checkMap}}};
}

}  // namespace bench
