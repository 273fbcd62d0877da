// The operation tables of the four model families: names, signatures, versions, and the names that
// the built libraries export. The tables here are the calling contract, written out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tests/model/peer_library.h"

namespace modeltest {
namespace {

struct Operation {
  std::string name;
  std::string symbol;
  std::vector<int> codes;  // result, then arguments behind the handle
};

struct Family {
  std::string name;  // as its entry points begin
  const PeerLibrary& library;
  int apiVersion;
  std::vector<std::string> entryPoints;
  std::vector<Operation> operations;
};

const std::vector<Operation> kPbi{
    {"pbiDict", "pbiDict", {1}},
    {"pbiEnvironment", "pbiEnvironment", {1}},
    {"pbiPinfSet", "pbiPinfSet", {0, 13}},
    {"pbiMinfSet", "pbiMinfSet", {0, 13}},
    {"pbiN", "pbiN", {3}},
    {"pbiM", "pbiM", {3}},
    {"pbiModelType", "pbiModelType", {3}},
    {"pbiGetVarL", "pbiGetVarL", {3, 6}},
    {"pbiGetVarM", "pbiGetVarM", {3, 6}},
    {"pbiGetEquL", "pbiGetEquL", {3, 6}},
    {"pbiGetEquM", "pbiGetEquM", {3, 6}},
    {"pbiGetVarLOne", "pbiGetVarLOne", {13, 3}},
    {"pbiSetVarLOne", "pbiSetVarLOne", {0, 3, 13}},
    {"pbiGetVarLowerOne", "pbiGetVarLowerOne", {13, 3}},
    {"pbiGetVarUpperOne", "pbiGetVarUpperOne", {13, 3}},
    {"pbiGetVarScaleOne", "pbiGetVarScaleOne", {13, 3}},
    {"pbiGetVarStatOne", "pbiGetVarStatOne", {3, 3}},
    {"pbiGetVarCStatOne", "pbiGetVarCStatOne", {3, 3}},
    {"pbiSetAltVarLowerOne", "pbiSetAltVarLowerOne", {0, 3, 13}},
    {"pbiSetAltVarUpperOne", "pbiSetAltVarUpperOne", {0, 3, 13}},
    {"pbiGetEquLOne", "pbiGetEquLOne", {13, 3}},
    {"pbiSetEquLOne", "pbiSetEquLOne", {0, 3, 13}},
    {"pbiGetEquStatOne", "pbiGetEquStatOne", {3, 3}},
    {"pbiGetEquCStatOne", "pbiGetEquCStatOne", {3, 3}},
    {"pbiGetEquScaleOne", "pbiGetEquScaleOne", {13, 3}},
    {"pbiGetEquTypeOne", "pbiGetEquTypeOne", {3, 3}},
    {"pbiGetRhsOne", "pbiGetRhsOne", {13, 3}},
    {"pbiSetAltRHSOne", "pbiSetAltRHSOne", {0, 3, 13}},
    {"pbiGetSolutionVarRec", "pbiGetSolutionVarRec", {3, 3, 14, 14, 4, 4}},
    {"pbiSetSolutionVarRec", "pbiSetSolutionVarRec", {3, 3, 13, 13, 3, 3}},
    {"pbiGetSolutionEquRec", "pbiGetSolutionEquRec", {3, 3, 14, 14, 4, 4}},
    {"pbiSetSolutionEquRec", "pbiSetSolutionEquRec", {3, 3, 13, 13, 3, 3}},
    {"pbiAltBoundsSet", "pbiAltBoundsSet", {0, 15}},
    {"pbiAltRHSSet", "pbiAltRHSSet", {0, 15}},
    {"pbiForceLinearSet", "pbiForceLinearSet", {0, 15}},
    {"pbiModelStatSet", "pbiModelStatSet", {0, 3}},
    {"pbiSolveStatSet", "pbiSolveStatSet", {0, 3}},
    {"pbiEvalGradNLUpdate", "pbiEvalGradNLUpdate", {3, 6, 15, 21}},
    {"pbiViewStore", "pbiViewStore", {1}},
    {"pbiViewRestore", "pbiViewRestore", {0, 2}},
};

const std::vector<Operation> kSnv{
    {"snvGetStrOpt", "CsnvGetStrOpt", {12, 11, 12}},
    {"snvLog", "CsnvLog", {0, 11}},
    {"snvTerminateClear", "snvTerminateClear", {0}},
    {"snvCallSolver", "CsnvCallSolver", {3, 1, 11, 11, 3, 3, 11, 11, 13, 3, 3, 13, 13, 2, 12}},
};

const std::vector<Operation> kNmt{
    {"nmtNUels", "nmtNUels", {3}},
    {"nmtUelLabel", "CnmtUelLabel", {3, 3, 19, 17, 3}},
    {"nmtNLSyms", "nmtNLSyms", {3}},
    {"nmtSymName", "CnmtSymName", {3, 3, 17, 3}},
    {"nmtSymType", "nmtSymType", {3, 3}},
    {"nmtSymDim", "nmtSymDim", {3, 3}},
    {"nmtSymText", "CnmtSymText", {3, 3, 19, 17, 3}},
    {"nmtSymUserInfo", "nmtSymUserInfo", {3, 3}},
    {"nmtSymIndex", "CnmtSymIndex", {3, 11}},
    {"nmtFindFirstRowCol", "nmtFindFirstRowCol", {1, 3, 51, 4}},
    {"nmtFindNextRowCol", "nmtFindNextRowCol", {3, 1, 4}},
    {"nmtFindClose", "nmtFindClose", {0, 1}},
    {"nmtRowUels", "nmtRowUels", {3, 3, 4, 52, 4}},
    {"nmtColUels", "nmtColUels", {3, 3, 4, 52, 4}},
};

const std::vector<Operation> kRgy{
    {"rgyReadConfigVUC", "CrgyReadConfigVUC", {3, 11, 11}},
    {"rgyAlgNumber", "CrgyAlgNumber", {3, 11}},
    {"rgyAlgAllowsModifyProblem", "rgyAlgAllowsModifyProblem", {15, 3}},
    {"rgyAlgCreate", "CrgyAlgCreate", {15, 3, 2, 11, 12}},
    {"rgyAlgReadyAPI", "rgyAlgReadyAPI", {3, 3, 1, 1}},
    {"rgyAlgModifyProblem", "rgyAlgModifyProblem", {3, 3, 1}},
    {"rgyAlgCallSolver", "rgyAlgCallSolver", {3, 3, 1, 1}},
    {"rgyAlgFree", "rgyAlgFree", {0, 3, 2}},
};

const std::vector<Family>& families() {
  static const std::vector<Family> kFamilies{
      {"pbi",
       modelLibrary(),
       26,
       {"pbiXCreate", "CpbiXCreateD", "pbiXFree", "CpbiXCheck", "CpbiXAPIVersion"},
       kPbi},
      {"snv",
       modelLibrary(),
       7,
       {"snvXCreate", "CsnvXCreateD", "snvXFree", "CsnvXCheck", "CsnvXAPIVersion"},
       kSnv},
      {"nmt",
       dictionaryLibrary(),
       2,
       {"nmtXCreate", "CnmtXCreateD", "nmtXFree", "CnmtXCheck", "CnmtXAPIVersion"},
       kNmt},
      {"rgy", modelLibrary(), 4, {"rgyXCreate", "rgyXFree", "CrgyXCheck", "CrgyXAPIVersion"}, kRgy},
  };
  return kFamilies;
}

using Check = int(const char*, int, const int*, char*);
using Version = int(int, char*, int*);

int check(const Family& family, const std::string& operation, const std::vector<int>& codes,
          char* msg) {
  const int arguments = static_cast<int>(codes.size()) - 1;
  return family.library.call<Check>("C" + family.name + "XCheck", operation.c_str(), arguments,
                                    codes.data(), msg);
}

std::vector<std::string> namesOf(const PeerLibrary& library) {
  std::vector<std::string> names;
  for (const Family& family : families()) {
    if (&family.library != &library) continue;
    names.insert(names.end(), family.entryPoints.begin(), family.entryPoints.end());
    for (const Operation& operation : family.operations) names.push_back(operation.symbol);
  }
  return names;
}

TEST(PeerOperations, AreSixtySixInFourFamilies) {
  EXPECT_EQ(kPbi.size(), 40U);
  EXPECT_EQ(kSnv.size(), 4U);
  EXPECT_EQ(kNmt.size(), 14U);
  EXPECT_EQ(kRgy.size(), 8U);
}

TEST(PeerOperations, AreOfferedWithTheirSignature) {
  for (const Family& family : families()) {
    for (const Operation& operation : family.operations) {
      std::array<char, 256> msg{};
      EXPECT_EQ(check(family, operation.name, operation.codes, msg.data()), 1)
          << operation.name << ": " << msg.data();
    }
  }
}

TEST(PeerOperations, AreRefusedWithAnyOtherSignature) {
  for (const Family& family : families()) {
    for (const Operation& operation : family.operations) {
      for (std::size_t i = 0; i < operation.codes.size(); ++i) {
        std::vector<int> codes = operation.codes;
        codes[i] += 1;
        std::array<char, 256> msg{};
        EXPECT_EQ(check(family, operation.name, codes, msg.data()), 0) << operation.name;
        EXPECT_STRNE(msg.data(), "") << operation.name;
      }
      std::vector<int> more = operation.codes;
      more.push_back(3);
      EXPECT_EQ(check(family, operation.name, more, nullptr), 0) << operation.name;
    }
    std::array<char, 256> msg{};
    EXPECT_EQ(check(family, family.name + "NoSuch", {3}, msg.data()), 0);
    EXPECT_THAT(msg.data(), testing::HasSubstr("not offered"));
  }
}

TEST(PeerOperations, AreOfOneVersion) {
  for (const Family& family : families()) {
    const std::string name = "C" + family.name + "XAPIVersion";
    std::array<char, 256> msg{};
    int compatibility = 0;
    EXPECT_EQ(family.library.call<Version>(name, family.apiVersion, msg.data(), &compatibility), 1);
    for (const int other : {family.apiVersion - 1, family.apiVersion + 1}) {
      EXPECT_EQ(family.library.call<Version>(name, other, msg.data(), &compatibility), 0) << name;
      EXPECT_THAT(msg.data(), testing::HasSubstr(std::to_string(family.apiVersion)));
    }
  }
}

TEST(PeerOperations, AreAllThatTheDictionaryLibraryExports) {
  EXPECT_THAT(dictionaryLibrary().exportedNames(),
              testing::UnorderedElementsAreArray(namesOf(dictionaryLibrary())));
}

TEST(PeerOperations, StandBesideTheFunctionsForModelsAndNothingElse) {
  std::vector<std::string> names = modelLibrary().exportedNames();
  const auto forModels = [](const std::string& name) {
    return name.starts_with("ztbModel") || name.starts_with("ztbCatalogue");
  };
  EXPECT_NE(modelLibrary().address("ztbModelOpen"), nullptr);
  names.erase(std::remove_if(names.begin(), names.end(), forModels), names.end());
  EXPECT_THAT(names, testing::UnorderedElementsAreArray(namesOf(modelLibrary())));
}

TEST(PeerOperations, ObjectsMadeByTheEntryPointsAreEmptyAndFreed) {
  for (const Family& family : families()) {
    void* object = nullptr;
    family.library.call<void(void**)>(family.name + "XCreate", &object);
    ASSERT_NE(object, nullptr) << family.name;
    if (family.name == "pbi") {
      EXPECT_EQ(family.library.call<int(void*)>("pbiN", object), 0);
      EXPECT_EQ(family.library.call<int(void*)>("pbiM", object), 1) << "the objective";
    }
    if (family.name == "nmt") {
      EXPECT_EQ(family.library.call<int(void*)>("nmtNLSyms", object), 0);
      EXPECT_EQ(family.library.call<int(void*)>("nmtNUels", object), 0);
    }
    if (family.name == "rgy") {
      EXPECT_EQ(family.library.call<int(void*, const char*)>("CrgyAlgNumber", object, "clp"), 0);
    }
    family.library.call<void(void**)>(family.name + "XFree", &object);
    EXPECT_EQ(object, nullptr) << family.name;
  }
}

}  // namespace
}  // namespace modeltest
