#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>
#include <ztb/display_text.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/files/exchange_file.h"
#include "tools/files/standard_streams.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct CopyOptions {
  std::string source;
  // The names of the symbols, and behind them the target.
  std::vector<std::string> words;
  bool checkDomains = false;
};

// Picks symbols of a file together with the sets that they cannot be without: the sets and aliases
// named as domains, and the set behind an alias.
class Selection {
 public:
  explicit Selection(const ExchangeFile& file) : file_(file), chosen_(file.symbols().size() + 1) {}

  void add(const FileSymbol& symbol) {
    if (symbol.isUniverse() || chosen_[static_cast<std::size_t>(symbol.number)]) {
      return;
    }
    chosen_[static_cast<std::size_t>(symbol.number)] = true;
    if (symbol.isAlias()) {
      add(file_.resolved(symbol));
      return;
    }
    for (const FileDomain& domain : symbol.domains) {
      if (domain.set > 0) {
        add(file_.symbolAt(domain.set));
      }
    }
  }

  // In the order of the file.
  [[nodiscard]] std::vector<const FileSymbol*> symbols() const {
    std::vector<const FileSymbol*> symbols;
    for (const FileSymbol& symbol : file_.symbols()) {
      if (chosen_[static_cast<std::size_t>(symbol.number)]) {
        symbols.push_back(&symbol);
      }
    }
    return symbols;
  }

 private:
  const ExchangeFile& file_;
  std::vector<bool> chosen_;
};

// Writes symbols to another file, block by block. Labels and texts that no record of theirs holds
// are left out; the others keep their order, so that records keep theirs.
class Copy {
 public:
  Copy(const ExchangeFile& file, const std::vector<const FileSymbol*>& symbols, Progress& progress)
      : file_(file),
        symbols_(symbols),
        progress_(progress),
        newLabels_(static_cast<std::size_t>(file.labelCount()) + 1),
        newTexts_(static_cast<std::size_t>(file.file().textCount()) + 1) {
    for (const FileSymbol* symbol : symbols_) {
      if (!symbol->isAlias()) {
        progress_.step("reading " + symbol->name);
        eachBlock(*symbol, [&](const ztb::RxfRecords& block) { noteLabels(block); });
      }
    }
  }

  void write(const std::string& target, bool checkDomains) {
    ztb::RxfOutput output(target);
    for (std::size_t number = 1; number < newLabels_.size(); ++number) {
      if (newLabels_[number] != 0) {
        newLabels_[number] = ++labelCount_;
        output.addLabel(std::string(file_.label(static_cast<int>(number))));
      }
    }
    for (const FileSymbol* symbol : symbols_) {
      progress_.step("copying " + symbol->name);
      addSymbol(output, *symbol, checkDomains);
    }
    progress_.step("writing " + target);
    for (const int text : texts_) {
      output.addText(std::string(file_.file().text(text)));
    }
    output.publish();
  }

  [[nodiscard]] int labelCount() const { return labelCount_; }
  [[nodiscard]] std::size_t recordCount() const { return recordCount_; }

 private:
  template <typename Use>
  void eachBlock(const FileSymbol& symbol, const Use& use) const {
    try {
      ztb::RxfRecords records(file_.file(), file_.file().symbol(symbol.number));
      while (records.next()) {
        use(records);
      }
    } catch (const ztb::RxfDamage& damage) {
      throw Failure(withFile(file_.path(), damage.what()));
    }
  }

  void noteLabels(const ztb::RxfRecords& block) {
    for (int position = 0; position < block.dimension(); ++position) {
      for (const int label : block.keys(position)) {
        newLabels_[static_cast<std::size_t>(label)] = 1;
      }
    }
  }

  void addSymbol(ztb::RxfOutput& output, const FileSymbol& symbol, bool checkDomains) {
    std::vector<std::string> domains = domainNames(symbol);
    ztbRxfSymbolInfo info{};
    info.name = symbol.name.c_str();
    info.text = symbol.text.c_str();
    info.type = static_cast<int>(symbol.type);
    info.dimension = symbol.dimension;
    info.userInfo = symbol.userInfo;
    if (symbol.isAlias()) {
      domains = {file_.resolved(symbol).name};
    } else if (std::ranges::any_of(domains, [](const std::string& name) { return name != "*"; })) {
      info.domainKind = checkDomains ? ZTB_RXF_DOMAIN_CHECKED : ZTB_RXF_DOMAIN_NAMES;
    }
    output.addSymbol(info, domains);
    if (!symbol.isAlias()) {
      eachBlock(symbol, [&](const ztb::RxfRecords& block) { addRecords(output, symbol, block); });
    }
  }

  void addRecords(ztb::RxfOutput& output, const FileSymbol& symbol, const ztb::RxfRecords& block) {
    keys_.resize(static_cast<std::size_t>(block.dimension()));
    std::vector<const int*> keys;
    for (int position = 0; position < block.dimension(); ++position) {
      std::vector<int>& column = keys_[static_cast<std::size_t>(position)];
      column.clear();
      for (const int label : block.keys(position)) {
        column.push_back(newLabels_[static_cast<std::size_t>(label)]);
      }
      keys.push_back(column.data());
    }
    // A scalar has no keys, but the address of its keys is handed on all the same.
    keys.push_back(nullptr);
    std::vector<const double*> values;
    for (int slot = 0; slot < block.valueCount(); ++slot) {
      values.push_back(block.values(slot).data());
    }
    if (symbol.type == ztb::Type::set) {
      textNumbers_.clear();
      for (const double number : block.values(0)) {
        textNumbers_.push_back(newText(static_cast<int>(number)));
      }
      values = {textNumbers_.data()};
    }
    output.addRecords(block.size(), keys, values);
    recordCount_ += block.size();
    progress_.count(recordCount_);
  }

  // Texts are numbered as records come to need them.
  int newText(int text) {
    int& number = newTexts_[static_cast<std::size_t>(text)];
    if (text != 0 && number == 0) {
      texts_.push_back(text);
      number = static_cast<int>(texts_.size());
    }
    return number;
  }

  const ExchangeFile& file_;
  const std::vector<const FileSymbol*>& symbols_;
  Progress& progress_;
  // Numbers in the new file, by those in the old one; 0 for what is left out.
  std::vector<int> newLabels_;
  std::vector<int> newTexts_;
  std::vector<int> texts_;
  int labelCount_ = 0;
  std::size_t recordCount_ = 0;
  // Columns of the block that is copied, with new numbers.
  std::vector<std::vector<int>> keys_;
  std::vector<double> textNumbers_;
};

void runCopy(const CopyOptions& options) {
  const std::string& target = options.words.back();
  std::error_code error;
  if (std::filesystem::equivalent(pathOf(options.source), pathOf(target), error)) {
    throw UsageError(
        fmt::format("{}: would be replaced by a part of itself; name another file", target));
  }
  OutputFile output(target);
  Progress progress;
  progress.step("opening " + options.source);
  const ExchangeFile file(options.source);
  Selection selection(file);
  for (auto name = options.words.begin(); name != std::prev(options.words.end()); ++name) {
    if (*name == "*") {
      throw UsageError("*: the universe is no symbol to copy");
    }
    selection.add(file.symbol(*name));
  }
  const std::vector<const FileSymbol*> symbols = selection.symbols();
  Copy copy(file, symbols, progress);
  try {
    copy.write(output.path(), options.checkDomains);
  } catch (const ztb::Error& failure) {
    throw Failure(withFile(output.name(), failure.what()));
  }
  output.finish();
  print(fmt::format("{}: {}, {}, {}\n", ztb::displayText(output.name()),
                    counted(symbols.size(), "symbol"),
                    counted(static_cast<std::size_t>(copy.labelCount()), "label"),
                    counted(copy.recordCount(), "record")));
}

}  // namespace

void addCopyCommand(CommandLine& line) {
  Command command = line.add("copy", "Copy symbols, with what they need, to a file of their own");
  auto options = std::make_shared<CopyOptions>();
  command.text("SRC", options->source, "RXF file, - for standard input").required();
  command
      .words("SYMBOL", options->words, 2,
             "Symbols to copy, and DST, the RXF file to make, - for standard output")
      .typeName("... DST")
      .required();
  command.flag("--check-domains", options->checkDomains,
               "Refuse a label that is not in the set that is its domain");
  addMemoryOption(command);
  command.footer(
      "Copied with a symbol are the sets and aliases that are its domains, and the set behind an\n"
      "alias. The new file has the labels that these symbols use, in the order of the old one.\n\n"
      "Example:\n"
      "  ztb copy diet.rxf nutrition price part.rxf");
  command.action([options] {
    runCopy(*options);
    return exitFine;
  });
}

}  // namespace tool
