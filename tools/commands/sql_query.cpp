#include "tools/commands/sql_query.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "tools/commands/command_line.h"
#include "tools/files/standard_streams.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace tool {

namespace {

using Message = std::array<char, 512>;

// A name for the tables of a file: that of the file without its folder and ending, with a number
// behind it where it is taken.
std::string schemaOf(const std::string& path, const std::vector<std::string>& taken) {
  const std::string stem = path == "-" ? "stdin" : nameOf(pathOf(path).stem());
  const auto isTaken = [&](const std::string& name) {
    return name.empty() || sameFolded(name, "main") || sameFolded(name, "temp") ||
           std::ranges::any_of(taken, [&](const auto& other) { return sameFolded(other, name); });
  };
  std::string name = stem;
  for (int number = 2; isTaken(name); ++number) {
    name = fmt::format("{}_{}", stem, number);
  }
  return name;
}

}  // namespace

Query::Query(const std::vector<std::string>& words, Progress& progress) : progress_(&progress) {
  Message message{};
  if (ztbSqlOpen(&sql_, message.data(), static_cast<int>(message.size())) == 0) {
    throw Failure(message.data());
  }
  try {
    begin(words);
  } catch (...) {
    close();
    throw;
  }
}

void Query::close() {
  ztbSqlRowsClose(&rows_);
  ztbSqlClose(&sql_);
}

void Query::begin(const std::vector<std::string>& words) {
  Message message{};
  const auto size = static_cast<int>(message.size());
  std::vector<std::string> schemas;
  for (auto file = words.begin(); file != std::prev(words.end()); ++file) {
    progress_->step("opening " + inputName(*file));
    const std::string path = inputFile(*file);
    firstFile_ = firstFile_.empty() ? path : firstFile_;
    schemas.push_back(schemaOf(*file, schemas));
    if (ztbSqlAttachFile(sql_, schemas.back().c_str(), path.c_str(), message.data(), size) == 0) {
      throw Failure(withFile(inputName(*file), message.data()));
    }
  }
  progress_->step("querying");
  if (ztbSqlQuery(&rows_, sql_, words.back().c_str(), message.data(), size) == 0) {
    throw Failure(message.data());
  }
  if (ztbSqlParameterCount(rows_) > 0) {
    throw UsageError("the query has a parameter, which nothing is given for");
  }
}

bool Query::walk(std::size_t most, const std::function<void()>& visit) {
  std::size_t count = 0;
  int state = 0;
  while ((state = ztbSqlNext(rows_)) > 0 && count < most) {
    visit();
    progress_->count(++count);
  }
  if (state < 0) {
    throw Failure(ztbSqlMessage(rows_));
  }
  return state > 0;
}

std::string Query::text(int column, int digits) const {
  std::string text;
  switch (type(column)) {
    case ZTB_SQL_NULL:
      return text;
    case ZTB_SQL_REAL:
      return std::string(NumberText(real(column), digits).view());
    case ZTB_SQL_BLOB: {
      const auto* bytes = static_cast<const unsigned char*>(ztbSqlBlob(rows_, column));
      text = "x'";
      for (int at = 0; at < ztbSqlSize(rows_, column); ++at)
        text += fmt::format("{:02x}", bytes[at]);
      return text + '\'';
    }
    default: {
      const char* chars = ztbSqlText(rows_, column);
      return {chars, static_cast<std::size_t>(ztbSqlSize(rows_, column))};
    }
  }
}

}  // namespace tool
