// What a request asks for, read with care: each reader says what is wrong with its parameter.
#ifndef ZTB_VIEW_PARAMETERS_H_
#define ZTB_VIEW_PARAMETERS_H_

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace view {

// An answer that is no result: a status of HTTP and a sentence that says what is wrong.
class RequestError : public std::runtime_error {
 public:
  RequestError(int status, const std::string& text) : std::runtime_error(text), status_(status) {}
  [[nodiscard]] int status() const { return status_; }

 private:
  int status_;
};

class Parameters {
 public:
  explicit Parameters(const std::vector<std::pair<std::string, std::string>>& parameters)
      : parameters_(parameters) {}

  // The first of a name; nothing where there is none.
  [[nodiscard]] const std::string* find(const std::string& name) const;
  [[nodiscard]] std::vector<std::string> all(const std::string& name) const;

  // Each of these throws RequestError.
  [[nodiscard]] const std::string& text(const std::string& name) const;
  [[nodiscard]] std::string text(const std::string& name, const std::string& otherwise) const;
  [[nodiscard]] std::size_t number(const std::string& name, std::size_t otherwise,
                                   std::size_t most) const;
  [[nodiscard]] bool flag(const std::string& name) const;
  // "0,2": numbers below `end`, none twice.
  [[nodiscard]] std::vector<std::size_t> numbers(const std::string& name, std::size_t end) const;

 private:
  const std::vector<std::pair<std::string, std::string>>& parameters_;
};

}  // namespace view

#endif  // ZTB_VIEW_PARAMETERS_H_
