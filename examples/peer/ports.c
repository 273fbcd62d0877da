/* A peer in C: an exchange-file library that has one file, "ports", in its memory. It shows what a
 * peer needs: entry points, the operations that it offers, and honest answers.
 * docs/reference/peers.md tells how databases find it.
 *
 *   cc -shared -fPIC ports.c -o librxfcclib64.so
 *
 * The file holds the set port of three labels with texts, the parameters depth(port) and
 * tide(port), and the scalar parameter year. The records of tide are damaged, and cannot be read.
 */
#include <stdlib.h>
#include <string.h>
#include <ztb/peer.h>

enum { SET = 0, PARAMETER = 1 };
enum { NO_ERROR = 0, NO_SUCH_FILE = 1, BUSY = 2, DAMAGED = 3 };

typedef struct {
  int key; /* a label number; not used by a scalar */
  double value;
} Record;

typedef struct {
  const char* name;
  const char* text;
  const char* domain;
  int dim;
  int type;
  int recordCount;
  double sum; /* of the values, by which damage shows */
  Record records[3];
} Symbol;

static const char* const labels[] = {"Bergen", "Genoa", "Riga"};
/* The value of a set's record is the number of its text. */
static const char* const texts[] = {"Norway", "Italy", "Latvia"};
static const Symbol symbols[] = {
    {"port", "where ships call", "*", 1, SET, 3, 6, {{1, 1}, {2, 2}, {3, 3}}},
    /* Nobody has measured Riga: 1e300 is how this file tells a value that is not available. */
    {"depth",
     "of the water in metres",
     "port",
     1,
     PARAMETER,
     3,
     1e300,
     {{1, 11.5}, {2, 15}, {3, 1e300}}},
    {"year", "of the survey", "", 0, PARAMETER, 1, 1939, {{0, 1939}}},
    /* Genoa had 0.4 when the sum was taken. */
    {"tide", "in metres", "port", 1, PARAMETER, 2, 1.9, {{1, 1.5}, {2, 0.9}}}};
enum { LABELS = 3, TEXTS = 3, SYMBOLS = 4, NOT_AVAILABLE = 1 };
static const double ownSpecialValues[] = {1e301, 1e300, 3e300, 4e300, 5e300};
enum { SPECIAL_VALUES = 5 };

/* All that a reader has is in its object, so that two of them may be used from two threads. */
typedef struct {
  double specialValues[SPECIAL_VALUES]; /* the caller's */
  const Symbol* reading;
  int nextRecord;
  int pendingError;
  int errorCount;
} Reader;

static void copyText(const char* from, char* to) {
  strncpy(to, from, ZTB_PEER_TEXT_SIZE - 1);
  to[ZTB_PEER_TEXT_SIZE - 1] = '\0';
}

static int fail(Reader* reader, int error) {
  reader->pendingError = error;
  ++reader->errorCount;
  return 0;
}

/* ---- entry points ---- */

void XCreate(void** object) {
  Reader* reader;
  if (object == NULL) return;
  reader = calloc(1, sizeof *reader);
  if (reader != NULL) memcpy(reader->specialValues, ownSpecialValues, sizeof ownSpecialValues);
  *object = reader;
}

void XCreateD(void** object, const char* directory) {
  (void)directory;
  XCreate(object);
}

void XFree(void** object) {
  free(*object);
  *object = NULL;
}

int C__XCheck(const char* operation, int argCount, const int* codes, char* msg) {
  static const ztbPeerOperation all[] = {ZTB_PEER_RXF_OPERATIONS(ZTB_PEER_ENTRY)};
  static const char* const forWriting[] = {"rxfOpenWrite",          "rxfSetSpecialValues",
                                           "rxfStoreDomainSetsSet", "rxfUELRegisterRawStart",
                                           "rxfUELRegisterRaw",     "rxfUELRegisterDone",
                                           "rxfAddAlias",           "rxfAddSetText",
                                           "rxfDataWriteRawStart",  "rxfDataWriteRaw",
                                           "rxfDataWriteDone",      "rxfSymbolSetDomain",
                                           "rxfSymbolSetDomainX"};
  size_t i;
  for (i = 0; i < sizeof forWriting / sizeof *forWriting; ++i) {
    if (strcmp(operation, forWriting[i]) == 0) {
      copyText("this library only reads", msg);
      return 0;
    }
  }
  return ztbPeerCheck("ports", all, sizeof all / sizeof *all, operation, argCount, codes, msg);
}

int C__XAPIVersion(int api, char* msg, int* compatibility) {
  return ztbPeerVersion("ports", ZTB_PEER_RXF_VERSION, api, msg, compatibility);
}

/* ---- the file and its errors ---- */

int C__rxfOpenRead(void* rxf, const char* fileName, int* errorNumber) {
  (void)rxf;
  *errorNumber = strcmp(fileName, "ports") == 0 ? NO_ERROR : NO_SUCH_FILE;
  return *errorNumber == NO_ERROR;
}

int C__rxfClose(void* rxf) {
  ((Reader*)rxf)->reading = NULL;
  return 1;
}

int C__rxfErrorStr(void* rxf, int errorNumber, char* text) {
  (void)rxf;
  switch (errorNumber) {
    case NO_SUCH_FILE:
      copyText("there is no file but \"ports\"", text);
      return 1;
    case BUSY:
      copyText("another symbol is being read", text);
      return 1;
    case DAMAGED:
      copyText("its records do not add up", text);
      return 1;
    default:
      copyText("no error", text);
      return 0;
  }
}

int C__rxfErrorCount(void* rxf) {
  return ((Reader*)rxf)->errorCount;
}

int C__rxfGetLastError(void* rxf) {
  const int error = ((Reader*)rxf)->pendingError;
  ((Reader*)rxf)->pendingError = NO_ERROR;
  return error;
}

int C__rxfGetSpecialValues(void* rxf, double* values) {
  (void)rxf;
  memcpy(values, ownSpecialValues, sizeof ownSpecialValues);
  return 1;
}

int C__rxfSetReadSpecialValues(void* rxf, const double* values) {
  memcpy(((Reader*)rxf)->specialValues, values, sizeof ownSpecialValues);
  return 1;
}

/* ---- what the file holds ---- */

int C__rxfSystemInfo(void* rxf, int* symbolCount, int* labelCount) {
  (void)rxf;
  *symbolCount = SYMBOLS;
  *labelCount = LABELS;
  return 1;
}

int C__rxfSymbolInfo(void* rxf, int number, char* name, int* dim, int* type) {
  (void)rxf;
  copyText(symbols[number - 1].name, name);
  *dim = symbols[number - 1].dim;
  *type = symbols[number - 1].type;
  return 1;
}

int C__rxfSymbolInfoX(void* rxf, int number, int* recordCount, int* userInfo, char* text) {
  (void)rxf;
  *recordCount = symbols[number - 1].recordCount;
  *userInfo = 0;
  copyText(symbols[number - 1].text, text);
  return 1;
}

int C__rxfSymbolGetDomainX(void* rxf, int number, char** names) {
  (void)rxf;
  if (symbols[number - 1].dim == 0) return 0;
  copyText(symbols[number - 1].domain, names[0]);
  return 1;
}

int C__rxfFindSymbol(void* rxf, const char* name, int* number) {
  (void)rxf;
  for (*number = SYMBOLS; *number > 0; --*number) {
    if (strcmp(symbols[*number - 1].name, name) == 0) return 1;
  }
  return 0;
}

int C__rxfGetElemText(void* rxf, int number, char* text, int* node) {
  (void)rxf;
  *node = 0;
  if (number < 1 || number > TEXTS) return 0;
  copyText(texts[number - 1], text);
  return 1;
}

int C__rxfUMUelInfo(void* rxf, int* labelCount, int* highMap) {
  (void)rxf;
  *labelCount = LABELS;
  *highMap = 0;
  return 1;
}

int C__rxfUMUelGet(void* rxf, int number, char* label, int* map) {
  (void)rxf;
  copyText(labels[number - 1], label);
  *map = 0;
  return 1;
}

/* ---- records ---- */

static int isWhole(const Symbol* symbol) {
  double sum = 0;
  int i;
  for (i = 0; i < symbol->recordCount; ++i) sum += symbol->records[i].value;
  return sum == symbol->sum;
}

/* All records are looked at before their number is told: a symbol comes whole or, with -1 and a
 * pending error, not at all. */
int C__rxfDataReadRawStart(void* rxf, int symbolNumber, int* recordCount) {
  Reader* reader = rxf;
  const Symbol* symbol = &symbols[symbolNumber - 1];
  *recordCount = -1;
  if (reader->reading != NULL) return fail(reader, BUSY);
  if (!isWhole(symbol)) return fail(reader, DAMAGED);
  reader->reading = symbol;
  reader->nextRecord = 0;
  *recordCount = symbol->recordCount;
  return 1;
}

int C__rxfDataReadRaw(void* rxf, int* keys, double* values, int* firstChanged) {
  Reader* reader = rxf;
  const Record* record = &reader->reading->records[reader->nextRecord++];
  if (reader->reading->dim == 1) keys[0] = record->key;
  *firstChanged = 1;
  values[0] = record->value;
  if (record->value == ownSpecialValues[NOT_AVAILABLE]) {
    values[0] = reader->specialValues[NOT_AVAILABLE];
  }
  return 1;
}

int C__rxfDataReadDone(void* rxf) {
  ((Reader*)rxf)->reading = NULL;
  return 1;
}
