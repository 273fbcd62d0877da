/* Control of the scripted exchange-file peer.
 *
 * The peer is a library of the exchange-file family that keeps its files in memory. It does what a
 * peer must do, writes down every call, and can be told to fail, to raise errors, to lack an
 * operation or to refuse its version. A test opens the library by its path, finds the functions
 * below in it (scripted_rxf_client.h does both), says what shall happen, and then lets the library
 * under test use the same file as its peer.
 *
 * All state is one per process. The functions are not safe from two threads at once. Strings that
 * come out stay valid until the next call of the same function.
 *
 * The peer keeps what it is given: it looks neither at the order of records nor at their labels and
 * domains. A file that is written appears at rxfClose; an object that is freed before leaves none.
 */

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_RXF_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_RXF_H_

#define SCRIPTED_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* ---- What happened. ---- */

/* One line for each call since the last clearing, each ended by a newline: the number of the
 * object, counted from 1 in order of creation, a blank, the operation, and its arguments that go
 * in, each after a blank. Strings stand in double quotes, keys and values in brackets, an array of
 * names in parentheses. For example
 *
 *   1 XCreate
 *   1 rxfOpenRead "diet.rxf"
 *   2 rxfDataWriteRawStart "cost" "cost of a food" 1 1 0
 *   2 rxfDataWriteRaw [4] [0.25]
 *   2 rxfSymbolSetDomain ("foods" "*")
 *   SetLoadPath "/opt/peers"
 *
 * Calls of the check and of the version entry point aren't written down. */
SCRIPTED_EXPORT const char* scriptedLog(void);
SCRIPTED_EXPORT void scriptedClearLog(void);
/* Objects created and not yet freed. */
SCRIPTED_EXPORT int scriptedObjects(void);

/* ---- What shall happen. ---- */

/* Back to the beginning: no log, no plans, no files. The objects live on, and their numbers too as
 * long as there is one. */
SCRIPTED_EXPORT void scriptedReset(void);

/* After `afterCalls` further calls of `operation` on any object, one call fails: it does nothing
 * but give `result`. For rxfOpenRead and rxfOpenWrite `result` is the error number that goes out. A
 * negative `result` of rxfDataReadRawStart and rxfDataReadRaw goes out as record count and as first
 * changed index, too. Plans add up; each is used once. */
SCRIPTED_EXPORT void scriptedFail(const char* operation, int afterCalls, int result);

/* Every further call of `operation` fails so. */
SCRIPTED_EXPORT void scriptedFailAlways(const char* operation, int result);

/* After `afterCalls` further calls of `operation`, one call counts an error with this number and
 * puts it into the queue of its object, whatever else the call does. */
SCRIPTED_EXPORT void scriptedRaise(const char* operation, int afterCalls, int errorNumber);

/* The text of an error number. It is "Scripted error N" otherwise. */
SCRIPTED_EXPORT void scriptedErrorText(int errorNumber, const char* text);

/* The check entry point says no to `operation`, with this reason. Only of use before the library
 * under test makes the family ready. */
SCRIPTED_EXPORT void scriptedLack(const char* operation, const char* reason);

/* The version entry point refuses with this reason, or accepts again if it is null. */
SCRIPTED_EXPORT void scriptedRefuseVersion(const char* reason);

/* ---- What the files hold. ---- */

/* Begins a file of this name in place of any file of that name. The functions behind this one add
 * to the file begun last. */
SCRIPTED_EXPORT void scriptedFile(const char* fileName);
/* Each gives the number of what it added, counted from 1. */
SCRIPTED_EXPORT int scriptedAddText(const char* text);
SCRIPTED_EXPORT int scriptedAddLabel(const char* label);
SCRIPTED_EXPORT int scriptedAddSymbol(const char* name, int dim, int type, int userInfo,
                                      const char* text);
/* Adds a record to the symbol added last: `dim` label numbers, and 1 value, or 5 for a variable or
 * an equation. Special values are given in the coding of the file. */
SCRIPTED_EXPORT void scriptedAddRecord(const int* keys, const double* values);
/* Gives the symbol added last `dim` domain names. */
SCRIPTED_EXPORT void scriptedSetDomain(const char** names);

/* How a file codes special value `index`, 0 to 4. rxfGetSpecialValues gives the same. */
SCRIPTED_EXPORT double scriptedSpecialValue(int index);

/* Entry `index`, 0 to 15, of the table that rxfSetSpecialValues or rxfSetReadSpecialValues was
 * given last. Behind the five, rxfGetSpecialValues gives 1000 + index. */
SCRIPTED_EXPORT double scriptedTableEntry(int index);

/* The file in lines, or null if there is none. First a line for every text and every label, then
 * for each symbol a line `symbol NUMBER "NAME" DIM TYPE USERINFO "TEXT"`, a line `domain ("A" "B")`
 * or `relaxed ("A" "B")`, by the way in which the domain was set, if it has one, and a line `record
 * [KEYS] [VALUES]` for each record. Values are in the coding of the file. */
SCRIPTED_EXPORT const char* scriptedDump(const char* fileName);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_TESTS_SUPPORT_SCRIPTED_RXF_SCRIPTED_RXF_H_ */
