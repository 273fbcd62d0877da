#include "formats/json/json_object.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Fills an object from what the parser meets.
class ObjectFiller : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit ObjectFiller(JsonObject& object) : object_(object) {}

  bool null() override { return scalar({}); }
  bool boolean(bool value) override {
    return scalar({.kind = JsonValue::Kind::number,
                   .text = value ? "true" : "false",
                   .number = value ? 1.0 : 0.0,
                   .rounded = false,
                   .items = {}});
  }
  bool number_integer(number_integer_t value) override {
    // Only numbers with a sign come here.
    if (value == 0) return number(-0.0, "-0");
    return whole(static_cast<double>(value), std::to_string(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return whole(static_cast<double>(value), std::to_string(value));
  }
  bool number_float(number_float_t value, const string_t& text) override {
    if (text.find_first_not_of("-0123456789") == std::string::npos) return whole(value, text);
    return number(value, std::string(tool::NumberText(value).view()));
  }
  bool string(string_t& text) override {
    if (depth_ == inValue && object_.values.back().kind == JsonValue::Kind::list) {
      object_.values.back().items.push_back(std::move(text));
      return true;
    }
    return scalar({.kind = JsonValue::Kind::text,
                   .text = std::move(text),
                   .number = 0,
                   .rounded = false,
                   .items = {}});
  }
  bool binary(binary_t& value) override {
    (void)value;
    return fail("holds bytes");
  }
  bool start_object(std::size_t size) override {
    (void)size;
    return open(JsonValue::Kind::object);
  }
  bool key(string_t& name) override {
    if (depth_ > inObject) return true;
    if (isKnown(name)) {
      return fail("has the key " + tool::inQuotes(name) + " twice");
    }
    object_.names.push_back(std::move(name));
    object_.values.emplace_back();
    return true;
  }
  bool end_object() override { return close(); }
  bool start_array(std::size_t size) override {
    (void)size;
    if (depth_ == 0) return fail("is no object");
    return open(JsonValue::Kind::list);
  }
  bool end_array() override { return close(); }
  bool parse_error(std::size_t at, const std::string& token,
                   const nlohmann::json::exception& error) override {
    constexpr int overflow = 406;
    if (error.id == overflow) {
      // Of what was read the token is the end.
      const std::string digits = token.substr(token.find_last_not_of("+-.0123456789eE") + 1);
      return fail("the number " + tool::inQuotes(digits) + " is outside the range of a double");
    }
    return fail("is no JSON from char " + std::to_string(at) + " on");
  }

  [[nodiscard]] const std::string& fault() const { return fault_; }

 private:
  // Few names are looked through, which is faster than to keep them.
  bool isKnown(const std::string& name) {
    constexpr std::size_t few = 16;
    if (object_.names.size() < few) return object_.find(name) != nullptr;
    if (known_.empty()) known_.insert(object_.names.begin(), object_.names.end());
    return !known_.insert(name).second;
  }
  bool number(double value, std::string text, bool rounded = false) {
    return scalar({.kind = JsonValue::Kind::number,
                   .text = std::move(text),
                   .number = value,
                   .rounded = rounded,
                   .items = {}});
  }
  bool whole(double value, const std::string& digits) {
    // From here on not every whole number is a double.
    constexpr double firstInexact = 9007199254740992;  // 2^53
    return number(value, digits,
                  std::abs(value) >= firstInexact && fmt::format("{:.0f}", value) != digits);
  }
  bool scalar(JsonValue value) {
    if (depth_ == 0) return fail("is no object");
    if (depth_ == inObject) {
      object_.values.back() = std::move(value);
    } else {
      holdsOther();
    }
    return true;
  }
  bool open(JsonValue::Kind kind) {
    if (depth_ == inObject) {
      object_.values.back().kind = kind;
    } else if (depth_ > inObject) {
      holdsOther();
    }
    ++depth_;
    return true;
  }
  bool close() {
    --depth_;
    return true;
  }
  // What was taken for a list holds something else than texts.
  void holdsOther() {
    JsonValue& value = object_.values.back();
    if (value.kind != JsonValue::Kind::list) return;
    value.kind = JsonValue::Kind::array;
    value.items.clear();
  }
  bool fail(std::string fault) {
    fault_ = std::move(fault);
    return false;
  }

  JsonObject& object_;
  std::unordered_set<std::string> known_;
  // How many brackets are open: one within the object, two within a value of it.
  static constexpr int inObject = 1;
  static constexpr int inValue = 2;
  int depth_ = 0;
  std::string fault_;
};

}  // namespace

const JsonValue* JsonObject::find(std::string_view name) const {
  const auto found = std::ranges::find(names, name);
  return found == names.end() ? nullptr : &values[static_cast<std::size_t>(found - names.begin())];
}

const char* nestingFault(const JsonValue& value) {
  switch (value.kind) {
    case JsonValue::Kind::list:
    case JsonValue::Kind::array:
      return "is an array, expected a text or a number";
    case JsonValue::Kind::object:
      return "is an object, expected a text or a number";
    default:
      return nullptr;
  }
}

std::string parseJsonObject(std::string_view line, JsonObject& object) {
  object.names.clear();
  object.values.clear();
  ObjectFiller filler(object);
  nlohmann::json::sax_parse(line.begin(), line.end(), &filler);
  return filler.fault();
}

}  // namespace formats
