// What the vector and the trie should hold after each operation, on plain containers and by their
// stated steps, one after the other. The trie's model covers the sequences on which its tree stays
// whole; what deleting a branch's first or only record does to it has tests of its own.
#ifndef ZTB_TESTS_STORES_STORE_MODELS_H_
#define ZTB_TESTS_STORES_STORE_MODELS_H_

#include <map>
#include <optional>

#include "tests/stores/rows.h"

namespace ztb::storetest {

class VectorModel {
 public:
  // Each gives the row of the result; nothing where the steps lead nowhere, with nothing changed.
  int append(const Key& key, double value);
  std::optional<int> insert(const Key& key, double value) { return insert(key, value, 0); }
  std::optional<int> insertHint(const Key& key, double value, int hint) {
    return insertHint(key, value, hint, 0);
  }
  int insertOrAssign(const Key& key, double value);
  void erase(int row) { rows_.erase(rows_.begin() + row); }
  // The end is the number of rows.
  [[nodiscard]] int lowerBound(const Key& key) const;
  [[nodiscard]] int find(const Key& key) const;
  [[nodiscard]] int size() const { return static_cast<int>(rows_.size()); }
  [[nodiscard]] const Rows& rows() const { return rows_; }
  // Times that a key was found present and skipped with a line on the standard output.
  [[nodiscard]] int warnings() const { return warnings_; }

 private:
  std::optional<int> insert(const Key& key, double value, int depth);
  std::optional<int> insertHint(const Key& key, double value, int hint, int depth);
  [[nodiscard]] const Key& keyAt(int row) const {
    return rows_[static_cast<std::size_t>(row)].first;
  }

  Rows rows_;
  int warnings_ = 0;
};

class TrieModel {
 public:
  explicit TrieModel(int dim) : dim_(dim) {}

  // False where the steps read through a missing node; nothing has changed then.
  bool append(const Key& key, double value);
  void insert(const Key& key, double value);
  // False where there is no bound.
  bool insertOrAssign(const Key& key, double value);
  // Whether the tree stays whole without this record.
  [[nodiscard]] bool mayErase(const Key& key) const;
  void erase(const Key& key);
  // The key where the bound stands, nothing where there is none.
  [[nodiscard]] std::optional<Key> lowerBound(const Key& key) const;
  [[nodiscard]] const std::map<Key, double>& records() const { return records_; }

 private:
  int dim_;
  std::map<Key, double> records_;
  // Key of the last record that the tree remembers, and whether it is one of the present nodes.
  std::optional<Key> last_;
};

}  // namespace ztb::storetest

#endif  // ZTB_TESTS_STORES_STORE_MODELS_H_
