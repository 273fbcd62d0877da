#include "tools/text/json_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <ztb/display_text.hpp>

#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace tool {

Json jsonNumber(double value) {
  return isSpecial(value) ? Json(NumberText(value).view()) : Json(value);
}

std::string jsonText(const Json& json, int indent) {
  const std::string text = json.dump(indent, ' ', false, Json::error_handler_t::replace);
  std::string result;
  // A character that steers stands within a string, where an escape is as good.
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t plain = rest.find_first_of("\x7F\xC2\xD8\xE2\xEF\xF3");
    result += rest.substr(0, plain);
    rest.remove_prefix(std::min(plain, rest.size()));
    if (rest.empty()) break;
    const auto unit = ztb::detail::firstDisplayUnit(rest);
    if (!ztb::detail::steersDisplay(unit.code)) {
      result += rest.substr(0, unit.size);
    } else if (unit.code < 0x10000) {
      result += fmt::format("\\u{:04x}", static_cast<unsigned>(unit.code));
    } else {
      const auto above = static_cast<unsigned>(unit.code) - 0x10000U;
      result +=
          fmt::format("\\u{:04x}\\u{:04x}", 0xD800U + (above >> 10U), 0xDC00U + (above & 0x3FFU));
    }
    rest.remove_prefix(unit.size);
  }
  return result;
}

Json jsonSymbol(const ExchangeFile& file, const FileSymbol& symbol, ztb::Store store) {
  Json json;
  json["name"] = symbol.name;
  json["type"] = typeWord(symbol.type);
  if (symbol.isAlias()) {
    json["alias_of"] = file.resolved(symbol).name;
  } else {
    json["dimension"] = symbol.dimension;
    json["domains"] = domainNames(symbol);
    json["user_info"] = symbol.userInfo;
    json["store"] = storeWord(store);
  }
  json["text"] = symbol.text;
  return json;
}

}  // namespace tool
