// The exchange-file family: its operations, and how an object of it is made and freed.

#ifndef ZTB_PEERS_RXF_FAMILY_H_
#define ZTB_PEERS_RXF_FAMILY_H_

#include "peers/peer_family.h"
#include "peers/slot.h"

namespace ztb::peers {

extern PeerFamily rxfFamily;

// Makes the family ready from the default search path (rxfCreate) or from `directory` (rxfCreateD)
// and creates an object. True on success; otherwise the reason stands in `msg`, a buffer of
// `msgSize` chars. A family that is ready already ignores the directory.
bool rxfCreate(void** handleOut, char* msg, int msgSize);
bool rxfCreateD(void** handleOut, const char* directory, char* msg, int msgSize);

// Frees the object. Always 1.
int rxfFree(void** handleRef);

// Files and errors.
inline const Slot<"rxfOpenRead", int(const char* fileName, int* errorNumber)> rxfOpenRead{
    rxfFamily, {3, 11, 4}};
inline const Slot<"rxfOpenWrite", int(const char* fileName, const char* producer, int* errorNumber)>
    rxfOpenWrite{rxfFamily, {3, 11, 11, 4}};
inline const Slot<"rxfClose", int()> rxfClose{rxfFamily, {3}};
inline const Slot<"rxfErrorStr", int(int errorNumber, char* text)> rxfErrorStr{rxfFamily,
                                                                               {3, 3, 12}};
inline const Slot<"rxfErrorCount", int()> rxfErrorCount{rxfFamily, {3}};
inline const Slot<"rxfGetLastError", int()> rxfGetLastError{rxfFamily, {3}};

// Special values. The array that goes out holds at most 16 doubles.
inline const Slot<"rxfGetSpecialValues", int(double* values)> rxfGetSpecialValues{rxfFamily,
                                                                                  {3, 58}};
inline const Slot<"rxfSetSpecialValues", int(const double* values)> rxfSetSpecialValues{rxfFamily,
                                                                                        {15, 57}};
inline const Slot<"rxfSetReadSpecialValues", int(const double* values)> rxfSetReadSpecialValues{
    rxfFamily, {15, 57}};

// Reading.
inline const Slot<"rxfSystemInfo", int(int* symbolCount, int* labelCount)> rxfSystemInfo{rxfFamily,
                                                                                         {3, 4, 4}};
inline const Slot<"rxfSymbolInfo", int(int number, char* name, int* dim, int* type)> rxfSymbolInfo{
    rxfFamily, {3, 3, 12, 4, 4}};
inline const Slot<"rxfSymbolInfoX", int(int number, int* recordCount, int* userInfo, char* text)>
    rxfSymbolInfoX{rxfFamily, {3, 3, 4, 4, 12}};
inline const Slot<"rxfSymbolGetDomainX", int(int number, char** names)> rxfSymbolGetDomainX{
    rxfFamily, {3, 3, 56}};
inline const Slot<"rxfFindSymbol", int(const char* name, int* number)> rxfFindSymbol{rxfFamily,
                                                                                     {3, 11, 4}};
inline const Slot<"rxfGetElemText", int(int number, char* text, int* node)> rxfGetElemText{
    rxfFamily, {15, 3, 12, 4}};
inline const Slot<"rxfUMUelInfo", int(int* labelCount, int* highMap)> rxfUMUelInfo{rxfFamily,
                                                                                   {3, 4, 4}};
inline const Slot<"rxfUMUelGet", int(int number, char* label, int* map)> rxfUMUelGet{rxfFamily,
                                                                                     {3, 3, 12, 4}};
inline const Slot<"rxfDataReadRawStart", int(int symbolNumber, int* recordCount)>
    rxfDataReadRawStart{rxfFamily, {3, 3, 4}};
inline const Slot<"rxfDataReadRaw", int(int* keys, double* values, int* firstChanged)>
    rxfDataReadRaw{rxfFamily, {3, 52, 54, 4}};
inline const Slot<"rxfDataReadDone", int()> rxfDataReadDone{rxfFamily, {3}};

// Writing.
inline const Slot<"rxfStoreDomainSetsSet", void(int on)> rxfStoreDomainSetsSet{rxfFamily, {0, 15}};
inline const Slot<"rxfUELRegisterRawStart", int()> rxfUELRegisterRawStart{rxfFamily, {3}};
inline const Slot<"rxfUELRegisterRaw", int(const char* label)> rxfUELRegisterRaw{rxfFamily,
                                                                                 {3, 11}};
inline const Slot<"rxfUELRegisterDone", int()> rxfUELRegisterDone{rxfFamily, {3}};
inline const Slot<"rxfAddAlias", int(const char* aliasName, const char* targetName)> rxfAddAlias{
    rxfFamily, {15, 11, 11}};
inline const Slot<"rxfAddSetText", int(const char* text, int* number)> rxfAddSetText{rxfFamily,
                                                                                     {3, 11, 4}};
inline const Slot<"rxfDataWriteRawStart",
                  int(const char* name, const char* text, int dim, int type, int userInfo)>
    rxfDataWriteRawStart{rxfFamily, {15, 11, 11, 3, 3, 3}};
inline const Slot<"rxfDataWriteRaw", int(const int* keys, const double* values)> rxfDataWriteRaw{
    rxfFamily, {3, 51, 53}};
inline const Slot<"rxfDataWriteDone", int()> rxfDataWriteDone{rxfFamily, {3}};
inline const Slot<"rxfSymbolSetDomain", int(const char** names)> rxfSymbolSetDomain{rxfFamily,
                                                                                    {15, 55}};
inline const Slot<"rxfSymbolSetDomainX", int(int number, const char** names)> rxfSymbolSetDomainX{
    rxfFamily, {3, 3, 55}};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_RXF_FAMILY_H_
