// What is thrown inside the library. Nothing of it passes an entry point.
#ifndef ZTB_PROVIDERS_RXF_FAILURE_H_
#define ZTB_PROVIDERS_RXF_FAILURE_H_

#include <exception>

#include "providers/rxf/detail_text.h"
#include "providers/rxf/error_table.h"

namespace rxffile {

// An operation that cannot go on: becomes an error of that number, with the detail.
class Failure : public std::exception {
 public:
  Failure(ErrorNumber number, const DetailText& detail) : number_(number), detail_(detail) {}
  [[nodiscard]] ErrorNumber number() const { return number_; }
  [[nodiscard]] const DetailText& detail() const { return detail_; }
  [[nodiscard]] const char* what() const noexcept override { return detail_.c_str(); }

 private:
  ErrorNumber number_;
  DetailText detail_;
};

// Bytes that are not what the format asks for. Whoever knows the place in the file turns it into
// a Failure that names the place.
class Malformed : public std::exception {
 public:
  explicit Malformed(const DetailText& reason) : reason_(reason) {}
  [[nodiscard]] const char* what() const noexcept override { return reason_.c_str(); }

 private:
  DetailText reason_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_FAILURE_H_
