// An exchange file while it is written.
//
// Whatever is refused is recorded in the log, and a file that lacks it is never published: nor is
// one whose writing failed. Only a strict domain may be refused without harm, since the symbol and
// its records are there without it. Order of calls: labels between startLabels and finishLabels; a
// symbol's records between startSymbol and finishSymbol. Numbers of labels, texts and symbols count
// from 1 as they come.
#ifndef ZTB_PROVIDERS_RXF_RXF_WRITER_H_
#define ZTB_PROVIDERS_RXF_RXF_WRITER_H_

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "providers/rxf/block_encoder.h"
#include "providers/rxf/error_log.h"
#include "providers/rxf/label_set.h"
#include "providers/rxf/name_list.h"
#include "providers/rxf/output_file.h"
#include "providers/rxf/record_block.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/strict_domain.h"
#include "providers/rxf/symbol_directory.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class RxfWriter {
 public:
  // Failures: those of OutputFile, textTooLong for the producer.
  RxfWriter(SystemCalls& calls, const std::string& path, std::string_view producer, ErrorLog& log);

  // Each of the following gives false, with the error in the log, for what is refused. Each throws
  // Failure or std::bad_alloc when the file can no longer be completed; call abandon() then.

  bool startLabels();
  bool addLabel(std::string_view label);
  bool finishLabels();

  // Number of the new text, 0 when it is refused: too long, empty, or there already in whatever
  // case. The texts that set records name are to be there when the file is sealed.
  std::uint32_t addText(std::string_view text);

  // `target` is a set or an alias written before, or "*".
  bool addAlias(std::string_view alias, std::string_view target);

  // `specials` holds for the records of this symbol; sets have no special values.
  bool startSymbol(std::string_view name, std::string_view text, int dim, int type, int userInfo,
                   const SpecialTable& specials);

  // Sets the domain of the open symbol, before its records. `names` are dim names: "*", or a
  // one-dimensional set or alias written before. When one is not, the symbol has no domain; that
  // alone does not keep the file from being published.
  bool setDomain(const char* const* names);

  // Adds a record to the open symbol: `keys` are dim label numbers, `values` 1 or 5 doubles.
  bool write(const int* keys, const double* values) {
    if (stage_ != Stage::symbol) [[unlikely]]
      return refuseOrder("a record without a symbol");
    const RecordBlock::Comparison comparison = block_.stage(keys, labels_.size());
    if (!comparison.inLabels || !comparison.ascends || recordCount() == kMaxCount) [[unlikely]] {
      if (!isFirstScalar()) return refuseRecord(keys, comparison);
    }
    if (domain_.active() && !insideDomain(keys, comparison.firstChanged)) [[unlikely]]
      return false;
    block_.add(values, comparison.firstChanged);
    if (block_.full()) [[unlikely]]
      writeBlock();
    return true;
  }

  bool finishSymbol();

  // Records the names of a symbol's domains, of any 0 to 255 bytes; no record is held against them.
  bool setDomainNames(int number, const char* const* names);

  // Brings the whole file, tables and header included, to the disk, so that publishing only has to
  // rename it. Does nothing while a symbol or the labels are open, or when nothing has changed.
  void seal();

  // Publishes what was written, if it is a whole file: the labels were registered, nothing is open
  // and nothing was refused. What is written afterwards goes into a copy, which takes the place of
  // the published file by the next publish() or close().
  void publish();

  // Seals and publishes. False, with the error in the log, when the file may not be published.
  bool close();

  // From now on every call is ignored and nothing will be published.
  void abandon() noexcept { stage_ = Stage::abandoned; }
  [[nodiscard]] bool abandoned() const { return stage_ == Stage::abandoned; }

  [[nodiscard]] const std::string& path() const { return file_.path(); }

 private:
  enum class Stage { between, labels, symbol, abandoned };

  // The one record of a scalar has no keys that could ascend.
  [[nodiscard]] bool isFirstScalar() const { return block_.dim() == 0 && recordCount() == 0; }
  [[nodiscard]] std::uint32_t recordCount() const {
    return blockIndex_ * kBlockRecords + block_.count();
  }

  bool expect(Stage stage, const char* what);
  // Each gives false and records the error. All but refuseDomain() withhold the file.
  bool refuse(ErrorNumber number, const DetailText& detail);
  bool refuseOrder(const char* what);
  bool refuseRecord(const int* keys, const RecordBlock::Comparison& comparison);
  bool insideDomain(const int* keys, int from);
  bool refuseSymbol(std::string_view name, std::string_view text, int dim, int type);
  bool findDomain(const char* name, int position, std::shared_ptr<const LabelBits>& members);
  bool refuseDomain(ErrorNumber number, const DetailText& detail);
  void change();
  void writeBlock();
  void noteTextNumbers();

  ErrorLog& log_;
  OutputFile file_;
  std::string producer_;
  Stage stage_ = Stage::between;
  bool withheld_ = false;
  bool labelled_ = false;
  bool sealed_ = false;
  std::uint64_t dataEnd_ = 0;

  NameList labels_;
  NameList texts_;
  SymbolDirectory symbols_;
  std::unordered_map<std::uint32_t, LabelSet> members_;
  // The set record that needs the most texts: any number of them when it names none by a number.
  struct NamedText {
    std::uint32_t symbol = 0;
    double value = 0;
    double textsNeeded = 0;
  };
  NamedText farthestText_;

  // The open symbol.
  RecordBlock block_;
  StrictDomain domain_;
  std::uint32_t number_ = 0;
  std::uint32_t blockIndex_ = 0;
  SpecialTable specials_;

  Compressor compressor_;
  BlockEncoder encoder_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RXF_WRITER_H_
