#include "tools/json_text.h"

#include "tools/number_text.h"
#include "tools/words.h"

namespace tool {

Json jsonNumber(double value) {
  return isSpecial(value) ? Json(NumberText(value).view()) : Json(value);
}

std::string jsonText(const Json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json jsonSymbol(const DataFile& file, const ztb::Symbol& symbol) {
  Json json;
  json["name"] = symbol.name().view();
  json["type"] = typeWord(symbol.type());
  if (symbol.type() == ztb::Type::alias) {
    json["alias_of"] = file.resolved(symbol).name().view();
  } else {
    json["dimension"] = symbol.dimension();
    json["domains"] = domainNames(symbol);
    json["user_info"] = symbol.userInfo();
    json["store"] = storeWord(symbol.store());
  }
  json["text"] = symbol.text().view();
  return json;
}

}  // namespace tool
