// The rows and entries of a model, read from the LP file that it writes of itself.
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
  void read(const std::string& path);
  void takeChange(const std::string& told);
  void beginRow(const std::string& line);
  void takeTerm(std::string term);
  void takeSide(std::string& text);
  void enter(std::size_t row, const std::string& column);

  std::vector<std::string> rows_;
  std::vector<RowSides> sides_;
  std::vector<std::string> columns_;
  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t> columnNumbers_;
  // The model's own names of those that LP could not hold.
  std::unordered_map<std::string, std::string> ownRows_, ownColumns_;
  bool inProducts_ = false;
};

}  // namespace view

#endif  // ZTB_VIEW_MODEL_TEXT_H_
