// Regular expressions as ECMAScript has them, on each system: those of gtest know no sets and no
// counts on Windows.
#ifndef ZTB_TESTS_SUPPORT_MATCHES_H_
#define ZTB_TESTS_SUPPORT_MATCHES_H_

#include <gmock/gmock.h>

#include <regex>
#include <string>

namespace ztbtest {

MATCHER_P(Matches, pattern, "matches " + testing::PrintToString(pattern)) {
  return std::regex_match(std::string(arg), std::regex(pattern));
}

MATCHER_P(HasMatch, pattern, "has a piece that matches " + testing::PrintToString(pattern)) {
  return std::regex_search(std::string(arg), std::regex(pattern));
}

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_MATCHES_H_
