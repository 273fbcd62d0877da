// A record store for tests of what stands on a store: a DMap behind it does the work, and a test
// can see the calls with their hints, count the living stores, and make every call throw.
#ifndef ZTB_TESTS_UNIT_SPY_STORE_H_
#define ZTB_TESTS_UNIT_SPY_STORE_H_

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "store/dmap.h"
#include "store/symbol.h"

namespace ztb::unittest {

// What the spy stores of a process have seen and are to do.
struct Spy {
  int living = 0;
  std::vector<std::string> calls;
  std::function<void()> beforeEveryCall;

  void reset() {
    calls.clear();
    beforeEveryCall = nullptr;
  }
};

inline Spy& spy() {
  static Spy theSpy;
  return theSpy;
}

class SpyStore final : public dmap::IDMap<dmap::DMapIterator> {
 public:
  using Iterator = dmap::DMapIterator;

  SpyStore(int dim, int type) : IDMap(dmap::StorageKind::dMap, dim, type), inner_(dim, type) {
    ++spy().living;
  }
  ~SpyStore() override { --spy().living; }

  Iterator append(const int* keys, const double* values) override {
    note("append " + text(keys));
    return inner_.append(keys, values);
  }
  void load(const int* keys, const double* values) { append(keys, values); }
  Iterator insert(const int* keys, const double* values) override {
    note("insert " + text(keys));
    return inner_.insert(keys, values);
  }
  Iterator insertHint(const int* keys, const double* values, const Iterator& hint) override {
    note("insertHint " + text(keys) + " at " + text(hint));
    return inner_.insertHint(keys, values, hint);
  }
  Iterator insertOrAssign(const Iterator& hint, const int* keys, const double* values) override {
    note("insertOrAssign " + text(keys) + " at " + text(hint));
    return inner_.insertOrAssign(hint, keys, values);
  }
  void erase(const Iterator& position) override {
    note("erase " + text(position));
    inner_.erase(position);
  }
  [[nodiscard]] int size() const override { return inner_.size(); }
  [[nodiscard]] bool empty() const override {
    check();
    return inner_.empty();
  }
  Iterator lowerBound(const int* keys) override {
    check();
    return inner_.lowerBound(keys);
  }
  Iterator find(const int* keys) override {
    check();
    return inner_.find(keys);
  }
  Iterator begin() override { return inner_.begin(); }
  Iterator end() override { return inner_.end(); }
  void clear() override {
    note("clear");
    inner_.clear();
  }
  int indexOf(const Iterator& position) override { return inner_.indexOf(position); }
  Iterator iteratorAt(int index) override { return inner_.iteratorAt(index); }
  void reserve(int records) override { inner_.reserve(records); }
  void startAnew() { inner_.startAnew(); }
  void release() { inner_.release(); }
  [[nodiscard]] static Iterator behind(const Iterator& position) {
    return dmap::DMap::behind(position);
  }
  [[nodiscard]] bool isEnd(const Iterator& position) { return inner_.end().equals(position); }
  [[nodiscard]] bool isEndBound(const Iterator& bound, const int* /*keys*/) { return isEnd(bound); }
  bool seekInSlice(Iterator& position, const int* mask, bool forward) {
    return inner_.seekInSlice(position, mask, forward);
  }

 private:
  static void check() {
    if (spy().beforeEveryCall) {
      spy().beforeEveryCall();
    }
  }
  static void note(const std::string& call) {
    check();
    spy().calls.push_back(call);
  }
  [[nodiscard]] std::string text(const int* keys) const {
    std::string result;
    for (int d = 0; d < dim_; ++d) {
      result += (d == 0 ? "" : ",") + std::to_string(keys[d]);
    }
    return result;
  }
  std::string text(const Iterator& position) {
    return position.equals(inner_.end()) ? "end" : text(position.get().keys);
  }

  dmap::DMap inner_;
};

using SpySymbol = ZTBSymbol<SpyStore, dmap::DMapIterator>;

inline std::unique_ptr<SpySymbol> spySymbol(int dim, int type, const std::string& name = "s",
                                            ZTB* owner = nullptr) {
  SymbolDescription description;
  description.name = name;
  description.dim = dim;
  description.type = type;
  return std::make_unique<SpySymbol>(owner, std::move(description));
}

}  // namespace ztb::unittest

#endif  // ZTB_TESTS_UNIT_SPY_STORE_H_
