#include "tools/rxf_file.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <ztb/ztb.h>

#include <algorithm>
#include <array>
#include <bit>

#include "tools/failure.h"
#include "tools/words.h"

namespace tool {

namespace {

constexpr const char* libraryFile = "librxfcclib64.so";

using TextBuffer = std::array<char, ZTB_TEXT_BUFFER_SIZE>;

// Opens the library that the database opens, by its bare name: that is the one beside
// libztbcclib64.so unless the loader is told of another. Where this program has no run path to it,
// as under a sanitizer, the one beside is named.
void* openLibrary() {
  if (void* library = dlopen(libraryFile, RTLD_NOW | RTLD_LOCAL); library != nullptr) {
    return library;
  }
  const std::string reason = dlerror();
  Dl_info own{};
  if (dladdr(std::bit_cast<void*>(&ztbcreate), &own) != 0 && own.dli_fname != nullptr) {
    const std::string path = own.dli_fname;
    const std::string beside = path.substr(0, path.rfind('/') + 1) + libraryFile;
    if (void* library = dlopen(beside.c_str(), RTLD_NOW | RTLD_LOCAL); library != nullptr) {
      return library;
    }
  }
  throw Failure(fmt::format("the exchange-file library cannot be opened: {}", reason));
}

// Finds a name in the library: in small letters, as it stands, in capitals.
void* findName(void* library, const std::string& name) {
  std::string capitals = name;
  std::ranges::transform(capitals, capitals.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  for (const std::string& spelling : {folded(name), name, capitals}) {
    if (void* address = dlsym(library, spelling.c_str()); address != nullptr) {
      return address;
    }
  }
  throw Failure(fmt::format("{} has no {}", libraryFile, name));
}

}  // namespace

struct RxfFile::Library {
  explicit Library(void* handle) {
    bind(handle, "XCreate", create);
    bind(handle, "XFree", free);
    bind(handle, "C__rxfOpenRead", openRead);
    bind(handle, "C__rxfClose", close);
    bind(handle, "C__rxfErrorStr", errorStr);
    bind(handle, "C__rxfGetLastError", getLastError);
    bind(handle, "C__rxfSystemInfo", systemInfo);
    bind(handle, "C__rxfSymbolInfo", symbolInfo);
    bind(handle, "C__rxfSymbolInfoX", symbolInfoX);
    bind(handle, "C__rxfFindSymbol", findSymbol);
    bind(handle, "C__rxfDataReadRawStart", dataReadRawStart);
    bind(handle, "C__rxfDataReadRaw", dataReadRaw);
    bind(handle, "C__rxfDataReadDone", dataReadDone);
  }

  template <class Function>
  static void bind(void* handle, const char* name, Function*& slot) {
    slot = std::bit_cast<Function*>(findName(handle, name));
  }

  void (*create)(void**) = nullptr;
  void (*free)(void**) = nullptr;
  int (*openRead)(void*, const char*, int*) = nullptr;
  int (*close)(void*) = nullptr;
  int (*errorStr)(void*, int, char*) = nullptr;
  int (*getLastError)(void*) = nullptr;
  int (*systemInfo)(void*, int*, int*) = nullptr;
  int (*symbolInfo)(void*, int, char*, int*, int*) = nullptr;
  int (*symbolInfoX)(void*, int, int*, int*, char*) = nullptr;
  int (*findSymbol)(void*, const char*, int*) = nullptr;
  int (*dataReadRawStart)(void*, int, int*) = nullptr;
  int (*dataReadRaw)(void*, int*, double*, int*) = nullptr;
  int (*dataReadDone)(void*) = nullptr;
};

class RxfFile::Object {
 public:
  Object() {
    library().create(&handle_);
    if (handle_ == nullptr) {
      throw Failure("the exchange-file library cannot make an object");
    }
  }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  ~Object() { library().free(&handle_); }

  [[nodiscard]] void* handle() const { return handle_; }

 private:
  void* handle_ = nullptr;
};

// Opened once for the life of the process.
const RxfFile::Library& RxfFile::library() {
  static const Library bound(openLibrary());
  return bound;
}

RxfFile::RxfFile(const std::string& path) : object_(std::make_unique<Object>()) {
  int error = 0;
  library().openRead(object_->handle(), path.c_str(), &error);
  if (error != 0) {
    TextBuffer text{};
    library().errorStr(object_->handle(), error, text.data());
    throw Failure(withFile(path, text.data()));
  }
}

RxfFile::~RxfFile() {
  library().close(object_->handle());
}

int RxfFile::labelCount() const {
  int symbolCount = 0;
  int labels = 0;
  library().systemInfo(object_->handle(), &symbolCount, &labels);
  return labels;
}

RxfSymbol RxfFile::symbol(int number) const {
  RxfSymbol result;
  TextBuffer text{};
  int userInfo = 0;
  result.number = number;
  library().symbolInfo(object_->handle(), number, text.data(), &result.dimension, &result.type);
  result.name = text.data();
  library().symbolInfoX(object_->handle(), number, &result.recordCount, &userInfo, text.data());
  return result;
}

std::vector<RxfSymbol> RxfFile::symbols() const {
  int symbolCount = 0;
  int labels = 0;
  library().systemInfo(object_->handle(), &symbolCount, &labels);
  std::vector<RxfSymbol> result;
  for (int number = 1; number <= symbolCount; ++number) {
    result.push_back(symbol(number));
  }
  return result;
}

int RxfFile::findSymbol(const std::string& name) const {
  int number = 0;
  library().findSymbol(object_->handle(), name.c_str(), &number);
  return number;
}

int RxfFile::recordCount(const std::string& name) const {
  const int number = findSymbol(name);
  return number > 0 ? symbol(number).recordCount : 0;
}

// Texts of all pending errors, the earliest first, each once.
std::vector<std::string> RxfFile::takeErrors() const {
  std::vector<std::string> texts;
  for (int number = library().getLastError(object_->handle()); number != 0;
       number = library().getLastError(object_->handle())) {
    TextBuffer text{};
    library().errorStr(object_->handle(), number, text.data());
    if (std::ranges::find(texts, text.data()) == texts.end()) {
      texts.emplace_back(text.data());
    }
  }
  std::ranges::reverse(texts);
  return texts;
}

std::vector<std::string> RxfFile::readRecords(const RxfSymbol& symbol) const {
  if (symbol.type == ZTB_ALIAS) {
    return {};
  }
  std::array<int, ZTB_MAX_DIMENSION> keys{};
  std::array<double, ztb::fieldCount> values{};
  int firstChanged = 0;
  int count = 0;
  static_cast<void>(takeErrors());
  library().dataReadRawStart(object_->handle(), symbol.number, &count);
  for (int record = 0; record < count; ++record) {
    library().dataReadRaw(object_->handle(), keys.data(), values.data(), &firstChanged);
  }
  library().dataReadDone(object_->handle());
  std::vector<std::string> errors = takeErrors();
  if (errors.empty() && count != symbol.recordCount) {
    errors.push_back(fmt::format("{} can be read, expected {}",
                                 counted(static_cast<std::size_t>(count), "record"),
                                 symbol.recordCount));
  }
  return errors;
}

std::vector<std::string> RxfFile::readRecords(const std::string& name) const {
  const int number = findSymbol(name);
  return number > 0 ? readRecords(symbol(number)) : std::vector<std::string>{};
}

}  // namespace tool
