// An object of a line of JSON, taken apart: its members with what they hold.
#ifndef ZTB_FORMATS_JSON_JSON_OBJECT_H_
#define ZTB_FORMATS_JSON_JSON_OBJECT_H_

#include <string>
#include <string_view>
#include <vector>

namespace formats {

struct JsonValue {
  // A list is an array of texts alone; any other array, like an object, stands for nothing.
  enum class Kind { null, text, number, list, array, object };

  Kind kind = Kind::null;
  std::string text;  // of a number its digits
  double number = 0;
  bool rounded = false;            // a whole number that no double holds, and the nearest one
  std::vector<std::string> items;  // of a list
};

struct JsonObject {
  std::vector<std::string> names;
  std::vector<JsonValue> values;

  // The value of a name; null for none.
  [[nodiscard]] const JsonValue* find(std::string_view name) const;
};

// What is wrong with a value that has to be a text or number; null for nothing.
const char* nestingFault(const JsonValue& value);

// Reads one object; what is wrong with the line otherwise is the result. true and false are the
// numbers 1 and 0. What arrays and objects hold, but for lists, is passed over.
std::string parseJsonObject(std::string_view line, JsonObject& object);

}  // namespace formats

#endif  // ZTB_FORMATS_JSON_JSON_OBJECT_H_
