#include "bindings/python/native/arrow.h"

#include <dlfcn.h>
#include <pybind11/stl.h>
#include <ztb/arrow.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bindings/python/native/database.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/message.h"
#include "bindings/python/native/strings.h"
#include "bindings/python/native/symbol.h"

namespace python {

namespace {

constexpr const char* streamName = "arrow_array_stream";

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

// All batches of a stream, read before anything is done with them, as a stream: what is made of a
// symbol of a database goes into the same one, which cannot be in two uses at once.
class HeldBatches {
 public:
  explicit HeldBatches(ArrowArrayStream& stream) : source_(stream) {
    stream.release = nullptr;
    require(source_.get_schema(&source_, &schema_));
    for (;;) {
      ArrowArray batch{};
      require(source_.get_next(&source_, &batch));
      if (batch.release == nullptr) break;
      batches_.push_back(batch);
    }
    held_.get_schema = [](ArrowArrayStream* self, ArrowSchema* out) {
      *out = std::exchange(of(self).schema_, ArrowSchema{});
      return out->release == nullptr ? EINVAL : 0;
    };
    held_.get_next = [](ArrowArrayStream* self, ArrowArray* out) {
      HeldBatches& held = of(self);
      *out = held.next_ == held.batches_.size()
                 ? ArrowArray{}
                 : std::exchange(held.batches_[held.next_++], ArrowArray{});
      return 0;
    };
    held_.get_last_error = [](ArrowArrayStream*) { return "the stream was read before"; };
    held_.release = [](ArrowArrayStream* self) { self->release = nullptr; };
    held_.private_data = this;
  }
  HeldBatches(const HeldBatches&) = delete;
  HeldBatches& operator=(const HeldBatches&) = delete;
  ~HeldBatches() { end(); }

  ArrowArrayStream* stream() { return &held_; }

 private:
  static HeldBatches& of(ArrowArrayStream* self) {
    return *static_cast<HeldBatches*>(self->private_data);
  }

  void require(int fault) {
    if (fault == 0) return;
    const char* reason = source_.get_last_error(&source_);
    const std::string text = reason == nullptr ? "the stream cannot be read" : reason;
    end();
    throw ztb::Error("ztbArrowFill", text);
  }
  void end() {
    if (schema_.release != nullptr) schema_.release(&schema_);
    for (ArrowArray& batch : batches_) {
      if (batch.release != nullptr) batch.release(&batch);
    }
    if (source_.release != nullptr) source_.release(&source_);
  }

  ArrowArrayStream source_;
  ArrowArrayStream held_{};
  ArrowSchema schema_{};
  std::vector<ArrowArray> batches_;
  std::size_t next_ = 0;
};

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

// `source` is the symbol that the stream is of, if it is one.
void fillFromArrow(const Symbol& symbol, const py::object& capsule,
                   const std::optional<std::vector<py::str>>& keys, int nulls,
                   const std::optional<Symbol>& source) {
  auto* const fill = functionOf<decltype(ztbArrowFill)>("ztbArrowFill");
  ArrowArrayStream* stream = streamOf(capsule);
  std::optional<HeldBatches> held;
  if (source && source->connection() == symbol.connection()) {
    stream = held.emplace(*stream).stream();
  }
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
                     int nulls, const std::optional<Symbol>& source) {
  auto* const make = functionOf<decltype(ztbArrowMake)>("ztbArrowMake");
  ArrowArrayStream* stream = streamOf(capsule);
  std::optional<HeldBatches> held;
  if (source && source->connection() == database.connection()) {
    stream = held.emplace(*stream).stream();
  }
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
