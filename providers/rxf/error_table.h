// The error numbers of the exchange-file library and the general text of each.
//
// A number never changes its meaning, since callers may keep it. What an error was about (the file,
// the block, the label) is kept apart, in ErrorLog.
#ifndef ZTB_PROVIDERS_RXF_ERROR_TABLE_H_
#define ZTB_PROVIDERS_RXF_ERROR_TABLE_H_

namespace rxffile {

enum class ErrorNumber : int {
  none = 0,
  noSuchFile = 1,
  noPermission = 2,
  isFolder = 3,
  notRegularFile = 4,
  notRxfFile = 5,
  newerVersion = 6,
  cutShort = 7,
  damaged = 8,
  diskFull = 9,
  writeFailed = 10,
  readFailed = 11,
  cannotOpen = 12,
  fileNameNotAcceptable = 13,
  labelNotAcceptable = 14,
  labelTwice = 15,
  nameNotAcceptable = 16,
  symbolTwice = 17,
  aliasTargetUnknown = 18,
  keyOutsideLabels = 19,
  keysNotAscending = 20,
  recordTwice = 21,
  domainUnknown = 22,
  domainNotOneDimensional = 23,
  outsideDomain = 24,
  callsOutOfOrder = 25,
  textTooLong = 26,
  dimensionOutOfRange = 27,
  typeUnknown = 28,
  limitExceeded = 29,
  noSuchSymbol = 30,
  noSuchLabel = 31,
  aliasHasNoRecords = 32,
  outOfMemory = 33,
  internalError = 34,
  changed = 35,
  textTwice = 36,
  textUnknown = 37,
};

// One more than the highest error number.
inline constexpr int kErrorNumberEnd = 38;

// General text of an error number, or null for a number that is not in the table (0 too).
const char* generalErrorText(int number);

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_ERROR_TABLE_H_
