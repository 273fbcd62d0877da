#include "tests/model_files/model_text.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "providers/model/lp_reader.h"
#include "providers/model/model_error.h"
#include "providers/model/model_file.h"

namespace modelfiles {

using lomu::ColumnData;
using lomu::ModelData;
using lomu::RowData;
using lomu::RowType;

namespace {

std::string numberText(double value) {
  std::ostringstream out;
  out.precision(15);
  out << value;
  return out.str();
}

template <class Read>
std::string refusal(Read read) {
  try {
    read();
    return "not refused";
  } catch (const lomu::ModelError& error) {
    return error.what();
  }
}

std::string columnText(const ColumnData& column) {
  std::string text =
      numberText(column.lower) + " <= " + column.name + " <= " + numberText(column.upper);
  if (column.kind == lomu::ColumnKind::integer) text += " integer";
  if (column.kind == lomu::ColumnKind::binary) text += " binary";
  if (column.semiContinuous) text += " or 0";
  return text;
}

std::string sumText(const ModelData& model, int row) {
  std::map<std::pair<int, int>, double> values;
  for (const auto& term : model.terms) {
    if (term.row == row) values[{term.column, -1}] += term.value;
  }
  for (const auto& product : model.products) {
    if (product.row != row) continue;
    values[std::minmax(product.column1, product.column2)] += product.value;
  }
  std::string text;
  for (const auto& [columns, value] : values) {
    if (value == 0) continue;
    if (!text.empty()) text += " + ";
    text += numberText(value) + " " + model.columns.at(columns.first).name;
    if (columns.second >= 0) text += "*" + model.columns.at(columns.second).name;
  }
  return text;
}

}  // namespace

ModelData lp(const std::string& text) {
  return lomu::readLp("m.lp", text + "\nend\n");
}

ModelData wholeLp(const std::string& text) {
  return lomu::readLp("m.lp", text);
}

std::string lpRefusal(const std::string& text) {
  return refusal([&] { wholeLp(text); });
}

std::string setText(const ModelData& model, std::size_t number) {
  const lomu::OrderedSet& set = model.sets.at(number);
  std::string text = set.name + ": S" + std::to_string(set.kind) + " ::";
  for (const lomu::SetMember& member : set.members) {
    text += " " + model.columns.at(member.column).name + ":" + numberText(member.weight);
  }
  return text;
}

std::string notesText(const ModelData& model) {
  std::string text;
  for (const std::string& note : model.notes) text += note + "\n";
  return text;
}

std::string fileRefusal(const std::string& file, const std::string& dataFile) {
  return refusal([&] { lomu::readModelFile(file, dataFile); });
}

std::string rowText(const ModelData& model, int row) {
  const std::string sum = sumText(model, row);
  if (row == 0) {
    return (model.maximize ? "max " : "min ") + sum + " + " + numberText(model.objectiveConstant);
  }
  const RowData& data = model.rows.at(row);
  switch (data.type) {
    case RowType::equal:
      return sum + " = " + numberText(data.rhs);
    case RowType::greaterOrEqual:
      if (data.range == 0) return sum + " >= " + numberText(data.rhs);
      return numberText(data.rhs) + " <= " + sum + " <= " + numberText(data.rhs + data.range);
    case RowType::lessOrEqual:
      if (data.range == 0) return sum + " <= " + numberText(data.rhs);
      return numberText(data.rhs - data.range) + " <= " + sum + " <= " + numberText(data.rhs);
    default:
      return sum + " free";
  }
}

std::string rowText(const ModelData& model, const std::string& name) {
  for (std::size_t i = 0; i < model.rows.size(); ++i) {
    if (model.rows[i].name == name) return rowText(model, static_cast<int>(i));
  }
  return "no row " + name;
}

std::string columnText(const ModelData& model, const std::string& name) {
  for (const ColumnData& column : model.columns) {
    if (column.name == name) return columnText(column);
  }
  return "no column " + name;
}

std::string rowNames(const ModelData& model) {
  std::string names;
  for (const RowData& row : model.rows) names += (names.empty() ? "" : " ") + row.name;
  return names;
}

std::string columnNames(const ModelData& model) {
  std::string names;
  for (const ColumnData& column : model.columns) names += (names.empty() ? "" : " ") + column.name;
  return names;
}

std::string canonicalText(const ModelData& model) {
  ModelData sorted = model;
  std::vector<int> order(model.columns.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](int a, int b) { return model.columns.at(a).name < model.columns.at(b).name; });
  std::vector<int> place(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    place.at(order[i]) = static_cast<int>(i);
    sorted.columns[i] = model.columns.at(order[i]);
  }
  std::vector<std::map<int, double>> values(model.rows.size());
  for (const auto& term : model.terms) values.at(term.row)[place.at(term.column)] += term.value;
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < model.rows.size(); ++i) {
    sorted.terms.clear();
    for (const auto& [column, value] : values[i]) {
      sorted.terms.push_back({static_cast<int>(i), column, value});
    }
    const std::string name = i == 0 ? "objective" : model.rows[i].name;
    lines.push_back(name + ": " + rowText(sorted, static_cast<int>(i)));
  }
  for (const ColumnData& column : sorted.columns) lines.push_back(columnText(column));
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

void writeFile(const std::string& file, const std::string& text) {
  std::ofstream out(file, std::ios::binary);
  out << text;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + file);
}

void packFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  const gzFile out = gzopen((file + ".gz").c_str(), "wb");
  const bool written =
      out != nullptr && gzwrite(out, text.data(), static_cast<unsigned>(text.size())) ==
                            static_cast<int>(text.size());
  if (gzclose(out) != Z_OK || !written) throw std::runtime_error("cannot pack " + file);
}

std::string outputOf(const std::string& command) {
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string text;
  char buffer[4096];
  while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe)) {
    text.append(buffer, count);
  }
  pclose(pipe);
  return text;
}

}  // namespace modelfiles
