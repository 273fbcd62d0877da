#include "tools/files/formats_library.h"

#include <fmt/format.h>

#include <array>
#include <new>

#include "tools/files/shared_library.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

// The functions of the library.
struct Functions {
  decltype(&ztbFormatsCreate) create;
  decltype(&ztbFormatsFree) free;
  decltype(&ztbFormatsOption) option;
  decltype(&ztbFormatsImport) import;
  decltype(&ztbFormatsExport) exportFile;
  std::array<decltype(&ztbFormatsMerge), 5> make;  // in the order of FormatsJob::Making
  decltype(&ztbFormatsMessage) message;
  decltype(&ztbFormatsIsUsage) isUsage;
  decltype(&ztbFormatsProblems) problems;
  decltype(&ztbFormatsWarnings) warnings;
  decltype(&ztbFormatsCounted) counted;
};

template <typename Function>
void bind(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(functionOf(library, name));
  if (function == nullptr) {
    throw Failure(fmt::format("{} has no function {}: it is of another version",
                              libraryFile("ztbformats"), name));
  }
}

Functions openLibrary() {
  std::string reason;
  void* library = tool::openLibrary(libraryFile("ztbformats"), reason);
  if (library == nullptr) {
    throw Failure(fmt::format("the library for tables cannot be opened: {}", reason));
  }
  Functions functions{};
  bind(library, "ztbFormatsCreate", functions.create);
  bind(library, "ztbFormatsFree", functions.free);
  bind(library, "ztbFormatsOption", functions.option);
  bind(library, "ztbFormatsImport", functions.import);
  bind(library, "ztbFormatsExport", functions.exportFile);
  constexpr std::array makeNames{"ztbFormatsMerge", "ztbFormatsConcat", "ztbFormatsRename",
                                 "ztbFormatsWhere", "ztbFormatsAggregate"};
  for (std::size_t making = 0; making < makeNames.size(); ++making) {
    bind(library, makeNames.at(making), functions.make.at(making));
  }
  bind(library, "ztbFormatsMessage", functions.message);
  bind(library, "ztbFormatsIsUsage", functions.isUsage);
  bind(library, "ztbFormatsProblems", functions.problems);
  bind(library, "ztbFormatsWarnings", functions.warnings);
  bind(library, "ztbFormatsCounted", functions.counted);
  return functions;
}

const Functions& library() {
  static const Functions functions = openLibrary();
  return functions;
}

}  // namespace

FormatsJob::FormatsJob() {
  if (library().create(&job_) == 0) throw std::bad_alloc();
}

FormatsJob::~FormatsJob() {
  library().free(&job_);
}

void FormatsJob::require(int result) const {
  if (result != 0) return;
  const std::string message = library().message(job_);
  if (library().isUsage(job_) != 0) throw UsageError(message);
  throw Failure(message);
}

void FormatsJob::option(const std::string& name, const std::string& value) {
  require(library().option(job_, name.c_str(), value.c_str()));
}

void FormatsJob::import(const std::string& path) {
  require(library().import(job_, path.c_str()));
}

void FormatsJob::exportFile(const std::string& path) {
  require(library().exportFile(job_, path.c_str()));
}

void FormatsJob::make(Making making, const std::string& path) {
  require(library().make.at(static_cast<std::size_t>(making))(job_, path.c_str()));
}

std::string FormatsJob::problems() const {
  return library().problems(job_);
}

std::string FormatsJob::warnings() const {
  return library().warnings(job_);
}

std::size_t FormatsJob::counted(int what) const {
  const long long count = library().counted(job_, what);
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

}  // namespace tool
