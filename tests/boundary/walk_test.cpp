// Walking the records of a symbol and the labels of the universe, copies and ends of handles, and
// what a handle is worth after its record was deleted.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

class Walk : public testing::Test {
 protected:
  // a=1 b=2 c=3
  Walk() : data(db.addParameter("p")) {
    db.put(data, {"a"}, 1.0);
    db.put(data, {"b"}, 2.0);
    db.put(data, {"c"}, 3.0);
  }

  int next(void* record) { return lib().c__ztbrecordmovenext(db, record); }
  int prev(void* record) { return lib().c__ztbrecordmoveprev(db, record); }
  int hasNext(void* record) { return lib().c__ztbrecordhasnext(db, record); }
  int hasPrev(void* record) { return lib().c__ztbrecordhasprev(db, record); }
  int erase(void* record) { return lib().c__ztbdeleterecord(db, record); }

  Database db;
  void* data;
};

TEST_F(Walk, forwardsVisitsEveryRecordInOrder) {
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}, {{"b"}, 2.0}, {{"c"}, 3.0}}), db.rows(data));
}

TEST_F(Walk, ordersByEveryPosition) {
  void* const pairs = db.addParameter("q", 2);
  for (int i = 1; i <= 12; ++i) {
    db.uel((numbered("u", i)).c_str());
  }
  db.put(pairs, {"u2", "u1"});
  db.put(pairs, {"u1", "u10"});
  db.put(pairs, {"u1", "u2"});
  EXPECT_EQ((std::vector<Row>{{{"u1", "u2"}, 0}, {{"u1", "u10"}, 0}, {{"u2", "u1"}, 0}}),
            db.rows(pairs))
      << "by number, not by text";
}

TEST_F(Walk, pastTheLastRecordFailsAndStaysThere) {
  const Record record = db.last(data);
  for (int i = 0; i < 2; ++i) {
    EXPECT_FAILURE(db, "Last record reached in symbol p", next(record));
    EXPECT_EQ(3.0, db.level(record));
  }
  EXPECT_EQ(1, prev(record));
  EXPECT_EQ(2.0, db.level(record));
}

TEST_F(Walk, beforeTheFirstRecordFailsSilentlyAndStaysThere) {
  const Record record = db.first(data);
  for (int i = 0; i < 2; ++i) {
    EXPECT_SILENT_FAILURE(db, prev(record));
    EXPECT_EQ(1.0, db.level(record));
  }
  EXPECT_SUCCESS(db, next(record));
  EXPECT_EQ(2.0, db.level(record));
}

TEST_F(Walk, backwardsVisitsEveryRecord) {
  const Record record = db.last(data);
  EXPECT_SUCCESS(db, prev(record));
  EXPECT_EQ(2.0, db.level(record));
  EXPECT_SUCCESS(db, prev(record));
  EXPECT_EQ(1.0, db.level(record));
}

TEST_F(Walk, tellsWhetherThereIsMoreWithoutMovingOrText) {
  const Record record = db.first(data);
  EXPECT_SUCCESS(db, hasNext(record));
  EXPECT_SILENT_FAILURE(db, hasPrev(record));
  EXPECT_EQ(1.0, db.level(record));
  EXPECT_EQ(1, next(record));
  EXPECT_SUCCESS(db, hasNext(record));
  EXPECT_SUCCESS(db, hasPrev(record));
  EXPECT_EQ(2.0, db.level(record));
  EXPECT_EQ(1, next(record));
  EXPECT_SILENT_FAILURE(db, hasNext(record));
  EXPECT_SUCCESS(db, hasPrev(record));
  EXPECT_EQ(3.0, db.level(record));
}

TEST_F(Walk, ofAScalarHasOneStep) {
  void* const scalar = db.addParameter("s", 0);
  db.put(scalar, {}, 5.0);
  const Record record = db.first(scalar);
  EXPECT_EQ(0, hasNext(record));
  EXPECT_EQ(0, hasPrev(record));
  EXPECT_FAILURE(db, "Last record reached in symbol s", next(record));
  EXPECT_SILENT_FAILURE(db, prev(record));
  EXPECT_EQ(5.0, db.level(record));
}

TEST_F(Walk, ofAScalarVariableHasOneStep) {
  void* const scalar = db.addVariable("v", 0);
  db.put(scalar, {}, 5.0);
  const Record record = db.last(scalar);
  EXPECT_EQ(0, hasNext(record));
  EXPECT_FAILURE(db, "Last record reached in symbol v", next(record));
  EXPECT_SILENT_FAILURE(db, prev(record));
  EXPECT_EQ(5.0, db.level(record));
}

TEST_F(Walk, refusesNullHandles) {
  const std::string text = "No symbol record handle specified";
  EXPECT_FAILURE(db, text, next(nullptr));
  EXPECT_FAILURE(db, text, prev(nullptr));
  EXPECT_FAILURE(db, text, hasNext(nullptr));
  EXPECT_FAILURE(db, text, hasPrev(nullptr));
}

TEST_F(Walk, throughTheUniverseGoesLabelByLabel) {
  const Record record = db.first(db.universe());
  EXPECT_EQ(0, hasPrev(record));
  EXPECT_EQ(1, hasNext(record));
  EXPECT_SUCCESS(db, next(record));
  EXPECT_EQ((Labels{"b"}), db.labels(record, 1));
  EXPECT_SUCCESS(db, hasPrev(record));
  EXPECT_SUCCESS(db, next(record));
  EXPECT_SILENT_FAILURE(db, hasNext(record));
  EXPECT_FAILURE(db, "Last record reached in Universe", next(record));
  EXPECT_EQ((Labels{"c"}), db.labels(record, 1));
}

TEST_F(Walk, backwardsThroughTheUniverseEndsSilentlyAtTheFirstLabel) {
  const Record record = db.last(db.universe());
  EXPECT_SUCCESS(db, prev(record));
  EXPECT_SUCCESS(db, prev(record));
  EXPECT_SILENT_FAILURE(db, prev(record));
  EXPECT_EQ((Labels{"a"}), db.labels(record, 1));
}

TEST_F(Walk, throughTheUniverseSeesLabelsAddedOnTheWay) {
  const Record record = db.last(db.universe());
  EXPECT_EQ(0, hasNext(record));
  db.uel("d");
  EXPECT_EQ(1, hasNext(record));
  EXPECT_SUCCESS(db, next(record));
  EXPECT_EQ((Labels{"d"}), db.labels(record, 1));
}

TEST_F(Walk, sameRecordComparesWhatHandlesStandOn) {
  const Record first = db.record(data, {"a"});
  const Record again = db.first(data);
  const Record other = db.record(data, {"b"});
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, first, first));
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, first, again));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbsamerecord(db, first, other));
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, nullptr, nullptr));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbsamerecord(db, first, nullptr));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbsamerecord(db, nullptr, first));
}

TEST_F(Walk, sameRecordComparesLabelsOfUniverseHandles) {
  const Record first = db.first(db.universe());
  const Record again = db.first(db.universe());
  const Record last = db.last(db.universe());
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, first, again));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbsamerecord(db, first, last));
  const Record ofSymbol = db.first(data);
  EXPECT_SILENT_FAILURE(db, lib().c__ztbsamerecord(db, first, ofSymbol));
}

TEST_F(Walk, sameRecordTellsEqualRecordsOfTwoSymbolsApart) {
  void* const twin = db.addParameter("q");
  db.put(twin, {"a"}, 1.0);
  EXPECT_EQ(0, lib().c__ztbsamerecord(db, db.first(data), db.first(twin)));
}

TEST_F(Walk, aCopyStandsOnTheSameRecordAndMovesOnItsOwn) {
  const Record record = db.record(data, {"b"});
  void* handle = untouched;
  EXPECT_SUCCESS(db, lib().c__ztbcopysymboliterator(db, record, &handle));
  const Record copy(db, handle);
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, record, copy));
  EXPECT_EQ(1, next(copy));
  EXPECT_EQ(3.0, db.level(copy));
  EXPECT_EQ(2.0, db.level(record));
}

TEST_F(Walk, aCopyOfAUniverseHandleStandsOnTheSameLabel) {
  const Record record = db.last(db.universe());
  void* handle = nullptr;
  ASSERT_EQ(1, lib().c__ztbcopysymboliterator(db, record, &handle));
  const Record copy(db, handle);
  EXPECT_EQ((Labels{"c"}), db.labels(copy, 1));
  EXPECT_EQ(1, prev(copy));
  EXPECT_EQ((Labels{"b"}), db.labels(copy, 1));
  EXPECT_FAILURE(db, "Last record reached in Universe", next(record));
}

TEST_F(Walk, copyingAndFreeingRefuseNull) {
  void* handle = untouched;
  EXPECT_FAILURE(db, "No source symbol record handle specified",
                 lib().c__ztbcopysymboliterator(db, nullptr, &handle));
  EXPECT_EQ(untouched, handle);
  EXPECT_FAILURE(db, "No iterator to be freed defined",
                 lib().c__ztbfreesymboliterator(db, nullptr));
}

TEST_F(Walk, deletingMovesTheHandleToTheFollowingRecord) {
  const Record record = db.record(data, {"b"});
  EXPECT_SUCCESS(db, erase(record));
  EXPECT_EQ((Labels{"c"}), db.labels(record, 1));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}, {{"c"}, 3.0}}), db.rows(data));
  EXPECT_SUCCESS(db, prev(record));
  EXPECT_EQ(1.0, db.level(record));
}

TEST_F(Walk, deletingCanEmptyASymbolFromItsFront) {
  const Record record = db.first(data);
  EXPECT_EQ(1, erase(record));
  EXPECT_EQ(1, erase(record));
  EXPECT_EQ(1, erase(record));
  EXPECT_EQ(0, db.recordCount(data));
  EXPECT_UNEXPECTED(db, "ztbDeleteRecord", erase(record));
}

TEST_F(Walk, afterDeletingTheLastRecordTheHandleStandsPastTheEnd) {
  const Record record = db.last(data);
  EXPECT_EQ(1, erase(record));
  EXPECT_SILENT_FAILURE(db, hasNext(record));
  EXPECT_FAILURE(db, "Last record reached in symbol p", next(record));
  double level = 0;
  EXPECT_UNEXPECTED(db, "ztbGetLevel", lib().c__ztbgetlevel(db, record, &level));
  EXPECT_SUCCESS(db, hasPrev(record));
  EXPECT_SUCCESS(db, prev(record));
  EXPECT_EQ((Labels{"b"}), db.labels(record, 1));
}

TEST_F(Walk, pastTheEndNothingOfARecordCanBeReadOrWritten) {
  const Record record = db.last(data);
  ASSERT_EQ(1, erase(record));
  TextBuffer text;
  TextBuffers keys;
  int numbers[20] = {};
  double values[5] = {};
  EXPECT_UNEXPECTED(db, "ztbSetLevel", lib().c__ztbsetlevel(db, record, 1.0));
  EXPECT_UNEXPECTED(db, "ztbGetKey", lib().c__ztbgetkey(db, record, 0, text));
  EXPECT_UNEXPECTED(db, "ztbGetKeys", lib().c__ztbgetkeys(db, record, 1, keys));
  EXPECT_UNEXPECTED(db, "ztbGetElemText", lib().c__ztbgetelemtext(db, record, text));
  EXPECT_UNEXPECTED(db, "ztbSetElemText", lib().c__ztbsetelemtext(db, record, "text"));
  EXPECT_UNEXPECTED(db, "ztbGetRecordRaw",
                    lib().c__ztbgetrecordraw(db, record, 1, numbers, values));
  EXPECT_UNEXPECTED(db, "ztbDeleteRecord", erase(record));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}, {{"b"}, 2.0}}), db.rows(data));
}

TEST_F(Walk, inAnEmptiedSymbolTheHandleGoesNowhere) {
  void* const one = db.addParameter("one");
  const Record record = db.put(one, {"a"});
  ASSERT_EQ(1, erase(record));
  EXPECT_SILENT_FAILURE(db, hasNext(record));
  EXPECT_SILENT_FAILURE(db, hasPrev(record));
  EXPECT_FAILURE(db, "Last record reached in symbol one", next(record));
  EXPECT_SILENT_FAILURE(db, prev(record));
  EXPECT_EQ(0, db.recordCount(one));
}

TEST_F(Walk, deletingAScalarEmptiesIt) {
  void* const scalar = db.addParameter("s", 0);
  const Record record = db.put(scalar, {}, 4.0);
  EXPECT_EQ(1, erase(record));
  EXPECT_EQ(0, db.recordCount(scalar));
  EXPECT_SILENT_FAILURE(db, hasNext(record));
  EXPECT_SILENT_FAILURE(db, hasPrev(record));
  EXPECT_FAILURE(db, "Last record reached in symbol s", next(record));
}

TEST_F(Walk, deletingEveryOtherRecordWhileWalking) {
  const Record record = db.first(data);
  EXPECT_EQ(1, erase(record));
  EXPECT_EQ((Labels{"b"}), db.labels(record, 1));
  EXPECT_EQ(1, next(record));
  EXPECT_EQ(1, erase(record));
  EXPECT_EQ(0, hasNext(record));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 2.0}}), db.rows(data));
}

TEST_F(Walk, aRecordDeletedThroughASliceHandleMovesItToTheFollowingRecordOfTheSymbol) {
  void* const pairs = db.addParameter("q", 2);
  db.put(pairs, {"a", "a"}, 1.0);
  db.put(pairs, {"a", "b"}, 2.0);
  db.put(pairs, {"b", "a"}, 3.0);
  Keys keys{" ", "a"};
  void* handle = nullptr;
  ASSERT_EQ(1, lib().c__ztbfindfirstrecordslice(db, pairs, keys, &handle));
  const Record record(db, handle);
  EXPECT_EQ(1, erase(record));
  EXPECT_EQ(2.0, db.level(record));
  EXPECT_EQ(1, next(record));
  EXPECT_EQ(3.0, db.level(record)) << "the next step is back in the slice";
}

TEST_F(Walk, deletingRefusesNullAndTheUniverse) {
  EXPECT_FAILURE(db, "No symbol record handle specified", erase(nullptr));
  const Record record = db.first(db.universe());
  EXPECT_FAILURE(db, "Cannot delete the Universe", erase(record));
  EXPECT_EQ(3, db.info(ZTB_INFO_UEL_COUNT));
}

TEST_F(Walk, aHandleOutlivesAdditionsAndDeletionsOfOtherRecords) {
  const Record record = db.record(data, {"b"});
  db.put(data, {"d"}, 4.0);
  ASSERT_EQ(1, erase(db.record(data, {"a"})));
  EXPECT_EQ(2.0, db.level(record));
  EXPECT_EQ(0, hasPrev(record));
  EXPECT_EQ(1, next(record));
  EXPECT_EQ(1, next(record));
  EXPECT_EQ(4.0, db.level(record));
}

}  // namespace
}  // namespace ztbtest
