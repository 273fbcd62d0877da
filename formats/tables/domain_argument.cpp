#include "formats/tables/domain_argument.h"

#include <optional>

namespace formats {

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
