// Numbers with a decimal point, whatever the program has set, for libraries that print and read
// them by functions of C, which have a comma in many a language: a workbook of libxlsxwriter with
// one is damaged, and GLPK misses the point in numbers of a model.
#ifndef ZTB_TOOLS_TEXT_POINT_NUMBERS_H_
#define ZTB_TOOLS_TEXT_POINT_NUMBERS_H_

#include <memory>

namespace tool {

// Holds for the thread that makes it and ends it, while it lives.
class PointNumbers {
 public:
  PointNumbers();
  PointNumbers(const PointNumbers&) = delete;
  PointNumbers& operator=(const PointNumbers&) = delete;
  ~PointNumbers();

 private:
  struct Before;
  std::unique_ptr<Before> before_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_POINT_NUMBERS_H_
