// A statement of MathProg data that gives several parameters, and perhaps the set that they run
// over, in one table:
//
//   param default 0 : CITY : demand cap := oslo 3 5  ghent 4 . ;
#ifndef ZTB_PROVIDERS_MODEL_MATHPROG_TABLE_H_
#define ZTB_PROVIDERS_MODEL_MATHPROG_TABLE_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lomu {

class MathProgTable {
 public:
  // The table of a statement, whose text has to live on; none where it is no such table.
  static std::optional<MathProgTable> of(std::string_view statement);

  // The names of the set, if there is one, and the parameters.
  [[nodiscard]] const std::vector<std::string_view>& names() const { return names_; }

  // The statement without what has a name that is dropped, each line where it was; blank when
  // nothing is left. Its records have so many labels: none where that does not come out even.
  [[nodiscard]] std::optional<std::string> without(
      const std::function<bool(std::string_view)>& isDropped, int labels) const;

 private:
  std::string_view statement_;
  bool hasSet_ = false;     // the first of the names
  std::string_view colon_;  // behind it
  std::vector<std::string_view> names_;
  std::vector<std::string_view> entries_;  // labels and values of the records
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MATHPROG_TABLE_H_
