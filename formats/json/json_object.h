// An object of a line of JSON, taken apart: its members with what they hold.
#ifndef ZTB_FORMATS_JSON_JSON_OBJECT_H_
#define ZTB_FORMATS_JSON_JSON_OBJECT_H_

#include <string>
#include <string_view>
#include <vector>

namespace formats {

struct JsonValue {
  enum class Kind { null, text, number, array, other };

  Kind kind = Kind::null;
  std::string text;  // of a number its digits
  double number = 0;
  bool rounded = false;            // a whole number that no double holds, and the nearest one
  std::vector<std::string> items;  // texts of an array
};

struct JsonObject {
  std::vector<std::string> names;
  std::vector<JsonValue> values;

  // The value of a name; null for none.
  [[nodiscard]] const JsonValue* find(std::string_view name) const;
};

// Reads one object; what is wrong with the line otherwise is the result. Its values are texts,
// numbers, true and false (1 and 0), null, and arrays of texts.
std::string parseJsonObject(std::string_view line, JsonObject& object);

}  // namespace formats

#endif  // ZTB_FORMATS_JSON_JSON_OBJECT_H_
