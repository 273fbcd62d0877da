/* Kinds of failures, usable from C99 and C++. A text says what was wrong, and is for people;
 * programs go by the kind: ztbErrorKind (ztb/ztb.h) for a database, ztbRxfErrorKind for exchange
 * files, ztbModelErrorKind for models, and Error::kind() in C++. */
#ifndef ZTB_ERRORS_H_
#define ZTB_ERRORS_H_

#ifdef __cplusplus
extern "C" {
#endif

enum {
  ZTB_ERROR_NONE = 0,
  ZTB_ERROR_REFUSED = 1,      /* an argument, or an operation that does not fit what there is */
  ZTB_ERROR_NOT_FOUND = 2,    /* no such symbol, label, record or solver */
  ZTB_ERROR_EXISTS = 3,       /* a symbol of that name, or a record of that key, is there already */
  ZTB_ERROR_DOMAIN = 4,       /* something that is no domain, or a record outside of its domains */
  ZTB_ERROR_NO_FILE = 5,      /* no such file, or no folder for it */
  ZTB_ERROR_DAMAGED_FILE = 6, /* a file that does not hold what it should */
  ZTB_ERROR_IO = 7,           /* a file that cannot be opened, read or written */
  ZTB_ERROR_LIMIT = 8,        /* beyond a limit on memory, or what the format can hold */
  ZTB_ERROR_OUT_OF_MEMORY = 9,
  ZTB_ERROR_NO_LIBRARY = 10, /* a library that is needed cannot be used */
  ZTB_ERROR_SOLVER = 11,     /* the solver, or the library that calls it, failed */
  ZTB_ERROR_CLOSED = 12,     /* of wrappers: what was closed is used */
  ZTB_ERROR_INTERNAL = 13    /* an exception that the operation does not expect */
};

/* Numbers by which an exchange-file library tells these kinds to a database. Any other number is of
 * kind ZTB_ERROR_REFUSED. */
enum {
  ZTB_RXF_NO_SUCH_FILE = 1,
  ZTB_RXF_NO_PERMISSION = 2,
  ZTB_RXF_IS_FOLDER = 3,
  ZTB_RXF_NOT_REGULAR_FILE = 4,
  ZTB_RXF_NOT_RXF_FILE = 5,
  ZTB_RXF_NEWER_VERSION = 6,
  ZTB_RXF_CUT_SHORT = 7,
  ZTB_RXF_DAMAGED = 8,
  ZTB_RXF_DISK_FULL = 9,
  ZTB_RXF_WRITE_FAILED = 10,
  ZTB_RXF_READ_FAILED = 11,
  ZTB_RXF_CANNOT_OPEN = 12,
  ZTB_RXF_LABEL_TWICE = 15,
  ZTB_RXF_SYMBOL_TWICE = 17,
  ZTB_RXF_RECORD_TWICE = 21,
  ZTB_RXF_DOMAIN_UNKNOWN = 22,
  ZTB_RXF_DOMAIN_NOT_ONE_DIMENSIONAL = 23,
  ZTB_RXF_OUTSIDE_DOMAIN = 24,
  ZTB_RXF_LIMIT_EXCEEDED = 29,
  ZTB_RXF_NO_SUCH_SYMBOL = 30,
  ZTB_RXF_NO_SUCH_LABEL = 31,
  ZTB_RXF_OUT_OF_MEMORY = 33,
  ZTB_RXF_INTERNAL = 34,
  ZTB_RXF_CHANGED = 35
};

/* The kind of a failure by its number; ZTB_ERROR_NONE for 0. */
static inline int ztbErrorKindOfRxf(int number) {
  switch (number) {
    case 0:
      return ZTB_ERROR_NONE;
    case ZTB_RXF_NO_SUCH_FILE:
      return ZTB_ERROR_NO_FILE;
    case ZTB_RXF_NOT_RXF_FILE:
    case ZTB_RXF_NEWER_VERSION:
    case ZTB_RXF_CUT_SHORT:
    case ZTB_RXF_DAMAGED:
    case ZTB_RXF_CHANGED:
      return ZTB_ERROR_DAMAGED_FILE;
    case ZTB_RXF_NO_PERMISSION:
    case ZTB_RXF_IS_FOLDER:
    case ZTB_RXF_NOT_REGULAR_FILE:
    case ZTB_RXF_DISK_FULL:
    case ZTB_RXF_WRITE_FAILED:
    case ZTB_RXF_READ_FAILED:
    case ZTB_RXF_CANNOT_OPEN:
      return ZTB_ERROR_IO;
    case ZTB_RXF_LABEL_TWICE:
    case ZTB_RXF_SYMBOL_TWICE:
    case ZTB_RXF_RECORD_TWICE:
      return ZTB_ERROR_EXISTS;
    case ZTB_RXF_DOMAIN_UNKNOWN:
    case ZTB_RXF_DOMAIN_NOT_ONE_DIMENSIONAL:
    case ZTB_RXF_OUTSIDE_DOMAIN:
      return ZTB_ERROR_DOMAIN;
    case ZTB_RXF_LIMIT_EXCEEDED:
      return ZTB_ERROR_LIMIT;
    case ZTB_RXF_NO_SUCH_SYMBOL:
    case ZTB_RXF_NO_SUCH_LABEL:
      return ZTB_ERROR_NOT_FOUND;
    case ZTB_RXF_OUT_OF_MEMORY:
      return ZTB_ERROR_OUT_OF_MEMORY;
    case ZTB_RXF_INTERNAL:
      return ZTB_ERROR_INTERNAL;
    default:
      return ZTB_ERROR_REFUSED;
  }
}

#ifdef __cplusplus
}
#endif

#endif /* ZTB_ERRORS_H_ */
