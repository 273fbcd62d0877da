/* The exported interface of libztbcclib64.so: every name that the library exports, usable from
 * C99 and C++.
 *
 * Families
 *   creation names   make and free a database; zero-terminated strings
 *   c__              one name for each operation; zero-terminated strings
 *   d__              the same operations for clients whose strings carry a length byte
 *   n__              operations with arrays of strings, for clients with flat char arrays
 *
 * Conventions
 *   Results     1 for success, 0 for failure; c__ztbgetlasterror then tells the reason. A success
 *               does not clear the text of an earlier failure. Names that end in "py" return the
 *               handle they make (null on failure) and store the 1 or 0 in their last argument.
 *   Handles     sym is a symbol handle, owned by the database, valid until the database is freed.
 *               rec is a record handle, owned by the caller: each one handed out is ended by
 *               c__ztbfreesymboliterator. A database handle is never tested for null.
 *   Text out    a buffer of at least ZTB_TEXT_BUFFER_SIZE chars.
 *   keys        one label for each index position of the symbol (const char*[dim]), or one label
 *               number for each (int[dim], numbers count from 1).
 *   values      five doubles: level, marginal, lower, upper, scale.
 *   Short string (d__)        256 bytes: a length byte, then the chars, no terminator.
 *   Short-string array (d__)  20 short strings, one behind the other, 256 bytes apart.
 *   Flat string array (n__)   20 zero-terminated strings, 256 bytes apart.
 *   Threads     a database and all its handles are used by one thread at a time, for reading too;
 *               they may go from one thread to another. Two databases may be used by two threads at
 *               the same time, from their first calls on: opening the libraries that they need is
 *               guarded. A call with two databases (c__ztbinitfromdb, c__ztbcopysymbol) uses both.
 *               Shared by all threads are the trace level and standard output. A model is used like
 *               a database, by the thread that uses the database it is tied to. A large symbol of
 *               an exchange file is read with the help of a thread of that library, which has ended
 *               when the operation has (docs/reference/rxf.md).
 *   Process     libraries are opened once, at the first need, and stay open to the end: a folder
 *               that a later database names has no effect on those already open, and this library
 *               must not be unloaded. An opening that failed is tried again by the next database.
 *               A database that needs an operation which such a library lacks prints the reason and
 *               ends the process, all its threads, with exit code 123. After a fork, parent and
 *               child go on with a copy each of every database, files that are open for reading
 *               included, if no other thread was in a call at that moment; then the child can only
 *               replace itself by another program.
 */
#ifndef ZTB_ZTB_H_
#define ZTB_ZTB_H_

#include <ztb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__) && !defined(_WIN32)
#pragma GCC visibility push(default)
#endif

/* ---- creation ----------------------------------------------------------------------------------
 */

/* Makes a database. On failure *ztb is null, msg holds "Error while creating object" cut to
 * msgLen, and the result is 0. A missing exchange-file library does not fail the creation:
 * c__ztbgetlasterror then holds "RXF create did not succeed: " and the reason. */
int ztbcreate(ztbRec** ztb, char* msg, int msgLen);

/* The same; the libraries that the database opens are looked for in folder sysDir. *ztb is not
 * cleared first, and only a null ztb is reported as a failure. */
int ztbcreated(ztbRec** ztb, const char* sysDir, char* msg, int msgLen);

/* Frees the database and sets *ztb to null; 1 also when *ztb was null already. */
int ztbfree(ztbRec** ztb);

/* ztbcreate without a message; *ztb is left as it was when no object could be made. */
void xcreate(ztbRec** ztb);

/* ztbcreated without a message. */
void xcreated(ztbRec** ztb, const char* sysDir);

/* Frees the database, if *ztb is not null, and sets *ztb to null. */
void xfree(ztbRec** ztb);

/* The same entry point as xcreate. */
void ztbxcreate(ztbRec** ztb);

/* The same entry point as xcreated. */
void ztbxcreated(ztbRec** ztb, const char* sysDir);

/* The same entry point as xfree. */
void ztbxfree(ztbRec** ztb);

/* ---- version and signature checks --------------------------------------------------------------
 */

/* Compares a client's interface version with the library's (5). *compatibility: 1 the same, 2
 * the client is older and compatible (2 to 4), 3 the client is newer, 0 the client is too old
 * (below 2; result 0). msg says so in words. */
int c__xapiversion(int api, char* msg, int* compatibility);

/* Whether the operation name (mixed case, such as "ztbFindSymbol") has the signature codes[0]
 * (result) and codes[1] to codes[argCount] (arguments behind the handle). msg is empty, or one
 * of "ztbcclib: NAME cannot be found in library.", "... has wrong number of arguments." and
 * "... has wrong argument types.". */
int c__xcheck(const char* name, int argCount, const int* codes, char* msg);

/* ---- the database ------------------------------------------------------------------------------
 */

/* Copies the text of the latest failure, at most 255 chars. 1 if there is one. */
int c__ztbgetlasterror(ztbRec* ztb, char* msg);

/* The kind of the latest failure, a ZTB_ERROR_ code of ztb/errors.h; ZTB_ERROR_NONE before the
 * first. A success does not clear it. */
static inline int ztbErrorKind(const ztbRec* ztb) {
  return ztb->errorKind;
}

/* Counts the operations that may have written to records or taken them away, of any symbol; what is
 * read from a source does not count. As long as it is the same, record handles stand where they
 * stood and what was read is as it was. Wraps around. */
static inline unsigned ztbRecordChanges(const ztbRec* ztb) {
  return ztb->recordChanges;
}

/* Trace level of the whole process: above 0 every operation prints its name to standard
 * output; 2 adds the progress of loading. */
int c__ztbsetdebug(ztbRec* ztb, int level);

/* Prints a line to the host's log, or to standard output when there is none. */
int c__ztbprintlog(ztbRec* ztb, const char* msg);

/* Answers a ZTB_INFO_ key in *ival. Any other key: "infoKey needs to be between 0 and 5, saw
 * KEY". */
int c__ztbinfo(ztbRec* ztb, int infoKey, int* ival, double* dval, char* sval);

/* ---- labels ------------------------------------------------------------------------------------
 */

/* Number of a label, added if it is new. Labels are at most 63 chars after trailing blanks are
 * cut, compared with ASCII case folded, and hold at most one kind of quote. */
int c__ztbmergeuel(ztbRec* ztb, const char* label, int* uelNr);

/* Number of a label, or -1 if the database does not have it. */
int c__ztbfinduel(ztbRec* ztb, const char* label, int* uelNr);

/* Label of a number from 1 to the count of labels. Otherwise "Uel index N out of range
 * [1,COUNT]". */
int c__ztbgetuelbyindex(ztbRec* ztb, int uelNr, char* label);

/* ---- exchange files ----------------------------------------------------------------------------
 */

/* Makes a new database the mirror of an RXF file: labels, texts, symbols and domains are read
 * now, the records of each symbol when they are first touched. The file stays open. On failure
 * the database can only be freed. */
int c__ztbinitfromrxf(ztbRec* ztb, const char* fileName);

/* Closes the file of c__ztbinitfromrxf. With loadRemain not 0 all symbols not yet read are
 * read first; with 0 their records are lost to this database. */
int c__ztbcloserxf(ztbRec* ztb, int loadRemain);

/* Writes the whole database to an RXF file, which may be the one it was opened from. With
 * noDomainCheck 0, records of symbols whose domains are sets are checked against them. Whatever
 * the file refuses fails the operation, with the count of the refusals and one of their reasons.
 * On failure an old file stays as it was; only when the new one took its place and the folder
 * could not be brought to the disk after that, the new one stands, and the text says so. */
int c__ztbwriterxf(ztbRec* ztb, const char* fileName, int noDomainCheck);

/* ---- special values ----------------------------------------------------------------------------
 */

/* Sets the caller's spelling of the five special values, used in both directions from now on.
 * *mode (may be null): 0 no mapping is needed, 1 epsilon alone, 2 all five. */
int c__ztbsetspecialvaluesx(ztbRec* ztb, const double* values, int* mode);

/* The same without mode. */
int c__ztbsetspecialvalues(ztbRec* ztb, const double* values);

/* The library's own five values: 1e300, NaN (0x7FF8000000000000), plus infinity, minus
 * infinity, smallest denormal. Never what the caller has set. */
int c__ztbgetspecialvalues(ztbRec* ztb, double* values);

/* The five values as the caller has set them. */
int c__ztbgetuserspecialvalues(ztbRec* ztb, double* values);

/* ---- symbols -----------------------------------------------------------------------------------
 */

/* Adds a symbol of dimension 0 to 20 (a set from 1) over the universe. Names have 1 to 63
 * chars, a letter first, then letters, digits and underscores; texts at most 255 chars.
 * userInfo is the subtype of a variable (0 to 9) or equation (0 to 6), the number of the set
 * that an alias stands for, and the caller's own word otherwise. */
int c__ztbaddsymbol(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                    const char* text, void** symPtr);

void* c__ztbaddsymbolpy(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                        const char* text, int* status);

/* The same with domains: for each position a one-dimensional set or alias of this database, or
 * null and a name ("*" or " " for the universe). Returns 1 also when no symbol could be made:
 * look at *symPtr. */
int c__ztbaddsymbolx(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                     const char* text, void** domains, const char** domainNames, void** symPtr);

void* c__ztbaddsymbolxpy(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                         const char* text, void** domains, const char** domainNames, int* status);

/* Finds a symbol by name, case folded; "*" is the universe. An alias is resolved to its set. */
int c__ztbfindsymbol(ztbRec* ztb, const char* name, void** symPtr);

void* c__ztbfindsymbolpy(ztbRec* ztb, const char* name, int* status);

/* The same; an alias stays the alias. */
int c__ztbfindsymbolwithalias(ztbRec* ztb, const char* name, void** symPtr);

void* c__ztbfindsymbolwithaliaspy(ztbRec* ztb, const char* name, int* status);

/* Symbol by position among the symbols that are no aliases, from 0; -1 is the universe. */
int c__ztbgetsymbolbyindex(ztbRec* ztb, int index, void** symPtr);

void* c__ztbgetsymbolbyindexpy(ztbRec* ztb, int index, int* status);

/* Symbol by position among all symbols, aliases included, from 0; -1 is the universe. */
int c__ztbgetsymbolbynumber(ztbRec* ztb, int number, void** symPtr);

void* c__ztbgetsymbolbynumberpy(ztbRec* ztb, int number, int* status);

/* Removes all records of a symbol. */
int c__ztbclearsymbol(ztbRec* ztb, void* sym);

/* Changes the user information of a symbol. */
int c__ztbsetuserinfo(ztbRec* ztb, void* sym, int userInfo);

/* Domain set (an alias resolved to its set; null when known by name only) and domain name of
 * each position. dim is not used: the arrays hold as many places as the symbol has positions. */
int c__ztbgetdomain(ztbRec* ztb, void* sym, int dim, void** domains, char** domainNames);

/* Dimension of a symbol. */
int c__ztbsymboldim(ztbRec* ztb, void* sym, int* dim);

/* Type of a symbol. */
int c__ztbsymboltype(ztbRec* ztb, void* sym, int* type);

/* Answers a ZTB_SYMBOL_INFO_ key in *ival or sval. Any other key: "No valid infoKey, saw KEY". */
int c__ztbsymbolinfo(ztbRec* ztb, void* sym, int infoKey, int* ival, double* dval, char* sval);

/* ---- finding and walking records ---------------------------------------------------------------
 */

/* The record with these labels. No label is added. This and the lookups below leave *recPtr null
 * when they fail. */
int c__ztbfindrecord(ztbRec* ztb, void* sym, const char** keys, void** recPtr);

void* c__ztbfindrecordpy(ztbRec* ztb, void* sym, const char** keys, int* status);

/* First record of a symbol; records are ordered by label numbers, first position first. */
int c__ztbfindfirstrecord(ztbRec* ztb, void* sym, void** recPtr);

void* c__ztbfindfirstrecordpy(ztbRec* ztb, void* sym, int* status);

/* First record of a slice: keys[d] is a label, or a single blank for any label. */
int c__ztbfindfirstrecordslice(ztbRec* ztb, void* sym, const char** keys, void** recPtr);

void* c__ztbfindfirstrecordslicepy(ztbRec* ztb, void* sym, const char** keys, int* status);

/* Last record of a symbol; records are ordered by label numbers, first position first. */
int c__ztbfindlastrecord(ztbRec* ztb, void* sym, void** recPtr);

void* c__ztbfindlastrecordpy(ztbRec* ztb, void* sym, int* status);

/* Last record of a slice: keys[d] is a label, or a single blank for any label. */
int c__ztbfindlastrecordslice(ztbRec* ztb, void* sym, const char** keys, void** recPtr);

void* c__ztbfindlastrecordslicepy(ztbRec* ztb, void* sym, const char** keys, int* status);

/* Steps to the next record of the symbol, slice or universe. 0 past the last one; the handle
 * then still stands on the last. */
int c__ztbrecordmovenext(ztbRec* ztb, void* rec);

/* Whether there is a next record. */
int c__ztbrecordhasnext(ztbRec* ztb, void* rec);

/* Steps to the previous record. 0, with no text, before the first one. */
int c__ztbrecordmoveprev(ztbRec* ztb, void* rec);

/* Whether there is a previous record. */
int c__ztbrecordhasprev(ztbRec* ztb, void* rec);

/* Whether two handles stand on the same record. */
int c__ztbsamerecord(ztbRec* ztb, void* rec1, void* rec2);

/* A new handle on the same record; a copy of a slice handle walks the whole symbol. */
int c__ztbcopysymboliterator(ztbRec* ztb, void* rec, void** recPtr);

void* c__ztbcopysymboliteratorpy(ztbRec* ztb, void* rec, int* status);

/* Ends a record handle. */
int c__ztbfreesymboliterator(ztbRec* ztb, void* rec);

/* ---- reading records ---------------------------------------------------------------------------
 */

/* Level of a record, for a parameter its value. */
int c__ztbgetlevel(ztbRec* ztb, void* rec, double* value);

/* Marginal. Variables and equations only, as the three that follow. */
int c__ztbgetmarginal(ztbRec* ztb, void* rec, double* value);

/* Lower bound. */
int c__ztbgetlower(ztbRec* ztb, void* rec, double* value);

/* Upper bound. */
int c__ztbgetupper(ztbRec* ztb, void* rec, double* value);

/* Scale. */
int c__ztbgetscale(ztbRec* ztb, void* rec, double* value);

/* Explanatory text of a set record; empty when it has none. */
int c__ztbgetelemtext(ztbRec* ztb, void* rec, char* text);

/* Labels of the first dim positions. */
int c__ztbgetkeys(ztbRec* ztb, void* rec, int dim, char** keys);

/* Label of one position, from 0. */
int c__ztbgetkey(ztbRec* ztb, void* rec, int index, char* key);

/* Label numbers and values of a record: one value for sets and parameters, five for variables
 * and equations. dim is not used. */
int c__ztbgetrecordraw(ztbRec* ztb, void* rec, int dim, int* keys, double* values);

/* Copies records by columns, the one that the handle stands on first, and leaves the handle on the
 * last of them: at most `most`, and their number is returned, 0 after a failure. keys has an array
 * of `most` label numbers for each position, values an array of `most` doubles for each slot, 1 or
 * 5; one that is null is left out. Much faster than a step and a read for each record. Of the
 * universe there are no values. */
static inline int ztbReadRecords(ztbRec* ztb, void* rec, int most, int* const* keys,
                                 double* const* values) {
  return ztb->recordReader(ztb, rec, most, keys, values);
}

/* The values of a parameter on the vector store where they lie, one for each record in their order,
 * with special values as c__ztbgetspecialvalues has them: *values, null for any other symbol and
 * without records. They stay until ztbRecordChanges tells a change. */
static inline int ztbValuesInPlace(ztbRec* ztb, void* sym, const double** values) {
  return ztb->valueFinder(ztb, sym, values);
}

/* The same, to be kept: (*held)->values are the values of (*held)->count records, which stay as
 * they are until ztbReleaseValues, whatever becomes of symbol and database. *held is null for any
 * other symbol and without records. Nothing is copied here; the first change to what is held has
 * the database take a copy for itself, and clearing takes none. */
static inline int ztbHoldValues(ztbRec* ztb, void* sym, ztbHeldValues** held) {
  return ztb->valueHolder(ztb, sym, held);
}

/* Ends the hold, from any thread, at any time, also when the database is gone. */
static inline void ztbReleaseValues(ztbHeldValues* held) {
  held->release(held);
}

/* ---- changing records --------------------------------------------------------------------------
 */

/* Adds a record with default values, and its labels where they are new. Fails when the record
 * exists. */
int c__ztbaddrecord(ztbRec* ztb, void* sym, const char** keys, void** recPtr);

void* c__ztbaddrecordpy(ztbRec* ztb, void* sym, const char** keys, int* status);

/* The same, but a record that exists is found, with its values, and *recPtr (may be null) is left
 * as it was on failure. */
int c__ztbmergerecord(ztbRec* ztb, void* sym, const char** keys, void** recPtr);

void* c__ztbmergerecordpy(ztbRec* ztb, void* sym, const char** keys, int* status);

/* Adds a record by label numbers, or overwrites it when haveValues is not 0. checkUEL 1 tests
 * the numbers. A handle is made only with returnSymPtr 1. values holds five doubles whatever
 * the type. Not for sets with values. */
int c__ztbmergerecordint(ztbRec* ztb, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                         void** recPtr, int haveValues, const double* values);

void* c__ztbmergerecordintpy(ztbRec* ztb, void* sym, const int* keys, int checkUEL,
                             int returnSymPtr, int haveValues, const double* values, int* status);

/* The same for a set, with an explanatory text (null for none). */
int c__ztbmergesetrecordint(ztbRec* ztb, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                            void** recPtr, const char* text);

void* c__ztbmergesetrecordintpy(ztbRec* ztb, void* sym, const int* keys, int checkUEL,
                                int returnSymPtr, const char* text, int* status);

/* Adds or overwrites a record by label numbers: text for a set, values for any other symbol. */
int c__ztbaddrecordraw(ztbRec* ztb, void* sym, const int* keys, const double* values,
                       const char* text);

/* Removes the record under the handle, which then stands on the record behind it. */
int c__ztbdeleterecord(ztbRec* ztb, void* rec);

/* Writes the level of a record, for a parameter its value. */
int c__ztbsetlevel(ztbRec* ztb, void* rec, double value);

/* Writes the marginal of a record. */
int c__ztbsetmarginal(ztbRec* ztb, void* rec, double value);

/* Writes the lower bound of a record. */
int c__ztbsetlower(ztbRec* ztb, void* rec, double value);

/* Writes the upper bound of a record. */
int c__ztbsetupper(ztbRec* ztb, void* rec, double value);

/* Writes the scale of a record. */
int c__ztbsetscale(ztbRec* ztb, void* rec, double value);

/* Writes the explanatory text of a set record, at most 255 chars; an empty one takes it away. */
int c__ztbsetelemtext(ztbRec* ztb, void* rec, const char* text);

/* ---- record storage ------------------------------------------------------------------------ */

/* Chooses the record store, ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR or ZTB_STORAGE_TRIE: with a
 * null sym that of symbols made from now on, else that of *sym, which is rebuilt with all records;
 * *sym is then a new handle. Other copies of the old handle, record handles on the symbol, and the
 * domains and aliases that name it still lead to the old one, which is empty. The symbol's own
 * domains are not kept. The code is not checked: an unknown one leaves no symbol (*sym null), or no
 * store for later symbols. Always 1 but for running out of memory. */
int c__ztbselectrecordstorage(ztbRec* ztb, void** sym, int storage);

/* The same; the symbol's present handle is returned, null on failure. */
void* c__ztbselectrecordstoragepy(ztbRec* ztb, void* sym, int storage, int* status);

/* ---- other sources --------------------------------------------------------------------------- */

/* Makes an empty database a deep copy of another one: labels, symbols and records. Texts of set
 * records are not copied: their numbers point into the new database's own texts. */
int c__ztbinitfromdb(ztbRec* ztb, ztbRec* source);

/* Stands the database on a host engine: the records of all its symbols are dropped and come from
 * the callbacks when a symbol is first touched. log, if not null, receives what c__ztbprintlog
 * prints. */
int c__ztbinitfromhvex(ztbRec* ztb, ztbHostFindSymbol findSymbol,
                       ztbHostDataReadRawStart dataReadRawStart, ztbHostDataReadRaw dataReadRaw,
                       ztbHostDataReadDone dataReadDone, ztbHostGetElemText getElemText,
                       ztbHostLog logCallback, void* userMem);

/* ---- arrays ------------------------------------------------------------------------------------
 */

/* A cube has vDim[d] cells at position d and lies row-major, last index fastest; a label's place at
 * a position is its rank among the records of that position's domain set. Cells are doubles, with
 * special values as the caller has set them; for a set they are ints. field is a value slot from 0
 * to 4, taken as 0 for a parameter and not used for a set. domains holds a one-dimensional set for
 * each position. Scalars and the universe are refused. */

/* A symbol with one record for each cell, in the order of its records; labels are not looked at. A
 * set gives 1, 2, 3 and so on. */
int c__ztbdensesymboltodensearray(ztbRec* ztb, void* cube, const int* vDim, void* sym, int field);

/* Each record at the place of its labels, zero elsewhere; a set numbers its records from 1. The
 * size of domains[d] must be vDim[d]. *nDropped: records with a label outside its domain, -1 after
 * a failed check. */
int c__ztbsparsesymboltodensearray(ztbRec* ztb, void* cube, const int* vDim, void* sym,
                                   void** domains, int field, int* nDropped);

/* The same over the labels of squeezeDomains, whose sizes must be vDim; domains tells what counts
 * as a label of the symbol, and the cells of a set hold 1 plus the cell's number in the cube over
 * these. The first record outside ends the transfer: *nDropped is then 1 and the result still 1. */
int c__ztbsparsesymboltosqzdarray(ztbRec* ztb, void* cube, const int* vDim, void* sym,
                                  void** squeezeDomains, void** domains, int field, int* nDropped);

/* Replaces the records of a parameter by one for each cell, zeros included, or those of a set by
 * one for each cell that is not 0, whose value is taken as text number. The symbol is emptied
 * before anything but its handle is checked. */
int c__ztbdensearraytosymbol(ztbRec* ztb, void* sym, void** domains, const void* cube,
                             const int* vDim);

/* The same for the labels of sliceDomains only, leaving out every cell that is 0; the cube is laid
 * out over domains. */
int c__ztbdensearrayslicestosymbol(ztbRec* ztb, void* sym, void** sliceDomains, void** domains,
                                   const void* cube, const int* vDim);

/* ---- copies and label counts -------------------------------------------------------------------
 */

/* Replaces the records of target by those of source, of the same type, or of any type if target is
 * a set; labels and texts cross by their strings, so that the two may be in different databases.
 * WARNING: target is emptied first. A symbol that is copied onto itself, or an alias that is copied
 * onto its set, leaves the symbol empty, with the result 1. */
int c__ztbcopysymbol(ztbRec* ztb, void* target, void* source);

/* Counts how often each label stands in the keys of the given symbols; uelCounts has listSize
 * entries, one for each label number from 0. */
int c__ztbgetsymbolsuels(ztbRec* ztb, void** symbols, int symbolCount, int* uelCounts,
                         int listSize);

/* ---- domain violations -------------------------------------------------------------------------
 */

/* A violation handle stands on a record with a label outside the set that its symbol names as
 * domain; null means that there is none. Each is ended by c__ztbfreedvhandle. A check of the
 * database keeps its tables until c__ztbdomaincheckdone. */

/* Whether there is any violation in the database, or in one symbol. */
int c__ztbcheckdbdv(ztbRec* ztb, int* hasViolation);
int c__ztbchecksymboldv(ztbRec* ztb, void* sym, int* hasViolation);

/* First violation of the database, which begins a check of it, or of one symbol. A symbol not yet
 * read from its source shows none. */
int c__ztbgetfirstdbdv(ztbRec* ztb, void** dvHandle);
void* c__ztbgetfirstdbdvpy(ztbRec* ztb, int* status);
int c__ztbgetfirstdvinsymbol(ztbRec* ztb, void* sym, void** dvHandle);
void* c__ztbgetfirstdvinsymbolpy(ztbRec* ztb, void* sym, int* status);

/* Moves the handle to the first violation of a later symbol; *found tells whether there is one. */
int c__ztbgetfirstdvinnextsymbol(ztbRec* ztb, void* dvHandle, int* found);

/* Moves the handle to the next violation of its symbol; *hasNext tells whether there was one. */
int c__ztbmovenextdvinsymbol(ztbRec* ztb, void* dvHandle, int* hasNext);

/* Ends a violation handle; null is accepted. */
int c__ztbfreedvhandle(ztbRec* ztb, void* dvHandle);

/* Ends a check of the database. */
int c__ztbdomaincheckdone(ztbRec* ztb);

/* The violating record's symbol, a record handle on it, and for each position 1 where it violates
 * and 0 elsewhere. */
int c__ztbgetdvsymbol(ztbRec* ztb, void* dvHandle, void** symPtr);
void* c__ztbgetdvsymbolpy(ztbRec* ztb, void* dvHandle, int* status);
int c__ztbgetdvsymbolrecord(ztbRec* ztb, void* dvHandle, void** recPtr);
void* c__ztbgetdvsymbolrecordpy(ztbRec* ztb, void* dvHandle, int* status);
int c__ztbgetdvindicator(ztbRec* ztb, void* dvHandle, int* indicator);

/* ---- write recording ---------------------------------------------------------------------------
 */

/* From start to stop, operations mark the symbols they write to; c__ztbsymbolinfo reads the marks.
 * A start clears all marks but those of the first symbol and of aliases. */
int c__ztbstartwriterecording(ztbRec* ztb);
int c__ztbstopwriterecording(ztbRec* ztb);

/* ---- models and solvers ------------------------------------------------------------------------
 */

/* Ties the database to a loaded model (a pbiRec), which stays the caller's. Where
 * c__ztbinitupdate had prepared another one, updates, solves and the reading of the model's symbols
 * fail until it has prepared the new one, whose labels have to be those of the database, number by
 * number. */
int c__ztbregisterpbi(ztbRec* ztb, void* pbi);

/* Registers a model and fills an empty database with its labels and with one symbol for each of its
 * variables and equations, without records. */
int c__ztbinitfromdict(ztbRec* ztb, void* pbi);

/* Prepares the registered model for updates and solves; pbi is not read. From now on a symbol of
 * the model takes its records from the model when it is first touched. */
int c__ztbinitupdate(ztbRec* ztb, void* pbi);

/* Writes the values of a parameter into the model, for every row or column of a variable or
 * equation, or of the variable NAME_var for a parameter NAME. actionType: 0 fix a column, 1 upper
 * bound, 2 lower bound, 3 both bounds, 4 level, 5 marginal. updateType, for a row or column without
 * a record: 0 takes zero, 1 its value at c__ztbinitupdate or its own bound, 2 leaves it.
 * *noMatchCnt: records of the parameter that met no row or column. Values of 1e300 and above but
 * infinity, and NaN, are refused. */
int c__ztbupdatemodelsymbol(ztbRec* ztb, void* modelSymbol, int actionType, void* dataSymbol,
                            int updateType, int* noMatchCnt);

/* Solves the model with a solver of the catalogue, which stays alive for the next solve where it
 * can. The records of the model's symbols are dropped and come from the new solution. */
int c__ztbcallsolver(ztbRec* ztb, const char* solverName);

/* The same; *solveTime is the processor time that the solver took, in seconds. */
int c__ztbcallsolvertimed(ztbRec* ztb, const char* solverName, double* solveTime);

/* ---- length-prefixed strings -------------------------------------------------------------------
 */

/* As the c__ names, with short strings and short-string arrays in the places of strings and
 * arrays of strings. */

int d__xapiversion(int api, char* msg, int* compatibility);

/* The same entry point as d__xapiversion. */
int d__ztbxapiversion(int api, char* msg, int* compatibility);

int d__xcheck(const char* name, int argCount, const int* codes, char* msg);

/* The same entry point as d__xcheck. */
int d__ztbxcheck(const char* name, int argCount, const int* codes, char* msg);

void d__xcreated(ztbRec** ztb, const char* sysDir);

/* The same entry point as d__xcreated. */
void d__ztbxcreated(ztbRec** ztb, const char* sysDir);

/* msg is a zero-terminated string here, too. */
int d__ztbcreated(ztbRec** ztb, const char* sysDir, char* msg, int msgLen);

int d__ztbgetlasterror(ztbRec* ztb, char* msg);

int d__ztbprintlog(ztbRec* ztb, const char* msg);

int d__ztbinfo(ztbRec* ztb, int infoKey, int* ival, double* dval, char* sval);

int d__ztbmergeuel(ztbRec* ztb, const char* label, int* uelNr);

int d__ztbfinduel(ztbRec* ztb, const char* label, int* uelNr);

int d__ztbgetuelbyindex(ztbRec* ztb, int uelNr, char* label);

int d__ztbinitfromrxf(ztbRec* ztb, const char* fileName);

int d__ztbwriterxf(ztbRec* ztb, const char* fileName, int noDomainCheck);

int d__ztbaddsymbol(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                    const char* text, void** symPtr);

void* d__ztbaddsymbolpy(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                        const char* text, int* status);

int d__ztbaddsymbolx(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                     const char* text, void** domains, const char* domainNames, void** symPtr);

void* d__ztbaddsymbolxpy(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                         const char* text, void** domains, const char* domainNames, int* status);

int d__ztbfindsymbol(ztbRec* ztb, const char* name, void** symPtr);

void* d__ztbfindsymbolpy(ztbRec* ztb, const char* name, int* status);

int d__ztbfindsymbolwithalias(ztbRec* ztb, const char* name, void** symPtr);

void* d__ztbfindsymbolwithaliaspy(ztbRec* ztb, const char* name, int* status);

/* The first dim names are filled. */
int d__ztbgetdomain(ztbRec* ztb, void* sym, int dim, void** domains, char* domainNames);

int d__ztbsymbolinfo(ztbRec* ztb, void* sym, int infoKey, int* ival, double* dval, char* sval);

int d__ztbfindrecord(ztbRec* ztb, void* sym, const char* keys, void** recPtr);

void* d__ztbfindrecordpy(ztbRec* ztb, void* sym, const char* keys, int* status);

int d__ztbfindfirstrecordslice(ztbRec* ztb, void* sym, const char* keys, void** recPtr);

void* d__ztbfindfirstrecordslicepy(ztbRec* ztb, void* sym, const char* keys, int* status);

int d__ztbfindlastrecordslice(ztbRec* ztb, void* sym, const char* keys, void** recPtr);

void* d__ztbfindlastrecordslicepy(ztbRec* ztb, void* sym, const char* keys, int* status);

int d__ztbaddrecord(ztbRec* ztb, void* sym, const char* keys, void** recPtr);

void* d__ztbaddrecordpy(ztbRec* ztb, void* sym, const char* keys, int* status);

int d__ztbmergerecord(ztbRec* ztb, void* sym, const char* keys, void** recPtr);

void* d__ztbmergerecordpy(ztbRec* ztb, void* sym, const char* keys, int* status);

int d__ztbaddrecordraw(ztbRec* ztb, void* sym, const int* keys, const double* values,
                       const char* text);

int d__ztbmergesetrecordint(ztbRec* ztb, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                            void** recPtr, const char* text);

void* d__ztbmergesetrecordintpy(ztbRec* ztb, void* sym, const int* keys, int checkUEL,
                                int returnSymPtr, const char* text, int* status);

int d__ztbgetelemtext(ztbRec* ztb, void* rec, char* text);

int d__ztbsetelemtext(ztbRec* ztb, void* rec, const char* text);

int d__ztbgetkey(ztbRec* ztb, void* rec, int index, char* key);

int d__ztbgetkeys(ztbRec* ztb, void* rec, int dim, char* keys);

int d__ztbcallsolver(ztbRec* ztb, const char* solverName);
int d__ztbcallsolvertimed(ztbRec* ztb, const char* solverName, double* solveTime);

/* ---- flat string blocks ------------------------------------------------------------------------
 */

int n__ztbgetkeys(ztbRec* ztb, void* rec, int dim, char* keys);

int n__ztbgetdomain(ztbRec* ztb, void* sym, int dim, void** domains, char* domainNames);

#if defined(__GNUC__) && !defined(_WIN32)
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif /* ZTB_ZTB_H_ */
