// Records into a cube and back.
#include <algorithm>
#include <stdexcept>

#include "bench/contests.h"
#include "bench/transfer_scene.h"

namespace bench {
namespace {

// What every contestant's cube has to hold in the end.
void requireSum(const Data& data, const std::vector<double>& cube) {
  double expected = 0;
  for (const double value : data.values) {
    expected += value;
  }
  double sum = 0;
  for (const double cell : cube) {
    sum += cell;
  }
  if (sum < expected * 0.999999 || sum > expected * 1.000001) {
    throw std::runtime_error("the cube does not hold the records");
  }
}

void toCube(benchmark::State& state, const Data& data) {
  TransferScene& scene = transferScene(data);
  std::vector<double> cube(scene.cells());
  for ([[maybe_unused]] auto iteration : state) {
    int dropped = 0;
    scene.database.require(c__ztbsparsesymboltodensearray(scene.database.handle(), cube.data(),
                                                          scene.sizes.data(), scene.symbol,
                                                          scene.domains.data(), 0, &dropped));
    benchmark::ClobberMemory();
  }
  requireSum(data, cube);
  countRecords(state, data.size());
}

void toCubeByRecords(benchmark::State& state, const Data& data) {
  const TransferScene& scene = transferScene(data);
  std::vector<double> cube(scene.cells());
  for ([[maybe_unused]] auto iteration : state) {
    std::ranges::fill(cube, 0.0);
    forEachRecord(scene.database, scene.symbol, [&](void* record) {
      Key key;
      double value = 0;
      scene.database.require(
          c__ztbgetrecordraw(scene.database.handle(), record, dimension, key.data(), &value));
      cube[scene.cellOf(key)] = value;
    });
    benchmark::ClobberMemory();
  }
  requireSum(data, cube);
  countRecords(state, data.size());
}

void toCubeFromMap(benchmark::State& state, const Data& data) {
  const TransferScene& scene = transferScene(data);
  const StdMap& map = filledMap<StdMap>(data).records;
  std::vector<double> cube(scene.cells());
  for ([[maybe_unused]] auto iteration : state) {
    std::ranges::fill(cube, 0.0);
    for (const auto& [key, slots] : map) {
      cube[scene.cellOf(key)] = slots[0];
    }
    benchmark::ClobberMemory();
  }
  requireSum(data, cube);
  countRecords(state, data.size());
}

void toCubeFromColumns(benchmark::State& state, const Data& data) {
  const TransferScene& scene = transferScene(data);
  std::vector<double> cube(scene.cells());
  for ([[maybe_unused]] auto iteration : state) {
    std::ranges::fill(cube, 0.0);
    for (std::size_t i = 0; i < data.size(); ++i) {
      cube[scene.cellOf(data.keys[i])] = data.values[i];
    }
    benchmark::ClobberMemory();
  }
  requireSum(data, cube);
  countRecords(state, data.size());
}

// The cube of the data.
const std::vector<double>& cubeOf(const Data& data) {
  static Shared<std::vector<double>> shared;
  return shared.get(data, [](const Data& wanted) {
    const TransferScene& scene = transferScene(wanted);
    auto cube = std::make_unique<std::vector<double>>(scene.cells());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      (*cube)[scene.cellOf(wanted.keys[i])] = wanted.values[i];
    }
    return cube;
  });
}

enum class Zeros { kept, leftOut };

// Calls `take` with the key and the value of each cell in their order.
template <Zeros zeros, class Take>
void forEachCell(const TransferScene& scene, const std::vector<double>& cube, Take&& take) {
  const double* cell = cube.data();
  Key key;
  for (int plant = 0; plant < scene.sizes[0]; ++plant) {
    key[0] = plant + 1;
    for (int customer = 0; customer < scene.sizes[1]; ++customer) {
      key[1] = scene.sizes[0] + customer + 1;
      for (int week = 0; week < scene.sizes[2]; ++week, ++cell) {
        key[2] = scene.sizes[0] + scene.sizes[1] + week + 1;
        if (zeros == Zeros::kept || *cell != 0) {
          take(key, *cell);
        }
      }
    }
  }
}

template <Zeros zeros>
void countCells(benchmark::State& state, const Data& data) {
  countRecords(state, zeros == Zeros::kept ? transferScene(data).cells() : data.size());
}

// A new symbol in every iteration; dropping its records isn't timed.
template <class Load>
void measureTarget(benchmark::State& state, const Data& data, Load&& load) {
  TransferScene& scene = transferScene(data);
  void* symbol = nullptr;
  if (c__ztbfindsymbol(scene.database.handle(), "loaded", &symbol) != 1) {
    symbol = scene.database.addParameter("loaded");
  }
  for ([[maybe_unused]] auto iteration : state) {
    load(scene, symbol);
    state.PauseTiming();
    scene.database.require(c__ztbclearsymbol(scene.database.handle(), symbol));
    state.ResumeTiming();
  }
}

template <Zeros zeros>
void fromCube(benchmark::State& state, const Data& data) {
  const std::vector<double>& cube = cubeOf(data);
  measureTarget(state, data, [&](TransferScene& scene, void* symbol) {
    ztbRec* const handle = scene.database.handle();
    scene.database.require(zeros == Zeros::kept
                               ? c__ztbdensearraytosymbol(handle, symbol, scene.domains.data(),
                                                          cube.data(), scene.sizes.data())
                               : c__ztbdensearrayslicestosymbol(
                                     handle, symbol, scene.domains.data(), scene.domains.data(),
                                     cube.data(), scene.sizes.data()));
  });
  countCells<zeros>(state, data);
}

template <Zeros zeros>
void fromCubeByRecords(benchmark::State& state, const Data& data) {
  const std::vector<double>& cube = cubeOf(data);
  measureTarget(state, data, [&](const TransferScene& scene, void* symbol) {
    double values[5] = {};
    forEachCell<zeros>(scene, cube, [&](const Key& key, double value) {
      values[0] = value;
      scene.database.require(c__ztbmergerecordint(scene.database.handle(), symbol, key.data(), 0, 0,
                                                  nullptr, 1, values));
    });
  });
  countCells<zeros>(state, data);
}

template <Zeros zeros>
void fromCubeToMap(benchmark::State& state, const Data& data) {
  const TransferScene& scene = transferScene(data);
  const std::vector<double>& cube = cubeOf(data);
  for ([[maybe_unused]] auto iteration : state) {
    StdMap map;
    forEachCell<zeros>(scene, cube, [&](const Key& key, double value) {
      map.insert(map.end(), {key, {value}});
    });
    state.PauseTiming();
    map.clear();
    state.ResumeTiming();
  }
  countCells<zeros>(state, data);
}

template <Zeros zeros>
Contest fromCubeContest(const char* operation) {
  return {operation,
          Clock::processor,
          {{ours, fromCube<zeros>},
           {recordLoop, fromCubeByRecords<zeros>},
           {mapLoop, fromCubeToMap<zeros>}}};
}

}  // namespace

Contest recordsToCube() {
  return {"records to cube",
          Clock::processor,
          {{ours, toCube},
           {recordLoop, toCubeByRecords},
           {mapLoop, toCubeFromMap},
           {columnLoop, toCubeFromColumns}}};
}

Contest cubeToRecords() {
  return fromCubeContest<Zeros::kept>("cube to records");
}

Contest nonzerosToRecords() {
  return fromCubeContest<Zeros::leftOut>("nonzeros to records");
}

}  // namespace bench
