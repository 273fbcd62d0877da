#include "bench/store_data.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>

namespace bench {
namespace {

constexpr std::uint64_t widestGap = 4;  // gaps between records are 1 to 4 cells, 2.5 on average

// The least number of labels a position that gives the cube enough cells.
std::uint64_t labelsOfPosition(const StoreShape& shape) {
  const double cells = static_cast<double>(widestGap * shape.records);
  std::uint64_t labels = 1;
  for (double size = 0; size < cells;) {
    ++labels;
    size = 1;
    for (std::size_t d = 0; d < shape.dim && size < cells; ++d) {
      size *= static_cast<double>(labels);
    }
  }
  return labels;
}

StoreData make(const StoreShape& shape) {
  StoreData data{shape, {}, {}, {}, 0};
  std::mt19937_64 random(20310407);
  const std::uint64_t labels = shape.dim == 1 ? widestGap * shape.records : labelsOfPosition(shape);
  data.keys.resize(shape.records * shape.dim);
  data.values.resize(shape.records * shape.slots);
  std::uint64_t cell = 0;
  for (std::size_t record = 0; record < shape.records; ++record) {
    cell += 1 + random() % widestGap;
    std::uint64_t rest = cell - 1;
    for (std::size_t d = shape.dim; d-- > 0; rest /= labels) {
      data.keys[record * shape.dim + d] = static_cast<int>(rest % labels) + 1;
    }
  }
  std::ranges::generate(data.values,
                        [&] { return static_cast<double>(random() % 100'000) / 100.0; });
  data.shuffled.resize(shape.records);
  std::iota(data.shuffled.begin(), data.shuffled.end(), std::size_t{0});
  std::ranges::shuffle(data.shuffled, random);
  data.lastLabel = *std::ranges::max_element(data.keys);
  return data;
}

}  // namespace

const StoreData& storeDataOf(const StoreShape& shape) {
  static std::unique_ptr<const StoreData> kept;
  if (kept == nullptr || kept->shape != shape) {
    kept.reset();
    kept = std::make_unique<const StoreData>(make(shape));
  }
  return *kept;
}

}  // namespace bench
