// The matrix of a model from above: where it has entries, its rows and columns put together by
// their families, so that each pair of families is a block.
#ifndef ZTB_VIEW_MATRIX_PICTURE_H_
#define ZTB_VIEW_MATRIX_PICTURE_H_

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>
#include <ztb/model.hpp>

#include "formats/json/json_text.h"
#include "view/model_text.h"

namespace view {

class MatrixPicture {
 public:
  // The model must not be tied to a database yet. Throws Failure.
  explicit MatrixPicture(ztb::Model& model);

  // "matrix" with its size, how many entries each place of the picture has, the families along both
  // sides, and how many entries each block has.
  void write(formats::JsonText& answer) const;

 private:
  // Rows or columns: how many each family has, and of which family each is that was met, by its
  // number. A column without entries is not met.
  struct Side {
    std::vector<std::string> names;
    std::vector<std::size_t> counts;
    std::unordered_map<std::string, std::size_t> families;
    std::vector<std::size_t> familyOf;

    // A family as the model tells it, before its elements.
    void addFamily(const ztbModelFamily& family);
    void add(const std::string& element);
    // Where each number stands when those of a family stand together.
    [[nodiscard]] std::vector<std::size_t> places() const;
    [[nodiscard]] std::size_t size() const;
  };

  void writeFamilies(const char* name, const Side& side, formats::JsonText& answer) const;
  void writeBlocks(formats::JsonText& answer) const;

  Side rows_;
  Side columns_;
  std::vector<ModelText::Entry> entries_;
};

}  // namespace view

#endif  // ZTB_VIEW_MATRIX_PICTURE_H_
