// Numbers with a decimal point, whatever the program has set: libxlsxwriter prints them by
// functions of C, which write a comma in many a language, and a workbook with one is damaged.
#ifndef ZTB_FORMATS_EXCEL_POINT_NUMBERS_H_
#define ZTB_FORMATS_EXCEL_POINT_NUMBERS_H_

#include <memory>

namespace formats {

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

}  // namespace formats

#endif  // ZTB_FORMATS_EXCEL_POINT_NUMBERS_H_
