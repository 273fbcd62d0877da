#include "view/opened_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>

#include "tools/models/model_session.h"
#include "tools/text/words.h"
#include "view/parameters.h"

namespace view {

namespace {

bool isModel(const std::string& path) {
  return std::ranges::any_of(
      std::array{".lp", ".mps", ".mod", ".lp.gz", ".mps.gz"},
      [&](std::string_view ending) { return tool::folded(path).ends_with(ending); });
}

FileKind kindOf(const tool::ExchangeFile& file) {
  const tool::FileSymbol* status = file.findSymbol("sweep_status");
  const tool::FileSymbol* inputs = file.findSymbol("sweep_inputs");
  return status != nullptr && status->type == ztb::Type::parameter && status->dimension == 1 &&
                 inputs != nullptr
             ? FileKind::sweep
             : FileKind::data;
}

}  // namespace

std::size_t OpenedFile::nextId() {
  static std::atomic<std::size_t> last{0};
  return ++last;
}

OpenedFile::OpenedFile(const std::string& path)
    : path_(path), name_(std::filesystem::path(path).filename().string()) {
  if (isModel(path)) {
    tool::openModel(path, "");
    bytes_ = std::filesystem::file_size(path);
    return;
  }
  exchange_ = std::make_unique<tool::ExchangeFile>(path);
  kind_ = kindOf(*exchange_);
  bytes_ = exchange_->file().size();
  name_ = std::filesystem::path(exchange_->path()).filename().string();
}

OpenedFile::OpenedFile(const std::string& path, const std::string& name) : OpenedFile(path) {
  name_ = name;
}

const tool::ExchangeFile& OpenedFile::exchange() const {
  if (!exchange_) throw RequestError(400, name() + " is a model, which has no records");
  return *exchange_;
}

const tool::FileSymbol& OpenedFile::symbol(const std::string& name) const {
  const tool::FileSymbol* found = exchange().findSymbol(name);
  if (found == nullptr) {
    throw RequestError(404, fmt::format("{} has no symbol {}", name_, tool::inQuotes(name)));
  }
  return exchange_->resolved(*found);
}

}  // namespace view
