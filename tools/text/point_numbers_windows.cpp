#include <locale.h>

#include <string>

#include "tools/text/point_numbers.h"

namespace tool {

struct PointNumbers::Before {
  int mode = 0;
  std::string numbers;
};

PointNumbers::PointNumbers() : before_(std::make_unique<Before>()) {
  before_->mode = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
  before_->numbers = setlocale(LC_NUMERIC, nullptr);
  setlocale(LC_NUMERIC, "C");
}

PointNumbers::~PointNumbers() {
  setlocale(LC_NUMERIC, before_->numbers.c_str());
  _configthreadlocale(before_->mode);
}

}  // namespace tool
