// The pool of explanatory texts. Texts that differ only in ASCII case are one entry, read back in
// the spelling first stored; entries are never removed.
#ifndef ZTB_CORE_STRING_POOL_H_
#define ZTB_CORE_STRING_POOL_H_

#include <cstring>
#include <initializer_list>
#include <utility>

#include "core/string_hash_list.h"

namespace ztb::strpool {

class IStringPool {
 public:
  // Stores a text with a value; a text that is there keeps its value.
  virtual void add(const char* key, int value) = 0;
  [[nodiscard]] virtual bool contains(const char* key) = 0;
  // Value of a text. REQUIRES: contains(key).
  [[nodiscard]] virtual int value(const char* key) = 0;
  // Text of an entry. REQUIRES: number is from 0 to size() - 1.
  [[nodiscard]] virtual const char* at(int number) const = 0;
  [[nodiscard]] virtual int size() const = 0;

 protected:
  ~IStringPool() = default;
};

class TStrHashPool final : public IStringPool {
 public:
  TStrHashPool(std::initializer_list<std::pair<const char*, int>> entries) {
    for (const auto& [text, value] : entries) {
      add(text, value);
    }
  }

  void add(const char* key, int value) override { list_.store(key, std::strlen(key), value); }
  [[nodiscard]] bool contains(const char* key) override { return list_.contains(key); }
  [[nodiscard]] int value(const char* key) override { return list_.refByKey(key); }
  [[nodiscard]] const char* at(int number) const override { return list_.textByNumber(number); }
  [[nodiscard]] int size() const override { return list_.size(); }

 private:
  rxf::collections::strhash::TXStrHashList<int> list_;
};

}  // namespace ztb::strpool

#endif  // ZTB_CORE_STRING_POOL_H_
