#include "view/opened_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "tools/text/words.h"
#include "view/parameters.h"

namespace view {

namespace {

FileKind kindOf(const tool::ExchangeFile& file) {
  const tool::FileSymbol* status = file.findSymbol("sweep_status");
  const tool::FileSymbol* inputs = file.findSymbol("sweep_inputs");
  return status != nullptr && status->type == ztb::Type::parameter && status->dimension == 1 &&
                 inputs != nullptr
             ? FileKind::sweep
             : FileKind::data;
}

}  // namespace

OpenedFile::OpenedFile(const std::string& path) : exchange_(path), kind_(kindOf(exchange_)) {}

std::string OpenedFile::name() const {
  return std::filesystem::path(exchange_.path()).filename().string();
}

const tool::FileSymbol& OpenedFile::symbol(const std::string& name) const {
  const tool::FileSymbol* found = exchange_.findSymbol(name);
  if (found == nullptr) {
    throw RequestError(404, fmt::format("{} has no symbol {}", this->name(), tool::inQuotes(name)));
  }
  return exchange_.resolved(*found);
}

}  // namespace view
