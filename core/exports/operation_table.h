// The one table of the exported operations: name, result code and argument codes of each, as the
// signature check tests them. The database handle is not counted.
#ifndef ZTB_CORE_EXPORTS_OPERATION_TABLE_H_
#define ZTB_CORE_EXPORTS_OPERATION_TABLE_H_

#include <array>
#include <concepts>
#include <cstddef>

namespace ztb::exports {

// Codes of results and arguments.
enum Code : int {
  pointer = 1,             // by value; as a result, a pointer
  pointerByReference = 2,  // or an array of pointers
  integer = 3,             // by value; as a result, an integer
  integerOut = 4,
  integers = 8,  // an array without a fixed size
  string = 11,
  stringOut = 12,
  real = 13,  // a double by value
  realOut = 14,
  boolean = 15,  // as a result, the status 1 or 0
  flagOut = 20,
  integerByReference = 21,  // filled, at the end of an operation that has more to say
  keys = 51,
  keysOut = 52,
  values = 53,
  valuesOut = 54,
  strings = 55,
  stringsOut = 56,
  specialValues = 57,
  specialValuesOut = 58,
  function = 59,
};

inline constexpr std::size_t maxArguments = 8;

struct OperationRow {
  const char* name;
  Code result;
  int argCount;
  std::array<Code, maxArguments> arguments;
};

template <std::same_as<Code>... Arguments>
constexpr OperationRow row(const char* name, Code result, Arguments... arguments) {
  return {name, result, static_cast<int>(sizeof...(arguments)), {arguments...}};
}

// In the order in which the check walks them.
inline constexpr std::array operationTable = {
    row("ztbInitFromRXF", boolean, string),
    row("ztbInitFromDict", boolean, pointer),
    row("ztbInitFromHVEX", boolean, function, function, function, function, function, function,
        pointer),
    row("ztbInitFromDB", boolean, pointer),
    row("ztbRegisterPBI", boolean, pointer),
    row("ztbCloseRXF", boolean, boolean),
    row("ztbAddSymbolX", boolean, string, integer, integer, integer, string, pointerByReference,
        strings, pointerByReference),
    row("ztbAddSymbolXPy", pointer, string, integer, integer, integer, string, pointerByReference,
        strings, flagOut),
    row("ztbAddSymbol", boolean, string, integer, integer, integer, string, pointerByReference),
    row("ztbAddSymbolPy", pointer, string, integer, integer, integer, string, flagOut),
    row("ztbFindSymbol", boolean, string, pointerByReference),
    row("ztbFindSymbolPy", pointer, string, flagOut),
    row("ztbFindSymbolWithAlias", boolean, string, pointerByReference),
    row("ztbFindSymbolWithAliasPy", pointer, string, flagOut),
    row("ztbGetSymbolByIndex", boolean, integer, pointerByReference),
    row("ztbGetSymbolByIndexPy", pointer, integer, flagOut),
    row("ztbGetSymbolByNumber", boolean, integer, pointerByReference),
    row("ztbGetSymbolByNumberPy", pointer, integer, flagOut),
    row("ztbClearSymbol", boolean, pointer),
    row("ztbCopySymbol", boolean, pointer, pointer),
    row("ztbFindRecord", boolean, pointer, strings, pointerByReference),
    row("ztbFindRecordPy", pointer, pointer, strings, flagOut),
    row("ztbFindFirstRecord", boolean, pointer, pointerByReference),
    row("ztbFindFirstRecordPy", pointer, pointer, flagOut),
    row("ztbFindFirstRecordSlice", boolean, pointer, strings, pointerByReference),
    row("ztbFindFirstRecordSlicePy", pointer, pointer, strings, flagOut),
    row("ztbFindLastRecord", boolean, pointer, pointerByReference),
    row("ztbFindLastRecordPy", pointer, pointer, flagOut),
    row("ztbFindLastRecordSlice", boolean, pointer, strings, pointerByReference),
    row("ztbFindLastRecordSlicePy", pointer, pointer, strings, flagOut),
    row("ztbRecordMoveNext", boolean, pointer),
    row("ztbRecordHasNext", boolean, pointer),
    row("ztbRecordMovePrev", boolean, pointer),
    row("ztbSameRecord", boolean, pointer, pointer),
    row("ztbRecordHasPrev", boolean, pointer),
    row("ztbGetElemText", boolean, pointer, stringOut),
    row("ztbGetLevel", boolean, pointer, realOut),
    row("ztbGetLower", boolean, pointer, realOut),
    row("ztbGetUpper", boolean, pointer, realOut),
    row("ztbGetMarginal", boolean, pointer, realOut),
    row("ztbGetScale", boolean, pointer, realOut),
    row("ztbSetElemText", boolean, pointer, string),
    row("ztbSetLevel", boolean, pointer, real),
    row("ztbSetLower", boolean, pointer, real),
    row("ztbSetUpper", boolean, pointer, real),
    row("ztbSetMarginal", boolean, pointer, real),
    row("ztbSetScale", boolean, pointer, real),
    row("ztbSetUserInfo", boolean, pointer, integer),
    row("ztbAddRecord", boolean, pointer, strings, pointerByReference),
    row("ztbAddRecordPy", pointer, pointer, strings, flagOut),
    row("ztbMergeRecord", boolean, pointer, strings, pointerByReference),
    row("ztbMergeRecordPy", pointer, pointer, strings, flagOut),
    row("ztbMergeRecordInt", boolean, pointer, keys, boolean, boolean, pointerByReference, boolean,
        values),
    row("ztbMergeRecordIntPy", pointer, pointer, keys, boolean, boolean, boolean, values, flagOut),
    row("ztbMergeSetRecordInt", boolean, pointer, keys, boolean, boolean, pointerByReference,
        string),
    row("ztbMergeSetRecordIntPy", pointer, pointer, keys, boolean, boolean, string, flagOut),
    row("ztbAddRecordRaw", boolean, pointer, keys, values, string),
    row("ztbDeleteRecord", boolean, pointer),
    row("ztbGetRecordRaw", boolean, pointer, integer, keysOut, valuesOut),
    row("ztbGetKeys", boolean, pointer, integer, stringsOut),
    row("ztbGetKey", boolean, pointer, integer, stringOut),
    row("ztbGetDomain", boolean, pointer, integer, pointerByReference, stringsOut),
    row("ztbCopySymbolIterator", boolean, pointer, pointerByReference),
    row("ztbCopySymbolIteratorPy", pointer, pointer, flagOut),
    row("ztbFreeSymbolIterator", boolean, pointer),
    row("ztbMergeUel", boolean, string, integerOut),
    row("ztbGetUelByIndex", boolean, integer, stringOut),
    row("ztbFindUel", boolean, string, integerOut),
    row("ztbGetSymbolsUels", boolean, pointerByReference, integer, integers, integer),
    row("ztbInfo", boolean, integer, integerOut, realOut, stringOut),
    row("ztbSymbolInfo", boolean, pointer, integer, integerOut, realOut, stringOut),
    row("ztbSymbolDim", boolean, pointer, integerOut),
    row("ztbSymbolType", boolean, pointer, integerOut),
    row("ztbWriteRXF", boolean, string, boolean),
    row("ztbSetSpecialValuesX", boolean, specialValues, integerByReference),
    row("ztbSetSpecialValues", boolean, specialValues),
    row("ztbGetSpecialValues", boolean, specialValuesOut),
    row("ztbGetUserSpecialValues", boolean, specialValuesOut),
    row("ztbSetDebug", boolean, integer),
    row("ztbGetLastError", boolean, stringOut),
    row("ztbPrintLog", boolean, string),
    row("ztbStartWriteRecording", boolean),
    row("ztbStopWriteRecording", boolean),
    row("ztbCheckDBDV", boolean, flagOut),
    row("ztbCheckSymbolDV", boolean, pointer, flagOut),
    row("ztbGetFirstDBDV", boolean, pointerByReference),
    row("ztbGetFirstDBDVPy", pointer, flagOut),
    row("ztbGetFirstDVInSymbol", boolean, pointer, pointerByReference),
    row("ztbGetFirstDVInSymbolPy", pointer, pointer, flagOut),
    row("ztbDomainCheckDone", boolean),
    row("ztbGetFirstDVInNextSymbol", boolean, pointer, flagOut),
    row("ztbMoveNextDVInSymbol", boolean, pointer, flagOut),
    row("ztbFreeDVHandle", boolean, pointer),
    row("ztbGetDVSymbol", boolean, pointer, pointerByReference),
    row("ztbGetDVSymbolPy", pointer, pointer, flagOut),
    row("ztbGetDVSymbolRecord", boolean, pointer, pointerByReference),
    row("ztbGetDVSymbolRecordPy", pointer, pointer, flagOut),
    row("ztbGetDVIndicator", boolean, pointer, integers),
    row("ztbInitUpdate", boolean, pointer),
    row("ztbUpdateModelSymbol", boolean, pointer, integer, pointer, integer, integerByReference),
    row("ztbCallSolver", boolean, string),
    row("ztbCallSolverTimed", boolean, string, realOut),
    row("ztbDenseSymbolToDenseArray", boolean, pointer, integers, pointer, integer),
    row("ztbSparseSymbolToDenseArray", boolean, pointer, integers, pointer, pointerByReference,
        integer, integerOut),
    row("ztbSparseSymbolToSqzdArray", boolean, pointer, integers, pointer, pointerByReference,
        pointerByReference, integer, integerOut),
    row("ztbDenseArrayToSymbol", boolean, pointer, pointerByReference, pointer, integers),
    row("ztbDenseArraySlicesToSymbol", boolean, pointer, pointerByReference, pointerByReference,
        pointer, integers),
    row("ztbSelectRecordStorage", integer, pointerByReference, integer),
    row("ztbSelectRecordStoragePy", pointer, pointer, integer, flagOut),
};

}  // namespace ztb::exports

#endif  // ZTB_CORE_EXPORTS_OPERATION_TABLE_H_
