#include "bench/data.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>

namespace bench {
namespace {

constexpr int plants = 20;
constexpr int weeks = 52;
constexpr int weeksOfFirstYear = 26;

template <class... Arguments>
std::string format(const char* text, Arguments... arguments) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, text, arguments...);
  return buffer;
}

// Two cells in five of the cube hold a record.
int customersFor(std::size_t records) {
  return static_cast<int>(std::max<std::size_t>(8, records * 5 / 2 / (plants * weeks) + 1));
}

Data make(std::size_t records) {
  Data data;
  std::mt19937_64 random(20310407);
  const int customers = customersFor(records);
  for (int i = 1; i <= plants; ++i) {
    data.labels.push_back(format("plant%d", i));
  }
  for (int i = 1; i <= customers; ++i) {
    data.labels.push_back(format("customer%05d", i));
  }
  for (int i = 0; i < weeks; ++i) {
    data.labels.push_back(
        format("%d-w%02d", i < weeksOfFirstYear ? 2031 : 2032, i % weeksOfFirstYear + 1));
  }
  // Selection sampling: every subset of the cells of that size is equally likely.
  std::uint64_t wanted = records;
  std::uint64_t cells = std::uint64_t{plants} * static_cast<std::uint64_t>(customers) * weeks;
  data.keys.reserve(records);
  data.values.reserve(records);
  for (int plant = 1; plant <= plants; ++plant) {
    for (int customer = 1; customer <= customers; ++customer) {
      for (int week = 1; week <= weeks; ++week, --cells) {
        if (random() % cells < wanted) {
          --wanted;
          data.keys.push_back({plant, plants + customer, plants + customers + week});
          data.values.push_back(static_cast<double>(random() % 100'000) / 100.0);
        }
      }
    }
  }
  data.shuffled.reserve(records);
  for (std::size_t i = 0; i < records; ++i) {
    const auto [plant, customer, week] = data.keys[i];
    data.shuffled.push_back(
        {{&data.label(plant), &data.label(customer), &data.label(week)}, data.values[i]});
  }
  std::shuffle(data.shuffled.begin(), data.shuffled.end(), random);
  data.middle = data.keys[records / 2];
  return data;
}

}  // namespace

const Data& dataOf(std::size_t records) {
  static std::unique_ptr<const Data> kept;
  if (kept == nullptr || kept->size() != records) {
    kept.reset();
    kept = std::make_unique<const Data>(make(records));
  }
  return *kept;
}

}  // namespace bench
