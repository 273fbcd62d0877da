// A million random operations, cubes and files on the library and on a build of it whose default
// store is a standard map: every result, every text and every value is the same.
#include <gtest/gtest.h>
#include <ztb/types.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/support/library.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

constexpr int labelCount = 40;

// What an operation gave, as bytes.
class Answer {
 public:
  explicit Answer(int result) { add(&result, sizeof result); }
  void add(const void* bytes, std::size_t size) {
    bytes_.append(static_cast<const char*>(bytes), size);
  }
  void add(const char* text) { bytes_.append(text); }
  bool operator==(const Answer&) const = default;

 private:
  std::string bytes_;
};

struct Operation {
  unsigned kind;
  int symbol;
  std::array<int, 6> keys;
  double value;
  bool flag;
};

// One database with symbols of several dimensions, and a record handle on each.
class Side {
 public:
  explicit Side(const Library& library) : library_(library) {
    create();
    for (int label = 1; label <= labelCount; ++label) {
      int number = 0;
      labels_.push_back("label " + std::to_string(label));
      library_.c__ztbmergeuel(database_, labels_.back().c_str(), &number);
    }
    for (const auto& [dim, type] : shapes) {
      void* symbol = nullptr;
      const std::string name = "s" + std::to_string(symbols_.size());
      library_.c__ztbaddsymbol(database_, name.c_str(), dim, type, 0, "", &symbol);
      symbols_.push_back(symbol);
    }
    records_.resize(symbols_.size());
  }
  // The same symbols, out of a file.
  Side(const Library& library, const std::string& file) : library_(library) {
    create();
    opened_ = library_.c__ztbinitfromrxf(database_, file.c_str());
    for (std::size_t s = 0; opened_ == 1 && s < shapes.size(); ++s) {
      void* symbol = nullptr;
      library_.c__ztbfindsymbol(database_, ("s" + std::to_string(s)).c_str(), &symbol);
      symbols_.push_back(symbol);
    }
    records_.resize(symbols_.size());
  }
  Side(const Side&) = delete;
  Side& operator=(const Side&) = delete;
  ~Side() {
    for (std::size_t s = 0; s < records_.size(); ++s) {
      drop(s);
    }
    library_.ztbfree(&database_);
  }

  static constexpr std::array<std::array<int, 2>, 6> shapes{{{1, ZTB_PARAMETER},
                                                             {2, ZTB_VARIABLE},
                                                             {3, ZTB_PARAMETER},
                                                             {6, ZTB_EQUATION},
                                                             {2, ZTB_SET},
                                                             {0, ZTB_PARAMETER}}};

  Answer apply(const Operation& operation) {
    const auto s = static_cast<std::size_t>(operation.symbol);
    void* symbol = symbols_[s];
    void*& record = records_[s];
    const int dim = shapes[s][0];
    const bool isSet = shapes[s][1] == ZTB_SET;
    std::array<const char*, 6> labels{};
    std::array<double, 5> values{};
    values.fill(operation.value);
    for (std::size_t d = 0; d < labels.size(); ++d) {
      const int key = operation.keys[d];
      labels[d] = key == 0 ? " " : labels_[static_cast<std::size_t>(key - 1)].c_str();
    }
    std::array<int, 6> numbers = operation.keys;
    std::replace(numbers.begin(), numbers.end(), 0, 1);
    switch (operation.kind) {
      case 0:
      case 1:
      case 2:
        return answer(
            isSet ? library_.c__ztbaddrecordraw(database_, symbol, numbers.data(), nullptr,
                                                operation.flag ? "text" : nullptr)
                  : library_.c__ztbmergerecordint(database_, symbol, numbers.data(), 1, 0, nullptr,
                                                  operation.flag ? 1 : 0, values.data()));
      case 3:
        drop(s);
        return at(library_.c__ztbmergerecord(database_, symbol, labels.data(), &record), s);
      case 4:
        drop(s);
        return at(library_.c__ztbaddrecord(database_, symbol, labels.data(), &record), s);
      case 5:
        drop(s);
        return at(library_.c__ztbfindrecord(database_, symbol, labels.data(), &record), s);
      case 6:
        drop(s);
        return at(operation.flag ? library_.c__ztbfindfirstrecord(database_, symbol, &record)
                                 : library_.c__ztbfindlastrecord(database_, symbol, &record),
                  s);
      case 7:
      case 8:
        drop(s);
        return at(
            operation.flag
                ? library_.c__ztbfindfirstrecordslice(database_, symbol, labels.data(), &record)
                : library_.c__ztbfindlastrecordslice(database_, symbol, labels.data(), &record),
            s);
      case 9:
        return at(library_.c__ztbrecordmovenext(database_, record), s);
      case 10:
        return at(library_.c__ztbrecordmoveprev(database_, record), s);
      case 11:
        return at(operation.flag ? library_.c__ztbrecordhasnext(database_, record)
                                 : library_.c__ztbrecordhasprev(database_, record),
                  s);
      case 12:
        return record == nullptr || isSet
                   ? Answer(-1)
                   : at(library_.c__ztbsetlevel(database_, record, operation.value), s);
      case 13: {
        if (record == nullptr) {
          return Answer(-1);
        }
        const Answer deleted = answer(library_.c__ztbdeleterecord(database_, record));
        drop(s);
        return deleted;
      }
      case 14:
        return content(s, dim);
      default:
        // Rarely, and never while a handle stands somewhere.
        drop(s);
        return answer(operation.flag && operation.value < 0.02
                          ? library_.c__ztbclearsymbol(database_, symbol)
                          : 1);
    }
  }

  bool opened() const { return opened_ == 1; }
  bool writes(const std::string& file) {
    return library_.c__ztbwriterxf(database_, file.c_str(), 1) == 1;
  }

  // All labels as a set, which the cubes of arrays are laid out over.
  void addUniverse() {
    library_.c__ztbaddsymbol(database_, "all", 1, ZTB_SET, 0, "", &all_);
    for (int label = 1; label <= labelCount; ++label) {
      library_.c__ztbaddrecordraw(database_, all_, &label, nullptr, nullptr);
    }
  }

  // The records of a parameter of three positions as a cube, and in place of them this cube with
  // some cells moved.
  Answer throughAnArray() {
    constexpr std::size_t place = 2;
    const std::array<int, 3> sizes{labelCount, labelCount, labelCount};
    std::array<void*, 3> domains{all_, all_, all_};
    std::vector<double> cube(std::size_t{labelCount} * labelCount * labelCount);
    int dropped = -2;
    Answer given = answer(library_.c__ztbsparsesymboltodensearray(
        database_, cube.data(), sizes.data(), symbols_[place], domains.data(), 0, &dropped));
    given.add(&dropped, sizeof dropped);
    given.add(cube.data(), cube.size() * sizeof(double));
    std::rotate(cube.begin(), cube.begin() + 7, cube.end());
    drop(place);
    library_.c__ztbclearsymbol(database_, symbols_[place]);
    const int result = library_.c__ztbdensearrayslicestosymbol(
        database_, symbols_[place], domains.data(), domains.data(), cube.data(), sizes.data());
    given.add(&result, sizeof result);
    return given;
  }

  // The records of a symbol, in their order, up to a number.
  Answer content(std::size_t s, int dim, int most = 200) {
    Answer all(dim);
    void* record = nullptr;
    int goesOn = library_.c__ztbfindfirstrecord(database_, symbols_[s], &record);
    for (int count = 0; goesOn == 1 && count < most; ++count) {
      addRecord(all, record, dim);
      goesOn = library_.c__ztbrecordmovenext(database_, record);
    }
    if (record != nullptr) {
      library_.c__ztbfreesymboliterator(database_, record);
    }
    return all;
  }

 private:
  void create() {
    std::array<char, 256> message{};
    library_.ztbcreated(&database_, peerFolder().c_str(), message.data(),
                        static_cast<int>(message.size()));
  }

  Answer answer(int result) {
    Answer given(result);
    if (result != 1) {
      std::array<char, 256> text{};
      library_.c__ztbgetlasterror(database_, text.data());
      given.add(text.data());
    }
    return given;
  }

  // The same, and the record under the symbol's handle.
  Answer at(int result, std::size_t s) {
    Answer given = answer(result);
    if (records_[s] != nullptr) {
      addRecord(given, records_[s], shapes[s][0]);
    }
    return given;
  }

  void addRecord(Answer& given, void* record, int dim) {
    std::array<int, 6> keys{};
    std::array<double, 5> values{};
    library_.c__ztbgetrecordraw(database_, record, dim, keys.data(), values.data());
    given.add(keys.data(), sizeof keys);
    given.add(values.data(), sizeof values);
  }

  void drop(std::size_t s) {
    if (records_[s] != nullptr) {
      library_.c__ztbfreesymboliterator(database_, records_[s]);
      records_[s] = nullptr;
    }
  }

  const Library& library_;
  ztbRec* database_ = nullptr;
  int opened_ = 0;
  void* all_ = nullptr;
  std::vector<std::string> labels_;
  std::vector<void*> symbols_;
  std::vector<void*> records_;
};

TEST(PlainStores, GiveWhatTheRealOnesGive) {
  static const Library plain = openLibrary(ZTB_PLAIN_LIBRARY);
  ASSERT_NE(plain.handle, lib().handle);
  const TempFolder folder;
  Side real(lib());
  Side standard(plain);
  real.addUniverse();
  standard.addUniverse();
  const auto expectAlike = [](Side& one, Side& other) {
    for (std::size_t s = 0; s < Side::shapes.size(); ++s) {
      const int dim = Side::shapes[s][0];
      EXPECT_TRUE(one.content(s, dim, 1'000'000) == other.content(s, dim, 1'000'000)) << s;
    }
  };
  std::mt19937 random(11);
  const auto below = [&](int count) {
    return static_cast<int>(random() % static_cast<unsigned>(count));
  };
  int ascending = 0;
  const int steps = std::getenv("ZTB_SHORT_SERIES") ? 100'000 : 1'000'000;
  for (int step = 0; step < steps; ++step) {
    // At times all goes through a cube, and through a file into databases of their own.
    if (step % 25000 == 24999) {
      ASSERT_TRUE(real.throughAnArray() == standard.throughAnArray()) << "step " << step;
      ASSERT_TRUE(real.writes(folder.file("a.rxf")) && standard.writes(folder.file("b.rxf")));
      Side read(lib(), folder.file("a.rxf"));
      Side readByRecord(plain, folder.file("b.rxf"));
      ASSERT_TRUE(read.opened() && readByRecord.opened());
      expectAlike(read, readByRecord);
      expectAlike(read, real);
      expectAlike(readByRecord, standard);
      ASSERT_FALSE(testing::Test::HasFailure()) << "step " << step;
    }
    Operation operation{};
    operation.kind = random() % 16;
    operation.symbol = below(static_cast<int>(Side::shapes.size()));
    operation.value = below(100) / 50.0;
    operation.flag = random() % 2 == 0;
    // Now few labels, now many; now keys in order, which a store takes in another way.
    const int range = 2 + (step / 5000) % 38;
    const bool sorted = (step / 2000) % 3 == 0;
    for (int& key : operation.keys) {
      key = below(range) + (operation.kind == 7 || operation.kind == 8 ? 0 : 1);
    }
    // At times nothing but sorted records arrive, and none goes: they stay a list.
    const bool calm = (step / 10000) % 5 == 4;
    if (calm && step % 10000 < static_cast<int>(Side::shapes.size())) {
      operation.kind = 15;
      operation.symbol = step % 10000;
      operation.value = 0;
      operation.flag = true;
      ascending = 0;
    } else if (calm && (operation.kind == 3 || operation.kind == 4 || operation.kind == 13)) {
      operation.kind = 5;
    }
    if ((calm || sorted) && operation.kind < 3) {
      ++ascending;
      operation.keys[0] = 1 + (ascending / 1600) % labelCount;
      operation.keys[1] = 1 + (ascending / 40) % labelCount;
      operation.keys[2] = 1 + ascending % labelCount;
    }
    ASSERT_EQ(real.apply(operation) == standard.apply(operation), true)
        << "step " << step << ", operation " << operation.kind << " on symbol " << operation.symbol;
  }
  expectAlike(real, standard);
}

}  // namespace
}  // namespace ztbtest
