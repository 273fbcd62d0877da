/* Symbols as Arrow data: the records of a symbol as a stream of record batches, and symbols filled
 * from such a stream, by the Arrow C stream interface, which many programs and libraries for tables
 * speak. Nothing is linked for it.
 *
 *   struct ArrowArrayStream stream;
 *   char message[512];
 *   if (!ztbArrowExport(database, symbol, NULL, &stream, message, sizeof message)) puts(message);
 *   ... hand the stream to a reader, which releases it ...
 *
 * A batch is a struct with a column for each position, under the names of ztb/column_names.hpp, and
 * then `value` of a parameter, `level`, `marginal`, `lower`, `upper` and `scale` of a variable or
 * equation, or `text` of a set. Labels are dictionaries of utf8 with int32 indices, and a batch may
 * have other dictionaries than the one before; numbers are float64, texts utf8. Records come in
 * their order.
 *
 * Special values are doubles as the caller has set them for the database; unless anything is set,
 * `undef` is 1e300, `na` the NaN 0x7FF8000000000000, the infinities are infinities and `eps` is the
 * smallest positive double. They come back by the same rule, bit for bit, and so does any other
 * NaN.
 *
 * The values of a parameter on the vector store are not copied: batches hold them where they lie
 * (ztbHoldValues), and stay as they are, whatever becomes of the records and of the database. While
 * such batches live, the first change to a record copies the values of its symbol, for the
 * database. Those of any other store or symbol lie apart, or in rows beside each other, and are put
 * together into a column for each batch; so are those of a batch with a special value that the
 * caller has set another double for.
 *
 * The functions stand in libztbformats.so. The stream and its database are used by one thread at a
 * time; batches may be used and released by any thread, whenever.
 */
#ifndef ZTB_ARROW_H_
#define ZTB_ARROW_H_

#include <stdint.h>
#include <ztb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The structures of the Arrow C data interface, as all who speak it define them. */
#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;
  void (*release)(struct ArrowSchema*);
  void* private_data;
};

struct ArrowArray {
  int64_t length;
  int64_t null_count;
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);
  void* private_data;
};

#endif /* ARROW_C_DATA_INTERFACE */

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

struct ArrowArrayStream {
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*);
  void* private_data;
};

#endif /* ARROW_C_STREAM_INTERFACE */

/* ---- out ---------------------------------------------------------------------------------------
 */

/* How a symbol goes out. */
enum {
  /* `na` is a null of its column. */
  ZTB_ARROW_NA_AS_NULL = 1,
  /* Asks for nothing any more: values are shown where they lie, wherever they can be. */
  ZTB_ARROW_IN_PLACE = 2
};

typedef struct ztbArrowOptions {
  int flags;
  int batchRecords; /* the most of a batch; 0 for 65536 */
  /* What the stream belongs to. Each may be null. `enter` and `leave` stand around all that the
   * stream does with the database; an `enter` that gives 0 writes the reason, and the stream then
   * fails. `release` is called once, when the stream is released; also when the export fails. */
  void* owner;
  int (*enter)(void* owner, char* message, int messageSize);
  void (*leave)(void* owner);
  void (*release)(void* owner);
} ztbArrowOptions;

/* Makes *stream that of the records of a symbol; those of an alias are its set's. Options may be
 * null. The database has to live as long as the stream is read, unless `enter` keeps the stream
 * from it; batches outlive it. When records of the database have changed, the stream fails with the
 * next batch. A label or text that is no UTF-8 fails it, too. 1, or 0 with the reason in `message`,
 * cut to `messageSize` bytes with its final zero. */
int ztbArrowExport(ztbRec* database, void* symbol, const ztbArrowOptions* options,
                   struct ArrowArrayStream* stream, char* message, int messageSize);

/* ---- in ----------------------------------------------------------------------------------------
 */

/* What becomes of nulls among values. A null among labels is always refused; one among texts is an
 * empty text. */
enum {
  ZTB_ARROW_NULLS_REFUSED = 0,
  ZTB_ARROW_NULLS_AS_NA = 1,
  /* A record whose values are all null is left out; of others a null is the value that a new record
   * has. */
  ZTB_ARROW_NULLS_SKIPPED = 2
};

typedef struct ztbArrowImportOptions {
  /* The columns of labels, a name for each position. Null for those that have the names of a
   * symbol's positions; where not all are there, and for a new symbol, the first columns. */
  const char* const* keys;
  int keyCount;
  int nulls;
} ztbArrowImportOptions;

/* Replaces the records of a symbol by those of the stream, which is released in any case. Columns
 * that hold no labels are the content: one of any name for a parameter; some of the five fields for
 * a variable or equation, or one of any name, the level; none or one for a set. What no column
 * tells is as a new record has it.
 *
 * Labels are utf8, large utf8, utf8 views, whole numbers, dates and times of day, in ISO form, or
 * dictionaries of these; values are numbers, decimals, as the nearest doubles, and truth values.
 * A label that the database does not have is added, in the order in which records first name it,
 * position by position. On failure nothing has changed. */
int ztbArrowFill(ztbRec* database, void* symbol, struct ArrowArrayStream* stream,
                 const ztbArrowImportOptions* options, char* message, int messageSize);

/* Makes a symbol from a stream, which is released in any case, and gives its handle. `type` is
 * ZTB_SET, ZTB_PARAMETER, ZTB_VARIABLE or ZTB_EQUATION, or -1: then columns of fields make a
 * variable, a last column that could be no label or is called `value` a parameter, anything else
 * a set. Without key columns named in the options, the content is the columns of fields, the last
 * one of a parameter, and `text` of a set. A position is over the set that its column has the name
 * of; without such a set the name alone is kept, if it can be. On failure nothing has changed. */
int ztbArrowMake(ztbRec* database, const char* name, int type, struct ArrowArrayStream* stream,
                 const ztbArrowImportOptions* options, void** symbol, char* message,
                 int messageSize);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_ARROW_H_ */
