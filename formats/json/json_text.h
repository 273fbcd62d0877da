// JSON that is put together piece by piece. What is no UTF-8 is spelled out, as exact_text.h tells,
// or refused where texts are to stand as they are; special values are the words of NumberText, as
// strings.
#ifndef ZTB_FORMATS_JSON_JSON_TEXT_H_
#define ZTB_FORMATS_JSON_JSON_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace formats {

// Commas come by themselves. REQUIRES: within an object each value has its name before it.
class JsonText {
 public:
  enum class Texts { spelledOut, asTheyAre };

  explicit JsonText(Texts texts = Texts::spelledOut) : texts_(texts) {}

  void beginObject() { begin('{'); }
  void endObject() { end('}'); }
  void beginArray() { begin('['); }
  void endArray() { end(']'); }
  // Throws Failure for what is no UTF-8 and is not spelled out.
  void name(std::string_view name);
  void text(std::string_view text);
  void number(double value);
  void count(std::size_t value);
  void boolean(bool value);
  void null();
  // A value that is JSON already.
  void json(std::string_view value);

  // What stands so far; clear() begins anew.
  [[nodiscard]] const std::string& chars() const { return chars_; }
  void clear();

 private:
  void begin(char bracket);
  void end(char bracket);
  // Before each value.
  void separate();
  void quoted(std::string_view text);

  Texts texts_;
  std::string chars_;
  std::string room_;
  bool comma_ = false;
};

}  // namespace formats

#endif  // ZTB_FORMATS_JSON_JSON_TEXT_H_
