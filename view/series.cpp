// Lines of a chart: values over the labels of a position, a line for each label of another, a panel
// for each label of a third.

#include <algorithm>
#include <map>
#include <optional>

#include "view/cell_groups.h"

namespace view {

namespace {

using Line = std::map<int, double>;   // by the label at x
using Panel = std::map<int, Line>;    // by the label at "by", 0 without
using Panels = std::map<int, Panel>;  // by the label at "over", 0 without

void writeLabel(int label, const RecordScan& scan, formats::JsonText& answer) {
  answer.name("label");
  answer.text(label == 0 ? std::string_view() : scan.label(label));
}

void writePanel(const Panel& panel, const std::vector<int>& x, const RecordScan& scan,
                formats::JsonText& answer) {
  answer.name("series");
  answer.beginArray();
  for (const auto& [label, line] : panel) {
    answer.beginObject();
    writeLabel(label, scan, answer);
    answer.name("y");
    answer.beginArray();
    for (const int at : x) {
      const auto found = line.find(at);
      if (found == line.end()) {
        answer.null();
      } else {
        answer.number(found->second);
      }
    }
    answer.endArray();
    answer.endObject();
  }
  answer.endArray();
}

}  // namespace

void answerSeries(Question& question) {
  const Parameters& parameters = question.parameters;
  RecordScan scan(question);
  std::vector<std::size_t> positions{scan.position(parameters, "x")};
  const auto add = [&](const char* name) -> std::optional<std::size_t> {
    const std::string* given = parameters.find(name);
    if (given == nullptr || given->empty()) return std::nullopt;
    const std::size_t position = scan.position(parameters, name);
    if (std::ranges::find(positions, position) != positions.end()) {
      throw RequestError(400, "A position has one place in a chart.");
    }
    positions.push_back(position);
    return positions.size() - 1;
  };
  const std::optional<std::size_t> by = add("by");
  const std::optional<std::size_t> over = add("over");
  Panels panels;
  std::vector<int> x;
  visitCells(scan, parameters, positions, [&](std::span<const int> labels, double value) {
    panels[over ? labels[*over] : 0][by ? labels[*by] : 0][labels[0]] = value;
    if (x.empty() || x.back() != labels[0]) x.push_back(labels[0]);
  });
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("x");
  answer.beginArray();
  for (const int label : x) answer.text(scan.label(label));
  answer.endArray();
  answer.name("panels");
  answer.beginArray();
  for (const auto& [label, panel] : panels) {
    answer.beginObject();
    writeLabel(label, scan, answer);
    writePanel(panel, x, scan, answer);
    answer.endObject();
  }
  answer.endArray();
  answer.endObject();
}

}  // namespace view
