// All contests, one function for each group of operations.
#ifndef ZTB_BENCH_CONTESTS_H_
#define ZTB_BENCH_CONTESTS_H_

#include "bench/contest.h"

namespace bench {

// Records in key order, by label numbers.
Contest sortedLoad();
// Records in random order, by labels that the store has not seen before.
Contest labelLoad();
// The value of every record, asked for by its labels in random order.
Contest labelLookup();
// The values of all records in key order.
Contest walk();
// The values of the records that have one label at the first or at the second position, or one at
// each of the first and the third; a record of the whole symbol is the unit.
Contest sliceByFirst();
Contest sliceBySecond();
Contest sliceByFirstAndThird();
// All records taken out of a symbol, then the memory given back.
Contest clearAndFree();
// The records of a symbol at the places of their labels in a cube.
Contest recordsToCube();
// Every cell of a cube into a record; a cell is the unit. Then every cell that isn't zero.
Contest cubeToRecords();
Contest nonzerosToRecords();
// The records of a symbol into a database whose labels have other numbers.
Contest copyAcross();
// Whether each label of each record is in the set of its position; all are.
Contest domainCheck();
// A database of a hundred symbols into a new file, which is on disk afterwards (SQLite syncs as we
// do, HDF5 doesn't); the file's size.
Contest exchangeWrite();
// Labels and symbols of the file, without records; the unit is the file.
Contest exchangeOpen();
// All records into the stores of their symbols; the rivals fill ordered maps.
Contest exchangeReadAll();
// The same for one symbol of the hundred; the unit is a record of that symbol.
Contest exchangeReadOne();
// All records out of the file, with no store to fill.
Contest exchangeStream();

}  // namespace bench

#endif  // ZTB_BENCH_CONTESTS_H_
