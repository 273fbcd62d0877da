// The data of the transfer contests: the records of a parameter over its three domain sets, and the
// same as plain containers.
#ifndef ZTB_BENCH_TRANSFER_SCENE_H_
#define ZTB_BENCH_TRANSFER_SCENE_H_

#include <array>
#include <cstddef>
#include <vector>

#include "bench/contest.h"
#include "bench/data.h"
#include "bench/database.h"
#include "bench/ordered_maps.h"

namespace bench {

inline constexpr const char* recordLoop = "loop over exported names";
inline constexpr const char* mapLoop = "loop over std::map";
inline constexpr const char* columnLoop = "loop over key columns";

struct TransferScene {
  Database database;
  std::array<void*, dimension> domains = {};
  std::array<int, dimension> sizes = {};
  // Rank of a label in its domain, by label number, from 0.
  std::vector<int> ranks;
  void* symbol = nullptr;

  [[nodiscard]] std::size_t cells() const {
    return static_cast<std::size_t>(sizes[0]) * static_cast<std::size_t>(sizes[1]) *
           static_cast<std::size_t>(sizes[2]);
  }
  // A key's cell in the cube over the domains.
  template <class Labels>
  [[nodiscard]] std::size_t cellOf(const Labels& labels) const {
    std::size_t cell = 0;
    for (std::size_t d = 0; d < dimension; ++d) {
      cell = cell * static_cast<std::size_t>(sizes[d]) +
             static_cast<std::size_t>(ranks[static_cast<std::size_t>(labels[d])]);
    }
    return cell;
  }
};

// The scene of the data; shared by the contests of one record count.
TransferScene& transferScene(const Data& data);

// Calls `visit` with the handle of each record of a symbol.
template <class Visit>
void forEachRecord(const Database& database, void* symbol, Visit&& visit) {
  void* record = nullptr;
  database.require(c__ztbfindfirstrecord(database.handle(), symbol, &record));
  do {
    visit(record);
  } while (c__ztbrecordmovenext(database.handle(), record) == 1);
  database.require(c__ztbfreesymboliterator(database.handle(), record));
}

}  // namespace bench

#endif  // ZTB_BENCH_TRANSFER_SCENE_H_
