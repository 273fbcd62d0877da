#include "tools/models/solve_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <ztb/column_names.hpp>

#include "formats/tables/csv_writer.h"
#include "tools/text/json_text.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

double gapBetween(double objective, double bound) {
  return std::abs(objective - bound) / std::max(1e-9, std::abs(objective));
}

// The fields of a record in the order of their names.
std::array<double, ztb::fieldCount> fieldsOf(const ztb::Record& record) {
  return {record.level(), record.marginal(), record.lower(), record.upper(), record.scale()};
}

std::vector<std::string> keyColumnsOf(const ztb::Symbol& symbol) {
  const std::vector<std::string> domains(static_cast<std::size_t>(symbol.dimension()), "*");
  return ztb::keyColumns(symbol.name().view(), symbol.type(), domains);
}

std::optional<double> objectiveOf(const ztb::Model& model) {
  return model.hasSolution() ? std::optional(model.objective()) : std::nullopt;
}

std::optional<double> boundOf(const ztb::Model& model) {
  return std::isfinite(model.bound()) ? std::optional(model.bound()) : std::nullopt;
}

Json jsonOrNull(std::optional<double> value) {
  return value ? jsonNumber(*value) : Json(nullptr);
}

Json jsonConflict(const ztb::Model::Conflict& conflict) {
  Json json;
  json["members"] = Json::array();
  for (const ztb::Model::Conflict::Member& member : conflict.members) {
    json["members"].push_back(member.text);
  }
  json["irreducible"] = conflict.irreducible;
  json["by_integers"] = conflict.byIntegers;
  json["condition"] = conflict.condition;
  return json;
}

Json jsonRanges(const std::vector<ztb::Model::Ranging::Range>& ranges) {
  Json json = Json::array();
  for (const ztb::Model::Ranging::Range& range : ranges) {
    Json one;
    one["symbol"] = range.symbol;
    one["keys"] = range.labels;
    one["from"] = jsonNumber(range.lower);
    one["to"] = jsonNumber(range.upper);
    json.push_back(std::move(one));
  }
  return json;
}

Json jsonSummary(const SolveReport& report) {
  ztb::Model& model = report.session.model();
  Json json;
  json["file"] = report.session.file();
  json["status"] = ztbModelStatusText(model.status());
  json["solve_status"] = ztbModelSolveStatusText(model.solveStatus());
  json["objective"] = jsonOrNull(objectiveOf(model));
  json["bound"] = jsonOrNull(boundOf(model));
  json["gap"] = jsonOrNull(gapOf(model));
  json["solver"] = report.solver;
  json["seconds"] = model.seconds();
  json["processor_seconds"] = model.processorSeconds();
  json["iterations"] = model.iterations();
  if (report.started) json["start_taken"] = model.startTaken();
  if (!report.basis.empty()) json["basis"] = report.basis;
  if (report.ranging) {
    json["ranging"]["costs"] = jsonRanges(report.ranging->costs);
    json["ranging"]["sides"] = jsonRanges(report.ranging->sides);
  }
  json["notes"] = Json::array();
  for (int n = 0; n < model.noteCount(); ++n) json["notes"].push_back(model.note(n));
  if (report.conflict) json["conflict"] = jsonConflict(*report.conflict);
  return json;
}

// Prints a symbol with its records, one a line.
void printJsonRecords(const ztb::Symbol& symbol) {
  Json json;
  json["name"] = symbol.name().view();
  json["type"] = typeWord(symbol.type());
  json["dimension"] = symbol.dimension();
  std::string head = jsonText(json);
  head.back() = ',';
  print(head + "\"records\":[");
  const char* separator = "\n";
  for (ztb::Record& record : symbol.records()) {
    Json line;
    line["keys"] = Json::array();
    for (int position = 0; position < symbol.dimension(); ++position) {
      line["keys"].push_back(record.key(position).view());
    }
    const std::array<double, ztb::fieldCount> fields = fieldsOf(record);
    for (std::size_t field = 0; field < ztb::fieldCount; ++field) {
      line[std::string(ztb::fieldNames.at(field))] = jsonNumber(fields.at(field));
    }
    print(separator + jsonText(line));
    separator = ",\n";
  }
  print("\n]}");
}

}  // namespace

std::string SolveProgress::operator()() const {
  const ztb::Model::Progress progress = model_->progress();
  std::string text;
  if (std::isfinite(progress.objective)) text += fmt::format("best {:.6g}, ", progress.objective);
  if (std::isfinite(progress.bound)) text += fmt::format("bound {:.6g}, ", progress.bound);
  if (std::isfinite(progress.objective) && std::isfinite(progress.bound)) {
    text += fmt::format("gap {:.3g} %, ", 100 * gapBetween(progress.objective, progress.bound));
  }
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin_;
  return text + fmt::format("{:.0f} s", time.count());
}

std::optional<double> gapOf(const ztb::Model& model) {
  if (!model.hasSolution() || !std::isfinite(model.bound())) return std::nullopt;
  return gapBetween(model.objective(), model.bound());
}

void printSolveJson(const SolveReport& report) {
  std::string head = jsonText(jsonSummary(report));
  head.back() = ',';
  print(head + "\"symbols\":[");
  const char* separator = "\n";
  for (const ztb::Symbol& symbol : report.shown) {
    print(separator);
    printJsonRecords(symbol);
    separator = ",\n";
  }
  print("\n]}\n");
}

void printSolveCsv(const SolveReport& report) {
  const ztb::Model& model = report.session.model();
  formats::CsvWriter csv(stdout, "standard output");
  for (const std::string_view column :
       {"file", "status", "solve_status", "objective", "bound", "gap", "solver", "seconds",
        "processor_seconds", "iterations"}) {
    csv.text(column);
  }
  csv.endRow();
  csv.text(report.session.file());
  csv.text(ztbModelStatusText(model.status()));
  csv.text(ztbModelSolveStatusText(model.solveStatus()));
  for (const std::optional<double> value : {objectiveOf(model), boundOf(model), gapOf(model)}) {
    csv.text(value ? NumberText(*value).view() : std::string_view());
  }
  csv.text(report.solver);
  for (const double value : {model.seconds(), model.processorSeconds(), model.iterations()}) {
    csv.text(NumberText(value).view());
  }
  csv.endRow();
  csv.finish();
}

void printRecordsCsv(const ztb::Symbol& symbol) {
  formats::CsvWriter csv(stdout, "standard output");
  for (const std::string& column : keyColumnsOf(symbol)) csv.text(column);
  for (const std::string_view column : ztb::fieldNames) csv.text(column);
  csv.endRow();
  for (ztb::Record& record : symbol.records()) {
    for (int position = 0; position < symbol.dimension(); ++position) {
      csv.label(record.key(position).view());
    }
    for (const double value : fieldsOf(record)) csv.text(NumberText(value).view());
    csv.endRow();
  }
  csv.finish();
}

}  // namespace tool
