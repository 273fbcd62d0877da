// The rows and entries of a model, read from what it writes of itself: as LP, or as MPS where a
// name cannot stand in LP.
#ifndef ZTB_VIEW_MODEL_TEXT_H_
#define ZTB_VIEW_MODEL_TEXT_H_

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include <ztb/model.hpp>

namespace view {

// Between what a row has to be.
struct RowSides {
  double lower = -std::numeric_limits<double>::infinity();
  double upper = std::numeric_limits<double>::infinity();
};

class ModelText {
 public:
  struct Entry {
    std::size_t row;
    std::size_t column;
  };

  // The model must not be tied to a database yet. Throws Failure.
  explicit ModelText(ztb::Model& model);

  // Rows in the order of the model, the objective first.
  [[nodiscard]] const std::vector<std::string>& rows() const { return rows_; }
  [[nodiscard]] const std::vector<RowSides>& sides() const { return sides_; }
  // Columns that have entries, in the order in which they are met.
  [[nodiscard]] const std::vector<std::string>& columns() const { return columns_; }
  // Where coefficients other than 0 stand; a product is an entry of each of its columns.
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

 private:
  void readLp(const std::string& path);
  void beginRow(const std::string& line);
  void takeTerm(std::string term);
  void takeSide(std::string& text);
  void readMps(const std::string& path);
  void readMpsEntry(const std::string& section, const std::string& line);
  void addRow(std::string name, RowSides sides);
  void enter(std::size_t row, const std::string& column);

  std::vector<std::string> rows_;
  std::vector<RowSides> sides_;
  std::vector<std::string> columns_;
  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t> columnNumbers_;
  std::unordered_map<std::string, std::size_t> rowNumbers_;  // of MPS
  std::string rowTypes_;                                     // likewise
  bool inProducts_ = false;
};

}  // namespace view

#endif  // ZTB_VIEW_MODEL_TEXT_H_
