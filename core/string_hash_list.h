// List of texts in order of first insertion, with a value beside each, found through a chained hash
// table that folds ASCII case.
//
// Entries are never removed and never move: a number and a text, once handed out, stay. The table
// is built at the first insertion or lookup and rebuilt by insertions only, in fixed steps. An
// insertion that runs out of memory leaves the list as it was.
//
// The entries own what they point to, and the table is a plain array, so that a lookup goes one
// pointer less far than through a vector. There is no map of a sorted order and no word that tells
// whether it is sorted: no operation would make one, and each insertion would have to ask for it.
#ifndef ZTB_CORE_STRING_HASH_LIST_H_
#define ZTB_CORE_STRING_HASH_LIST_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

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

// Folds a small ASCII letter to its capital; every other byte stays.
constexpr char upperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c ^ 0x20) : c;
}

// The hash of a key before it is cut to a table's size. Bytes of 128 and above count as negative.
inline std::uint32_t hashOf(const char* key) {
  std::uint32_t h = 0;
  for (; *key != '\0'; ++key) {
    h = h * 211U + static_cast<std::uint32_t>(
                       static_cast<std::int32_t>(static_cast<signed char>(upperAscii(*key))));
  }
  return h & 0x7FFFFFFFU;
}

// Whether two keys are equal but for ASCII case.
inline bool equalFolded(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) {
    return a == b;
  }
  for (; *a == *b || upperAscii(*a) == upperAscii(*b); ++a, ++b) {
    if (*a == '\0') {
      return true;
    }
  }
  return false;
}

// The first difference of two keys, as that of two bytes with small ASCII letters folded to
// capitals; where one is the beginning of the other, the difference of their lengths.
inline int compareFolded(const char* a, const char* b) {
  while (*a != '\0' && upperAscii(*a) == upperAscii(*b)) {
    ++a;
    ++b;
  }
  if (*a != '\0' && *b != '\0') {
    return static_cast<unsigned char>(upperAscii(*a)) - static_cast<unsigned char>(upperAscii(*b));
  }
  return static_cast<int>(std::strlen(a)) - static_cast<int>(std::strlen(b));
}

template <class T>
class TXStrHashList {
 public:
  struct Bucket {
    std::unique_ptr<char[]> text;
    Bucket* next = nullptr;
    int number = 0;
    T object{};
  };

  explicit TXStrHashList(bool oneBased = false) : oneBased_(oneBased) {}
  TXStrHashList(const TXStrHashList&) = delete;
  TXStrHashList& operator=(const TXStrHashList&) = delete;

 protected:
  // Chain of a key. REQUIRES: the table has been built.
  [[nodiscard]] virtual std::size_t hash(const char* key) const {
    return hashOf(key) % static_cast<std::uint32_t>(hashTableSize_);
  }
  [[nodiscard]] virtual bool entryEqual(const char* a, const char* b) const {
    return equalFolded(a, b);
  }
  // Below, above or 0 as the first key sorts before, behind or with the second, ASCII case folded.
  [[nodiscard]] virtual int compareEntries(const char* a, const char* b) const {
    return compareFolded(a, b);
  }

 public:
  virtual ~TXStrHashList() = default;

 protected:
  // Gives back what an entry's object holds: nothing.
  virtual void freeItem(T& /*object*/) {}

 public:
  // Number of the key's entry, which is made if there is none; an entry that exists keeps its text
  // and its object. `length` does not count the terminator.
  int store(const char* key, std::size_t length, T object) {
    if (count_ >= reHashCount_) {
      buildTable();
    }
    if (const Bucket* present = bucketOf(key)) {
      return outside(present->number);
    }
    auto bucket = std::make_unique<Bucket>();
    bucket->text = std::make_unique_for_overwrite<char[]>(length + 1);
    std::memcpy(bucket->text.get(), key, length);
    bucket->text[length] = '\0';
    bucket->number = count_;
    bucket->object = object;
    buckets_.push_back(std::move(bucket));
    link(*buckets_.back());
    return outside(count_++);
  }

  // Number of the key's entry, or -1.
  int indexOf(const char* key) {
    const Bucket* bucket = lookUp(key);
    return bucket == nullptr ? -1 : outside(bucket->number);
  }

  bool contains(const char* key) { return lookUp(key) != nullptr; }

  // REQUIRES: `number` was handed out by this list. The same holds for `textByNumber`.
  T& refByNumber(int number) { return buckets_[inside(number)]->object; }
  [[nodiscard]] const char* textByNumber(int number) const {
    return buckets_[inside(number)]->text.get();
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
    Bucket*& head = hashTable_[hash(bucket.text.get())];
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
    reHashCount_ = tableSizes[step].reHashCount;
    for (const auto& bucket : buckets_) {
      link(*bucket);
    }
  }

  [[nodiscard]] Bucket* bucketOf(const char* key) const {
    Bucket* bucket = hashTable_[hash(key)];
    while (bucket != nullptr && !entryEqual(bucket->text.get(), key)) {
      bucket = bucket->next;
    }
    return bucket;
  }

  Bucket* lookUp(const char* key) {
    if (hashTable_ == nullptr) {
      buildTable();
    }
    return bucketOf(key);
  }

  std::vector<std::unique_ptr<Bucket>> buckets_;
  std::unique_ptr<Bucket*[]> hashTable_;  // null until it is first needed
  int hashTableSize_ = 0;
  int reHashCount_ = 0;
  int count_ = 0;
  bool oneBased_;
};

}  // namespace rxf::collections::strhash

#endif  // ZTB_CORE_STRING_HASH_LIST_H_
