// Exchange-file objects of the peer, as the core uses them.
#ifndef ZTB_EXCHANGE_RXF_PEER_H_
#define ZTB_EXCHANGE_RXF_PEER_H_

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

#include "exchange/special_values.h"
#include "peers/rxf_family.h"
#include "store/idmap.h"

namespace ztb {

// Places in the peer's table of special values, of which the core sets the first five.
inline constexpr int peerSpecialValueCount = 16;

// An exchange file counts the subtypes of equations from here.
inline constexpr int equationSubtypeBase = 53;

// Room for a text of the peer.
inline constexpr int peerTextSize = 256;

// Tells the peer through `set` (reading or writing) that the core's values are in internal coding;
// the peer's further entries stay. The result is the peer's: 0 for a refusal.
template <class SetOperation>
int setInternalSpecialValues(void* rxf, const SetOperation& set) {
  double values[peerSpecialValueCount] = {};
  peers::rxfGetSpecialValues(rxf, values);
  std::copy(internalSpecialValues.begin(), internalSpecialValues.end(), values);
  return set(rxf, values);
}

// Ends a read of records when the scope that reads them is left, by whatever way: the peer has one
// record stream, and an open one would refuse the next.
class RecordStream {
 public:
  explicit RecordStream(void* rxf) : rxf_(rxf) {}
  RecordStream(const RecordStream&) = delete;
  RecordStream& operator=(const RecordStream&) = delete;
  ~RecordStream() { peers::rxfDataReadDone(rxf_); }

 private:
  void* rxf_;
};

// What a peer gives in place of a number of records, or of the first changed index of a record,
// when it cannot give all records.
inline constexpr int peerReadFailed = -1;

// Errors that are taken from a peer at most, where it does not tell that it has more: one that
// never comes to an end must not hold the core for ever.
inline constexpr int mostErrorsTaken = 100'000;

// Takes the pending errors of a peer, latest first: how many there were, and the number of the one
// that came first, 0 for none.
struct PeerErrors {
  PeerErrors(void* rxf, int most) {
    for (int next = peers::rxfGetLastError(rxf); next != 0; next = peers::rxfGetLastError(rxf)) {
      first = next;
      ++count;
      if (count == most) {
        break;
      }
    }
  }
  int count = 0;
  int first = 0;
};

// Why the peer could not go on: the number and text of the error that came first. The queue is
// empty then.
inline void takeReason(void* rxf, char (&reason)[peerTextSize], int& error) {
  error = PeerErrors(rxf, mostErrorsTaken).first;
  std::strcpy(reason, "the exchange-file library gives no reason");
  if (error != 0) {
    peers::rxfErrorStr(rxf, error, reason);
  }
}
// The kind of a failed read; a peer that gives no reason may have damage to hide.
inline int kindOfReadError(int error) {
  return error == 0 ? ZTB_ERROR_IO : ztbErrorKindOfRxf(error);
}

// Reads one by one; see readRecords().
template <class Deliver>
bool readOneByOne(void* rxf, int number, char (&reason)[peerTextSize], int& error,
                  Deliver&& deliver) {
  int count = 0;
  int firstChanged = 0;
  int keys[dmap::maxDimension] = {};
  double values[dmap::maxSlots] = {};
  peers::rxfDataReadRawStart(rxf, number, &count);
  const RecordStream stream(rxf);
  bool whole = count != peerReadFailed;
  for (int record = 0; whole && record < count; ++record) {
    peers::rxfDataReadRaw(rxf, keys, values, &firstChanged);
    whole = firstChanged != peerReadFailed;
    if (whole) {
      deliver(keys, values, 1);
    }
  }
  if (!whole) {
    takeReason(rxf, reason, error);
  }
  return whole;
}

// Records that are asked for in one call.
inline constexpr int blockRoom = 1024;

// Reads in blocks, from a peer that can; see readRecords().
template <class Deliver>
bool readInBlocks(void* rxf, int number, int dim, int valueCount, char (&reason)[peerTextSize],
                  int& error, Deliver&& deliver) {
  const peers::FamilyState& peer = peers::rxfFamily.state;
  int count = 0;
  peer.ReadBlockStart(rxf, number, &count);
  const RecordStream stream(rxf);
  const int room = std::clamp(count, 1, blockRoom);
  const auto keys = std::make_unique_for_overwrite<int[]>(static_cast<std::size_t>(room * dim));
  const auto values =
      std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(room * valueCount));
  int left = count;
  bool whole = count != peerReadFailed;
  while (whole && left > 0) {
    const int given = peer.ReadBlock(rxf, keys.get(), values.get(), std::min(left, room));
    whole = given > 0;
    if (whole) {
      deliver(keys.get(), values.get(), given);
      left -= given;
    }
  }
  if (!whole) {
    takeReason(rxf, reason, error);
  }
  return whole;
}

// The records of one symbol of an open file: calls `deliver(keys, values, count)` for one record
// after another or many at once, the keys of each behind those of the one before, its values
// likewise. False, with the peer's reason and error number, when the peer cannot give all; what was
// delivered is then worth nothing.
template <class Deliver>
bool readRecords(void* rxf, const char* symbolName, int dim, int valueCount,
                 char (&reason)[peerTextSize], int& error, Deliver&& deliver) {
  int number = 0;
  peers::rxfFindSymbol(rxf, symbolName, &number);
  return peers::rxfFamily.state.ReadBlock != nullptr
             ? readInBlocks(rxf, number, dim, valueCount, reason, error, deliver)
             : readOneByOne(rxf, number, reason, error, deliver);
}

}  // namespace ztb

#endif  // ZTB_EXCHANGE_RXF_PEER_H_
