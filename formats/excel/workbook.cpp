#include "formats/excel/workbook.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <map>
#include <optional>

#include "tools/text/failure.h"

namespace formats {

namespace {

std::optional<std::size_t> numberOf(std::string_view text) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// Formats that every workbook has and that show a date or time.
NumberKind builtInKind(std::size_t id) {
  constexpr std::size_t beyondADay = 46;
  if (id == beyondADay) return NumberKind::duration;
  const bool isDate = (id >= 14 && id <= 22) || (id >= 27 && id <= 36) || id == 45 || id == 47 ||
                      (id >= 50 && id <= 58);
  return isDate ? NumberKind::date : NumberKind::plain;
}

// What a format of the workbook's own shows: parts of a date are letters outside of texts, colours
// and conditions; in brackets they are parts of a duration.
NumberKind kindOfCode(std::string_view code) {
  if (code == R"("TRUE";"TRUE";"FALSE")") return NumberKind::truth;
  for (std::size_t at = 0; at < code.size(); ++at) {
    const char c = code[at];
    if (c == '"') {
      at = std::min(code.find('"', at + 1), code.size());
    } else if (c == '[') {
      const std::size_t end = std::min(code.find(']', at), code.size());
      const std::string_view inside = code.substr(at + 1, end - at - 1);
      if (!inside.empty() && inside.find_first_not_of("hmsHMS") == std::string_view::npos) {
        return NumberKind::duration;
      }
      at = end;
    } else if (c == '\\' || c == '_' || c == '*') {
      ++at;
    } else if (std::string_view("dmyhsDMYHS").find(c) != std::string_view::npos) {
      return NumberKind::date;
    } else if (c == 'G' && code.substr(at).starts_with("General")) {
      at += 6;
    }
  }
  return NumberKind::plain;
}

constexpr long millisecondsOfDay = 86400000;

// "12:30:00", and where there are milliseconds "12:30:00.250".
std::string timeText(long milliseconds) {
  const long seconds = milliseconds / 1000;
  std::string text =
      fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
  if (milliseconds % 1000 != 0) text += fmt::format(".{:03}", milliseconds % 1000);
  return text;
}

// The name of a part that a relation of another part leads to.
std::string resolved(const std::string& from, std::string_view target) {
  if (target.starts_with('/')) return std::string(target.substr(1));
  std::string folder = from.substr(0, from.rfind('/') + 1);
  while (target.starts_with("../")) {
    target.remove_prefix(3);
    if (!folder.empty()) folder.pop_back();
    folder = folder.substr(0, folder.rfind('/') + 1);
  }
  return folder + std::string(target);
}

}  // namespace

std::string withoutEscapes(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    unsigned code = 0;
    if (text[at] == '_' && at + 6 < text.size() && text[at + 1] == 'x' && text[at + 6] == '_') {
      const char* digits = text.data() + at + 2;
      const auto [end, error] = std::from_chars(digits, digits + 4, code, 16);
      if (error == std::errc{} && end == digits + 4 && code > 0 && code < 0x80) {
        result += static_cast<char>(code);
        at += 6;
        continue;
      }
    }
    result += text[at];
  }
  return result;
}

std::string dateText(double serial, bool from1904) {
  constexpr double lastDay = 2958465;
  if (!(serial >= 0) || serial > lastDay + 1) return {};
  double day = std::floor(serial);
  long time = std::lround((serial - day) * millisecondsOfDay);
  if (time == millisecondsOfDay) {
    time = 0;
    ++day;
  }
  if (day == 0 && !from1904) return timeText(time);
  using std::chrono::days;
  using std::chrono::sys_days;
  using std::chrono::year;
  // The other system counts from 1900, a year that it takes for a leap year: its day 60 never was.
  constexpr int missingDay = 60;
  if (!from1904 && day == missingDay) return {};
  const sys_days first = from1904 ? sys_days(year(1904) / 1 / 1)
                                  : sys_days(year(1899) / 12 / (day > missingDay ? 30 : 31));
  const std::chrono::year_month_day date(first + days(static_cast<int>(day)));
  const std::string text =
      fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return time == 0 ? text : text + 'T' + timeText(time);
}

std::string durationText(double days) {
  constexpr double longest = 2958466;
  if (!(days >= 0) || days > longest) return {};
  return timeText(std::lround(days * millisecondsOfDay));
}

Workbook::Workbook(const std::string& path) : file_(path) {
  std::string main;
  file_.read("_rels/.rels",
             {.begin =
                  [&](std::string_view name, const XmlAttributes& attributes) {
                    if (name == "Relationship" && attributes["Type"].ends_with("/officeDocument")) {
                      main = resolved("", attributes["Target"]);
                    }
                  },
              .end = {},
              .text = {}});
  if (main.empty() || !file_.has(main)) file_.fail("is no workbook: it has no part for one");
  readSheets(main);
  readTexts();
  readStyles();
}

std::vector<Workbook::Relation> Workbook::relationsOf(const std::string& part) {
  std::vector<Relation> relations;
  const std::size_t slash = part.rfind('/') + 1;
  file_.read(part.substr(0, slash) + "_rels/" + part.substr(slash) + ".rels",
             {.begin =
                  [&](std::string_view name, const XmlAttributes& attributes) {
                    if (name != "Relationship") return;
                    relations.push_back({.id = std::string(attributes["Id"]),
                                         .type = std::string(attributes["Type"]),
                                         .part = resolved(part, attributes["Target"])});
                  },
              .end = {},
              .text = {}});
  return relations;
}

void Workbook::readSheets(const std::string& part) {
  const std::vector<Relation> relations = relationsOf(part);
  file_.read(part, {.begin =
                        [&](std::string_view name, const XmlAttributes& attributes) {
                          if (name == "workbookPr") {
                            const std::string_view value = attributes["date1904"];
                            from1904_ = value == "1" || value == "true";
                          }
                          if (name != "sheet") return;
                          const auto target =
                              std::ranges::find(relations, attributes["id"], &Relation::id);
                          const bool isThere = target != relations.end() && file_.has(target->part);
                          sheets_.push_back({.name = std::string(attributes["name"]),
                                             .part = isThere ? target->part : std::string()});
                        },
                    .end = {},
                    .text = {}});
  if (sheets_.empty()) file_.fail("is no workbook: it has no sheet");
  // Where nothing leads to them, texts and styles lie beside the workbook, wherever that is.
  textsPart_ = resolved(part, "sharedStrings.xml");
  stylesPart_ = resolved(part, "styles.xml");
  for (const Relation& relation : relations) {
    if (relation.type.ends_with("/sharedStrings")) textsPart_ = relation.part;
    if (relation.type.ends_with("/styles")) stylesPart_ = relation.part;
  }
}

void Workbook::readTexts() {
  std::string text;
  bool inText = false;
  bool phonetic = false;
  file_.read(textsPart_, {.begin =
                              [&](std::string_view name, const XmlAttributes& attributes) {
                                (void)attributes;
                                if (name == "si") text.clear();
                                if (name == "rPh") phonetic = true;
                                inText = name == "t" && !phonetic;
                              },
                          .end =
                              [&](std::string_view name) {
                                inText = false;
                                if (name == "rPh") phonetic = false;
                                if (name != "si") return;
                                texts_ += withoutEscapes(text);
                                texts_ += '\0';
                                textEnds_.push_back(texts_.size() - 1);
                              },
                          .text =
                              [&](std::string_view chars) {
                                if (inText) text += chars;
                              }});
}

void Workbook::readStyles() {
  std::map<std::size_t, NumberKind> own;
  bool inCellFormats = false;
  file_.read(stylesPart_,
             {.begin =
                  [&](std::string_view name, const XmlAttributes& attributes) {
                    const std::size_t id = numberOf(attributes["numFmtId"]).value_or(0);
                    if (name == "numFmt") own[id] = kindOfCode(attributes["formatCode"]);
                    if (name == "cellXfs") inCellFormats = true;
                    if (name == "xf" && inCellFormats) {
                      const auto found = own.find(id);
                      styles_.push_back(found == own.end() ? builtInKind(id) : found->second);
                    }
                  },
              .end =
                  [&](std::string_view name) {
                    if (name == "cellXfs") inCellFormats = false;
                  },
              .text = {}});
}

std::string_view Workbook::sharedText(std::string_view number) const {
  const std::optional<std::size_t> index = numberOf(number);
  if (!index || *index >= textEnds_.size()) {
    file_.fail(fmt::format("a cell refers to the shared text {}, of {}", number, textEnds_.size()));
  }
  const std::size_t begin = *index == 0 ? 0 : textEnds_[*index - 1] + 1;
  return std::string_view(texts_).substr(begin, textEnds_[*index] - begin);
}

NumberKind Workbook::kindOf(std::string_view style) const {
  const std::optional<std::size_t> index = numberOf(style);
  return index && *index < styles_.size() ? styles_[*index] : NumberKind::plain;
}

}  // namespace formats
