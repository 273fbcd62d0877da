#include "tests/attack/doors.h"

#include <ztb/ztb.h>

#include <array>
#include <bit>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>
#include <ztb/ztb.hpp>

namespace attack {

namespace {

constexpr std::string_view kOldFile = "the file that stood here before";

class Digest {
 public:
  void add(std::string_view text) {
    add(text.size());
    for (const char c : text) {
      byte(static_cast<unsigned char>(c));
    }
  }
  void add(std::uint64_t number) {
    for (int i = 0; i < 8; ++i, number >>= 8U) {
      byte(static_cast<unsigned char>(number & 0xFFU));
    }
  }
  [[nodiscard]] std::uint64_t value() const { return value_; }

 private:
  void byte(unsigned char value) { value_ = (value_ ^ value) * 1099511628211U; }

  std::uint64_t value_ = 14695981039346656037U;
};

void writeOldFile(const std::string& path) {
  std::ofstream(path, std::ios::binary) << kOldFile;
}

bool isOldFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {}) == kOldFile;
}

// A database behind the exported names.
class CDatabase {
 public:
  explicit CDatabase(int store) {
    std::array<char, 256> message{};
    ztbcreate(&db_, message.data(), static_cast<int>(message.size()));
    c__ztbselectrecordstorage(db_, nullptr, store);
  }
  CDatabase(const CDatabase&) = delete;
  CDatabase& operator=(const CDatabase&) = delete;
  ~CDatabase() { ztbfree(&db_); }

  ztbRec* get() { return db_; }
  std::string lastError() {
    std::array<char, 256> text{};
    c__ztbgetlasterror(db_, text.data());
    return text.data();
  }

 private:
  ztbRec* db_ = nullptr;
};

struct Read {
  bool whole = true;
  std::string text;  // of the first symbol that could not be read
  std::uint64_t digest = 0;
};

void addRecords(CDatabase& db, void* symbol, int type, int dim, int count, Digest& digest) {
  std::array<int, 20> keys{};
  std::array<double, 5> values{};
  std::array<char, 256> text{};
  void* record = nullptr;
  int seen = 0;
  for (int more = c__ztbfindfirstrecord(db.get(), symbol, &record); more != 0;
       more = c__ztbrecordmovenext(db.get(), record), ++seen) {
    c__ztbgetrecordraw(db.get(), record, 20, keys.data(), values.data());
    for (int d = 0; d < dim; ++d) {
      digest.add(static_cast<std::uint64_t>(keys[static_cast<std::size_t>(d)]));
    }
    if (type == ZTB_SET) {
      text[0] = '\0';
      c__ztbgetelemtext(db.get(), record, text.data());
      digest.add(std::string_view(text.data()));
    } else {
      for (int slot = 0; slot < (type == ZTB_PARAMETER ? 1 : 5); ++slot) {
        digest.add(std::bit_cast<std::uint64_t>(values[static_cast<std::size_t>(slot)]));
      }
    }
  }
  if (record != nullptr) {
    c__ztbfreesymboliterator(db.get(), record);
  }
  digest.add(static_cast<std::uint64_t>(seen == count ? 0 : 1));
}

// All that the exported names tell of a database that was opened.
Read readAll(CDatabase& db) {
  Read read;
  Digest digest;
  std::array<char, 256> text{};
  int count = 0;
  c__ztbinfo(db.get(), ZTB_INFO_UEL_COUNT, &count, nullptr, nullptr);
  for (int number = 1; number <= count; ++number) {
    c__ztbgetuelbyindex(db.get(), number, text.data());
    digest.add(std::string_view(text.data()));
  }
  int symbols = 0;
  c__ztbinfo(db.get(), ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS, &symbols, nullptr, nullptr);
  for (int number = 0; number < symbols; ++number) {
    void* symbol = nullptr;
    c__ztbgetsymbolbynumber(db.get(), number, &symbol);
    int dim = 0;
    int type = 0;
    int value = 0;
    for (const int key : {ZTB_SYMBOL_INFO_NAME, ZTB_SYMBOL_INFO_TEXT}) {
      c__ztbsymbolinfo(db.get(), symbol, key, &value, nullptr, text.data());
      digest.add(std::string_view(text.data()));
    }
    c__ztbsymboldim(db.get(), symbol, &dim);
    c__ztbsymboltype(db.get(), symbol, &type);
    c__ztbsymbolinfo(db.get(), symbol, ZTB_SYMBOL_INFO_USER_INFO, &value, nullptr, nullptr);
    digest.add(static_cast<std::uint64_t>(dim));
    digest.add(static_cast<std::uint64_t>(type));
    digest.add(static_cast<std::uint64_t>(value));
    if (type == ZTB_ALIAS) {
      continue;
    }
    int records = 0;
    if (c__ztbsymbolinfo(db.get(), symbol, ZTB_SYMBOL_INFO_RECORD_COUNT, &records, nullptr,
                         nullptr) == 0) {
      if (read.whole) {
        read.text = db.lastError();
      }
      read.whole = false;
      continue;
    }
    digest.add(static_cast<std::uint64_t>(records));
    addRecords(db, symbol, type, dim, records, digest);
  }
  read.digest = digest.value();
  return read;
}

Verdict broken(const std::string& text) {
  return {.kind = Verdict::broken, .digest = 0, .text = text};
}

}  // namespace

Verdict readThroughC(const std::string& file, int store, const std::string& scratch) {
  CDatabase db(store);
  if (c__ztbinitfromrxf(db.get(), file.c_str()) == 0) {
    const std::string text = db.lastError();
    return text.empty() ? broken("open refused without a text")
                        : Verdict{.kind = Verdict::openRefused, .digest = 0, .text = text};
  }
  const Read read = readAll(db);
  if (!read.whole && read.text.empty()) {
    return broken("read refused without a text");
  }
  if (readAll(db).whole != read.whole) {
    return broken("what could not be read can be read the second time");
  }
  writeOldFile(scratch);
  const int written = c__ztbwriterxf(db.get(), scratch.c_str(), 1);
  if (!read.whole) {
    return written != 0 || !isOldFile(scratch)
               ? broken("a database with an unreadable symbol replaced a file")
               : Verdict{.kind = Verdict::readRefused, .digest = 0, .text = read.text};
  }
  if (written == 0) {
    return broken("what was read whole cannot be written: " + db.lastError());
  }
  CDatabase again(store);
  if (c__ztbinitfromrxf(again.get(), scratch.c_str()) == 0) {
    return broken("what was written cannot be opened: " + again.lastError());
  }
  const Read back = readAll(again);
  if (!back.whole || back.digest != read.digest) {
    return broken("what was written reads back otherwise: " + back.text);
  }
  return {.kind = Verdict::delivered, .digest = read.digest, .text = ""};
}

Verdict readThroughCpp(const std::string& file, int store, const std::string& scratch) {
  ztb::Database db;
  db.selectStore(static_cast<ztb::Store>(store));
  try {
    db.openFile(file);
  } catch (const ztb::Error& error) {
    return {.kind = Verdict::openRefused, .digest = 0, .text = error.what()};
  }
  Digest digest;
  std::string refused;
  for (int number = 1; number <= db.labelCount(); ++number) {
    digest.add(db.label(number).view());
  }
  for (int number = 0; number < db.symbolCount(); ++number) {
    const ztb::Symbol symbol = db.symbolAt(number);
    digest.add(symbol.name().view());
    digest.add(symbol.text().view());
    digest.add(static_cast<std::uint64_t>(symbol.type()));
    digest.add(static_cast<std::uint64_t>(symbol.dimension()));
    digest.add(static_cast<std::uint64_t>(symbol.userInfo()));
    if (symbol.type() == ztb::Type::alias) {
      continue;
    }
    try {
      for (const ztb::Domain& domain : symbol.domains()) {
        digest.add(domain.name.view());
      }
      int seen = 0;
      for (const auto [keys, values] : symbol.rows()) {
        for (const int key : keys) {
          digest.add(static_cast<std::uint64_t>(key));
        }
        for (const double value : values) {
          digest.add(std::bit_cast<std::uint64_t>(value));
        }
        ++seen;
      }
      if (seen != symbol.recordCount()) {
        return broken("a walk gives another number of records");
      }
    } catch (const ztb::Error& error) {
      refused = error.what();
    }
  }
  writeOldFile(scratch);
  try {
    db.write(scratch);
    if (!refused.empty()) {
      return broken("a database with an unreadable symbol was written");
    }
  } catch (const ztb::Error& error) {
    if (refused.empty()) {
      return broken(std::string("what was read whole cannot be written: ") + error.what());
    }
    if (!isOldFile(scratch)) {
      return broken("a refused write replaced a file");
    }
    return {.kind = Verdict::readRefused, .digest = 0, .text = refused};
  }
  return {.kind = Verdict::delivered, .digest = digest.value(), .text = ""};
}

}  // namespace attack
