#include "tools/copy_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "tools/data_file.h"
#include "tools/domain_argument.h"
#include "tools/failure.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/words.h"

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
  explicit Selection(const DataFile& file) : file_(file) {}

  void add(const ztb::Symbol& symbol) {
    if (symbol == file_.symbol("*") || std::ranges::find(chosen_, symbol) != chosen_.end()) {
      return;
    }
    chosen_.push_back(symbol);
    if (symbol.type() == ztb::Type::alias) {
      add(file_.resolved(symbol));
      return;
    }
    for (const ztb::Domain& domain : symbol.domains()) {
      if (domain.set) {
        add(file_.symbol(domain.name.str()));
      }
    }
  }

  // In the order of the file.
  [[nodiscard]] std::vector<ztb::Symbol> symbols() const {
    std::vector<ztb::Symbol> symbols = file_.symbols();
    std::erase_if(symbols, [this](const ztb::Symbol& symbol) {
      return std::ranges::find(chosen_, symbol) == chosen_.end();
    });
    return symbols;
  }

 private:
  const DataFile& file_;
  std::vector<ztb::Symbol> chosen_;
};

ztb::Symbol addSymbol(ztb::Database& target, const DataFile& file, const ztb::Symbol& symbol) {
  const std::string name = symbol.name().str();
  const std::string text = symbol.text().str();
  if (symbol.type() == ztb::Type::alias) {
    return target.addAlias(name, target.symbol(file.resolved(symbol).name()), text);
  }
  const std::vector<std::string> names = domainNames(symbol);
  std::vector<ztb::DomainArgument> domains;
  for (const std::string& domain : names) {
    domains.push_back(domainArgument(target, domain));
  }
  return target.addSymbol(name, symbol.type(), domains, text, symbol.userInfo());
}

// Gives the target the labels that records of these symbols hold, in the order of the source, so
// that records keep their order.
void addLabels(ztb::Database& target, const DataFile& file,
               const std::vector<ztb::Symbol>& symbols) {
  std::vector<void*> handles;
  for (const ztb::Symbol& symbol : symbols) {
    handles.push_back(symbol.handle());
  }
  std::vector<int> counts(static_cast<std::size_t>(file.labelCount()) + 1);
  ztbRec* database = symbols.front().database();
  ztb::detail::require(
      c__ztbgetsymbolsuels(database, handles.data(), static_cast<int>(handles.size()),
                           counts.data(), static_cast<int>(counts.size())),
      database, "ztbGetSymbolsUels");
  for (int number = 1; number <= file.labelCount(); ++number) {
    if (counts[static_cast<std::size_t>(number)] != 0) {
      target.mergeLabel(std::string(file.label(number)));
    }
  }
}

void copyRecords(ztb::Database& target, const ztb::Symbol& copy, const ztb::Symbol& symbol) {
  // What goes wrong with a record is told to the database that it was for.
  ztb::detail::require(c__ztbcopysymbol(target.handle(), copy.handle(), symbol.handle()),
                       target.handle(), "ztbCopySymbol");
}

void runCopy(const CopyOptions& options) {
  const std::string& target = options.words.back();
  std::error_code error;
  if (std::filesystem::equivalent(options.source, target, error)) {
    throw UsageError(
        fmt::format("{}: would be replaced by a part of itself; name another file", target));
  }
  Progress progress;
  progress.step("opening " + options.source);
  const DataFile file(options.source);
  Selection selection(file);
  for (auto name = options.words.begin(); name != std::prev(options.words.end()); ++name) {
    if (*name == "*") {
      throw UsageError("*: the universe is no symbol to copy");
    }
    selection.add(file.symbol(*name));
  }
  std::vector<ztb::Symbol> symbols = selection.symbols();
  for (const ztb::Symbol& symbol : symbols) {
    progress.step("reading " + symbol.name().str());
    if (symbol.type() != ztb::Type::alias) {
      file.requireIntact(symbol);
    }
  }
  ztb::Database copies;
  addLabels(copies, file, symbols);
  std::size_t records = 0;
  for (ztb::Symbol& symbol : symbols) {
    progress.step("copying " + symbol.name().str());
    const ztb::Symbol copy = addSymbol(copies, file, symbol);
    if (symbol.type() != ztb::Type::alias) {
      copyRecords(copies, copy, symbol);
      records += static_cast<std::size_t>(copy.recordCount());
      // What was copied need not stay in memory.
      symbol.clear();
    }
  }
  progress.step("writing " + target);
  try {
    copies.write(target, options.checkDomains);
  } catch (const ztb::Error& failure) {
    throw Failure(withFile(target, failure.what()));
  }
  print(fmt::format("{}: {}, {}, {}\n", target, counted(symbols.size(), "symbol"),
                    counted(static_cast<std::size_t>(copies.labelCount()), "label"),
                    counted(records, "record")));
}

}  // namespace

void addCopyCommand(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("copy", "Copy symbols, with what they need, to a file of their own");
  auto options = std::make_shared<CopyOptions>();
  command->add_option("SRC", options->source, "RXF file")->required();
  command->add_option("SYMBOL", options->words, "Symbols to copy, and DST, the RXF file to make")
      ->type_name("... DST")
      ->required()
      ->expected(2, -1);
  command->add_flag("--check-domains", options->checkDomains,
                    "Refuse a label that is not in the set that is its domain");
  command->footer(
      "Copied with a symbol are the sets and aliases that are its domains, and the set behind an\n"
      "alias. The new file has the labels that these symbols use, in the order of the old one.\n\n"
      "Example:\n"
      "  ztb copy diet.rxf nutrition price part.rxf");
  command->callback([options] { runCopy(*options); });
}

}  // namespace tool
