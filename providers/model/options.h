// The options of a solver environment: one table tells name, kind, range, default and help of each.
#ifndef ZTB_PROVIDERS_MODEL_OPTIONS_H_
#define ZTB_PROVIDERS_MODEL_OPTIONS_H_

#include <array>
#include <string>
#include <string_view>

namespace lomu {

enum class OptionId {
  nameSysDir,
  logFile,
  logScreen,
  timeLimit,
  iterationLimit,
  relativeGap,
  useStart
};
inline constexpr std::size_t kOptionCount = 7;

enum class OptionKind { text, whole, real };

struct OptionInfo {
  std::string_view name;
  OptionKind kind;
  double smallest;  // of a number
  double largest;
  std::string_view standard;
  std::string_view help;
};

const std::array<OptionInfo, kOptionCount>& optionTable();

class Options {
 public:
  Options();

  // Both throw ModelError for an unknown name, set also for a value that is not in the option's
  // range.
  void set(std::string_view name, std::string_view value);
  [[nodiscard]] const std::string& get(std::string_view name) const;

  [[nodiscard]] const std::string& text(OptionId id) const;
  [[nodiscard]] double number(OptionId id) const;

 private:
  std::array<std::string, kOptionCount> values_;
  std::array<double, kOptionCount> numbers_{};  // of the values that are numbers
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_OPTIONS_H_
