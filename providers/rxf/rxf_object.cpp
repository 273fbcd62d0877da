#include "providers/rxf/rxf_object.h"

#include <bit>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "providers/rxf/failure.h"
#include "providers/rxf/names.h"

namespace rxffile {

namespace {

void copyText(std::string_view text, char* to) {
  if (to == nullptr) return;
  to[text.copy(to, text.size())] = '\0';
}

template <typename T>
void give(T* to, T value) {
  if (to != nullptr) *to = value;
}

std::string_view viewOf(const char* text) {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

SpecialTable tableOf(const double* values) {
  std::array<std::uint64_t, kSpecialCount> patterns{};
  for (std::size_t i = 0; i < patterns.size(); ++i) {
    patterns[i] = std::bit_cast<std::uint64_t>(values[i]);
  }
  SpecialTable table;
  table.set(patterns);
  return table;
}

}  // namespace

template <typename Open>
int RxfObject::openGuarded(const char* fileName, const Open& open) {
  if (reader_ != nullptr || writer_ != nullptr) {
    recordOrder("opening with a file open");
    return static_cast<int>(ErrorNumber::callsOutOfOrder);
  }
  log_.clear();
  if (fileName == nullptr || *fileName == '\0') {
    return recordOpening(ErrorNumber::fileNameNotAcceptable, DetailText("it is empty"));
  }
  try {
    open();
  } catch (const Failure& failure) {
    return recordOpening(failure.number(), failure.detail());
  } catch (const std::bad_alloc&) {
    return recordOpening(ErrorNumber::outOfMemory, DetailText("opening the file"));
  }
  return 0;
}

int RxfObject::openRead(const char* fileName) {
  return openGuarded(fileName, [&] {
    auto reader = std::make_unique<RxfReader>(calls_, fileName);
    stream_ = std::make_unique<RecordStream>(reader->file());
    reader_ = std::move(reader);
    memoryLimit_ = MemoryLimit::takeFromThread();
    piece_ = &stream_->piece();
  });
}

int RxfObject::openWrite(const char* fileName, const char* producer) {
  return openGuarded(fileName, [&] {
    writer_ = std::make_unique<RxfWriter>(calls_, fileName, viewOf(producer), log_);
  });
}

int RxfObject::recordOpening(ErrorNumber number, const DetailText& detail) {
  log_.record(number, detail);
  return static_cast<int>(number);
}

int RxfObject::close() {
  piece_ = nullptr;
  readFailed_ = false;
  symbolWriting_.reset();
  stream_.reset();
  reader_.reset();
  if (writer_ == nullptr) return 0;
  const std::unique_ptr<RxfWriter> writer = std::move(writer_);
  try {
    if (writer->close()) return 0;
  } catch (...) {
    takeException();
  }
  const int number = log_.latest();
  return number != 0 ? number : static_cast<int>(ErrorNumber::writeFailed);
}

int RxfObject::errorCount() {
  if (writer_ != nullptr) {
    try {
      writer_->seal();
      if (publishesAtCount_) writer_->publish();
    } catch (...) {
      takeException();
    }
  }
  return log_.count();
}

void RxfObject::specialValues(double* values) const {
  const SpecialTable& table = reader_ != nullptr ? readSpecials_ : writeSpecials_;
  for (unsigned code = 0; code < kSpecialCount; ++code) values[code] = table.valueOf(code);
}

bool RxfObject::setSpecialValues(const double* values) {
  if (values == nullptr) return false;
  writeSpecials_ = tableOf(values);
  return true;
}

bool RxfObject::setReadSpecialValues(const double* values) {
  if (values == nullptr) return false;
  readSpecials_ = tableOf(values);
  return true;
}

bool RxfObject::systemInfo(int* symbolCount, int* labelCount) {
  give(symbolCount, 0);
  give(labelCount, 0);
  if (!reading("asking for the counts")) return false;
  give(symbolCount, static_cast<int>(reader_->symbols().size()));
  give(labelCount, static_cast<int>(reader_->labels().size()));
  return true;
}

bool RxfObject::symbolInfo(int number, char* name, int* dim, int* type) {
  copyText({}, name);
  give(dim, 0);
  give(type, 0);
  if (!reading("asking for a symbol")) return false;
  if (number == 0) {
    copyText(kUniverseName, name);
    give(dim, 1);
    return true;
  }
  if (!holdsSymbol(number)) return false;
  const auto index = static_cast<std::uint32_t>(number);
  copyText(reader_->symbols().name(index), name);
  give(dim, reader_->symbols().at(index).dim);
  give(type, reader_->symbols().at(index).type);
  return true;
}

bool RxfObject::symbolInfoX(int number, int* recordCount, int* userInfo, char* text) {
  give(recordCount, 0);
  give(userInfo, 0);
  copyText({}, text);
  if (!reading("asking for a symbol")) return false;
  if (number == 0) {
    give(recordCount, static_cast<int>(reader_->labels().size()));
    return true;
  }
  if (!holdsSymbol(number)) return false;
  const SymbolEntry& entry = reader_->symbols().at(static_cast<std::uint32_t>(number));
  give(recordCount, static_cast<int>(entry.recordCount));
  give(userInfo, static_cast<int>(entry.userInfo));
  copyText(entry.text, text);
  return true;
}

int RxfObject::symbolDomain(int number, char** names) {
  if (!reading("asking for a domain") || !holdsSymbol(number)) return 0;
  const SymbolEntry& entry = reader_->symbols().at(static_cast<std::uint32_t>(number));
  const bool none = entry.domainKind == DomainKind::none;
  for (std::size_t d = 0; names != nullptr && d < static_cast<std::size_t>(entry.dim); ++d) {
    copyText(none ? kUniverseName : std::string_view(entry.domains[d]), names[d]);
  }
  return static_cast<int>(entry.domainKind);
}

int RxfObject::findSymbol(const char* name) {
  if (!reading("looking for a symbol")) return 0;
  return static_cast<int>(reader_->symbols().find(viewOf(name)));
}

bool RxfObject::elementText(int number, char* text) {
  copyText({}, text);
  if (!reading("asking for a text")) return false;
  if (number < 1 || static_cast<std::uint32_t>(number) > reader_->texts().size()) return false;
  copyText(reader_->texts().at(static_cast<std::uint32_t>(number)), text);
  return true;
}

int RxfObject::labelCount() {
  return reading("asking for the labels") ? static_cast<int>(reader_->labels().size()) : 0;
}

bool RxfObject::label(int number, char* label) {
  copyText({}, label);
  if (!reading("asking for a label")) return false;
  const std::uint32_t count = reader_->labels().size();
  if (number < 1 || static_cast<std::uint32_t>(number) > count) {
    log_.record(ErrorNumber::noSuchLabel, DetailText("%d, expected 1 to %u", number, count));
    return false;
  }
  copyText(reader_->labels().at(static_cast<std::uint32_t>(number)), label);
  return true;
}

int RxfObject::startReading(int number, bool& started, RecordStream::Verify verify) {
  if (!reading("start of reading")) return kReadFailed;
  if (stream_->open()) recordOrder("start of reading before the end of the last");
  stream_->stop();
  readFailed_ = false;
  if (!holdsSymbol(number)) return kReadFailed;
  const auto index = static_cast<std::uint32_t>(number);
  const SymbolEntry& entry = reader_->symbols().at(index);
  const std::string_view name = reader_->symbols().name(index);
  if (entry.isAlias()) {
    log_.record(ErrorNumber::aliasHasNoRecords,
                DetailText("%.*s", static_cast<int>(name.size()), name.data()));
    return kReadFailed;
  }
  try {
    memoryLimit_.count(index, entry);
    stream_->start(entry, index, name, reader_->labels().size(), reader_->texts().size(),
                   readSpecials_, verify);
  } catch (...) {
    readFailed_ = true;
    takeException();
    return kReadFailed;
  }
  started = true;
  return static_cast<int>(entry.recordCount);
}

bool RxfObject::readOn(int* keys, double* values, int* firstChanged) {
  if (!readFailed_) {
    if (!reading("reading a record")) return false;
    if (!stream_->open()) return recordOrder("reading a record without a start");
    try {
      return stream_->refill() && piece_->take(keys, values, firstChanged);
    } catch (...) {
      readFailed_ = true;
      takeException();
    }
  }
  *firstChanged = kReadFailed;
  return false;
}

int RxfObject::readBlock(int* keys, double* values, int room) {
  if (readFailed_ || !reading("reading records")) return kReadFailed;
  if (!stream_->open()) {
    recordOrder("reading records without a start");
    return kReadFailed;
  }
  const auto most = static_cast<std::size_t>(std::max(room, 1));
  try {
    std::size_t given = piece_->takeMany(keys, values, most);
    if (given == 0 && stream_->refill()) given = piece_->takeMany(keys, values, most);
    return static_cast<int>(given);
  } catch (...) {
    readFailed_ = true;
    takeException();
    return kReadFailed;
  }
}

bool RxfObject::finishReading() {
  if (readFailed_) {
    readFailed_ = false;
    return true;
  }
  if (!reading("end of reading")) return false;
  if (!stream_->open()) return recordOrder("end of reading without a start");
  stream_->stop();
  return true;
}

bool RxfObject::addLabel(const char* label) {
  return writing("a label") && writer_->addLabel(viewOf(label));
}

bool RxfObject::addAlias(const char* alias, const char* target) {
  return writing("an alias") && writer_->addAlias(viewOf(alias), viewOf(target));
}

int RxfObject::addText(const char* text) {
  return writing("a text") ? static_cast<int>(writer_->addText(viewOf(text))) : 0;
}

bool RxfObject::startWriting(const char* name, const char* text, int dim, int type, int userInfo) {
  if (!writing("start of a symbol") ||
      !writer_->startSymbol(viewOf(name), viewOf(text), dim, type, userInfo, writeSpecials_)) {
    return false;
  }
  symbolWriting_.emplace();
  return true;
}

bool RxfObject::setDomain(const char* const* names) {
  return writing("a domain") && writer_->setDomain(names);
}

bool RxfObject::setDomainNames(int number, const char* const* names) {
  return writing("domain names") && writer_->setDomainNames(number, names);
}

void RxfObject::takeException() noexcept {
  if (writer_ != nullptr) writer_->abandon();
  symbolWriting_.reset();
  if (stream_ != nullptr) stream_->stop();
  try {
    throw;
  } catch (const Failure& failure) {
    log_.record(failure.number(), failure.detail());
  } catch (const std::bad_alloc&) {
    log_.record(ErrorNumber::outOfMemory, DetailText());
  } catch (const std::exception& other) {
    log_.record(ErrorNumber::internalError, DetailText("%s", other.what()));
  } catch (...) {
    log_.record(ErrorNumber::internalError, DetailText());
  }
}

bool RxfObject::reading(const char* what) {
  return reader_ != nullptr || recordOrder(what);
}

bool RxfObject::writing(const char* what) {
  return writer_ != nullptr || recordOrder(what);
}

bool RxfObject::recordOrder(const char* what) {
  log_.record(ErrorNumber::callsOutOfOrder, DetailText("%s", what));
  return false;
}

bool RxfObject::holdsSymbol(int number) {
  if (reader_->symbols().holds(number)) return true;
  log_.record(ErrorNumber::noSuchSymbol,
              DetailText("%d, expected 1 to %u", number, reader_->symbols().size()));
  return false;
}

}  // namespace rxffile
