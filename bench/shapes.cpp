#include "bench/shapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/contest.h"
#include "bench/database.h"
#include "bench/ordered_maps.h"

namespace bench {
namespace {

// Records that lie evenly in a cube with equal sides, of which every label has a number from 1.
template <int dim>
struct ShapeData {
  explicit ShapeData(std::size_t records) {
    const auto side = std::max<std::size_t>(
        2, static_cast<std::size_t>(std::ceil(std::pow(static_cast<double>(records), 1.0 / dim))));
    const double cells = std::pow(static_cast<double>(side), dim);
    for (std::size_t i = 0; i < records; ++i) {
      auto cell =
          static_cast<std::size_t>(static_cast<double>(i) * (cells / static_cast<double>(records)));
      std::array<int, dim> key;
      for (std::size_t d = dim; d-- > 0; cell /= side) {
        key[d] = static_cast<int>(cell % side) + 1;
      }
      keys.push_back(key);
    }
    for (std::size_t i = 1; i <= side; ++i) {
      std::array<char, 32> text;
      std::snprintf(text.data(), text.size(), "label%07zu", i);
      labels.emplace_back(text.data());
    }
    for (std::size_t i = 0; i < records; ++i) {
      order.push_back(static_cast<unsigned>(i));
    }
    std::shuffle(order.begin(), order.end(), std::mt19937_64(20310408));
  }

  [[nodiscard]] const std::string& label(int number) const {
    return labels[static_cast<std::size_t>(number) - 1];
  }

  std::vector<std::array<int, dim>> keys;  // in ascending order
  std::vector<std::string> labels;
  std::vector<unsigned> order;  // the records in a random order
};

template <int dim, int slots>
struct Ours {
  Ours() {
    const int type = slots == 1 ? ZTB_PARAMETER : ZTB_VARIABLE;
    database.require(
        c__ztbaddsymbol(database.handle(), "x", dim, type, slots == 1 ? 0 : 5, "", &symbol));
  }
  void addLabels(const ShapeData<dim>& data) {
    for (const std::string& label : data.labels) {
      int number = 0;
      database.require(c__ztbmergeuel(database.handle(), label.c_str(), &number));
    }
  }
  void add(const ShapeData<dim>& data) {
    std::array<double, 5> values{};
    for (const std::array<int, dim>& key : data.keys) {
      values[0] = key[0];
      database.require(c__ztbmergerecordint(database.handle(), symbol, key.data(), 0, 0, nullptr, 1,
                                            values.data()));
    }
  }
  // The levels of the records from one that was found on.
  double sumFrom(void* record) {
    double sum = 0;
    do {
      double level = 0;
      database.require(c__ztbgetlevel(database.handle(), record, &level));
      sum += level;
    } while (c__ztbrecordmovenext(database.handle(), record) == 1);
    database.require(c__ztbfreesymboliterator(database.handle(), record));
    return sum;
  }

  Database database;
  void* symbol = nullptr;
};

template <int dim, int slots>
struct Bare {
  void addLabels(const ShapeData<dim>& data) {
    for (const std::string& label : data.labels) {
      numbers.emplace(label, static_cast<int>(numbers.size()) + 1);
    }
  }
  void add(const ShapeData<dim>& data) {
    for (const std::array<int, dim>& key : data.keys) {
      std::array<double, slots> values{};
      values[0] = key[0];
      records.insert(records.end(), {key, values});
    }
  }

  LabelNumbers numbers;
  std::map<std::array<int, dim>, std::array<double, slots>> records;
};

template <int dim, int slots>
class Shape {
 public:
  static void registerAll(std::size_t records) {
    add("sorted load", records, load<Our>, load<Their>);
    add("random load, labels", records, loadByLabels, loadMapByLabels);
    add("lookup by labels", records, lookUp, lookUpInMap);
    add("full walk", records, walk, walkMap);
    add("slice, 1st position", records, slice, sliceMap);
    add("clear and free", records, clear, clearMap, 3);
  }

 private:
  using Our = Ours<dim, slots>;
  using Their = Bare<dim, slots>;
  using Records = ShapeData<dim>;

  static void add(const char* job, std::size_t records, const Measured& our, const Measured& their,
                  int iterations = 0) {
    std::array<char, 64> name;
    std::snprintf(name.data(), name.size(), "%s, %dd%dv", job, dim, slots);
    registerContest({name.data(), Clock::processor, {{ours, our}, {stdMapName, their}}, iterations},
                    records);
  }

  static const Records& dataFor(const Data& data) {
    static Shared<Records> shared;
    return shared.get(data,
                      [](const Data& wanted) { return std::make_unique<Records>(wanted.size()); });
  }
  template <class Store>
  static Store& filled(const Data& data) {
    static Shared<Store> shared;
    return shared.get(data, [](const Data& wanted) {
      auto store = std::make_unique<Store>();
      store->addLabels(dataFor(wanted));
      store->add(dataFor(wanted));
      return store;
    });
  }

  template <class Store>
  static void load(benchmark::State& state, const Data& data) {
    const Records& records = dataFor(data);
    measureLoad(
        state, data.size(),
        [&] {
          auto store = std::make_unique<Store>();
          store->addLabels(records);
          return store;
        },
        [&](Store& store) { store.add(records); });
  }

  static std::array<const char*, dim> labelsOf(const Records& records, std::size_t place) {
    std::array<const char*, dim> labels;
    for (std::size_t d = 0; d < dim; ++d) {
      labels[d] = records.label(records.keys[records.order[place]][d]).c_str();
    }
    return labels;
  }

  static void loadByLabels(benchmark::State& state, const Data& data) {
    const Records& records = dataFor(data);
    measureLoad(
        state, data.size(), [] { return std::make_unique<Our>(); },
        [&](Our& store) {
          for (std::size_t i = 0; i < data.size(); ++i) {
            std::array<const char*, dim> labels = labelsOf(records, i);
            void* record = nullptr;
            ztbRec* const handle = store.database.handle();
            store.database.require(c__ztbmergerecord(handle, store.symbol, labels.data(), &record));
            store.database.require(c__ztbsetlevel(handle, record, 1.0));
            store.database.require(c__ztbfreesymboliterator(handle, record));
          }
        });
  }
  static void loadMapByLabels(benchmark::State& state, const Data& data) {
    const Records& records = dataFor(data);
    measureLoad(
        state, data.size(), [] { return std::make_unique<Their>(); },
        [&](Their& store) {
          for (std::size_t i = 0; i < data.size(); ++i) {
            std::array<int, dim> key;
            for (std::size_t d = 0; d < dim; ++d) {
              const int next = static_cast<int>(store.numbers.size()) + 1;
              const int number = records.keys[records.order[i]][d];
              key[d] = store.numbers.try_emplace(records.label(number), next).first->second;
            }
            store.records[key][0] = 1.0;
          }
        });
  }

  static void lookUp(benchmark::State& state, const Data& data) {
    const Records& records = dataFor(data);
    Our& store = filled<Our>(data);
    for ([[maybe_unused]] auto iteration : state) {
      double sum = 0;
      for (std::size_t i = 0; i < data.size(); ++i) {
        std::array<const char*, dim> labels = labelsOf(records, i);
        void* record = nullptr;
        double level = 0;
        ztbRec* const handle = store.database.handle();
        store.database.require(c__ztbfindrecord(handle, store.symbol, labels.data(), &record));
        store.database.require(c__ztbgetlevel(handle, record, &level));
        store.database.require(c__ztbfreesymboliterator(handle, record));
        sum += level;
      }
      benchmark::DoNotOptimize(sum);
    }
    countRecords(state, data.size());
  }
  static void lookUpInMap(benchmark::State& state, const Data& data) {
    const Records& records = dataFor(data);
    const Their& store = filled<Their>(data);
    for ([[maybe_unused]] auto iteration : state) {
      double sum = 0;
      for (std::size_t i = 0; i < data.size(); ++i) {
        std::array<int, dim> key;
        for (std::size_t d = 0; d < dim; ++d) {
          const int number = records.keys[records.order[i]][d];
          key[d] = store.numbers.find(records.label(number))->second;
        }
        sum += store.records.find(key)->second[0];
      }
      benchmark::DoNotOptimize(sum);
    }
    countRecords(state, data.size());
  }

  static void walk(benchmark::State& state, const Data& data) {
    Our& store = filled<Our>(data);
    for ([[maybe_unused]] auto iteration : state) {
      void* record = nullptr;
      store.database.require(c__ztbfindfirstrecord(store.database.handle(), store.symbol, &record));
      benchmark::DoNotOptimize(store.sumFrom(record));
    }
    countRecords(state, data.size());
  }
  static void walkMap(benchmark::State& state, const Data& data) {
    const Their& store = filled<Their>(data);
    for ([[maybe_unused]] auto iteration : state) {
      double sum = 0;
      for (const auto& [key, values] : store.records) {
        sum += values[0];
      }
      benchmark::DoNotOptimize(sum);
    }
    countRecords(state, data.size());
  }

  static void slice(benchmark::State& state, const Data& data) {
    const Records& records = dataFor(data);
    Our& store = filled<Our>(data);
    std::array<const char*, dim> labels;
    labels.fill(" ");
    labels[0] = records.label(records.keys[data.size() / 2][0]).c_str();
    for ([[maybe_unused]] auto iteration : state) {
      void* record = nullptr;
      store.database.require(c__ztbfindfirstrecordslice(store.database.handle(), store.symbol,
                                                        labels.data(), &record));
      benchmark::DoNotOptimize(store.sumFrom(record));
    }
    countRecords(state, data.size());
  }
  static void sliceMap(benchmark::State& state, const Data& data) {
    const Records& records = dataFor(data);
    const Their& store = filled<Their>(data);
    std::array<int, dim> from{};
    from[0] = records.keys[data.size() / 2][0];
    std::array<int, dim> behind{};
    behind[0] = from[0] + 1;
    for ([[maybe_unused]] auto iteration : state) {
      double sum = 0;
      const auto last = store.records.lower_bound(behind);
      for (auto record = store.records.lower_bound(from); record != last; ++record) {
        sum += record->second[0];
      }
      benchmark::DoNotOptimize(sum);
    }
    countRecords(state, data.size());
  }

  static void clear(benchmark::State& state, const Data& data) {
    for ([[maybe_unused]] auto iteration : state) {
      state.PauseTiming();
      auto store = std::make_unique<Our>();
      store->addLabels(dataFor(data));
      store->add(dataFor(data));
      state.ResumeTiming();
      store->database.require(c__ztbclearsymbol(store->database.handle(), store->symbol));
      store.reset();
    }
    countRecords(state, data.size());
  }
  static void clearMap(benchmark::State& state, const Data& data) {
    for ([[maybe_unused]] auto iteration : state) {
      state.PauseTiming();
      auto store = std::make_unique<Their>();
      store->add(dataFor(data));
      state.ResumeTiming();
      store->records.clear();
      store.reset();
    }
    countRecords(state, data.size());
  }
};

}  // namespace

void registerShapeContests(std::size_t records) {
  Shape<1, 1>::registerAll(records);
  Shape<3, 1>::registerAll(records);
  Shape<3, 5>::registerAll(records);
  Shape<6, 1>::registerAll(records);
  Shape<12, 1>::registerAll(records);
}

}  // namespace bench
