#include "tools/files/exchange_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <ztb/display_text.hpp>

#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

ztb::RxfFile openFile(const std::string& path) {
  const std::string file = inputFile(path);
  try {
    return ztb::RxfFile(file);
  } catch (const ztb::Error& error) {
    std::string text = error.what();
    if (const std::size_t at = text.find(file); file != path && at != std::string::npos) {
      text.replace(at, file.size(), inputName(path));
    }
    throw Failure(withFile(inputName(path), text), static_cast<int>(error.kind()));
  }
}

// A domain name means a symbol of the file where that is a set or alias of one position.
FileDomain domainOf(const ztb::RxfFile& file, std::string_view name) {
  FileDomain domain{.name = std::string(name), .set = -1};
  if (const std::optional<ztb::RxfSymbol> found = file.findSymbol(domain.name)) {
    const bool isSet = found->type == ztb::Type::set || found->isAlias();
    if (isSet && found->dimension == 1) {
      domain = {.name = std::string(found->name), .set = found->number};
    }
  }
  return domain;
}

}  // namespace

ExchangeFile::ExchangeFile(const std::string& path)
    : path_(inputName(path)), file_(openFile(path)) {
  const int count = file_.labelCount();
  labels_.resize(static_cast<std::size_t>(count) + 1);
  for (int number = 1; number <= count; ++number) {
    labels_[static_cast<std::size_t>(number)] = file_.label(number);
  }
  for (int number = 1; number <= file_.symbolCount(); ++number) {
    symbols_.push_back(described(number));
  }
  universe_ = described(0);
}

FileSymbol ExchangeFile::described(int number) const {
  const ztb::RxfSymbol symbol = file_.symbol(number);
  FileSymbol result{.number = number,
                    .name = std::string(symbol.name),
                    .text = std::string(symbol.text),
                    .type = symbol.type,
                    .dimension = symbol.dimension,
                    .valueCount = symbol.valueCount,
                    .userInfo = symbol.userInfo,
                    .recordCount = static_cast<std::size_t>(symbol.recordCount),
                    .aliasTarget = symbol.aliasTarget,
                    .domains = {}};
  for (const std::string_view domain : symbol.domains) {
    result.domains.push_back(domainOf(file_, domain));
  }
  return result;
}

const FileSymbol* ExchangeFile::findSymbol(const std::string& name) const {
  const std::optional<ztb::RxfSymbol> found = file_.findSymbol(name);
  return found ? &symbolAt(found->number) : nullptr;
}

const FileSymbol& ExchangeFile::symbol(const std::string& name) const {
  const FileSymbol* found = findSymbol(name);
  if (found == nullptr) {
    throw Failure(fmt::format("{}: Cannot find symbol {}", path_, name), ZTB_ERROR_NOT_FOUND);
  }
  return *found;
}

std::vector<std::string> domainNames(const FileSymbol& symbol) {
  std::vector<std::string> names;
  for (const FileDomain& domain : symbol.domains) {
    names.push_back(domain.name);
  }
  return names;
}

std::string signature(const FileSymbol& symbol) {
  if (symbol.dimension == 0 || symbol.isUniverse()) {
    return symbol.name;
  }
  std::vector<std::string> domains = domainNames(symbol);
  for (std::string& domain : domains) {
    domain = ztb::displayText(domain);
  }
  return fmt::format("{}({})", symbol.name, fmt::join(domains, ", "));
}

}  // namespace tool
