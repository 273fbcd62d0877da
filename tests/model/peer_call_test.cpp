// The operations of a model instance and its dictionary, each called through the built libraries on
// one small model:
//
//   min 3 x[a] + 2 x[b] + 5 y + 7
//   need[a]  x[a] + x[b] >= 2, at most 5
//   need[b]  x[b] - y     = 1
//   cap      x[a] + y    <= 10
//   0 <= x[a] <= 4, x[b] free, 1 <= y
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ztb/model.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/model/peer_library.h"

namespace modeltest {
namespace {

using testing::ElementsAre;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr int kXa = 0;
constexpr int kXb = 1;
constexpr int kY = 2;

struct Record {
  double level = -1;
  double marginal = -1;
  int status = -1;
  int status2 = -1;
};

bool operator==(const Record& a, const Record& b) {
  return a.level == b.level && a.marginal == b.marginal && a.status == b.status &&
         a.status2 == b.status2;
}

class PeerCalls : public testing::Test {
 protected:
  PeerCalls() {
    ztbModelCreate(&model_, nullptr, 0);
    ztbModelSetObjective(model_, "cost", 0, 7);
    ztbModelAddColumn(model_, "x[a]", ztbColumnContinuous, 0, 4);
    ztbModelAddColumn(model_, "x[b]", ztbColumnContinuous, -kInf, kInf);
    ztbModelAddColumn(model_, "y", ztbColumnContinuous, 1, kInf);
    ztbModelAddRow(model_, "need[a]", ztbRowGreaterOrEqual, 2, 3);
    ztbModelAddRow(model_, "need[b]", ztbRowEqual, 1, 0);
    ztbModelAddRow(model_, "cap", ztbRowLessOrEqual, 10, 0);
    const std::vector<std::vector<double>> rows{{3, 2, 5}, {1, 1, 0}, {0, 1, -1}, {1, 0, 1}};
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 3; ++j) {
        ztbModelAddTerm(model_, i, j,
                        rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)]);
      }
    }
    pbi_ = ztbModelPbi(model_);
    nmt_ = lib_.call<void*(void*)>("pbiDict", pbi_);
  }
  ~PeerCalls() override { ztbModelFree(&model_); }

  [[nodiscard]] double real(const char* name, int rc) const {
    return lib_.call<double(void*, int)>(name, pbi_, rc);
  }
  [[nodiscard]] int whole(const char* name, int rc) const {
    return lib_.call<int(void*, int)>(name, pbi_, rc);
  }
  void set(const char* name, int rc, double value) const {
    lib_.call<void(void*, int, double)>(name, pbi_, rc, value);
  }
  void turn(const char* name, int value) const { lib_.call<void(void*, int)>(name, pbi_, value); }
  [[nodiscard]] std::vector<double> all(const char* name, std::size_t count) const {
    std::vector<double> values(count, -99);
    lib_.call<int(void*, double*)>(name, pbi_, values.data());
    return values;
  }
  [[nodiscard]] Record record(const char* name, int rc) const {
    Record r;
    lib_.call<int(void*, int, double*, double*, int*, int*)>(name, pbi_, rc, &r.level, &r.marginal,
                                                             &r.status, &r.status2);
    return r;
  }
  void setRecord(const char* name, int rc, const Record& r) const {
    lib_.call<int(void*, int, double, double, int, int)>(name, pbi_, rc, r.level, r.marginal,
                                                         r.status, r.status2);
  }
  // The numbers of the walk over a dictionary symbol.
  [[nodiscard]] std::vector<int> walk(int symbol, const std::vector<int>& keys) const {
    std::vector<int> numbers;
    int rc = -7;
    void* search = names_.call<void*(void*, int, const int*, int*)>("nmtFindFirstRowCol", nmt_,
                                                                    symbol, keys.data(), &rc);
    while (rc >= 0) {
      numbers.push_back(rc);
      names_.call<int(void*, void*, int*)>("nmtFindNextRowCol", nmt_, search, &rc);
    }
    names_.call<void(void*, void*)>("nmtFindClose", nmt_, search);
    return numbers;
  }
  [[nodiscard]] int symbol(const char* name) const {
    return names_.call<int(void*, const char*)>("CnmtSymIndex", nmt_, name);
  }
  [[nodiscard]] std::string text(const char* operation, int i, int size) const {
    std::array<char, 300> buffer{};
    buffer.fill('#');
    char quote = '#';
    names_.call<int(void*, int, char*, char*, int)>(operation, nmt_, i, &quote, buffer.data(),
                                                    size);
    EXPECT_EQ(quote, ' ');
    EXPECT_EQ(buffer[static_cast<std::size_t>(size)], '#') << "written past the buffer";
    return buffer.data();
  }
  [[nodiscard]] std::string symbolName(int i, int size) const {
    std::array<char, 300> buffer{};
    names_.call<int(void*, int, char*, int)>("CnmtSymName", nmt_, i, buffer.data(), size);
    return buffer.data();
  }

  const PeerLibrary& lib_ = modelLibrary();
  const PeerLibrary& names_ = dictionaryLibrary();
  ztbModel* model_ = nullptr;
  void* pbi_ = nullptr;
  void* nmt_ = nullptr;
};

TEST_F(PeerCalls, DictionaryHoldsLabelsAndSymbols) {
  EXPECT_EQ(names_.call<int(void*)>("nmtNUels", nmt_), 2);
  EXPECT_EQ(text("CnmtUelLabel", 1, 64), "a");
  EXPECT_EQ(text("CnmtUelLabel", 2, 64), "b");
  EXPECT_EQ(names_.call<int(void*)>("nmtNLSyms", nmt_), 5);
  const std::vector<std::string> names{"x", "y", "cost", "need", "cap"};
  const std::vector<int> types{5, 5, 6, 6, 6};
  const std::vector<int> dimensions{1, 0, 0, 1, 0};
  for (int i = 1; i <= 5; ++i) {
    const auto k = static_cast<std::size_t>(i) - 1;
    EXPECT_EQ(symbolName(i, 64), names[k]);
    EXPECT_EQ(names_.call<int(void*, int)>("nmtSymType", nmt_, i), types[k]) << names[k];
    EXPECT_EQ(names_.call<int(void*, int)>("nmtSymDim", nmt_, i), dimensions[k]) << names[k];
    EXPECT_EQ(text("CnmtSymText", i, 256), "") << names[k];
    EXPECT_EQ(symbol(names[k].c_str()), i);
  }
  EXPECT_EQ(symbol("NEED"), 4) << "case does not matter";
}

TEST_F(PeerCalls, DictionaryCutsTextsToTheBuffer) {
  EXPECT_EQ(symbolName(4, 3), "ne");
  EXPECT_EQ(text("CnmtUelLabel", 1, 1), "");
}

TEST_F(PeerCalls, DictionaryHasNothingForNumbersAndNamesOutOfRange) {
  for (const int i : {0, -1, 6, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_EQ(symbolName(i, 64), "") << i;
    EXPECT_EQ(text("CnmtUelLabel", i, 64), "") << i;
    EXPECT_EQ(text("CnmtSymText", i, 64), "") << i;
    EXPECT_EQ(names_.call<int(void*, int)>("nmtSymType", nmt_, i), 0) << i;
    EXPECT_EQ(names_.call<int(void*, int)>("nmtSymUserInfo", nmt_, i), 0) << i;
    EXPECT_THAT(walk(i, {0}), ElementsAre()) << i;
  }
  EXPECT_LE(symbol("nosuch"), 0);
  EXPECT_LE(symbol(""), 0);
  EXPECT_LE(symbol(nullptr), 0);
  EXPECT_LE(symbol(std::string(64, 'x').c_str()), 0);
  EXPECT_LE(symbol(std::string(5000, 'x').c_str()), 0);
}

TEST_F(PeerCalls, WalksMatchTheirKeys) {
  EXPECT_THAT(walk(symbol("x"), {0}), ElementsAre(kXa, kXb));
  EXPECT_THAT(walk(symbol("x"), {2}), ElementsAre(kXb));
  EXPECT_THAT(walk(symbol("x"), {3}), ElementsAre());
  EXPECT_THAT(walk(symbol("need"), {0}), ElementsAre(1, 2));
  EXPECT_THAT(walk(symbol("cost"), {0}), ElementsAre(0));
  EXPECT_THAT(walk(symbol("cap"), {0}), ElementsAre(3));
}

TEST_F(PeerCalls, SeveralWalksStayApartAndMayBeLeftOpen) {
  const auto open = [&](int symbolNumber, int* rc) {
    const int every = 0;
    return names_.call<void*(void*, int, const int*, int*)>("nmtFindFirstRowCol", nmt_,
                                                            symbolNumber, &every, rc);
  };
  int first = -1;
  int second = -1;
  void* walkOfX = open(symbol("x"), &first);
  void* walkOfNeed = open(symbol("need"), &second);
  EXPECT_NE(walkOfX, walkOfNeed);
  names_.call<int(void*, void*, int*)>("nmtFindNextRowCol", nmt_, walkOfX, &first);
  names_.call<int(void*, void*, int*)>("nmtFindNextRowCol", nmt_, walkOfNeed, &second);
  EXPECT_EQ(first, kXb);
  EXPECT_EQ(second, 2);
  names_.call<void(void*, void*)>("nmtFindClose", nmt_, walkOfX);
  names_.call<int(void*, void*, int*)>("nmtFindNextRowCol", nmt_, walkOfNeed, &second);
  EXPECT_EQ(second, -1);
  names_.call<void(void*, void*)>("nmtFindClose", nmt_, nullptr);
}

TEST_F(PeerCalls, PlacesOfRowsAndColumns) {
  int found = -1;
  std::array<int, 20> keys{};
  int dim = -1;
  const auto place = [&](const char* operation, int rc) {
    names_.call<int(void*, int, int*, int*, int*)>(operation, nmt_, rc, &found, keys.data(), &dim);
  };
  place("nmtColUels", kXb);
  EXPECT_EQ(found, symbol("x"));
  EXPECT_EQ(dim, 1);
  EXPECT_EQ(keys[0], 2);
  place("nmtRowUels", 1);
  EXPECT_EQ(found, symbol("need"));
  EXPECT_EQ(keys[0], 1);
  place("nmtRowUels", 0);
  EXPECT_EQ(found, symbol("cost"));
  EXPECT_EQ(dim, 0);
  for (const int rc : {-1, 4}) {
    place("nmtRowUels", rc);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(dim, 0);
  }
  place("nmtColUels", 3);
  EXPECT_EQ(found, 0);
}

TEST_F(PeerCalls, InstanceStartsWhereItsBoundsSay) {
  EXPECT_EQ(lib_.call<int(void*)>("pbiN", pbi_), 3);
  EXPECT_EQ(lib_.call<int(void*)>("pbiM", pbi_), 4);
  EXPECT_EQ(lib_.call<int(void*)>("pbiModelType", pbi_), 1);
  EXPECT_THAT(all("pbiGetVarL", 3), ElementsAre(0, 0, 1));
  EXPECT_THAT(all("pbiGetVarM", 3), ElementsAre(0, 0, 0));
  EXPECT_THAT(all("pbiGetEquM", 4), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(all("pbiGetEquL", 4), ElementsAre(0, 0, 0, 0));
  const std::vector<int> types{3, 1, 0, 2};
  const std::vector<double> sides{-7, 2, 1, 10};
  for (int i = 0; i < 4; ++i) {
    const auto k = static_cast<std::size_t>(i);
    EXPECT_EQ(whole("pbiGetEquTypeOne", i), types[k]);
    EXPECT_EQ(real("pbiGetRhsOne", i), sides[k]);
    EXPECT_EQ(real("pbiGetEquScaleOne", i), 1);
  }
  EXPECT_EQ(real("pbiGetVarScaleOne", kY), 1);
  EXPECT_EQ(real("pbiGetVarLowerOne", kXa), 0);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXa), 4);
}

TEST_F(PeerCalls, InfinitiesAreWhatTheModelWasToldLast) {
  EXPECT_EQ(real("pbiGetVarLowerOne", kXb), -kInf);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXb), kInf);
  lib_.call<void(void*, double)>("pbiPinfSet", pbi_, 1e30);
  lib_.call<void(void*, double)>("pbiMinfSet", pbi_, -1e30);
  EXPECT_EQ(real("pbiGetVarLowerOne", kXb), -1e30);
  EXPECT_EQ(real("pbiGetVarUpperOne", kY), 1e30);
  turn("pbiAltBoundsSet", 1);
  set("pbiSetAltVarUpperOne", kXa, 1e31);
  set("pbiSetAltVarLowerOne", kXa, -1e30);
  lib_.call<void(void*, double)>("pbiPinfSet", pbi_, kInf);
  lib_.call<void(void*, double)>("pbiMinfSet", pbi_, -kInf);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXa), kInf);
  EXPECT_EQ(real("pbiGetVarLowerOne", kXa), -kInf);
}

TEST_F(PeerCalls, AlternativeBoundsHideTheOwnOnesWhileTheyAreOn) {
  set("pbiSetAltVarLowerOne", kXa, 1);
  set("pbiSetAltVarUpperOne", kXa, 2);
  EXPECT_EQ(real("pbiGetVarLowerOne", kXa), 0);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXa), 4);
  turn("pbiAltBoundsSet", 1);
  EXPECT_EQ(real("pbiGetVarLowerOne", kXa), 1);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXa), 2);
  EXPECT_EQ(real("pbiGetVarLowerOne", kY), 1) << "one that was never set is as the own one";
  turn("pbiAltBoundsSet", 0);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXa), 4);
}

TEST_F(PeerCalls, TheRightHandSideThatIsReadStaysTheOwnOne) {
  set("pbiSetAltRHSOne", 1, 4);
  turn("pbiAltRHSSet", 1);
  EXPECT_EQ(real("pbiGetRhsOne", 1), 2) << "a shift that is made twice starts from the same place";
  turn("pbiAltRHSSet", 0);
  EXPECT_EQ(real("pbiGetRhsOne", 1), 2);
}

TEST_F(PeerCalls, LevelsAndRecordsAreWrittenAndRead) {
  set("pbiSetVarLOne", kXb, 2.5);
  EXPECT_EQ(real("pbiGetVarLOne", kXb), 2.5);
  set("pbiSetEquLOne", 3, 8.5);
  EXPECT_EQ(real("pbiGetEquLOne", 3), 8.5);
  const Record written{1.5, -2.5, 1, 2};
  setRecord("pbiSetSolutionVarRec", kXa, written);
  EXPECT_TRUE(record("pbiGetSolutionVarRec", kXa) == written);
  EXPECT_EQ(whole("pbiGetVarStatOne", kXa), 1);
  EXPECT_EQ(whole("pbiGetVarCStatOne", kXa), 2);
  EXPECT_THAT(all("pbiGetVarL", 3), ElementsAre(1.5, 2.5, 1));
  EXPECT_THAT(all("pbiGetVarM", 3), ElementsAre(-2.5, 0, 0));
  setRecord("pbiSetSolutionEquRec", 2, written);
  EXPECT_TRUE(record("pbiGetSolutionEquRec", 2) == written);
  EXPECT_EQ(whole("pbiGetEquStatOne", 2), 1);
  EXPECT_EQ(whole("pbiGetEquCStatOne", 2), 2);
  EXPECT_THAT(all("pbiGetEquL", 4), ElementsAre(0, 0, 1.5, 8.5));
  EXPECT_THAT(all("pbiGetEquM", 4), ElementsAre(0, 0, -2.5, 0));
}

TEST_F(PeerCalls, NumbersOutOfRangeGiveZerosAndChangeNothing) {
  const std::vector<double> levels = all("pbiGetVarL", 3);
  const std::vector<double> rows = all("pbiGetEquL", 4);
  const Record none{0, 0, 0, 0};
  for (const int rc : {-1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    for (const char* name : {"pbiSetVarLOne", "pbiSetEquLOne", "pbiSetAltVarLowerOne",
                             "pbiSetAltVarUpperOne", "pbiSetAltRHSOne"}) {
      set(name, rc, 3);
    }
    setRecord("pbiSetSolutionVarRec", rc, {3, 3, 3, 3});
    setRecord("pbiSetSolutionEquRec", rc, {3, 3, 3, 3});
    for (const char* name : {"pbiGetVarLOne", "pbiGetEquLOne", "pbiGetVarLowerOne",
                             "pbiGetVarUpperOne", "pbiGetRhsOne"}) {
      EXPECT_EQ(real(name, rc), 0) << name << " " << rc;
    }
    for (const char* name : {"pbiGetVarStatOne", "pbiGetVarCStatOne", "pbiGetEquStatOne",
                             "pbiGetEquCStatOne", "pbiGetEquTypeOne"}) {
      EXPECT_EQ(whole(name, rc), 0) << name << " " << rc;
    }
    EXPECT_TRUE(record("pbiGetSolutionVarRec", rc) == none) << rc;
    EXPECT_TRUE(record("pbiGetSolutionEquRec", rc) == none) << rc;
  }
  EXPECT_EQ(all("pbiGetVarL", 3), levels);
  EXPECT_EQ(all("pbiGetEquL", 4), rows);
}

TEST_F(PeerCalls, AViewIsSpentByItsRestoreAndMayBeLeftUnrestored) {
  set("pbiSetAltVarUpperOne", kXa, 2);
  turn("pbiAltBoundsSet", 1);
  void* view = lib_.call<void*(void*)>("pbiViewStore", pbi_);
  void* lost = lib_.call<void*(void*)>("pbiViewStore", pbi_);
  ASSERT_NE(view, nullptr);
  EXPECT_NE(view, lost);
  turn("pbiAltBoundsSet", 0);
  void* same = view;
  lib_.call<void(void*, void**)>("pbiViewRestore", pbi_, &view);
  EXPECT_EQ(view, nullptr);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXa), 2);
  turn("pbiAltBoundsSet", 0);
  lib_.call<void(void*, void**)>("pbiViewRestore", pbi_, &same);
  EXPECT_EQ(real("pbiGetVarUpperOne", kXa), 4) << "it was spent";
}

TEST_F(PeerCalls, ALinearModelIsShiftedByNothing) {
  std::vector<double> delta(4, -99);
  int errors = 0;
  lib_.call<int(void*, double*, int, int*)>("pbiEvalGradNLUpdate", pbi_, delta.data(), 1, &errors);
  EXPECT_THAT(delta, ElementsAre(0, 0, 0, 0));
  EXPECT_EQ(errors, 0);
}

TEST_F(PeerCalls, StatusesAreWhatIsSet) {
  turn("pbiModelStatSet", 6);
  turn("pbiSolveStatSet", 3);
  EXPECT_EQ(ztbModelStatus(model_), 6);
  EXPECT_EQ(ztbModelSolveStatus(model_), 3);
}

TEST(PeerNull, AModelThatIsNoneHasNoDictionary) {
  const PeerLibrary& lib = modelLibrary();
  EXPECT_EQ(lib.call<void*(void*)>("pbiDict", static_cast<void*>(nullptr)), nullptr);
  EXPECT_EQ(lib.call<void*(void*)>("pbiEnvironment", static_cast<void*>(nullptr)), nullptr);
  lib.call<void(void*, double)>("pbiPinfSet", static_cast<void*>(nullptr), kInf);
  lib.call<void(void*, double)>("pbiMinfSet", static_cast<void*>(nullptr), -kInf);
}

}  // namespace
}  // namespace modeltest
