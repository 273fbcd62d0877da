/* The contract between libztbcclib64.so and its peers, usable from C99 and C++: what a shared
 * library has to hold so that databases take their exchange files, models or solvers from it.
 *
 * A peer is a shared library with plain C functions, opened when a database first needs it. There
 * are five families of operations:
 *
 *   RXF  exchange files      librxfcclib64.so    files of symbols with labels, texts and records
 *   PBI  model instance      liblomudclib64.so   columns and rows of a model, its solution
 *   SNV  solver environment  liblomudclib64.so   options, log, a solve from nothing
 *   RGY  solver catalogue    liblomudclib64.so   live solvers, by name
 *   NMT  name dictionary     libnmtmdclib64.so   symbol and labels behind a row or a column
 *
 * What this file holds
 *   tables       ZTB_PEER_RXF_OPERATIONS(ROW) and its like expand ROW(result, name, symbol,
 *                parameters, codes) for each operation: the one place where these things stand.
 *                The slots through which the library calls and the tables of its own peers are
 *                made from them.
 *   prototypes   of every function, made from the tables: a definition that differs does not
 *                compile. They also make it visible outside the library that defines it. A file
 *                that wants the tables alone defines ZTB_PEER_NO_PROTOTYPES before it includes
 *                this one.
 *   helpers      ztbPeerCheck and ztbPeerVersion answer the two questions of the next paragraph in
 *                one line each.
 *
 * Every family has five entry points (RGY four), declared below under their names:
 *
 *   create       makes an object and stores it through `object`, null when it cannot. `object` may
 *                itself be null: nothing is made then. Called for RXF and RGY only.
 *   createD      the same with the directory in which the peer was found; looked up, not called.
 *   release      (XFree and its like) ends an object and stores null.
 *   check        whether an operation is offered with this signature: 1 yes, 0 no with the reason
 *                in `msg`. `codes` holds the code of the result and those of `argCount` arguments
 *                behind the object handle. Asked for every operation of the family before it is
 *                bound, so the answer has to be honest: after a yes the function must be there and
 *                be of this type. A no is no failure; only a call of the operation is one, which
 *                prints the reason and ends the process with exit code 123.
 *   version      whether the peer speaks version `api` of the family: 0 refuses, with the reason
 *                in `msg`; *compatibility receives the peer's own version.
 *
 * `msg` is never null here and has room for ZTB_PEER_TEXT_SIZE bytes, as every text going out has
 * whose size is not passed along.
 *
 * Conventions
 *   The first argument of every operation is the object. It has no code. Functions have the
 *   platform's ordinary C calling convention, int has 32 bits, and no exception leaves a peer.
 *   Where the library does not look at a result, the contract says so ("ignored"): a failure that
 *   shows nowhere else then goes unnoticed, so an honest peer reports it where the contract tells.
 *   Objects are used by one thread at a time. Two objects may be used from two threads, and the
 *   check and version entry points may be called from any: what a peer keeps beside its objects it
 *   guards itself.
 *   Libraries are opened once and never closed.
 *
 * docs/reference/peers.md tells how libraries are found and which messages there are.
 */
#ifndef ZTB_PEER_H_
#define ZTB_PEER_H_

#include <stdio.h>
#include <string.h>

enum {
  ZTB_PEER_TEXT_SIZE = 256, /* bytes of a text going out, its final zero included */
  ZTB_PEER_MOST_CODES = 15, /* codes of the longest signature, the result's included */
  ZTB_PEER_DIMENSIONS = 20, /* most index positions of a key, and most names of an array of them */
  ZTB_PEER_SPECIAL_VALUES = 16, /* most entries of a table of special values */

  /* Versions of the families that this file describes. */
  ZTB_PEER_RXF_VERSION = 9,
  ZTB_PEER_PBI_VERSION = 26,
  ZTB_PEER_SNV_VERSION = 7,
  ZTB_PEER_RGY_VERSION = 4,
  ZTB_PEER_NMT_VERSION = 2
};

/* Codes of a signature. Those from 51 on say more closely what an array holds. */
enum ztbPeerCode {
  ZTB_PEER_NO_RESULT = 0,
  ZTB_PEER_POINTER = 1,              /* void* */
  ZTB_PEER_POINTER_BY_REFERENCE = 2, /* void** */
  ZTB_PEER_INT = 3,
  ZTB_PEER_INT_OUT = 4,          /* int* */
  ZTB_PEER_DOUBLE_ARRAY_OUT = 6, /* double* */
  ZTB_PEER_STRING_IN = 11,       /* const char* */
  ZTB_PEER_STRING_OUT = 12,      /* char*, ZTB_PEER_TEXT_SIZE bytes */
  ZTB_PEER_DOUBLE = 13,
  ZTB_PEER_DOUBLE_OUT = 14,        /* double* */
  ZTB_PEER_BOOL = 15,              /* int, 0 or not */
  ZTB_PEER_BUFFER_OUT = 17,        /* char*, its size in the next argument */
  ZTB_PEER_CHAR_OUT = 19,          /* char*, one character */
  ZTB_PEER_INT_BY_REFERENCE = 21,  /* int* */
  ZTB_PEER_KEYS_IN = 51,           /* const int*, a label number for each position */
  ZTB_PEER_KEYS_OUT = 52,          /* int* */
  ZTB_PEER_VALUES_IN = 53,         /* const double*, one value, or five of a variable or equation */
  ZTB_PEER_VALUES_OUT = 54,        /* double* */
  ZTB_PEER_STRINGS_IN = 55,        /* const char**, a string for each position */
  ZTB_PEER_STRINGS_OUT = 56,       /* char**, the same, ZTB_PEER_TEXT_SIZE bytes each */
  ZTB_PEER_SPECIAL_VALUES_IN = 57, /* const double* */
  ZTB_PEER_SPECIAL_VALUES_OUT = 58 /* double* */
};

/* The contents of a list in parentheses, such as the codes of a row. */
#define ZTB_PEER_LIST(...) __VA_ARGS__

/* clang-format off */

/* ---- RXF, exchange files -----------------------------------------------------------------------
 *
 * An object reads one file or writes one. Symbols, labels and texts are numbered from 1; symbol 0
 * is the universe of labels, "*". Types: 0 set, 1 parameter, 2 variable, 3 equation, 4 alias. The
 * value of a set's record is the number of its text, 0 for none.
 *
 * Files and errors
 *   rxfOpenRead, rxfOpenWrite   ignored; *errorNumber is 0 for success. The file that is written
 *                       takes the name of the old one at rxfClose, and only if nothing was refused;
 *                       an object that is freed before leaves the old file.
 *   rxfClose            ignored. Also called on an object that has no file open.
 *   rxfErrorStr         ignored; the text of an error number, what was wrong and where.
 *   rxfErrorCount       errors so far, each record, text or label that was refused among them.
 *   rxfGetLastError     gives one pending error number and removes it, the latest first; 0 when
 *                       there is none.
 * Special values
 *   rxfGetSpecialValues   ignored; the table of values by which undefined, not available, plus
 *                       infinity, minus infinity and epsilon are told, in this order, and further
 *                       ones of the peer's own.
 *   rxfSetSpecialValues, rxfSetReadSpecialValues   0 for failure; the values by which the caller
 *                       tells them from now on, in records that come in and that go out.
 * Reading
 *   rxfSystemInfo       ignored; numbers of symbols and labels.
 *   rxfSymbolInfo       ignored; name, dimension, type.
 *   rxfSymbolInfoX      ignored; number of records, user information, text. The user information
 *                       of an alias is the number of the symbol that it stands for, which comes
 *                       before it; that of an equation is its subtype plus 53.
 *   rxfSymbolGetDomainX   0 if the symbol has no domain; else a name for each position, "*" for
 *                       the universe. A name need not be that of a symbol.
 *   rxfFindSymbol       ignored; *number is the symbol's number.
 *   rxfGetElemText      text `number` of the file; 0 behind the last. *node is not used.
 *   rxfUMUelInfo        ignored; number of labels. *highMap is not used.
 *   rxfUMUelGet         ignored; label `number` of the file. *map is not used.
 *   rxfDataReadRawStart   ignored; begins to read a symbol. *recordCount is how many records
 *                       follow, whatever rxfSymbolInfoX said: all of them or none. A symbol that
 *                       cannot be read whole (damage, no memory, another read under way) is told
 *                       by -1, never by fewer records.
 *   rxfDataReadRaw      ignored; the next record, in ascending order of the label numbers, first
 *                       position foremost, no key twice. *firstChanged is the first position, from
 *                       1, at which the key differs from the one before, one past the last for a
 *                       scalar; -1 says that the symbol cannot be read after all (the file changed,
 *                       a read failed): there is no record, and none will follow.
 *                       For either -1 an error is pending, and rxfGetLastError and rxfErrorStr give
 *                       the reason. No honest answer is below 0.
 *   rxfDataReadDone     ignored; ends reading, also before the last record and after a -1.
 *   C__rxfDataReadBlockStart, C__rxfDataReadBlock   may be missing, and are no rows of the table:
 *                       what a peer offers that can give many records in one call. Found by their
 *                       symbols alone, and used in place of rxfDataReadRawStart and rxfDataReadRaw
 *                       when both are there. The first says how many records follow, as
 *                       rxfDataReadRawStart does, but need not have looked at them. The second
 *                       gives the next ones, `room` at most: the keys of a record behind those of
 *                       the one before, and its values (one, or five of a variable or equation)
 *                       likewise. It returns how many, 0 behind the last, or -1 when the symbol
 *                       cannot be read after all; the reason is pending then, and what was given
 *                       counts for nothing.
 * Writing, in this order: labels, then symbols with their records, then texts
 *   rxfStoreDomainSetsSet    off before anything is written: the caller writes domain sets itself.
 *   rxfUELRegisterRawStart, rxfUELRegisterRaw, rxfUELRegisterDone   ignored; the next label gets
 *                       the next number, from 1.
 *   rxfAddAlias         0 for failure; the target is a symbol that was written, or "*".
 *   rxfAddSetText       ignored; *number is the text's number: the next one, from 1.
 *   rxfDataWriteRawStart     0 for failure; begins a symbol, which gets the next number.
 *   rxfSymbolSetDomain  0 for failure; the domain of the symbol that is being written, before its
 *                       records: each name a one-dimensional set or alias that was written, or "*".
 *                       Records with labels outside are refused and counted from now on.
 *   rxfDataWriteRaw     ignored; a record. What is refused counts as an error: a key not above the
 *                       one before, a label number that does not exist, a label outside the domain.
 *   rxfDataWriteDone    ignored; ends the symbol.
 *   rxfSymbolSetDomainX ignored; names recorded as domain of a symbol, without a check of records.
 */
#define ZTB_PEER_RXF_OPERATIONS(ROW) \
  ROW(int, rxfOpenRead, C__rxfOpenRead, \
      (void* rxf, const char* fileName, int* errorNumber), (3, 11, 4)) \
  ROW(int, rxfOpenWrite, C__rxfOpenWrite, \
      (void* rxf, const char* fileName, const char* producer, int* errorNumber), (3, 11, 11, 4)) \
  ROW(int, rxfClose, C__rxfClose, (void* rxf), (3)) \
  ROW(int, rxfErrorStr, C__rxfErrorStr, (void* rxf, int errorNumber, char* text), (3, 3, 12)) \
  ROW(int, rxfErrorCount, C__rxfErrorCount, (void* rxf), (3)) \
  ROW(int, rxfGetLastError, C__rxfGetLastError, (void* rxf), (3)) \
  ROW(int, rxfGetSpecialValues, C__rxfGetSpecialValues, (void* rxf, double* values), (3, 58)) \
  ROW(int, rxfSetSpecialValues, C__rxfSetSpecialValues, \
      (void* rxf, const double* values), (15, 57)) \
  ROW(int, rxfSetReadSpecialValues, C__rxfSetReadSpecialValues, \
      (void* rxf, const double* values), (15, 57)) \
  ROW(int, rxfSystemInfo, C__rxfSystemInfo, \
      (void* rxf, int* symbolCount, int* labelCount), (3, 4, 4)) \
  ROW(int, rxfSymbolInfo, C__rxfSymbolInfo, \
      (void* rxf, int number, char* name, int* dim, int* type), (3, 3, 12, 4, 4)) \
  ROW(int, rxfSymbolInfoX, C__rxfSymbolInfoX, \
      (void* rxf, int number, int* recordCount, int* userInfo, char* text), (3, 3, 4, 4, 12)) \
  ROW(int, rxfSymbolGetDomainX, C__rxfSymbolGetDomainX, \
      (void* rxf, int number, char** names), (3, 3, 56)) \
  ROW(int, rxfFindSymbol, C__rxfFindSymbol, \
      (void* rxf, const char* name, int* number), (3, 11, 4)) \
  ROW(int, rxfGetElemText, C__rxfGetElemText, \
      (void* rxf, int number, char* text, int* node), (15, 3, 12, 4)) \
  ROW(int, rxfUMUelInfo, C__rxfUMUelInfo, (void* rxf, int* labelCount, int* highMap), (3, 4, 4)) \
  ROW(int, rxfUMUelGet, C__rxfUMUelGet, \
      (void* rxf, int number, char* label, int* map), (3, 3, 12, 4)) \
  ROW(int, rxfDataReadRawStart, C__rxfDataReadRawStart, \
      (void* rxf, int symbolNumber, int* recordCount), (3, 3, 4)) \
  ROW(int, rxfDataReadRaw, C__rxfDataReadRaw, \
      (void* rxf, int* keys, double* values, int* firstChanged), (3, 52, 54, 4)) \
  ROW(int, rxfDataReadDone, C__rxfDataReadDone, (void* rxf), (3)) \
  ROW(void, rxfStoreDomainSetsSet, C__rxfStoreDomainSetsSet, (void* rxf, int on), (0, 15)) \
  ROW(int, rxfUELRegisterRawStart, C__rxfUELRegisterRawStart, (void* rxf), (3)) \
  ROW(int, rxfUELRegisterRaw, C__rxfUELRegisterRaw, (void* rxf, const char* label), (3, 11)) \
  ROW(int, rxfUELRegisterDone, C__rxfUELRegisterDone, (void* rxf), (3)) \
  ROW(int, rxfAddAlias, C__rxfAddAlias, \
      (void* rxf, const char* aliasName, const char* targetName), (15, 11, 11)) \
  ROW(int, rxfAddSetText, C__rxfAddSetText, \
      (void* rxf, const char* text, int* number), (3, 11, 4)) \
  ROW(int, rxfDataWriteRawStart, C__rxfDataWriteRawStart, \
      (void* rxf, const char* name, const char* text, int dim, int type, int userInfo), \
      (15, 11, 11, 3, 3, 3)) \
  ROW(int, rxfDataWriteRaw, C__rxfDataWriteRaw, \
      (void* rxf, const int* keys, const double* values), (3, 51, 53)) \
  ROW(int, rxfDataWriteDone, C__rxfDataWriteDone, (void* rxf), (3)) \
  ROW(int, rxfSymbolSetDomain, C__rxfSymbolSetDomain, (void* rxf, const char** names), (15, 55)) \
  ROW(int, rxfSymbolSetDomainX, C__rxfSymbolSetDomainX, \
      (void* rxf, int number, const char** names), (3, 3, 55))

/* ---- PBI, model instance -----------------------------------------------------------------------
 *
 * The object is the caller's model; the library makes none. Rows and columns `rc` are numbered from
 * 0. Results of the getters that fill arrays and records are ignored.
 *
 * What belongs to the model
 *   pbiDict, pbiEnvironment   objects of NMT and SNV, the model's own; a null dictionary says that
 *                       this is no model to work on.
 *   pbiPinfSet, pbiMinfSet    values by which the caller tells plus and minus infinity from now on.
 *   pbiN, pbiM, pbiModelType  numbers of columns and rows; types 1, 2 and 3 count as linear.
 * All columns or rows: pbiGetVarL, pbiGetVarM, pbiGetEquL, pbiGetEquM fill pbiN or pbiM levels or
 * marginals.
 * One column or row: level, bounds, scale, status, second status, type, right-hand side. With
 * pbiAltBoundsSet(1) pbiGetVarLowerOne and pbiGetVarUpperOne give the alternative bounds, and a
 * solver sees them; the model's own are as they were. pbiAltRHSSet does the same for right-hand
 * sides.
 * Solution: pbiGetSolutionVarRec, pbiSetSolutionVarRec, pbiGetSolutionEquRec, pbiSetSolutionEquRec
 * pass one record, level, marginal and both statuses.
 * Switches: pbiForceLinearSet(1) makes the model answer as a linear one; pbiModelStatSet and
 * pbiSolveStatSet set what a solve left.
 *   pbiEvalGradNLUpdate   with doUpdate: fills an amount for each row, which the caller takes off
 *                       the right-hand sides of a linear model.
 *   pbiViewStore        saves the model's present view; pbiViewRestore goes back to it and stores
 *                       null: a view is used once.
 */
#define ZTB_PEER_PBI_OPERATIONS(ROW) \
  ROW(void*, pbiDict, pbiDict, (void* pbi), (1)) \
  ROW(void*, pbiEnvironment, pbiEnvironment, (void* pbi), (1)) \
  ROW(void, pbiPinfSet, pbiPinfSet, (void* pbi, double value), (0, 13)) \
  ROW(void, pbiMinfSet, pbiMinfSet, (void* pbi, double value), (0, 13)) \
  ROW(int, pbiN, pbiN, (void* pbi), (3)) \
  ROW(int, pbiM, pbiM, (void* pbi), (3)) \
  ROW(int, pbiModelType, pbiModelType, (void* pbi), (3)) \
  ROW(int, pbiGetVarL, pbiGetVarL, (void* pbi, double* values), (3, 6)) \
  ROW(int, pbiGetVarM, pbiGetVarM, (void* pbi, double* values), (3, 6)) \
  ROW(int, pbiGetEquL, pbiGetEquL, (void* pbi, double* values), (3, 6)) \
  ROW(int, pbiGetEquM, pbiGetEquM, (void* pbi, double* values), (3, 6)) \
  ROW(double, pbiGetVarLOne, pbiGetVarLOne, (void* pbi, int rc), (13, 3)) \
  ROW(void, pbiSetVarLOne, pbiSetVarLOne, (void* pbi, int rc, double value), (0, 3, 13)) \
  ROW(double, pbiGetVarLowerOne, pbiGetVarLowerOne, (void* pbi, int rc), (13, 3)) \
  ROW(double, pbiGetVarUpperOne, pbiGetVarUpperOne, (void* pbi, int rc), (13, 3)) \
  ROW(double, pbiGetVarScaleOne, pbiGetVarScaleOne, (void* pbi, int rc), (13, 3)) \
  ROW(int, pbiGetVarStatOne, pbiGetVarStatOne, (void* pbi, int rc), (3, 3)) \
  ROW(int, pbiGetVarCStatOne, pbiGetVarCStatOne, (void* pbi, int rc), (3, 3)) \
  ROW(void, pbiSetAltVarLowerOne, pbiSetAltVarLowerOne, \
      (void* pbi, int rc, double value), (0, 3, 13)) \
  ROW(void, pbiSetAltVarUpperOne, pbiSetAltVarUpperOne, \
      (void* pbi, int rc, double value), (0, 3, 13)) \
  ROW(double, pbiGetEquLOne, pbiGetEquLOne, (void* pbi, int rc), (13, 3)) \
  ROW(void, pbiSetEquLOne, pbiSetEquLOne, (void* pbi, int rc, double value), (0, 3, 13)) \
  ROW(int, pbiGetEquStatOne, pbiGetEquStatOne, (void* pbi, int rc), (3, 3)) \
  ROW(int, pbiGetEquCStatOne, pbiGetEquCStatOne, (void* pbi, int rc), (3, 3)) \
  ROW(double, pbiGetEquScaleOne, pbiGetEquScaleOne, (void* pbi, int rc), (13, 3)) \
  ROW(int, pbiGetEquTypeOne, pbiGetEquTypeOne, (void* pbi, int rc), (3, 3)) \
  ROW(double, pbiGetRhsOne, pbiGetRhsOne, (void* pbi, int rc), (13, 3)) \
  ROW(void, pbiSetAltRHSOne, pbiSetAltRHSOne, (void* pbi, int rc, double value), (0, 3, 13)) \
  ROW(int, pbiGetSolutionVarRec, pbiGetSolutionVarRec, \
      (void* pbi, int rc, double* level, double* marginal, int* status, int* status2), \
      (3, 3, 14, 14, 4, 4)) \
  ROW(int, pbiSetSolutionVarRec, pbiSetSolutionVarRec, \
      (void* pbi, int rc, double level, double marginal, int status, int status2), \
      (3, 3, 13, 13, 3, 3)) \
  ROW(int, pbiGetSolutionEquRec, pbiGetSolutionEquRec, \
      (void* pbi, int rc, double* level, double* marginal, int* status, int* status2), \
      (3, 3, 14, 14, 4, 4)) \
  ROW(int, pbiSetSolutionEquRec, pbiSetSolutionEquRec, \
      (void* pbi, int rc, double level, double marginal, int status, int status2), \
      (3, 3, 13, 13, 3, 3)) \
  ROW(void, pbiAltBoundsSet, pbiAltBoundsSet, (void* pbi, int on), (0, 15)) \
  ROW(void, pbiAltRHSSet, pbiAltRHSSet, (void* pbi, int on), (0, 15)) \
  ROW(void, pbiForceLinearSet, pbiForceLinearSet, (void* pbi, int on), (0, 15)) \
  ROW(void, pbiModelStatSet, pbiModelStatSet, (void* pbi, int status), (0, 3)) \
  ROW(void, pbiSolveStatSet, pbiSolveStatSet, (void* pbi, int status), (0, 3)) \
  ROW(int, pbiEvalGradNLUpdate, pbiEvalGradNLUpdate, \
      (void* pbi, double* deltaRhs, int doUpdate, int* errorCount), (3, 6, 15, 21)) \
  ROW(void*, pbiViewStore, pbiViewStore, (void* pbi), (1)) \
  ROW(void, pbiViewRestore, pbiViewRestore, (void* pbi, void** view), (0, 2))

/* ---- SNV, solver environment -------------------------------------------------------------------
 *
 *   snvGetStrOpt        the value of an option, in `buffer`, which is also the result. "NameSysDir"
 *                       is the folder of the solver catalogue, with a separator at its end.
 *   snvLog              a line for the solver's log.
 *   snvTerminateClear   forgets a request to stop, before a solve.
 *   snvCallSolver       0 for success: solves the model from nothing with the solver of this name
 *                       and leaves the solution in it; else the reason stands in `msg`.
 */
#define ZTB_PEER_SNV_OPERATIONS(ROW) \
  ROW(char*, snvGetStrOpt, CsnvGetStrOpt, \
      (void* snv, const char* key, char* buffer), (12, 11, 12)) \
  ROW(void, snvLog, CsnvLog, (void* snv, const char* text), (0, 11)) \
  ROW(void, snvTerminateClear, snvTerminateClear, (void* snv), (0)) \
  ROW(int, snvCallSolver, CsnvCallSolver, \
      (void* snv, void* pbi, const char* text2, const char* solverName, int number4, int number5, \
       const char* text6, const char* text7, double number8, int number9, int number10, \
       double number11, double number12, void** handle13, char* msg), \
      (3, 1, 11, 11, 3, 3, 11, 11, 13, 3, 3, 13, 13, 2, 12))

/* ---- RGY, solver catalogue ---------------------------------------------------------------------
 *
 * Solvers are numbered from 1. A live solver `alg` keeps its work from one solve to the next.
 *
 *   rgyReadConfigVUC    0 for success: reads the catalogue in this file.
 *   rgyAlgNumber        the number of a solver, 0 or less for a name that is not in the catalogue.
 *   rgyAlgAllowsModifyProblem   whether the solver can take a changed model in place.
 *   rgyAlgCreate        1 for success: makes a live solver; else the reason stands in `msg`.
 *   rgyAlgReadyAPI      0 for success: hands the model to a new live solver. Called once.
 *   rgyAlgModifyProblem 0 for success: the live solver takes over the present state of its model.
 *                       After anything else it is given up, and another one made.
 *   rgyAlgCallSolver    0 for success: solves and leaves the solution in the model.
 *   rgyAlgFree          ends a live solver and stores null.
 */
#define ZTB_PEER_RGY_OPERATIONS(ROW) \
  ROW(int, rgyReadConfigVUC, CrgyReadConfigVUC, \
      (void* rgy, const char* fileName, const char* systemDirectory), (3, 11, 11)) \
  ROW(int, rgyAlgNumber, CrgyAlgNumber, (void* rgy, const char* solverName), (3, 11)) \
  ROW(int, rgyAlgAllowsModifyProblem, rgyAlgAllowsModifyProblem, (void* rgy, int solver), (15, 3)) \
  ROW(int, rgyAlgCreate, CrgyAlgCreate, \
      (void* rgy, int solver, void** alg, const char* systemDirectory, char* msg), \
      (15, 3, 2, 11, 12)) \
  ROW(int, rgyAlgReadyAPI, rgyAlgReadyAPI, \
      (void* rgy, int solver, void* alg, void* pbi), (3, 3, 1, 1)) \
  ROW(int, rgyAlgModifyProblem, rgyAlgModifyProblem, \
      (void* rgy, int solver, void* alg), (3, 3, 1)) \
  ROW(int, rgyAlgCallSolver, rgyAlgCallSolver, \
      (void* rgy, int solver, void* alg, void* pbi), (3, 3, 1, 1)) \
  ROW(void, rgyAlgFree, rgyAlgFree, (void* rgy, int solver, void** alg), (0, 3, 2))

/* ---- NMT, name dictionary ----------------------------------------------------------------------
 *
 * The object is the model's. Labels and symbols `i` are numbered from 1, rows and columns `rc` from
 * 0; keys are label numbers. *quote receives the quote that a label or text needs, or a blank.
 *
 *   nmtNUels, nmtUelLabel       labels of the model.
 *   nmtNLSyms, nmtSymName, nmtSymType, nmtSymDim, nmtSymText, nmtSymUserInfo   its symbols: type 5
 *                       is a variable, 6 an equation, another number neither.
 *   nmtSymIndex         the number of a symbol, 0 or less if there is none of this name.
 *   nmtFindFirstRowCol  a walk over the symbol's rows or columns that match the keys, where 0
 *                       matches all; *rc is the first, negative when there is none.
 *   nmtFindNextRowCol   ignored; *rc is the next one, negative behind the last.
 *   nmtFindClose        ends the walk; called whatever the walk gave.
 *   nmtRowUels, nmtColUels      ignored; symbol, keys and dimension of a row or column.
 */
#define ZTB_PEER_NMT_OPERATIONS(ROW) \
  ROW(int, nmtNUels, nmtNUels, (void* nmt), (3)) \
  ROW(int, nmtUelLabel, CnmtUelLabel, \
      (void* nmt, int i, char* quote, char* buffer, int bufferSize), (3, 3, 19, 17, 3)) \
  ROW(int, nmtNLSyms, nmtNLSyms, (void* nmt), (3)) \
  ROW(int, nmtSymName, CnmtSymName, (void* nmt, int i, char* buffer, int bufferSize), \
      (3, 3, 17, 3)) \
  ROW(int, nmtSymType, nmtSymType, (void* nmt, int i), (3, 3)) \
  ROW(int, nmtSymDim, nmtSymDim, (void* nmt, int i), (3, 3)) \
  ROW(int, nmtSymText, CnmtSymText, \
      (void* nmt, int i, char* quote, char* buffer, int bufferSize), (3, 3, 19, 17, 3)) \
  ROW(int, nmtSymUserInfo, nmtSymUserInfo, (void* nmt, int i), (3, 3)) \
  ROW(int, nmtSymIndex, CnmtSymIndex, (void* nmt, const char* name), (3, 11)) \
  ROW(void*, nmtFindFirstRowCol, nmtFindFirstRowCol, \
      (void* nmt, int i, const int* keys, int* rc), (1, 3, 51, 4)) \
  ROW(int, nmtFindNextRowCol, nmtFindNextRowCol, (void* nmt, void* search, int* rc), (3, 1, 4)) \
  ROW(void, nmtFindClose, nmtFindClose, (void* nmt, void* search), (0, 1)) \
  ROW(int, nmtRowUels, nmtRowUels, \
      (void* nmt, int rc, int* symbol, int* keys, int* dim), (3, 3, 4, 52, 4)) \
  ROW(int, nmtColUels, nmtColUels, \
      (void* nmt, int rc, int* symbol, int* keys, int* dim), (3, 3, 4, 52, 4))

/* clang-format on */

#ifndef ZTB_PEER_NO_PROTOTYPES

#ifdef _WIN32
#define ZTB_PEER_EXPORT __declspec(dllexport)
#else
#define ZTB_PEER_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- entry points ----------------------------------------------------------------------------
 */

ZTB_PEER_EXPORT void XCreate(void** object);
ZTB_PEER_EXPORT void XCreateD(void** object, const char* directory);
ZTB_PEER_EXPORT void XFree(void** object);
ZTB_PEER_EXPORT int C__XCheck(const char* operation, int argCount, const int* codes, char* msg);
ZTB_PEER_EXPORT int C__XAPIVersion(int api, char* msg, int* compatibility);
/* Both may be missing. The first is told, once, the directory from which the peer was loaded; the
 * second is looked up and not called. */
ZTB_PEER_EXPORT void C__rxfSetLoadPath(const char* directory);
ZTB_PEER_EXPORT void C__rxfGetLoadPath(char* directory);
/* Reading in blocks; both may be missing. See Reading, above. */
ZTB_PEER_EXPORT int C__rxfDataReadBlockStart(void* rxf, int symbolNumber, int* recordCount);
ZTB_PEER_EXPORT int C__rxfDataReadBlock(void* rxf, int* keys, double* values, int room);

ZTB_PEER_EXPORT void pbiXCreate(void** object);
ZTB_PEER_EXPORT void CpbiXCreateD(void** object, const char* directory);
ZTB_PEER_EXPORT void pbiXFree(void** object);
ZTB_PEER_EXPORT int CpbiXCheck(const char* operation, int argCount, const int* codes, char* msg);
ZTB_PEER_EXPORT int CpbiXAPIVersion(int api, char* msg, int* compatibility);

ZTB_PEER_EXPORT void snvXCreate(void** object);
ZTB_PEER_EXPORT void CsnvXCreateD(void** object, const char* directory);
ZTB_PEER_EXPORT void snvXFree(void** object);
ZTB_PEER_EXPORT int CsnvXCheck(const char* operation, int argCount, const int* codes, char* msg);
ZTB_PEER_EXPORT int CsnvXAPIVersion(int api, char* msg, int* compatibility);

ZTB_PEER_EXPORT void rgyXCreate(void** object);
ZTB_PEER_EXPORT void rgyXFree(void** object);
ZTB_PEER_EXPORT int CrgyXCheck(const char* operation, int argCount, const int* codes, char* msg);
ZTB_PEER_EXPORT int CrgyXAPIVersion(int api, char* msg, int* compatibility);

ZTB_PEER_EXPORT void nmtXCreate(void** object);
ZTB_PEER_EXPORT void CnmtXCreateD(void** object, const char* directory);
ZTB_PEER_EXPORT void nmtXFree(void** object);
ZTB_PEER_EXPORT int CnmtXCheck(const char* operation, int argCount, const int* codes, char* msg);
ZTB_PEER_EXPORT int CnmtXAPIVersion(int api, char* msg, int* compatibility);

/* ---- operations ------------------------------------------------------------------------------
 */

#define ZTB_PEER_PROTOTYPE(result, name, symbol, parameters, codes) \
  ZTB_PEER_EXPORT result symbol parameters;
ZTB_PEER_RXF_OPERATIONS(ZTB_PEER_PROTOTYPE)
ZTB_PEER_PBI_OPERATIONS(ZTB_PEER_PROTOTYPE)
ZTB_PEER_SNV_OPERATIONS(ZTB_PEER_PROTOTYPE)
ZTB_PEER_RGY_OPERATIONS(ZTB_PEER_PROTOTYPE)
ZTB_PEER_NMT_OPERATIONS(ZTB_PEER_PROTOTYPE)
#undef ZTB_PEER_PROTOTYPE

#ifdef __cplusplus
}
#endif

#endif /* ZTB_PEER_NO_PROTOTYPES */

/* ---- helpers ---------------------------------------------------------------------------------
 */

/* An operation that a peer offers: the code of its result and those of its arguments behind the
 * object handle. */
typedef struct {
  const char* name;
  int codeCount;
  int codes[ZTB_PEER_MOST_CODES];
} ztbPeerOperation;

/* One row of a table as an element of an array of these:
 *
 *   static const ztbPeerOperation operations[] = {ZTB_PEER_RXF_OPERATIONS(ZTB_PEER_ENTRY)};
 *
 * A peer that offers fewer operations leaves out the others. */
#define ZTB_PEER_ENTRY(result, name, symbol, parameters, codes) \
  {#name, ZTB_PEER_CODE_COUNT(ZTB_PEER_LIST codes), {ZTB_PEER_LIST codes}},
#define ZTB_PEER_CODE_COUNT(...) \
  ZTB_PEER_SIXTEENTH(__VA_ARGS__, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0)
#define ZTB_PEER_SIXTEENTH(...) ZTB_PEER_SIXTEENTH_OF(__VA_ARGS__)
#define ZTB_PEER_SIXTEENTH_OF(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, count, ...) count

/* The answer of a check entry point from such an array, of `operationCount` elements. `family`
 * names the peer in reasons; `msg` may be null. */
static inline int ztbPeerCheck(const char* family, const ztbPeerOperation* operations,
                               int operationCount, const char* operation, int argCount,
                               const int* codes, char* msg) {
  char unheard[ZTB_PEER_TEXT_SIZE];
  int at = 0;
  int i = 0;
  if (msg == NULL) msg = unheard;
  while (at < operationCount &&
         (operation == NULL || strcmp(operations[at].name, operation) != 0)) {
    ++at;
  }
  if (at == operationCount) {
    snprintf(msg, ZTB_PEER_TEXT_SIZE, "not offered by this %s library", family);
    return 0;
  }
  if (operations[at].codeCount - 1 != argCount) {
    snprintf(msg, ZTB_PEER_TEXT_SIZE, "it has %d arguments, %d were asked for",
             operations[at].codeCount - 1, argCount);
    return 0;
  }
  for (i = 0; i <= argCount; ++i) {
    const int offered = operations[at].codes[i];
    const int asked = codes == NULL ? -1 : codes[i];
    if (asked == offered) continue;
    snprintf(msg, ZTB_PEER_TEXT_SIZE, "%s %d has type code %d, %d was asked for",
             i == 0 ? "result" : "argument", i, offered, asked);
    return 0;
  }
  return 1;
}

/* The answer of a version entry point of a peer that speaks exactly one version, `offered`. `msg`
 * and `compatibility` may be null. */
static inline int ztbPeerVersion(const char* family, int offered, int api, char* msg,
                                 int* compatibility) {
  if (compatibility != NULL) *compatibility = offered;
  if (msg != NULL) msg[0] = '\0';
  if (api == offered) return 1;
  if (msg != NULL) {
    snprintf(msg, ZTB_PEER_TEXT_SIZE,
             "The %s library offers API version %d, version %d was asked for", family, offered,
             api);
  }
  return 0;
}

#endif /* ZTB_PEER_H_ */
