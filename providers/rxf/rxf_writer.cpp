#include "providers/rxf/rxf_writer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "providers/rxf/checksum.h"
#include "providers/rxf/failure.h"
#include "providers/rxf/frame.h"
#include "providers/rxf/names.h"
#include "providers/rxf/table_writer.h"

namespace rxffile {

namespace {

// A text for a format that takes a length: "%.*s".
int shownLength(std::string_view text) {
  return static_cast<int>(std::min<std::size_t>(text.size(), 80));
}

}  // namespace

RxfWriter::RxfWriter(SystemCalls& calls, const std::string& path, std::string_view producer,
                     ErrorLog& log)
    : log_(log), file_(calls, path), producer_(producer) {
  if (producer.size() > kMaxTextLength) {
    throw Failure(ErrorNumber::textTooLong, DetailText("name of the producer"));
  }
  // The header is written last.
  const FileHeader::Encoded room{};
  file_.append(room.data(), room.size());
}

bool RxfWriter::startLabels() {
  if (!expect(Stage::between, "start of labels")) return false;
  change();
  stage_ = Stage::labels;
  return true;
}

bool RxfWriter::addLabel(std::string_view label) {
  if (!expect(Stage::labels, "a label")) return false;
  const char* reason = labelRefusal(label);
  if (reason != nullptr) {
    return refuse(ErrorNumber::labelNotAcceptable,
                  DetailText("label %u, >%.*s<: %s", labels_.size() + 1, shownLength(label),
                             label.data(), reason));
  }
  if (labels_.size() == kMaxCount) {
    return refuse(ErrorNumber::limitExceeded, DetailText("more than %u labels", kMaxCount));
  }
  if (labels_.add(trimmedLabel(label)) == 0) {
    return refuse(ErrorNumber::labelTwice,
                  DetailText(">%.*s<, as label %u and again behind label %u", shownLength(label),
                             label.data(), labels_.find(trimmedLabel(label)), labels_.size()));
  }
  return true;
}

bool RxfWriter::finishLabels() {
  if (!expect(Stage::labels, "end of labels")) return false;
  stage_ = Stage::between;
  labelled_ = true;
  return true;
}

std::uint32_t RxfWriter::addText(std::string_view text) {
  if (stage_ == Stage::abandoned) return 0;
  if (text.size() > kMaxTextLength || texts_.size() == kMaxCount) {
    const bool tooLong = text.size() > kMaxTextLength;
    refuse(tooLong ? ErrorNumber::textTooLong : ErrorNumber::limitExceeded,
           DetailText("set text %u, >%.*s<", texts_.size() + 1, shownLength(text), text.data()));
    return 0;
  }
  if (text.empty() || texts_.find(text) != 0) {
    withheld_ = true;
    refuse(ErrorNumber::textTwice, DetailText("set text %u, >%.*s<, as text %u", texts_.size() + 1,
                                              shownLength(text), text.data(), texts_.find(text)));
    return 0;
  }
  change();
  texts_.add(text);
  return texts_.size();
}

bool RxfWriter::addAlias(std::string_view alias, std::string_view target) {
  if (!expect(Stage::between, "an alias")) return false;
  if (refuseSymbol(alias, {}, 0, kTypeSet)) return false;
  SymbolEntry entry;
  entry.type = kTypeAlias;
  entry.dim = 1;
  if (target != kUniverseName) {
    std::uint32_t number = symbols_.find(target);
    bool toUniverse = false;
    if (number != 0 && symbols_.at(number).isAlias()) {
      number = static_cast<std::uint32_t>(symbols_.at(number).userInfo);
      toUniverse = number == 0;
    }
    if (!toUniverse) {
      if (number == 0 || symbols_.at(number).type != kTypeSet) {
        return refuse(ErrorNumber::aliasTargetUnknown,
                      DetailText("alias %.*s of %.*s", shownLength(alias), alias.data(),
                                 shownLength(target), target.data()));
      }
      entry.userInfo = static_cast<std::int32_t>(number);
      entry.dim = symbols_.at(number).dim;
    }
  }
  change();
  symbols_.add(alias, std::move(entry));
  return true;
}

bool RxfWriter::startSymbol(std::string_view name, std::string_view text, int dim, int type,
                            int userInfo, const SpecialTable& specials) {
  if (!expect(Stage::between, "start of a symbol")) return false;
  if (refuseSymbol(name, text, dim, type)) return false;
  change();
  SymbolEntry entry;
  entry.text = text;
  entry.type = type;
  entry.dim = dim;
  entry.userInfo = userInfo;
  entry.dataOffset = file_.position();
  block_.shape(dim, slotsOfType(type));
  specials_ = specials;
  domain_.clear();
  blockIndex_ = 0;
  number_ = symbols_.add(name, std::move(entry));
  stage_ = Stage::symbol;
  return true;
}

bool RxfWriter::setDomain(const char* const* names) {
  if (stage_ == Stage::abandoned) return false;
  if (stage_ != Stage::symbol) {
    return refuseDomain(ErrorNumber::callsOutOfOrder, DetailText("domain without a symbol"));
  }
  SymbolEntry& entry = symbols_.at(number_);
  if (recordCount() != 0) {
    return refuseDomain(ErrorNumber::callsOutOfOrder,
                        DetailText("domain behind the records of a symbol"));
  }
  std::array<std::shared_ptr<const LabelBits>, kMaxDimension> members;
  bool known = true;
  for (int d = 0; d < entry.dim; ++d) {
    known &= findDomain(names[d], d, members[static_cast<unsigned>(d)]);
  }
  if (!known) return false;
  entry.domains.assign(names, names + entry.dim);
  entry.domainKind = DomainKind::strict;
  domain_.set(members);
  return true;
}

bool RxfWriter::findDomain(const char* name, int position,
                           std::shared_ptr<const LabelBits>& members) {
  const std::string_view wanted = name == nullptr ? "" : name;
  if (wanted == kUniverseName) return true;
  std::uint32_t number = symbols_.find(wanted);
  if (number == number_) number = 0;
  if (number != 0 && symbols_.at(number).isAlias()) {
    number = static_cast<std::uint32_t>(symbols_.at(number).userInfo);
    if (number == 0) return true;
  }
  const std::string_view symbol = symbols_.name(number_);
  if (number == 0 || symbols_.at(number).type != kTypeSet) {
    return refuseDomain(
        ErrorNumber::domainUnknown,
        DetailText("%.*s at position %d of %.*s", shownLength(wanted), wanted.data(), position + 1,
                   shownLength(symbol), symbol.data()));
  }
  if (symbols_.at(number).dim != 1) {
    return refuseDomain(ErrorNumber::domainNotOneDimensional,
                        DetailText("%.*s of dimension %d at position %d of %.*s",
                                   shownLength(wanted), wanted.data(), symbols_.at(number).dim,
                                   position + 1, shownLength(symbol), symbol.data()));
  }
  members = std::make_shared<const LabelBits>(members_[number].bits());
  return true;
}

bool RxfWriter::finishSymbol() {
  if (!expect(Stage::symbol, "end of a symbol")) return false;
  SymbolEntry& entry = symbols_.at(number_);
  entry.recordCount = recordCount();
  if (block_.count() != 0) writeBlock();
  entry.dataLength = file_.position() - entry.dataOffset;
  stage_ = Stage::between;
  return true;
}

bool RxfWriter::setDomainNames(int number, const char* const* names) {
  if (stage_ == Stage::abandoned) return false;
  if (!symbols_.holds(number) || symbols_.at(static_cast<std::uint32_t>(number)).isAlias()) {
    return refuse(ErrorNumber::noSuchSymbol,
                  DetailText("domain names for symbol %d of %u", number, symbols_.size()));
  }
  SymbolEntry& entry = symbols_.at(static_cast<std::uint32_t>(number));
  std::vector<std::string> domains;
  for (int d = 0; d < entry.dim; ++d) {
    const std::string_view name = names[d] == nullptr ? "" : names[d];
    if (name.size() > kMaxTextLength) {
      const std::string_view symbol = symbols_.name(static_cast<std::uint32_t>(number));
      return refuse(ErrorNumber::textTooLong,
                    DetailText("domain name at position %d of %.*s has %zu, >%.*s...<", d + 1,
                               shownLength(symbol), symbol.data(), name.size(), shownLength(name),
                               name.data()));
    }
    domains.emplace_back(name);
  }
  change();
  entry.domains = std::move(domains);
  entry.domainKind = DomainKind::relaxed;
  return true;
}

void RxfWriter::seal() {
  if (stage_ != Stage::between || sealed_ || withheld_) return;
  if (farthestText_.textsNeeded > texts_.size()) {
    withheld_ = true;
    const std::string_view set = symbols_.name(farthestText_.symbol);
    refuse(ErrorNumber::textUnknown,
           DetailText("a record of set %.*s names text %g, there are %u", shownLength(set),
                      set.data(), farthestText_.value, texts_.size()));
    return;
  }
  dataEnd_ = file_.position();
  FileHeader header;
  header.labelCount = labels_.size();
  header.textCount = texts_.size();
  header.symbolCount = symbols_.size();
  TableWriter info(file_, compressor_, kInfoKind);
  info.addText(producer_);
  header.info = info.finish();
  TableWriter labels(file_, compressor_, kLabelKind);
  for (std::uint32_t i = 1; i <= labels_.size(); ++i) labels.addText(labels_.at(i));
  header.labels = labels.finish();
  TableWriter texts(file_, compressor_, kTextKind);
  for (std::uint32_t i = 1; i <= texts_.size(); ++i) texts.addText(texts_.at(i));
  header.texts = texts.finish();
  TableWriter symbols(file_, compressor_, kSymbolKind);
  Bytes bytes;
  for (std::uint32_t i = 1; i <= symbols_.size(); ++i) {
    bytes.clear();
    symbols_.encode(i, bytes);
    symbols.addEntry(bytes);
  }
  header.symbols = symbols.finish();
  header.fileLength = file_.position();
  const FileHeader::Encoded encoded = header.encode();
  file_.overwrite(0, encoded.data(), encoded.size());
  file_.sync();
  sealed_ = true;
}

void RxfWriter::publish() {
  if (stage_ != Stage::between || !labelled_ || withheld_ || file_.published()) return;
  seal();
  if (!withheld_) file_.publish();
}

bool RxfWriter::close() {
  if (stage_ == Stage::abandoned || withheld_) return false;
  if (stage_ != Stage::between) return refuseOrder("closing with a symbol or the labels open");
  seal();
  if (withheld_) return false;
  if (!file_.published()) file_.publish();
  return true;
}

// What was sealed is written anew with the change.
void RxfWriter::change() {
  if (!sealed_) return;
  sealed_ = false;
  file_.rewindTo(dataEnd_);
}

void RxfWriter::writeBlock() {
  const SymbolEntry& entry = symbols_.at(number_);
  if (entry.type == kTypeSet && entry.dim == 1) {
    members_[number_].add(block_.keyColumn(0), block_.count());
  }
  if (entry.type == kTypeSet) noteTextNumbers();
  const SpecialTable* specials = entry.type == kTypeSet ? nullptr : &specials_;
  const Bytes& body = encoder_.encode(block_, specials, compressor_);
  FrameHead head;
  head.kind = kRecordKind;
  head.owner = number_;
  head.index = blockIndex_++;
  head.count = block_.count();
  head.bodyLength = static_cast<std::uint32_t>(body.size());
  head.bodyChecksum = checksum(body.data(), body.size());
  const FrameHead::Encoded bytes = head.encode();
  file_.append(bytes.data(), bytes.size());
  file_.append(body.data(), body.size());
  block_.clear();
}

void RxfWriter::noteTextNumbers() {
  const double* values = block_.valueColumn(0);
  for (std::uint32_t i = 0; i < block_.count(); ++i) {
    const double value = values[i];
    const bool isNumber = value >= 0 && value <= kMaxCount && value == std::trunc(value);
    const double needed = isNumber ? value : std::numeric_limits<double>::infinity();
    if (needed > farthestText_.textsNeeded) farthestText_ = {number_, value, needed};
  }
}

bool RxfWriter::expect(Stage stage, const char* what) {
  return stage_ == stage || refuseOrder(what);
}

bool RxfWriter::refuse(ErrorNumber number, const DetailText& detail) {
  withheld_ = true;
  return refuseDomain(number, detail);
}

// Nothing that the caller gave is lost with a domain that is only held against the records.
bool RxfWriter::refuseDomain(ErrorNumber number, const DetailText& detail) {
  log_.record(number, detail);
  return false;
}

bool RxfWriter::refuseOrder(const char* what) {
  if (stage_ == Stage::abandoned) return false;
  return refuse(ErrorNumber::callsOutOfOrder, DetailText("%s", what));
}

bool RxfWriter::refuseRecord(const int* keys, const RecordBlock::Comparison& comparison) {
  withheld_ = true;
  const std::string_view symbol = symbols_.name(number_);
  if (!comparison.inLabels) {
    log_.recordLazily(ErrorNumber::keyOutsideLabels, [&] {
      int j = 0;
      while (static_cast<std::uint32_t>(keys[j]) - 1U < labels_.size()) ++j;
      return DetailText("%.*s, key %d at position %d, expected 1 to %u", shownLength(symbol),
                        symbol.data(), keys[j], j + 1, labels_.size());
    });
  } else if (recordCount() == kMaxCount) {
    log_.recordLazily(ErrorNumber::limitExceeded, [&] {
      return DetailText("more than %u records in %.*s", kMaxCount, shownLength(symbol),
                        symbol.data());
    });
  } else if (comparison.firstChanged == block_.dim()) {
    log_.recordLazily(ErrorNumber::recordTwice, [&] {
      return DetailText("%.*s, behind record %u", shownLength(symbol), symbol.data(),
                        recordCount());
    });
  } else {
    log_.recordLazily(ErrorNumber::keysNotAscending, [&] {
      const int j = comparison.firstChanged;
      return DetailText("%.*s, key %d at position %d, behind key %d of record %u",
                        shownLength(symbol), symbol.data(), keys[j], j + 1, block_.keyBefore(j),
                        recordCount());
    });
  }
  return false;
}

// False, with the error recorded, when a label from position `from` on is not in its domain.
bool RxfWriter::insideDomain(const int* keys, int from) {
  const int outside = domain_.firstOutside(keys, from, block_.dim());
  if (outside == block_.dim()) return true;
  withheld_ = true;
  log_.recordLazily(ErrorNumber::outsideDomain, [&] {
    const std::string_view symbol = symbols_.name(number_);
    const std::string_view label = labels_.at(static_cast<std::uint32_t>(keys[outside]));
    return DetailText("%.*s, label >%.*s< at position %d is not in %s", shownLength(symbol),
                      symbol.data(), shownLength(label), label.data(), outside + 1,
                      symbols_.at(number_).domains[static_cast<unsigned>(outside)].c_str());
  });
  return false;
}

// True, with the error recorded, when a symbol like this may not be added.
bool RxfWriter::refuseSymbol(std::string_view name, std::string_view text, int dim, int type) {
  const int length = shownLength(name);
  if (const char* reason = nameRefusal(name)) {
    return !refuse(ErrorNumber::nameNotAcceptable,
                   DetailText(">%.*s<: %s", length, name.data(), reason));
  }
  if (const std::uint32_t number = symbols_.find(name); number != 0) {
    return !refuse(ErrorNumber::symbolTwice,
                   DetailText("%.*s is symbol %u already", length, name.data(), number));
  }
  if (text.size() > kMaxTextLength) {
    return !refuse(ErrorNumber::textTooLong,
                   DetailText("text of symbol %.*s has %zu", length, name.data(), text.size()));
  }
  if (dim < 0 || dim > kMaxDimension) {
    return !refuse(ErrorNumber::dimensionOutOfRange,
                   DetailText("%.*s has %d", length, name.data(), dim));
  }
  if (type < kTypeSet || type > kTypeEquation) {
    return !refuse(ErrorNumber::typeUnknown,
                   DetailText("%.*s has type %d, expected 0 to 3", length, name.data(), type));
  }
  if (symbols_.size() == kMaxCount) {
    return !refuse(ErrorNumber::limitExceeded, DetailText("more than %u symbols", kMaxCount));
  }
  return false;
}

}  // namespace rxffile
