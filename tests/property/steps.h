// One random step of a property test, and the values that steps choose from.
#ifndef ZTB_TESTS_PROPERTY_STEPS_H_
#define ZTB_TESTS_PROPERTY_STEPS_H_

#include <array>
#include <iosfwd>
#include <string>
#include <vector>

#include "tests/property/model.h"

namespace ztbtest {

enum class Operation {
  mergeLabel,
  findLabel,
  labelOf,
  addSymbol,
  findSymbol,
  symbolByIndex,
  symbolByNumber,
  countRecords,
  clear,
  setUserInfo,
  addRecord,
  mergeRecord,
  findRecord,
  findFirstOrLast,
  findInSlice,
  storeByNumber,
  storeSetByNumber,
  moveNext,
  movePrev,
  hasNext,
  hasPrev,
  readSlot,
  writeSlot,
  readText,
  writeText,
  readKey,
  erase,
  copyCursor,
  setSpecialValues,
  closeFile,
  reopen
};

inline constexpr int operationCount = static_cast<int>(Operation::reopen) + 1;

// The numbers are taken modulo whatever they choose from when the step is made.
struct Step {
  Operation operation = Operation::mergeLabel;
  int symbol = 0;
  std::array<int, 3> picks{};
  int number = 0;
  bool flag = false;
  bool otherFlag = false;
};

std::ostream& operator<<(std::ostream& out, const Step& step);

// Labels, good and bad, with spellings of the same label among them.
const std::vector<std::string>& someLabels();
// Names of symbols, good and bad.
const std::vector<std::string>& someNames();
const std::vector<std::string>& someTexts();
const std::vector<double>& someValues();
// Spellings of the five special values, of every mode.
const std::vector<std::array<double, 5>>& someSpellings();

template <typename T>
const T& pick(const std::vector<T>& from, int number) {
  return from[static_cast<size_t>(number) % from.size()];
}

}  // namespace ztbtest

#endif  // ZTB_TESTS_PROPERTY_STEPS_H_
