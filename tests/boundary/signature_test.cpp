// The two checks that a client makes before it uses the library: of the version, and of the
// signature of each operation.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/boundary/signature_rows.h"
#include "tests/support/library.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

struct Version {
  int result;
  int compatibility;
  std::string message;

  bool operator==(const Version&) const = default;
};

Version version(int api) {
  int compatibility = -1;
  TextBuffer message;
  const int result = lib().c__xapiversion(api, message, &compatibility);
  return {result, compatibility, message.str()};
}

Version shortVersion(int api) {
  int compatibility = -1;
  ShortString message;
  const int result = lib().d__xapiversion(api, message, &compatibility);
  return {result, compatibility, message.str()};
}

TEST(ApiVersion, fiveIsTheSame) {
  const Version same{1, 1, "ztbcclib: Client version and DLL version are the same."};
  EXPECT_EQ(same, version(5));
  EXPECT_EQ(same, shortVersion(5));
}

TEST(ApiVersion, aboveFiveIsNewer) {
  const Version newer{1, 3, "ztbcclib: Client version is newer than this DLL."};
  EXPECT_EQ(newer, version(6));
  EXPECT_EQ(newer, version(2147483647));
  EXPECT_EQ(newer, shortVersion(6));
}

TEST(ApiVersion, twoToFourAreCompatible) {
  const Version older{1, 2, "ztbcclib: Client version is compatible to this version of the DLL."};
  EXPECT_EQ(older, version(4));
  EXPECT_EQ(older, version(3));
  EXPECT_EQ(older, version(2));
  EXPECT_EQ(older, shortVersion(2));
}

TEST(ApiVersion, belowTwoIsTooOld) {
  for (const int api : {1, 0, -1}) {
    const Version tooOld{0, 0,
                         "ztbcclib: The API is too old for the used library, API version: " +
                             std::to_string(api) + ", library version: 5"};
    EXPECT_EQ(tooOld, version(api));
    EXPECT_EQ(tooOld, shortVersion(api));
  }
}

struct Answer {
  int result;
  std::string message;

  bool operator==(const Answer&) const = default;
};

Answer check(const std::string& name, const std::vector<int>& codes) {
  TextBuffer message;
  const int result =
      lib().c__xcheck(name.c_str(), static_cast<int>(codes.size()) - 1, codes.data(), message);
  return {result, message.str()};
}

Answer unknown(const std::string& name) {
  return {0, "ztbcclib: " + name + " cannot be found in library."};
}

Answer wrongCount(const std::string& name) {
  return {0, "ztbcclib: " + name + " has wrong number of arguments."};
}

Answer wrongTypes(const std::string& name) {
  return {0, "ztbcclib: " + name + " has wrong argument types."};
}

TEST(SignatureCheck, knows109DifferentOperations) {
  std::set<std::string> names;
  for (const SignatureRow& row : signatureRows()) {
    names.insert(row.name);
  }
  EXPECT_EQ(109U, names.size());
  EXPECT_EQ(109U, signatureRows().size());
}

TEST(SignatureCheck, acceptsEveryRow) {
  for (const SignatureRow& row : signatureRows()) {
    EXPECT_EQ((Answer{1, ""}), check(row.name, row.codes)) << row.name;
  }
}

TEST(SignatureCheck, refusesEveryRowWithOneArgumentMoreOrLess) {
  for (const SignatureRow& row : signatureRows()) {
    std::vector<int> codes = row.codes;
    codes.push_back(3);
    EXPECT_EQ(wrongCount(row.name), check(row.name, codes));
    codes.resize(row.codes.size() - 1);
    EXPECT_EQ(wrongCount(row.name), check(row.name, codes));
  }
}

TEST(SignatureCheck, refusesEveryRowWithAnyOneCodeChanged) {
  for (const SignatureRow& row : signatureRows()) {
    for (size_t i = 0; i < row.codes.size(); ++i) {
      std::vector<int> codes = row.codes;
      codes[i] = codes[i] == 3 ? 4 : 3;
      EXPECT_EQ(wrongTypes(row.name), check(row.name, codes)) << row.name << " place " << i;
    }
  }
}

TEST(SignatureCheck, comparesNamesExactly) {
  EXPECT_EQ((Answer{1, ""}), check("ztbFindSymbol", {15, 11, 2}));
  for (const char* name : {"ztbfindsymbol", "ZTBFINDSYMBOL", "ztbFindSymbo", "ztbFindSymbols",
                           "FindSymbol", "c__ztbfindsymbol", ""}) {
    EXPECT_EQ(unknown(name), check(name, {15, 11, 2}));
  }
}

TEST(SignatureCheck, doesNotKnowOperationsOutsideTheTable) {
  EXPECT_EQ(unknown("ztbCreate"), check("ztbCreate", {15}));
  EXPECT_EQ(unknown("ztbFree"), check("ztbFree", {15}));
  EXPECT_EQ(unknown("xcheck"), check("xcheck", {15}));
}

TEST(SignatureCheck, findsNoOperationWithoutAName) {
  const int code = 15;
  TextBuffer message;
  EXPECT_EQ(0, lib().c__xcheck(nullptr, 0, &code, message));
  EXPECT_EQ(unknown("").message, message.str());
  ShortString shortMessage;
  EXPECT_EQ(0, lib().d__xcheck(nullptr, 0, &code, shortMessage));
  EXPECT_EQ(unknown("").message, shortMessage.str());
}

TEST(SignatureCheck, looksAtTheCountBeforeTheCodes) {
  EXPECT_EQ(wrongCount("ztbFindSymbol"), check("ztbFindSymbol", {0, 0, 0, 0}));
  EXPECT_EQ(wrongTypes("ztbFindSymbol"), check("ztbFindSymbol", {3, 11, 2}));
}

TEST(SignatureCheck, readsNoCodesWhenTheCountIsWrong) {
  TextBuffer message;
  EXPECT_EQ(0, lib().c__xcheck("ztbFindSymbol", -1, nullptr, message));
  EXPECT_EQ(wrongCount("ztbFindSymbol").message, message.str());
}

TEST(SignatureCheck, cutsTheTextOfALongName) {
  const std::string name(300, 'n');
  EXPECT_EQ((Answer{0, unknown(name).message.substr(0, 255)}), check(name, {15}));
}

TEST(SignatureCheck, answersTheSameWithShortStrings) {
  for (const SignatureRow& row : signatureRows()) {
    const ShortString name(row.name);
    const int count = static_cast<int>(row.codes.size()) - 1;
    ShortString message;
    EXPECT_EQ(1, lib().d__xcheck(name, count, row.codes.data(), message));
    EXPECT_EQ("", message.str());
    EXPECT_EQ(0, lib().d__xcheck(name, count + 1, row.codes.data(), message));
    EXPECT_EQ(wrongCount(row.name).message, message.str());
  }
}

TEST(SignatureCheck, cutsALongAnswerInAShortString) {
  const std::string name(255, 'n');
  ShortString message;
  const int code = 15;
  EXPECT_EQ(0, lib().d__xcheck(ShortString(name), 0, &code, message));
  EXPECT_EQ(unknown(name).message.substr(0, 255), message.str());
}

}  // namespace
}  // namespace ztbtest
