#include "tools/data_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <optional>

#include "tools/failure.h"

namespace tool {

namespace {

// The library's text does not name the file.
ztb::Database openDatabase(const std::string& path, ztb::Store store) {
  try {
    ztb::Database database;
    database.selectStore(store);
    database.openFile(path);
    return database;
  } catch (const ztb::Error& error) {
    throw Failure(withFile(path, error.what()));
  }
}

}  // namespace

DataFile::DataFile(const std::string& path, ztb::Store store)
    : path_(path), file_(path), database_(openDatabase(path, store)) {
  const int count = database_.labelCount();
  labels_.resize(static_cast<std::size_t>(count) + 1);
  for (int number = 1; number <= count; ++number) {
    labels_[static_cast<std::size_t>(number)] = database_.label(number).view();
  }
}

std::vector<ztb::Symbol> DataFile::symbols() const {
  std::vector<ztb::Symbol> result;
  const int count = database_.symbolCount();
  result.reserve(static_cast<std::size_t>(count));
  for (int position = 0; position < count; ++position) {
    result.push_back(database_.symbolAt(position));
  }
  return result;
}

ztb::Symbol DataFile::symbol(const std::string& name) const {
  const std::optional<ztb::Symbol> found = database_.findSymbolOrAlias(name);
  if (!found) {
    throw Failure(fmt::format("{}: {}", path_, database_.lastError().view()));
  }
  return *found;
}

ztb::Symbol DataFile::resolved(const ztb::Symbol& symbol) const {
  return symbol.type() == ztb::Type::alias ? database_.symbol(symbol.name()) : symbol;
}

int DataFile::recordCount(const ztb::Symbol& symbol) const {
  return symbol == database_.universe() ? labelCount() : file_.recordCount(symbol.name().str());
}

void DataFile::requireIntact(const ztb::Symbol& symbol) const {
  const std::vector<std::string> errors = file_.readRecords(symbol.name().str());
  if (!errors.empty()) {
    throw Failure(withFile(path_, errors.front()));
  }
}

std::vector<std::string> domainNames(const ztb::Symbol& symbol) {
  std::vector<std::string> names(static_cast<std::size_t>(symbol.dimension()), "*");
  if (symbol.type() != ztb::Type::alias && symbol.name() != "*") {
    const std::vector<ztb::Domain> domains = symbol.domains();
    for (std::size_t position = 0; position < names.size(); ++position) {
      names[position] = domains[position].name.view();
    }
  }
  return names;
}

std::string signature(const ztb::Symbol& symbol) {
  std::string name = symbol.name().str();
  if (symbol.dimension() == 0 || name == "*") {
    return name;
  }
  return fmt::format("{}({})", name, fmt::join(domainNames(symbol), ", "));
}

}  // namespace tool
