/* Exchange files (RXF) without a database: symbols, labels, texts, and records by columns, block by
 * block, in constant memory.
 *
 *   ztbRxfFile* file;
 *   ztbRxfRecords* records;
 *   char message[512];
 *   int count;
 *   if (!ztbRxfOpen(&file, "diet.rxf", message, sizeof message) ||
 *       !ztbRxfRecordsOpen(&records, file, ztbRxfFindSymbol(file, "price"), message, sizeof
 * message)) { puts(message);
 *   }
 *   while ((count = ztbRxfNextBlock(records)) > 0) {
 *     const int* food = ztbRxfKeys(records, 0);
 *     const double* price = ztbRxfValues(records, 0);
 *     for (int i = 0; i < count; ++i) printf("%s %g\n", ztbRxfLabel(file, food[i]), price[i]);
 *   }
 *   if (count < 0) puts(ztbRxfMessage(records));
 *
 * Whatever is handed out was verified: at the opening everything but the records, a block of
 * records before its first record is there. The functions stand in librxfcclib64.so; link with it,
 * or open it at run time.
 *
 * Labels, texts and symbols are numbered from 1; the universe of all labels is symbol 0, named "*",
 * a set of one position with a record for each label. Texts that are returned stay until the file
 * is closed. A number that does not exist, and a null handle, give null or 0.
 *
 * An open file may be used by several threads at once; each ztbRxfRecords by one at a time. Of a
 * symbol of very many records, once two blocks in a row were read, a thread of the library's own
 * decodes the next block ahead; nothing but the time tells. It ends with the last block, with a
 * failure, and when blocks are skipped or the records rewound or closed. There is none where the
 * process may use one processor only, or with ZTB_RXF_THREADS=1 in the environment.
 */
#ifndef ZTB_RXF_H_
#define ZTB_RXF_H_

#include <ztb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ztbRxfFileRec ztbRxfFile;
typedef struct ztbRxfRecordsRec ztbRxfRecords;

/* Records of a block at most; every block of a symbol but the last has as many. */
enum { ZTB_RXF_BLOCK_RECORDS = 65536 };

/* What is known of the domains of a symbol. */
enum {
  ZTB_RXF_DOMAIN_NONE = 0,   /* nothing: "*" at each position */
  ZTB_RXF_DOMAIN_NAMES = 2,  /* names, which need not be those of sets */
  ZTB_RXF_DOMAIN_CHECKED = 3 /* sets; each record was held against them when the file was written */
};

typedef struct ztbRxfSymbolInfo {
  const char* name;
  const char* text; /* explanatory text */
  int type;         /* ZTB_SET to ZTB_ALIAS */
  int dimension;
  int valueCount;  /* values of a record: 1, or 5 for a variable or equation */
  int userInfo;    /* as a database has it: of an equation its subtype; 0 of an alias */
  int recordCount; /* of an alias, as the dimension, that of its set */
  int domainKind;
  int aliasTarget; /* of an alias the number of its set, 0 for the universe; otherwise -1 */
} ztbRxfSymbolInfo;

/* Opens a file and verifies everything but the records. 1, or 0 with the reason in `message`, cut
 * to `messageSize` bytes with its final zero, and *file null. The file stays the one that was
 * opened when another is published under its name. */
int ztbRxfOpen(ztbRxfFile** file, const char* path, char* message, int messageSize);

/* The kind of the latest failure of a function here in the calling thread, a ZTB_ERROR_ code of
 * ztb/errors.h; ZTB_ERROR_NONE before the first. A success does not clear it. */
int ztbRxfErrorKind(void);

/* Closes the file and sets *file to null. Records that are being read can be read on. */
void ztbRxfClose(ztbRxfFile** file);

/* The version of the format, the producer that was named when the file was written, and the length
 * of the file in bytes. */
int ztbRxfVersion(const ztbRxfFile* file);
const char* ztbRxfProducer(const ztbRxfFile* file);
unsigned long long ztbRxfSize(const ztbRxfFile* file);

/* Labels; finding folds the case of ASCII letters and gives 0 for a label that is not there. */
int ztbRxfLabelCount(const ztbRxfFile* file);
const char* ztbRxfLabel(const ztbRxfFile* file, int number);
int ztbRxfFindLabel(const ztbRxfFile* file, const char* label);

/* Explanatory texts of set elements. The number of an element's text is its value; 0, which has no
 * entry here, is the empty text and gives "". */
int ztbRxfTextCount(const ztbRxfFile* file);
const char* ztbRxfText(const ztbRxfFile* file, int number);

/* Symbols, the universe not counted. Finding folds the case of ASCII letters and gives -1 for a
 * name that is not there, 0 for "*". */
int ztbRxfSymbolCount(const ztbRxfFile* file);
int ztbRxfFindSymbol(const ztbRxfFile* file, const char* name);

/* Fills *info; 0 when there is no such symbol. */
int ztbRxfSymbol(const ztbRxfFile* file, int number, ztbRxfSymbolInfo* info);

/* The domain of a position, from 0, as the file names it; "*" is the universe, and stands at every
 * position of an alias. */
const char* ztbRxfDomain(const ztbRxfFile* file, int symbol, int position);

/* Bytes that the records of a symbol take in a database, about; `store` is ZTB_STORAGE_TREE_MAP,
 * ZTB_STORAGE_VECTOR or ZTB_STORAGE_TRIE. */
unsigned long long ztbRxfMemory(const ztbRxfFile* file, int symbol, int store);

/* Sets how many bytes the records of an exchange file may take in a database. The limit holds for
 * the databases that the calling thread opens from then on, each for itself; 0, the default, is
 * none. A symbol whose records would go beyond it, by the estimate of ztbRxfMemory for the tree map
 * and with what was read before, cannot be read: "Limit exceeded: its 33554432 records need about
 * 2 GiB in memory, the limit is 1 GiB". Nothing has been taken then. What passes from file to file
 * when an unread symbol is written is not counted, nor is what is read by the functions here.
 * Gives the limit that the thread had before. */
unsigned long long ztbRxfMemoryLimit(unsigned long long bytes);

/* How many files databases have opened in the calling thread since it set its limit. A database
 * whose opening is not counted uses another copy of this library than the program, and has none. */
int ztbRxfMemoryLimitTaken(void);

/* Begins to read the records of a symbol; those of an alias are its set's. 1, or 0 with the reason
 * in `message` and *records null. Several may be read at once. */
int ztbRxfRecordsOpen(ztbRxfRecords** records, ztbRxfFile* file, int symbol, char* message,
                      int messageSize);

/* Ends reading and sets *records to null. */
void ztbRxfRecordsClose(ztbRxfRecords** records);

/* Reads and verifies the next block and gives the number of its records; 0 behind the last block.
 * -1 when the block is damaged, the file cannot be read, or was changed since it was opened:
 * nothing of the block is handed out then, and every further call gives -1 again. */
int ztbRxfNextBlock(ztbRxfRecords* records);

/* Goes behind the next `count` blocks and gives how many there were. Of these only the heads are
 * read and verified. -1 as with ztbRxfNextBlock, also for its damage. */
int ztbRxfSkipBlocks(ztbRxfRecords* records, int count);

/* The records of the present block by columns: the label numbers at a position, and the values of a
 * slot, from 0. Records ascend by label numbers, the first position most significant. Special
 * values are those of c__ztbgetspecialvalues. Valid until the next call for these records. */
const int* ztbRxfKeys(const ztbRxfRecords* records, int position);
const double* ztbRxfValues(const ztbRxfRecords* records, int slot);

/* Back to the first block, also after a failure. A first block that is present is not read again.
 */
void ztbRxfRewind(ztbRxfRecords* records);

/* Goes on behind a damaged block, whose records are then missing: 1 when ztbRxfNextBlock can be
 * asked for what follows it, 0 when nothing behind it can be found or there was no damage. */
int ztbRxfSkipDamage(ztbRxfRecords* records);

/* Why ztbRxfNextBlock gave -1: file, symbol, block and reason; empty when it did not. */
const char* ztbRxfMessage(const ztbRxfRecords* records);

/* Where it failed, or where the present block is: the number of the block, from 1 (0 before the
 * first), and the offset of its head in the file. */
int ztbRxfBlockNumber(const ztbRxfRecords* records);
unsigned long long ztbRxfBlockOffset(const ztbRxfRecords* records);

/* A file that is written from front to back in the memory of a block: labels, symbols each with its
 * records, texts. It takes its name when it is published, and only if nothing was refused; until
 * then, and otherwise, what was there stays.
 *
 * Each function gives 0 for what is refused; ztbRxfPublish tells the first reason. */
typedef struct ztbRxfOutputRec ztbRxfOutput;

/* Begins a file. 1, or 0 with the reason in `message` and *output null. */
int ztbRxfCreate(ztbRxfOutput** output, const char* path, const char* producer, char* message,
                 int messageSize);

/* Adds the next label; all come before the first symbol. */
int ztbRxfAddLabel(ztbRxfOutput* output, const char* label);

/* Adds a symbol, to which the records that follow belong. Taken of `info` are name, text, type,
 * dimension, userInfo and domainKind. `domains` has a name for each position, null with
 * ZTB_RXF_DOMAIN_NONE. With ZTB_RXF_DOMAIN_CHECKED a record outside is refused; a domain that is
 * no set or alias of one position added before makes them all names. Of an alias, which has no
 * records, domains[0] names its set, "*" the universe. */
int ztbRxfAddSymbol(ztbRxfOutput* output, const ztbRxfSymbolInfo* info, const char* const* domains);

/* Adds records by columns: an array of label numbers for each position, an array of values for each
 * of the 1 or 5 slots. Records ascend by label numbers, the first position most significant. */
int ztbRxfAddRecords(ztbRxfOutput* output, int count, const int* const* keys,
                     const double* const* values);

/* Adds a text of set elements and gives its number, from 1 in order; 0 when it is refused. */
int ztbRxfAddText(ztbRxfOutput* output, const char* text);

/* Completes the file and puts it in its place. 1, or 0 with the reason in `message`. In both cases
 * it is closed and *output null. */
int ztbRxfPublish(ztbRxfOutput** output, char* message, int messageSize);

/* Gives the file up and sets *output to null. */
void ztbRxfDiscard(ztbRxfOutput** output);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_RXF_H_ */
