// Shared pieces of the JSON that commands print.
#ifndef ZTB_TOOLS_TEXT_JSON_TEXT_H_
#define ZTB_TOOLS_TEXT_JSON_TEXT_H_

#include <nlohmann/json.hpp>
#include <string>

#include "tools/files/exchange_file.h"

namespace tool {

using Json = nlohmann::ordered_json;

// An ordinary number as a JSON number, a special value as its word.
Json jsonNumber(double value);

// JSON as text, indented by indent blanks or on one line for -1. Bytes that are not UTF-8 become
// U+FFFD; characters that could steer a terminal are escaped, which is the same to a program.
std::string jsonText(const Json& json, int indent = -1);

// What a symbol is: name, type, dimension, domains, text and the user information; for an alias the
// name of the set that it stands for. `store` is the one that is told with it.
Json jsonSymbol(const ExchangeFile& file, const FileSymbol& symbol, ztb::Store store);

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_JSON_TEXT_H_
