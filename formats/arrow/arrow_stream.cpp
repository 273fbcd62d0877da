#include "formats/arrow/arrow_stream.h"

#include <bit>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <new>
#include <span>
#include <utility>

#include "formats/arrow/dictionary.h"

namespace formats {

namespace {

// ---- schemas ------------------------------------------------------------------------------------

struct SchemaHolder {
  std::string name;
  std::vector<std::unique_ptr<ArrowSchema>> children;
  std::vector<ArrowSchema*> pointers;
  std::unique_ptr<ArrowSchema> dictionary;
};

// A child that was taken over elsewhere has no release any more.
template <class Structure, class Holder>
void releaseWithChildren(Structure* structure) {
  const std::unique_ptr<Holder> holder(static_cast<Holder*>(structure->private_data));
  for (const std::unique_ptr<Structure>& child : holder->children) {
    if (child->release != nullptr) child->release(child.get());
  }
  if (holder->dictionary && holder->dictionary->release != nullptr) {
    holder->dictionary->release(holder->dictionary.get());
  }
  structure->release = nullptr;
}

std::unique_ptr<ArrowSchema> makeSchema(const char* format, std::string name, bool nullable) {
  auto holder = std::make_unique<SchemaHolder>();
  holder->name = std::move(name);
  auto schema = std::make_unique<ArrowSchema>();
  *schema = {.format = format,
             .name = holder->name.c_str(),
             .metadata = nullptr,
             .flags = nullable ? ARROW_FLAG_NULLABLE : 0,
             .n_children = 0,
             .children = nullptr,
             .dictionary = nullptr,
             .release = releaseWithChildren<ArrowSchema, SchemaHolder>,
             .private_data = holder.release()};
  return schema;
}

struct ReleaseSchema {
  void operator()(ArrowSchema* schema) const {
    if (schema->release != nullptr) schema->release(schema);
    delete schema;
  }
};
using OwnedSchema = std::unique_ptr<ArrowSchema, ReleaseSchema>;

void addChild(ArrowSchema& schema, OwnedSchema child) {
  auto* holder = static_cast<SchemaHolder*>(schema.private_data);
  holder->children.reserve(holder->children.size() + 1);
  holder->pointers.reserve(holder->pointers.size() + 1);
  holder->pointers.push_back(child.get());
  holder->children.emplace_back(child.release());
  schema.children = holder->pointers.data();
  schema.n_children = static_cast<std::int64_t>(holder->pointers.size());
}

void addDictionary(ArrowSchema& schema, OwnedSchema dictionary) {
  auto* holder = static_cast<SchemaHolder*>(schema.private_data);
  schema.dictionary = dictionary.get();
  holder->dictionary.reset(dictionary.release());
}

OwnedSchema schemaOf(const ArrowColumns& columns) {
  OwnedSchema schema(makeSchema("+s", "", false).release());
  for (const std::string& name : columns.keys) {
    OwnedSchema column(makeSchema("i", name, false).release());
    addDictionary(*column, OwnedSchema(makeSchema("u", "", false).release()));
    addChild(*schema, std::move(column));
  }
  for (const std::string& name : columns.contents) {
    addChild(*schema,
             OwnedSchema(makeSchema(columns.isSet ? "u" : "g", name, columns.naAsNull).release()));
  }
  return schema;
}

// ---- arrays -------------------------------------------------------------------------------------

struct ArrayHolder {
  std::vector<const void*> buffers;
  // What the buffers lie in.
  std::vector<std::shared_ptr<const void>> memory;
  std::vector<std::unique_ptr<ArrowArray>> children;
  std::vector<ArrowArray*> pointers;
  std::unique_ptr<ArrowArray> dictionary;
};

struct ReleaseArray {
  void operator()(ArrowArray* array) const {
    if (array->release != nullptr) array->release(array);
    delete array;
  }
};
using OwnedArray = std::unique_ptr<ArrowArray, ReleaseArray>;

OwnedArray makeArray(std::size_t length, std::vector<const void*> buffers,
                     std::vector<std::shared_ptr<const void>> memory) {
  auto holder = std::make_unique<ArrayHolder>();
  holder->buffers = std::move(buffers);
  holder->memory = std::move(memory);
  OwnedArray array(new ArrowArray{});
  array->length = static_cast<std::int64_t>(length);
  array->n_buffers = static_cast<std::int64_t>(holder->buffers.size());
  array->buffers = holder->buffers.data();
  array->release = releaseWithChildren<ArrowArray, ArrayHolder>;
  array->private_data = holder.release();
  return array;
}

OwnedArray arrayOfTexts(const std::shared_ptr<const TextColumn>& texts) {
  return makeArray(texts->begins.size() - 1, {nullptr, texts->begins.data(), texts->chars.data()},
                   {texts});
}

OwnedArray arrayOfCodes(std::vector<int> codes, const std::shared_ptr<const TextColumn>& texts) {
  const auto kept = std::make_shared<const std::vector<int>>(std::move(codes));
  OwnedArray array = makeArray(kept->size(), {nullptr, kept->data()}, {kept});
  OwnedArray dictionary = arrayOfTexts(texts);
  array->dictionary = dictionary.get();
  static_cast<ArrayHolder*>(array->private_data)->dictionary.reset(dictionary.release());
  return array;
}

// The marks of values that are there, a bit for each; their number that are not goes to `nulls`.
std::shared_ptr<const std::vector<std::uint8_t>> marksOf(std::span<const double> values, double na,
                                                         std::int64_t& nulls) {
  auto marks = std::make_shared<std::vector<std::uint8_t>>((values.size() + 7) / 8, 0xFF);
  const auto bits = std::bit_cast<std::uint64_t>(na);
  nulls = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (std::bit_cast<std::uint64_t>(values[i]) == bits) {
      ++nulls;
      (*marks)[i / 8] &= static_cast<std::uint8_t>(~(1U << (i % 8)));
    }
  }
  return marks;
}

OwnedArray arrayOfNumbers(const double* values, std::size_t count,
                          std::shared_ptr<const void> memory, const ArrowColumns& columns) {
  OwnedArray array = makeArray(count, {nullptr, values}, {std::move(memory)});
  std::int64_t nulls = 0;
  if (columns.naAsNull) {
    const auto marks = marksOf({values, count}, columns.na, nulls);
    if (nulls > 0) {
      auto* holder = static_cast<ArrayHolder*>(array->private_data);
      holder->memory.push_back(marks);
      holder->buffers[0] = marks->data();
    }
  }
  array->null_count = nulls;
  return array;
}

void addChild(ArrowArray& array, OwnedArray child) {
  auto* holder = static_cast<ArrayHolder*>(array.private_data);
  holder->children.reserve(holder->children.size() + 1);
  holder->pointers.reserve(holder->pointers.size() + 1);
  holder->pointers.push_back(child.get());
  holder->children.emplace_back(child.release());
  array.children = holder->pointers.data();
  array.n_children = static_cast<std::int64_t>(holder->pointers.size());
}

// ---- the stream ---------------------------------------------------------------------------------

class Stream {
 public:
  Stream(ArrowColumns columns, std::unique_ptr<RecordBlocks> blocks,
         std::unique_ptr<ArrowOwner> owner)
      : owner_(std::move(owner)),
        columns_(std::move(columns)),
        blocks_(std::move(blocks)),
        dictionaries_(columns_.keys.size()) {}
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() = default;

  int schema(ArrowSchema* out) {
    return attempt([&] { moveTo(out, schemaOf(columns_)); });
  }

  // An array without a release is the end.
  int next(ArrowArray* out) {
    *out = {};
    if (failed_) return EIO;
    return attempt([&] {
      RecordBlock block;
      owner_->run([&] {
        block = blocks_->next();
        for (std::size_t position = 0; position < block.keys.size(); ++position) {
          dictionaries_[position].encode(block.keys[position], *blocks_);
        }
      });
      if (block.count > 0) moveTo(out, batch(std::move(block)));
    });
  }

  [[nodiscard]] const char* error() const { return failed_ ? error_.c_str() : nullptr; }

 private:
  template <class Structure, class Owned>
  static void moveTo(Structure* out, Owned owned) {
    *out = *owned;
    owned->release = nullptr;
  }

  template <class Work>
  int attempt(Work&& work) {
    try {
      work();
      return 0;
    } catch (const std::bad_alloc&) {
      failed_ = true;
      error_ = "out of memory";
      return ENOMEM;
    } catch (const std::exception& error) {
      failed_ = true;
      error_ = error.what();
      return EIO;
    }
  }

  OwnedArray batch(RecordBlock block) const {
    OwnedArray array = makeArray(block.count, {nullptr}, {});
    for (std::size_t position = 0; position < block.keys.size(); ++position) {
      addChild(*array,
               arrayOfCodes(std::move(block.keys[position]), dictionaries_[position].texts()));
    }
    if (columns_.isSet) {
      addChild(*array, arrayOfTexts(std::make_shared<const TextColumn>(std::move(block.texts))));
    } else if (block.inPlace != nullptr) {
      addChild(*array, arrayOfNumbers(block.inPlace, block.count, block.held, columns_));
    }
    for (std::vector<double>& values : block.values) {
      const auto kept = std::make_shared<const std::vector<double>>(std::move(values));
      addChild(*array, arrayOfNumbers(kept->data(), kept->size(), kept, columns_));
    }
    return array;
  }

  std::unique_ptr<ArrowOwner> owner_;
  ArrowColumns columns_;
  std::unique_ptr<RecordBlocks> blocks_;
  std::vector<Dictionary> dictionaries_;
  bool failed_ = false;
  std::string error_;
};

Stream& streamOf(ArrowArrayStream* stream) {
  return *static_cast<Stream*>(stream->private_data);
}

}  // namespace

void makeArrowStream(ArrowColumns columns, std::unique_ptr<RecordBlocks> blocks,
                     std::unique_ptr<ArrowOwner> owner, ArrowArrayStream* stream) {
  auto made = std::make_unique<Stream>(std::move(columns), std::move(blocks), std::move(owner));
  *stream = {
      .get_schema = [](ArrowArrayStream* self,
                       ArrowSchema* out) { return streamOf(self).schema(out); },
      .get_next = [](ArrowArrayStream* self, ArrowArray* out) { return streamOf(self).next(out); },
      .get_last_error = [](ArrowArrayStream* self) { return streamOf(self).error(); },
      .release =
          [](ArrowArrayStream* self) {
            delete &streamOf(self);
            self->release = nullptr;
          },
      .private_data = made.release()};
}

}  // namespace formats
