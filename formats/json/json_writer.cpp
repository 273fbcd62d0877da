#include <cstdio>
#include <ztb/column_names.hpp>

#include "formats/json/json_lines.h"
#include "formats/json/json_text.h"
#include "formats/tables/byte_sink.h"
#include "formats/tables/manifest.h"
#include "tools/files/record_walk.h"
#include "tools/text/words.h"

namespace formats {

namespace {

constexpr std::size_t pendingLimit = std::size_t{1} << 16U;

// Lines of JSON on their way into a file.
class JsonLines {
 public:
  explicit JsonLines(const std::string& path, JsonText::Texts texts = JsonText::Texts::spelledOut)
      : bytes_(makeBytes(path)), line_(texts) {}

  // The line that is being made, an object.
  JsonText* operator->() { return &line_; }
  void close() {
    line_.endObject();
    pending_ += line_.chars();
    line_.clear();
    pending_ += '\n';
    if (pending_.size() > pendingLimit) flush();
  }
  void finish() {
    flush();
    bytes_->finish();
  }

 private:
  void flush() {
    bytes_->write(pending_);
    pending_.clear();
  }

  std::unique_ptr<ByteSink> bytes_;
  JsonText line_;
  std::string pending_;
};

class JsonWriter : public TableWriter {
 public:
  explicit JsonWriter(const std::string& path) : lines_(path, JsonText::Texts::asTheyAre) {}

  void begin(const TableHead& head) override { head_ = head; }
  void label(std::string_view text) override { this->text(text); }
  void text(std::string_view text) override {
    name();
    lines_->text(text);
  }
  void number(double value) override {
    name();
    lines_->number(value);
  }
  void missing() override {
    name();
    lines_->null();
  }
  void endRow() override {
    if (at_ == 0) lines_->beginObject();
    lines_.close();
    at_ = 0;
  }
  void end() override {}
  void finish() override { lines_.finish(); }

 private:
  void name() {
    if (at_ == 0) lines_->beginObject();
    lines_->name(head_.columns[at_++].name);
  }

  JsonLines lines_;
  TableHead head_;
  std::size_t at_ = 0;
};

void writeTexts(JsonLines& lines, const std::vector<std::string>& texts) {
  lines->beginArray();
  for (const std::string& text : texts) lines->text(text);
  lines->endArray();
}

// What must follow, so that a file without its end is no smaller database.
void writeCounts(JsonLines& lines, std::size_t symbols, std::size_t labels) {
  lines->beginObject();
  lines->name("symbols");
  lines->number(static_cast<double>(symbols));
  lines->name("labels");
  lines->number(static_cast<double>(labels));
  lines.close();
}

void writeSymbol(JsonLines& lines, const ManifestEntry& entry, std::size_t records) {
  lines->beginObject();
  lines->name("symbol");
  lines->text(entry.name);
  lines->name("type");
  lines->text(tool::typeWord(entry.type));
  lines->name("domains");
  writeTexts(lines, entry.domains);
  lines->name("user_info");
  lines->number(entry.userInfo);
  if (!entry.aliasOf.empty()) {
    lines->name("alias_of");
    lines->text(entry.aliasOf);
  } else {
    lines->name("records");
    lines->number(static_cast<double>(records));
  }
  lines->name("text");
  lines->text(entry.text);
  lines.close();
}

}  // namespace

std::unique_ptr<TableWriter> makeJsonLines(const TableTarget& target) {
  return std::make_unique<JsonWriter>(target.path);
}

void writeJsonDatabase(const DatabaseExport& database) {
  const tool::ExchangeFile& file = database.file;
  JsonLines lines(database.path);
  writeCounts(lines, database.symbols.size(), static_cast<std::size_t>(file.labelCount()));
  for (const tool::FileSymbol* symbol : database.symbols) {
    writeSymbol(lines, describe(file, *symbol), symbol->recordCount);
  }
  for (int number = 1; number <= file.labelCount(); ++number) {
    lines->beginObject();
    lines->name("label");
    lines->text(file.label(number));
    lines.close();
  }
  for (const tool::FileSymbol* symbol : database.symbols) {
    if (symbol->isAlias()) continue;
    database.progress.step("writing " + symbol->name);
    const std::vector<std::string> contents = ztb::contentColumns(symbol->type);
    for (tool::RecordWalk record(file, *symbol); record.next();) {
      lines->beginObject();
      lines->name("of");
      lines->text(symbol->name);
      lines->name("keys");
      lines->beginArray();
      for (const int key : record.keys()) lines->text(file.label(key));
      lines->endArray();
      for (std::size_t at = 0; at < contents.size(); ++at) {
        lines->name(contents[at]);
        if (symbol->type == ztb::Type::set) {
          lines->text(record.text());
        } else {
          lines->number(record.values()[at]);
        }
      }
      lines.close();
      database.progress.count(++database.records);
    }
  }
  lines.finish();
}

}  // namespace formats
