#include "formats/tables/domain_argument.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace formats {

bool canBeDomain(const std::string& name) {
  return !name.empty() && name.size() <= ZTB_MAX_NAME_LENGTH && name.front() != ' ' &&
         name.back() != ' ' && name.front() != '*' &&
         std::ranges::none_of(name, [](unsigned char c) {
           return c < ' ' ||
                  std::string_view(",()'\"").find(static_cast<char>(c)) != std::string_view::npos;
         });
}

ztb::DomainArgument domainArgument(const ztb::Database& database, const std::string& name) {
  const std::optional<ztb::Symbol> set =
      name == "*" ? std::nullopt : database.findSymbolOrAlias(name);
  if (set && set->dimension() == 1 &&
      (set->type() == ztb::Type::set || set->type() == ztb::Type::alias)) {
    return {*set};
  }
  return {name.c_str()};
}

}  // namespace formats
