// List of texts in order of first insertion, with a value beside each, found through a chained hash
// table that folds ASCII case.
//
// Entries are never removed and never move: a number and a text, once handed out, stay. The table
// is built at the first insertion or lookup and rebuilt by insertions only, in fixed steps. An
// insertion that runs out of memory leaves the list as it was.
//
// An entry and its text are one piece of memory, and entries stand behind each other in blocks; the
// table is a plain array. A lookup computes the hash once, as it folds the key, and looks at texts
// of the same hash only. Hash and comparison are not virtual, since nothing overrides them and each
// lookup would make two calls more. There is no map of a sorted order and no word that tells
// whether it is sorted: no operation would make one, and each insertion would have to ask for it.
#ifndef ZTB_CORE_STRING_HASH_LIST_H_
#define ZTB_CORE_STRING_HASH_LIST_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <vector>
#include <ztb/case_folding.hpp>

#include "core/text_blocks.h"

namespace rxf::collections::strhash {

// Sizes of the hash table: primes just below the powers of ten, each in force until the entry count
// reaches its limit.
struct TableSize {
  int fromCount;
  int hashTableSize;
  int reHashCount;
};

inline constexpr std::array<TableSize, 6> tableSizes = {{
    {0, 997, 1'500},
    {1'500, 9'973, 15'000},
    {15'000, 99'991, 150'000},
    {150'000, 999'979, 1'500'000},
    {1'500'000, 9'999'991, 15'000'000},
    {15'000'000, 99'999'989, std::numeric_limits<int>::max()},
}};

// The hash of a key before it is cut to a table's size. Bytes of 128 and above count as negative.
class Hash {
 public:
  void add(char c) {
    sum_ = sum_ * 211U + static_cast<std::uint32_t>(static_cast<std::int32_t>(
                             static_cast<signed char>(ztb::upperChar(c))));
  }
  [[nodiscard]] std::uint32_t value() const { return sum_ & 0x7FFFFFFFU; }

 private:
  std::uint32_t sum_ = 0;
};

inline std::uint32_t hashOf(const char* key) {
  Hash hash;
  for (; *key != '\0'; ++key) {
    hash.add(*key);
  }
  return hash.value();
}

// Remainders by one number, for which a product stands in for the division.
class Remainder {
 public:
  explicit Remainder(std::uint32_t divisor)
      : divisor_(divisor), inverse_(std::numeric_limits<std::uint64_t>::max() / divisor + 1) {}
  [[nodiscard]] std::uint32_t of(std::uint32_t number) const {
    __extension__ using Wide = unsigned __int128;
    return static_cast<std::uint32_t>((static_cast<Wide>(inverse_ * number) * divisor_) >> 64);
  }

 private:
  std::uint32_t divisor_;
  std::uint64_t inverse_;
};

// Whether two keys are equal but for ASCII case.
inline bool equalFolded(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) {
    return a == b;
  }
  for (; *a == *b || ztb::upperChar(*a) == ztb::upperChar(*b); ++a, ++b) {
    if (*a == '\0') {
      return true;
    }
  }
  return false;
}

// The first difference of two keys, as that of two bytes with small ASCII letters folded to
// capitals; where one is the beginning of the other, the difference of their lengths.
inline int compareFolded(const char* a, const char* b) {
  while (*a != '\0' && ztb::upperChar(*a) == ztb::upperChar(*b)) {
    ++a;
    ++b;
  }
  if (*a != '\0' && *b != '\0') {
    return static_cast<unsigned char>(ztb::upperChar(*a)) -
           static_cast<unsigned char>(ztb::upperChar(*b));
  }
  return static_cast<int>(std::strlen(a)) - static_cast<int>(std::strlen(b));
}

template <class T>
class TXStrHashList {
 public:
  // The text follows it at once, with its terminator.
  struct Bucket {
    Bucket* next;
    std::uint32_t hash;
    int number;
    std::size_t length;
    T object;

    [[nodiscard]] char* text() { return reinterpret_cast<char*>(this + 1); }
    [[nodiscard]] const char* text() const { return reinterpret_cast<const char*>(this + 1); }
  };
  static_assert(std::is_trivially_destructible_v<T>);

  explicit TXStrHashList(bool oneBased = false) : oneBased_(oneBased) {}
  TXStrHashList(const TXStrHashList&) = delete;
  TXStrHashList& operator=(const TXStrHashList&) = delete;

 protected:
  // Chain of a key. REQUIRES: the table has been built.
  [[nodiscard]] std::size_t hash(const char* key) const { return chainOf_.of(hashOf(key)); }
  [[nodiscard]] static bool entryEqual(const char* a, const char* b) { return equalFolded(a, b); }
  // Below, above or 0 as the first key sorts before, behind or with the second, ASCII case folded.
  [[nodiscard]] static int compareEntries(const char* a, const char* b) {
    return compareFolded(a, b);
  }

 public:
  ~TXStrHashList() = default;

  // Number of the key's entry, which is made if there is none; an entry that exists keeps its text
  // and its object. `length` does not count the terminator.
  int store(const char* key, std::size_t length, T object) {
    return store(key, length, hashOf(key), object);
  }
  // The same, for a key whose hash is known.
  int store(const char* key, std::size_t length, std::uint32_t hashOfKey, T object) {
    if (count_ >= reHashCount_) {
      buildTable();
    }
    if (const Bucket* present = bucketOf(key, length, hashOfKey)) {
      return outside(present->number);
    }
    buckets_.reserve(buckets_.size() == buckets_.capacity() ? 2 * buckets_.size() + 1 : 0);
    auto* bucket = new (memory_.take(sizeof(Bucket) + length + 1))
        Bucket{nullptr, hashOfKey, count_, length, object};
    std::memcpy(bucket->text(), key, length);
    bucket->text()[length] = '\0';
    buckets_.push_back(bucket);
    link(*bucket);
    return outside(count_++);
  }

  // Number of the key's entry, or -1.
  int indexOf(const char* key) { return indexOf(key, std::strlen(key), hashOf(key)); }
  int indexOf(const char* key, std::size_t length, std::uint32_t hashOfKey) {
    requireTable();
    const Bucket* bucket = bucketOf(key, length, hashOfKey);
    return bucket == nullptr ? -1 : outside(bucket->number);
  }

  bool contains(const char* key) { return lookUp(key) != nullptr; }

  // REQUIRES: `number` was handed out by this list. The same holds for `textByNumber`.
  T& refByNumber(int number) { return buckets_[inside(number)]->object; }
  [[nodiscard]] const char* textByNumber(int number) const {
    return buckets_[inside(number)]->text();
  }

  // Object of the key's entry. Throws std::logic_error when the key is absent.
  T& refByKey(const char* key) {
    Bucket* bucket = lookUp(key);
    if (bucket == nullptr) {
      throw std::logic_error("key is not in the string list");
    }
    return bucket->object;
  }

  [[nodiscard]] int size() const { return count_; }

  // Chains of the table in force; 0 before the first build.
  [[nodiscard]] int hashTableSize() const { return hashTableSize_; }

 private:
  [[nodiscard]] int outside(int position) const { return oneBased_ ? position + 1 : position; }
  [[nodiscard]] std::size_t inside(int number) const {
    return static_cast<std::size_t>(oneBased_ ? number - 1 : number);
  }

  void link(Bucket& bucket) {
    Bucket*& head = hashTable_[chainOf_.of(bucket.hash)];
    bucket.next = head;
    head = &bucket;
  }

  void buildTable() {
    std::size_t step = tableSizes.size() - 1;
    while (tableSizes[step].fromCount > count_) {
      --step;
    }
    const int chains = tableSizes[step].hashTableSize;
    hashTable_ = std::make_unique<Bucket*[]>(static_cast<std::size_t>(chains));
    hashTableSize_ = chains;
    chainOf_ = Remainder(static_cast<std::uint32_t>(chains));
    reHashCount_ = tableSizes[step].reHashCount;
    for (Bucket* bucket : buckets_) {
      link(*bucket);
    }
  }

  [[nodiscard]] Bucket* bucketOf(const char* key, std::size_t length,
                                 std::uint32_t hashOfKey) const {
    Bucket* bucket = hashTable_[chainOf_.of(hashOfKey)];
    while (bucket != nullptr && !holds(*bucket, key, length, hashOfKey)) {
      bucket = bucket->next;
    }
    return bucket;
  }
  static bool holds(const Bucket& bucket, const char* key, std::size_t length,
                    std::uint32_t hashOfKey) {
    return bucket.hash == hashOfKey && bucket.length == length &&
           (std::memcmp(bucket.text(), key, length) == 0 || entryEqual(bucket.text(), key));
  }

  void requireTable() {
    if (hashTable_ == nullptr) {
      buildTable();
    }
  }
  Bucket* lookUp(const char* key) {
    requireTable();
    return bucketOf(key, std::strlen(key), hashOf(key));
  }

  TextBlocks memory_;
  std::vector<Bucket*> buckets_;
  std::unique_ptr<Bucket*[]> hashTable_;  // null until it is first needed
  Remainder chainOf_{1};
  int hashTableSize_ = 0;
  int reHashCount_ = 0;
  int count_ = 0;
  bool oneBased_;
};

}  // namespace rxf::collections::strhash

#endif  // ZTB_CORE_STRING_HASH_LIST_H_
