// One exchange-file object as callers hold it: closed, reading a file, or writing one.
//
// Every operation of the interface is a member here; the exported functions only call them. What
// goes wrong is recorded in the object's log. A member may throw: the caller then gives the
// exception to takeException(), which leaves the object usable.
#ifndef ZTB_PROVIDERS_RXF_RXF_OBJECT_H_
#define ZTB_PROVIDERS_RXF_RXF_OBJECT_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "providers/rxf/error_log.h"
#include "providers/rxf/memory_limit.h"
#include "providers/rxf/record_stream.h"
#include "providers/rxf/rxf_reader.h"
#include "providers/rxf/rxf_writer.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/system_calls.h"

namespace rxffile {

class RxfObject {
 public:
  explicit RxfObject(SystemCalls& calls) : calls_(calls) {}

  // Opening clears the log. 0, or the number of the error, which is also in the log.
  int openRead(const char* fileName);
  int openWrite(const char* fileName, const char* producer);

  // 0, or the number of the error that kept the file from being published. Without an open file 0.
  int close();

  void errorText(int number, char* text) const { log_.compose(number, text); }
  // Errors since the file was opened. While a file is written, and no symbol or label list is open,
  // the file is first brought to the disk, so that a full disk is counted here; with domain sets
  // switched off it is published as well, once its labels are registered (see RxfWriter::publish).
  int errorCount();
  int takeLastError() { return log_.takeLatest(); }

  // A file never holds sets that the caller did not write. Who switches them off all the same takes
  // the whole file into its own hands, asks for the error count when all is written, and learns
  // there whether the file was published. To others only the result of close() tells.
  void storeDomainSets(bool on) { publishesAtCount_ = !on; }

  // The five values in force: for reading while a file is read, for writing otherwise.
  void specialValues(double* values) const;
  bool setSpecialValues(const double* values);
  bool setReadSpecialValues(const double* values);

  // Questions about the file that is read.
  bool systemInfo(int* symbolCount, int* labelCount);
  bool symbolInfo(int number, char* name, int* dim, int* type);
  bool symbolInfoX(int number, int* recordCount, int* userInfo, char* text);
  int symbolDomain(int number, char** names);
  int findSymbol(const char* name);
  bool elementText(int number, char* text);
  int labelCount();
  bool label(int number, char* label);

  // What stands for a number of records, or for a first changed position, when not all records of
  // the symbol can be delivered.
  static constexpr int kReadFailed = -1;

  // Begins with a symbol, all of whose records have been verified then if `verify` is ahead, and
  // returns how many read() or readBlock() will deliver; kReadFailed, with `started` as it was,
  // when there is no such symbol or it is not whole, or needs more memory than it may.
  int startReading(int number, bool& started,
                   RecordStream::Verify verify = RecordStream::Verify::ahead);
  // Delivers the next record (see RecordPiece). False, with nothing written, when there is none;
  // false with kReadFailed as first changed position from the failure on, which is in the log once.
  // REQUIRES: no argument is null.
  bool read(int* keys, double* values, int* firstChanged) {
    if (piece_ != nullptr && piece_->take(keys, values, firstChanged)) [[likely]]
      return true;
    return readOn(keys, values, firstChanged);
  }
  // Delivers the next records, `room` at most and at least one, and returns how many; 0 behind the
  // last, kReadFailed from a failure on, which is in the log once. REQUIRES: no argument is null.
  int readBlock(int* keys, double* values, int room);
  // Ends reading, also one that failed.
  bool finishReading();

  // Whether writing failed in a way that leaves no file to be completed; the error is counted.
  [[nodiscard]] bool gaveUpWriting() const { return writer_ != nullptr && writer_->abandoned(); }

  // The file that is written.
  bool startLabels() { return writing("start of labels") && writer_->startLabels(); }
  bool addLabel(const char* label);
  bool finishLabels() { return writing("end of labels") && writer_->finishLabels(); }
  bool addAlias(const char* alias, const char* target);
  int addText(const char* text);
  bool startWriting(const char* name, const char* text, int dim, int type, int userInfo);
  bool write(const int* keys, const double* values) {
    if (writer_ == nullptr) [[unlikely]]
      return recordOrder("writing a record");
    return writer_->write(keys, values);
  }
  bool finishWriting() {
    symbolWriting_.reset();
    return writing("end of a symbol") && writer_->finishSymbol();
  }
  bool setDomain(const char* const* names);
  bool setDomainNames(int number, const char* const* names);

  // To be called in a handler: records the exception under way. A file that is written is not
  // published any more; a stream that is read is ended.
  void takeException() noexcept;

 private:
  bool readOn(int* keys, double* values, int* firstChanged);
  bool reading(const char* what);
  bool writing(const char* what);
  bool recordOrder(const char* what);
  bool holdsSymbol(int number);
  int recordOpening(ErrorNumber number, const DetailText& detail);
  template <typename Open>
  int openGuarded(const char* fileName, const Open& open);

  // The records that wait in the stream; null without a reader.
  RecordPiece* piece_ = nullptr;
  SystemCalls& calls_;
  ErrorLog log_;
  SpecialTable writeSpecials_;
  SpecialTable readSpecials_;
  // A read failed and its end has not been called.
  bool readFailed_ = false;
  std::unique_ptr<RxfReader> reader_;
  // Of the file that is read; there with the reader.
  std::unique_ptr<RecordStream> stream_;
  // Of the file that is read.
  MemoryLimit memoryLimit_;
  std::unique_ptr<RxfWriter> writer_;
  // There while a symbol is written.
  std::optional<MemoryLimit::SymbolWriting> symbolWriting_;
  bool publishesAtCount_ = false;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RXF_OBJECT_H_
