/* Handle types, codes and limits of the ZTB interface, usable from C99 and C++. */
#ifndef ZTB_TYPES_H_
#define ZTB_TYPES_H_

#include <ztb/errors.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Values that somebody holds, as ztbHoldValues gives them. To be read only. */
typedef struct ztbHeldValues ztbHeldValues;
struct ztbHeldValues {
  const double* values;
  int count;
  void (*release)(ztbHeldValues* held); /* what ztbReleaseValues calls */
};

/* The front of a database; the rest is the library's own, so that only pointers to it cross the
 * interface. To be read only. */
typedef struct ztbRec ztbRec;
struct ztbRec {
  int errorKind;          /* of the latest failure, as ztbErrorKind tells it */
  unsigned recordChanges; /* as ztbRecordChanges tells it */
  /* what ztbReadRecords, ztbValuesInPlace and ztbHoldValues call */
  int (*recordReader)(ztbRec* ztb, void* rec, int most, int* const* keys, double* const* values);
  int (*valueFinder)(ztbRec* ztb, void* sym, const double** values);
  int (*valueHolder)(ztbRec* ztb, void* sym, ztbHeldValues** held);
};

/* What a host engine offers to a database that is attached to it. Names and texts have a length
 * byte in front and no terminator; userMem is the host's own word. All but the log return 0 for
 * success.
 */
typedef int (*ztbHostFindSymbol)(const char* name, int* number, void* userMem);
typedef int (*ztbHostDataReadRawStart)(int number, int* count, void* userMem);
typedef int (*ztbHostDataReadRaw)(int* keys, double* values, int* unused, void* userMem);
typedef int (*ztbHostDataReadDone)(void* userMem);
/* text has room for a length byte and size chars. */
typedef int (*ztbHostGetElemText)(int number, char* text, int size, void* userMem);
typedef void (*ztbHostLog)(const char* text, void* userMem);

/* Limits. */
enum {
  ZTB_MAX_DIMENSION = 20,    /* index positions of a symbol */
  ZTB_MAX_NAME_LENGTH = 63,  /* chars of a symbol name or a label */
  ZTB_MAX_TEXT_LENGTH = 255, /* chars of an explanatory text */
  ZTB_TEXT_BUFFER_SIZE = 256 /* bytes of a caller's buffer for any text, terminator included */
};

/* Symbol types. */
enum { ZTB_SET = 0, ZTB_PARAMETER = 1, ZTB_VARIABLE = 2, ZTB_EQUATION = 3, ZTB_ALIAS = 4 };

/* Value slots of a record. Sets and parameters have only the first. */
enum { ZTB_LEVEL = 0, ZTB_MARGINAL = 1, ZTB_LOWER = 2, ZTB_UPPER = 3, ZTB_SCALE = 4 };

/* Places of the five special values in every table of them. */
enum {
  ZTB_UNDEFINED = 0,
  ZTB_NOT_AVAILABLE = 1,
  ZTB_PLUS_INFINITY = 2,
  ZTB_MINUS_INFINITY = 3,
  ZTB_EPSILON = 4,
  ZTB_SPECIAL_VALUE_COUNT = 5
};

/* Record stores. */
enum { ZTB_STORAGE_TREE_MAP = 0, ZTB_STORAGE_VECTOR = 1, ZTB_STORAGE_TRIE = 2 };

/* Keys of c__ztbinfo. */
enum {
  ZTB_INFO_SYMBOL_COUNT = 0,            /* symbols without aliases and without the universe */
  ZTB_INFO_UEL_COUNT = 1,               /* labels */
  ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS = 2, /* symbols with aliases, without the universe */
  ZTB_INFO_RECORD_STORAGE = 3,          /* store of new symbols */
  ZTB_INFO_FILE_BACKED = 4              /* 1 while unread symbols come from a source */
};

/* Keys of c__ztbsymbolinfo. */
enum {
  ZTB_SYMBOL_INFO_NAME = 0,
  ZTB_SYMBOL_INFO_DIMENSION = 1,
  ZTB_SYMBOL_INFO_TYPE = 2,
  ZTB_SYMBOL_INFO_RECORD_COUNT = 3,
  ZTB_SYMBOL_INFO_USER_INFO = 4,
  ZTB_SYMBOL_INFO_TEXT = 5,
  ZTB_SYMBOL_INFO_NUMBER = 6,
  ZTB_SYMBOL_INFO_WRITE_RECORDED = 7,
  ZTB_SYMBOL_INFO_STORAGE = 8
};

#ifdef __cplusplus
}
#endif

#endif /* ZTB_TYPES_H_ */
