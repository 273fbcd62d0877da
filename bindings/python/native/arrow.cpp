#include "bindings/python/native/arrow.h"

#include <dlfcn.h>
#include <pybind11/stl.h>
#include <ztb/arrow.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bindings/python/native/database.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/strings.h"
#include "bindings/python/native/symbol.h"

namespace python {

namespace {

constexpr const char* streamName = "arrow_array_stream";
using Message = std::array<char, 512>;

// The library stands beside that of the database, and is opened when it is first needed.
template <class Function>
Function* functionOf(const char* name) {
  // The loader keeps it open.
  void* library = dlopen("libztbformats.so", RTLD_NOW | RTLD_LOCAL);
  void* found = library == nullptr ? nullptr : dlsym(library, name);
  if (found == nullptr) {
    throw ztb::Error(name, std::string("the library for tables cannot be opened: ") + dlerror(),
                     ztb::ErrorKind::noLibrary);
  }
  return reinterpret_cast<Function*>(found);
}

void require(int result, const Message& message, const char* operation) {
  if (result == 0) {
    throw ztb::Error(operation, message.data());
  }
}

// What a stream keeps alive, and its turn while it reads.
struct StreamOwner {
  Shared connection;
  std::optional<Use> use;
};

int enter(void* owner, char* message, int size) {
  const py::gil_scoped_acquire acquired;
  auto& stream = *static_cast<StreamOwner*>(owner);
  try {
    stream.use.emplace(*stream.connection);
    static_cast<void>(stream.connection->database());
    return 1;
  } catch (const std::exception& error) {
    stream.use.reset();
    const std::size_t length =
        std::min(std::strlen(error.what()), static_cast<std::size_t>(size) - 1);
    std::memcpy(message, error.what(), length);
    message[length] = '\0';
    return 0;
  }
}

void leave(void* owner) {
  static_cast<StreamOwner*>(owner)->use.reset();
}

void releaseOwner(void* owner) {
  delete static_cast<StreamOwner*>(owner);
}

void endStream(ArrowArrayStream* stream) {
  if (stream->release != nullptr) {
    stream->release(stream);
  }
  delete stream;
}

py::object arrowStream(const Symbol& symbol, bool naAsNull, int batchRecords) {
  auto* const exportTo = functionOf<decltype(ztbArrowExport)>("ztbArrowExport");
  symbol.load();
  auto owner = std::make_unique<StreamOwner>();
  owner->connection = symbol.connection();
  std::unique_ptr<ArrowArrayStream, decltype(&endStream)> stream(new ArrowArrayStream{},
                                                                 &endStream);
  const ztbArrowOptions options{.flags = naAsNull ? ZTB_ARROW_NA_AS_NULL : 0,
                                .batchRecords = batchRecords,
                                .owner = owner.release(),
                                .enter = enter,
                                .leave = leave,
                                .release = releaseOwner};
  Message message{};
  require(exportTo(symbol.database(), symbol.handle(), &options, stream.get(), message.data(),
                   static_cast<int>(message.size())),
          message, "ztbArrowExport");
  PyObject* capsule = PyCapsule_New(stream.get(), streamName, [](PyObject* ended) {
    endStream(static_cast<ArrowArrayStream*>(PyCapsule_GetPointer(ended, streamName)));
  });
  if (capsule == nullptr) {
    throw py::error_already_set();
  }
  static_cast<void>(stream.release());
  return py::reinterpret_steal<py::object>(capsule);
}

ArrowArrayStream* streamOf(const py::object& capsule) {
  void* stream = PyCapsule_GetPointer(capsule.ptr(), streamName);
  if (stream == nullptr) {
    throw py::error_already_set();
  }
  return static_cast<ArrowArrayStream*>(stream);
}

// Names of key columns as the library takes them.
class ImportOptions {
 public:
  ImportOptions(const std::optional<std::vector<py::str>>& keys, int nulls) {
    options_.nulls = nulls;
    if (!keys) {
      return;
    }
    for (const py::str& key : *keys) names_.push_back(fromPython(key));
    // An address also where there are none.
    pointers_.reserve(names_.size() + 1);
    for (const std::string& name : names_) pointers_.push_back(name.c_str());
    options_.keys = pointers_.data();
    options_.keyCount = static_cast<int>(names_.size());
  }
  ImportOptions(const ImportOptions&) = delete;
  ImportOptions& operator=(const ImportOptions&) = delete;

  [[nodiscard]] const ztbArrowImportOptions* get() const { return &options_; }

 private:
  std::vector<std::string> names_;
  std::vector<const char*> pointers_;
  ztbArrowImportOptions options_{};
};

void fillFromArrow(const Symbol& symbol, const py::object& capsule,
                   const std::optional<std::vector<py::str>>& keys, int nulls) {
  auto* const fill = functionOf<decltype(ztbArrowFill)>("ztbArrowFill");
  ArrowArrayStream* const stream = streamOf(capsule);
  const ImportOptions options(keys, nulls);
  const Use use(*symbol.connection());
  Message message{};
  runWithoutInterpreter([&](Interruption&) {
    require(fill(symbol.database(), symbol.handle(), stream, options.get(), message.data(),
                 static_cast<int>(message.size())),
            message, "ztbArrowFill");
  });
}

Symbol makeFromArrow(const Database& database, const py::str& name, int type,
                     const py::object& capsule, const std::optional<std::vector<py::str>>& keys,
                     int nulls) {
  auto* const make = functionOf<decltype(ztbArrowMake)>("ztbArrowMake");
  ArrowArrayStream* const stream = streamOf(capsule);
  const ImportOptions options(keys, nulls);
  const std::string bytes = fromPython(name);
  const Use use(*database.connection());
  ztbRec* const handle = database.connection()->handle();
  Message message{};
  void* symbol = nullptr;
  runWithoutInterpreter([&](Interruption&) {
    require(make(handle, bytes.c_str(), type, stream, options.get(), &symbol, message.data(),
                 static_cast<int>(message.size())),
            message, "ztbArrowMake");
  });
  return {database.connection(), ztb::Symbol(handle, symbol)};
}

}  // namespace

void bindArrow(py::module_& module) {
  module.def("arrow_stream", inTurn(&arrowStream));
  module.def("fill_from_arrow", &fillFromArrow);
  module.def("make_from_arrow", &makeFromArrow);
}

}  // namespace python
