// How values are spread: classes of one width from the least to the greatest, special values apart.
#ifndef ZTB_VIEW_DISTRIBUTION_H_
#define ZTB_VIEW_DISTRIBUTION_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "formats/json/json_text.h"

namespace view {

inline constexpr std::size_t mostClasses = 200;
inline constexpr std::size_t usualClasses = 20;

class Distribution {
 public:
  // All values are measured first, then counted.
  void measure(double value);
  void divide(std::size_t classes);
  void count(double value);

  void write(formats::JsonText& answer) const;

 private:
  double least_ = 0;
  double greatest_ = 0;
  long double sum_ = 0;
  std::size_t ordinary_ = 0;
  std::map<std::string, std::size_t> special_;
  std::vector<std::size_t> counts_;
};

}  // namespace view

#endif  // ZTB_VIEW_DISTRIBUTION_H_
