#include "providers/rxf/rxf_reader.h"

#include "providers/rxf/failure.h"
#include "providers/rxf/frame.h"
#include "providers/rxf/names.h"
#include "providers/rxf/table_reader.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

namespace {

// A text of a table as callers can take it: without a zero inside.
std::string_view takeText(ByteReader& in) {
  const std::string_view text = in.text();
  if (text.find('\0') != std::string_view::npos) throw Malformed(DetailText("text with a zero"));
  return text;
}

}  // namespace

RxfReader::RxfReader(SystemCalls& calls, const std::string& path)
    : file_(calls, path), header_(FileHeader::read(file_)) {
  readTables();
}

void RxfReader::readTables() {
  Decompressor decompressor;
  TableReader info(file_, decompressor, kInfoKind, "information");
  info.read(header_.info, 1, [&](ByteReader& in) { producer_ = takeText(in); });
  TableReader labels(file_, decompressor, kLabelKind, "label");
  labels.read(header_.labels, header_.labelCount, [&](ByteReader& in) {
    const std::string_view label = in.text();
    if (trimmedLabel(label) != label || labelRefusal(label) != nullptr) {
      throw Malformed(DetailText("label is not acceptable"));
    }
    if (labels_.add(label) == 0) throw Malformed(DetailText("label stands twice"));
  });
  TableReader texts(file_, decompressor, kTextKind, "text");
  texts.read(header_.texts, header_.textCount, [&](ByteReader& in) {
    const std::string_view text = takeText(in);
    // Callers keep texts in a list that folds case and begins with the empty one, so a twin would
    // shift the numbers of all behind it.
    if (text.empty()) throw Malformed(DetailText("text is empty"));
    if (texts_.add(text) == 0) throw Malformed(DetailText("text stands twice"));
  });
  TableReader symbols(file_, decompressor, kSymbolKind, "symbol");
  symbols.read(header_.symbols, header_.symbolCount,
               [&](ByteReader& in) { symbols_.decodeNext(in, header_); });
}

}  // namespace rxffile
