#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/contest.h"
#include "bench/database.h"
#include "bench/store_contests.h"

namespace bench {
namespace {

// A file with one symbol of a shape, removed with this object.
class ShapeFile {
 public:
  explicit ShapeFile(const StoreData& data)
      : path_((std::filesystem::temp_directory_path() / "ztb_store_bench.rxf").string()) {
    Database database;
    for (int label = 1; label <= data.lastLabel; ++label) {
      int number = 0;
      const std::string text = "label" + std::to_string(label);
      database.require(c__ztbmergeuel(database.handle(), text.c_str(), &number));
    }
    void* symbol = nullptr;
    const int type = data.shape.slots == 1 ? ZTB_PARAMETER : ZTB_VARIABLE;
    database.require(c__ztbaddsymbol(database.handle(), "supply", static_cast<int>(data.shape.dim),
                                     type, 0, "", &symbol));
    for (std::size_t record = 0; record < data.shape.records; ++record) {
      double values[5] = {};
      std::copy_n(data.value(record), data.shape.slots, values);
      database.require(c__ztbmergerecordint(database.handle(), symbol, data.key(record), 0, 0,
                                            nullptr, 1, values));
    }
    database.require(c__ztbwriterxf(database.handle(), path_.c_str(), 1));
  }
  ShapeFile(const ShapeFile&) = delete;
  ShapeFile& operator=(const ShapeFile&) = delete;
  ~ShapeFile() { std::filesystem::remove(path_); }

  [[nodiscard]] const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

const ShapeFile& fileOf(const StoreData& data) {
  static StoreShape shape{};
  static std::unique_ptr<ShapeFile> kept;
  if (kept == nullptr || shape != data.shape) {
    kept.reset();  // all stand at one path
    kept = std::make_unique<ShapeFile>(data);
    shape = data.shape;
  }
  return *kept;
}

struct OpenedFile {
  OpenedFile(const char* path, int store) {
    database.require(c__ztbselectrecordstorage(database.handle(), nullptr, store));
    database.require(c__ztbinitfromrxf(database.handle(), path));
    database.require(c__ztbfindsymbol(database.handle(), "supply", &symbol));
  }

  Database database;
  void* symbol = nullptr;
};

}  // namespace

void registerLazyLoad(const StoreShape& shape) {
  struct Store {
    const char* name;
    int code;
  };
  for (const Store store :
       {Store{"map store", ZTB_STORAGE_TREE_MAP}, Store{"vector store", ZTB_STORAGE_VECTOR},
        Store{"trie store", ZTB_STORAGE_TRIE}}) {
    const std::string name = "lazy load " + std::to_string(shape.dim) + "d" +
                             std::to_string(shape.slots) + "v/" + store.name + "/" +
                             std::to_string(shape.records);
    setEffort(benchmark::RegisterBenchmark(
                  name.c_str(),
                  [shape, code = store.code](benchmark::State& state) {
                    const ShapeFile& file = fileOf(storeDataOf(shape));
                    measureLoad(
                        state, shape.records,
                        [&] { return std::make_unique<OpenedFile>(file.path(), code); },
                        [&](const OpenedFile& opened) {
                          void* record = nullptr;
                          opened.database.require(c__ztbfindfirstrecord(opened.database.handle(),
                                                                        opened.symbol, &record));
                          opened.database.require(
                              c__ztbfreesymboliterator(opened.database.handle(), record));
                        });
                  }),
              shape.records);
  }
}

}  // namespace bench
