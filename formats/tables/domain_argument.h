// How a symbol that is made after the pattern of another one takes over a domain by its name.
#ifndef ZTB_FORMATS_TABLES_DOMAIN_ARGUMENT_H_
#define ZTB_FORMATS_TABLES_DOMAIN_ARGUMENT_H_

#include <string>
#include <ztb/ztb.hpp>

namespace formats {

// Whether the name of a column can stand as a domain that no set is behind.
bool canBeDomain(const std::string& name);

// A domain set that the database has already is passed as such; any other domain is known by its
// name, and becomes the set of that name when the written file is opened. The result refers to
// `name`.
ztb::DomainArgument domainArgument(const ztb::Database& database, const std::string& name);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_DOMAIN_ARGUMENT_H_
