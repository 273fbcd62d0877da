// Databases of every kind of symbol, label, text and value, made by chance but always the same for
// a number.
#ifndef ZTB_TESTS_FORMATS_RANDOM_DATABASE_H_
#define ZTB_TESTS_FORMATS_RANDOM_DATABASE_H_

#include <string>
#include <ztb/ztb.hpp>

namespace formatstest {

// A database with sets, aliases, parameters, variables and equations of 0 to 20 positions.
ztb::Database randomDatabase(unsigned seed);

// Everything that the exported interface tells of a database, as text with the bits of values.
std::string describe(const ztb::Database& database);

}  // namespace formatstest

#endif  // ZTB_TESTS_FORMATS_RANDOM_DATABASE_H_
