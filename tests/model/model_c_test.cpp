// The C functions of ztb/model.h: building, options, refusals.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ztb/model.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <string>

#include "tests/support/library_name.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

class ModelC : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ztbModelCreate(&model_, nullptr, 0), 1); }
  void TearDown() override {
    ztbModelFree(&model_);
    EXPECT_EQ(model_, nullptr);
  }
  [[nodiscard]] std::string message() const { return ztbModelMessage(model_); }

  ztbModel* model_ = nullptr;
};

TEST_F(ModelC, NumbersColumnsFromZeroAndRowsFromOne) {
  EXPECT_EQ(ztbModelAddColumn(model_, "x", ztbColumnContinuous, 0, kInf), 0);
  EXPECT_EQ(ztbModelAddColumn(model_, "y", ztbColumnBinary, 0, 1), 1);
  EXPECT_EQ(ztbModelAddRow(model_, "limit", ztbRowLessOrEqual, 4, 0), 1);
  EXPECT_EQ(ztbModelAddRow(model_, "need", ztbRowGreaterOrEqual, 1, 2), 2);
  EXPECT_EQ(ztbModelAddTerm(model_, 1, 0, 2), 1);
  EXPECT_EQ(ztbModelAddProduct(model_, 0, 0, 1, 2), 1);
  EXPECT_NE(ztbModelPbi(model_), nullptr);
  EXPECT_EQ(ztbModelPbi(model_), ztbModelPbi(model_));
}

// max 3 a + 2 b + c with a + b <= 4, where a is 0 or from 3 to 9 and b and c cannot both be used:
// a = 4 and c = 5 give 17; a from 2.5 on, as an integer from 3 on, the same.
TEST_F(ModelC, TakesSemiContinuousColumnsAndOrderedSets) {
  ASSERT_EQ(ztbModelSetObjective(model_, "worth", 1, 0), 1);
  ASSERT_EQ(ztbModelAddColumn(model_, "a", ztbColumnSemiContinuous, 3, 9), 0);
  ASSERT_EQ(ztbModelAddColumn(model_, "b", ztbColumnContinuous, 0, 5), 1);
  ASSERT_EQ(ztbModelAddColumn(model_, "c", ztbColumnSemiInteger, 4.5, 5.5), 2);
  ASSERT_EQ(ztbModelAddRow(model_, "limit", ztbRowLessOrEqual, 4, 0), 1);
  for (int j = 0; j < 3; ++j) ztbModelAddTerm(model_, 0, j, 3 - j);
  for (int j = 0; j < 2; ++j) ztbModelAddTerm(model_, 1, j, 1);
  const std::vector<int> columns{1, 2};
  const std::vector<double> weights{1, 2};
  ASSERT_EQ(ztbModelAddSet(model_, "one", 1, 2, columns.data(), weights.data()), 1) << message();
  ztbModelSize size;
  ASSERT_EQ(ztbModelGetSize(model_, &size), 1);
  EXPECT_EQ(size.semiContinuous, 2);
  EXPECT_EQ(size.sets, 1);
  ASSERT_EQ(ztbModelSolve(model_, "cbc"), 1) << message();
  EXPECT_NEAR(ztbModelObjective(model_), 17, 1e-9);
}

TEST_F(ModelC, RefusesSetsThatAreNone) {
  ztbModelAddColumn(model_, "a", ztbColumnContinuous, 0, 1);
  ztbModelAddColumn(model_, "b", ztbColumnContinuous, 0, 1);
  const auto refusal = [&](int kind, const std::vector<int>& columns,
                           const std::vector<double>& weights, const char* name = "s") {
    EXPECT_EQ(ztbModelAddSet(model_, name, kind, static_cast<int>(columns.size()), columns.data(),
                             weights.data()),
              0);
    return message();
  };
  EXPECT_EQ(refusal(3, {0, 1}, {1, 2}), "set \"s\": the kind is 1 or 2, not 3");
  EXPECT_EQ(refusal(1, {}, {}), "set \"s\" has no member, expected one at least");
  EXPECT_EQ(refusal(1, {0, 2}, {1, 2}), "there is no column 2, the model has 2");
  EXPECT_EQ(refusal(1, {0, 1}, {1, kInf}),
            "set \"s\": the weight of \"b\" has to be a finite number");
  EXPECT_EQ(refusal(1, {0, 1}, {1, 1}), "set \"s\": \"b\" or its weight stands twice");
  EXPECT_EQ(refusal(1, {0, 0}, {1, 2}), "set \"s\": \"a\" or its weight stands twice");
  EXPECT_EQ(refusal(1, {0}, {1}, ""), "a set needs a name");
  EXPECT_EQ(ztbModelAddSet(model_, "s", 1, 1, nullptr, nullptr), 0);
  EXPECT_EQ(message(), "a set has columns and weights, as many as are told");
  ztbModelSize size;
  ASSERT_EQ(ztbModelGetSize(model_, &size), 1);
  EXPECT_EQ(size.sets, 0);
}

TEST_F(ModelC, IsDrivenByStatements) {
  EXPECT_EQ(ztbModelAddColumn(model_, "buy[Milk]", ztbColumnContinuous, 0, kInf), 0);
  EXPECT_EQ(ztbModelAddRow(model_, "need", ztbRowGreaterOrEqual, 4, 0), 1);
  EXPECT_EQ(ztbModelAddTerm(model_, 1, 0, 2), 1);
  EXPECT_EQ(ztbModelDrive(model_, nullptr), 0);
  EXPECT_EQ(message(), "a drive needs a statement");
  EXPECT_EQ(ztbModelDrive(model_, "price(food) = cost of sell"), 0);
  EXPECT_EQ(message(),
            "drive \"price(food) = cost of sell\": the model has no variable sell; its variables "
            "are: buy");
  EXPECT_EQ(ztbModelDrive(model_, "price(food) = cost of buy"), 1);
  EXPECT_EQ(ztbModelAddColumn(model_, "x", ztbColumnContinuous, 0, 1), -1);
  EXPECT_EQ(message(), "the model is driven by symbols and cannot be built further");
  EXPECT_NE(ztbModelPbi(model_), nullptr);
  EXPECT_EQ(ztbModelDrive(model_, "need = rhs of need"), 0);
  EXPECT_EQ(message(),
            "the model is in use and can be driven by no further symbols; say what they drive "
            "before");
  EXPECT_EQ(ztbModelDrive(nullptr, "need = rhs of need"), 0);
}

TEST_F(ModelC, HasNoConflictBeforeOneWasFound) {
  EXPECT_EQ(ztbModelExplain(model_, 1), 0);
  EXPECT_EQ(message(), "the model was not solved yet");
  EXPECT_EQ(ztbModelConflictCount(model_), 0);
  EXPECT_STREQ(ztbModelConflictText(model_, 0), "");
  int part = -1;
  int number = -1;
  EXPECT_EQ(ztbModelConflictMember(model_, 0, &part, &number), 0);
  EXPECT_EQ(part, -1);
  EXPECT_EQ(ztbModelConflictIsIrreducible(model_), 0);
  EXPECT_EQ(ztbModelConflictIsByIntegers(model_), 0);
  EXPECT_EQ(ztbModelConflictCount(nullptr), 0);
}

TEST_F(ModelC, RefusesColumnsThatCannotBe) {
  EXPECT_EQ(ztbModelAddColumn(model_, "", 0, 0, 1), -1);
  EXPECT_EQ(message(), "a column needs a name");
  EXPECT_EQ(ztbModelAddColumn(model_, nullptr, 0, 0, 1), -1);
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 5, 0, 1), -1);
  EXPECT_EQ(message(), "column \"x\": the kind is from 0 to 4, not 5");
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 0, std::nan(""), 1), -1);
  EXPECT_EQ(message(), "column \"x\": a bound is no number, or no point is within bounds");
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 0, kInf, kInf), -1);
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 0, -kInf, -kInf), -1);
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 0, 0, 1), 0);
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 0, 0, 1), -1);
  EXPECT_EQ(message(), "column \"x\" stands twice");
  EXPECT_EQ(ztbModelAddColumn(model_, "y", 0, 0, 1), 1);
}

TEST_F(ModelC, RefusesRowsThatCannotBe) {
  EXPECT_EQ(ztbModelAddRow(model_, "", 0, 0, 0), -1);
  EXPECT_EQ(message(), "a row needs a name");
  EXPECT_EQ(ztbModelAddRow(model_, "r", 4, 0, 0), -1);
  EXPECT_EQ(message(), "row \"r\": the type is 0, 1, 2 or 3, not 4");
  EXPECT_EQ(ztbModelAddRow(model_, "r", 0, kInf, 0), -1);
  EXPECT_EQ(message(), "the right-hand side of row \"r\" has to be a finite number");
  EXPECT_EQ(ztbModelAddRow(model_, "r", ztbRowLessOrEqual, 0, kInf), -1);
  EXPECT_EQ(ztbModelAddRow(model_, "r", ztbRowEqual, 0, 1), -1);
  EXPECT_EQ(message(), "row \"r\": a range is 0, or any finite number for a >= or <= row");
  EXPECT_EQ(ztbModelAddRow(model_, "objective", 0, 0, 0), -1);
  EXPECT_EQ(message(), "row \"objective\" stands twice");
}

TEST_F(ModelC, RefusesTermsOutsideTheModel) {
  ztbModelAddColumn(model_, "x", 0, 0, 1);
  EXPECT_EQ(ztbModelAddTerm(model_, 1, 0, 1), 0);
  EXPECT_EQ(message(), "there is no row 1, the model has 1");
  EXPECT_EQ(ztbModelAddTerm(model_, 0, 1, 1), 0);
  EXPECT_EQ(message(), "there is no column 1, the model has 1");
  EXPECT_EQ(ztbModelAddTerm(model_, 0, 0, kInf), 0);
  EXPECT_EQ(message(), "a coefficient has to be a finite number");
  EXPECT_EQ(ztbModelAddProduct(model_, -1, 0, 0, 1), 0);
  EXPECT_EQ(message(), "there is no row -1, the model has 1");
  EXPECT_EQ(ztbModelAddProduct(model_, 0, 0, 7, 1), 0);
  EXPECT_EQ(message(), "there is no column 7, the model has 1");
  EXPECT_EQ(ztbModelAddProduct(model_, 0, 0, 0, std::nan("")), 0);
}

TEST_F(ModelC, NamesTheObjective) {
  EXPECT_EQ(ztbModelSetObjective(model_, "cost", 0, 1), 1);
  EXPECT_EQ(ztbModelAddRow(model_, "objective", 0, 0, 0), 1) << "its old name is free";
  EXPECT_EQ(ztbModelSetObjective(model_, "objective", 0, 1), 0);
  EXPECT_EQ(message(), "row \"objective\" stands twice");
  EXPECT_EQ(ztbModelSetObjective(model_, nullptr, 0, 1), 0);
  EXPECT_EQ(message(), "the objective needs a name");
  EXPECT_EQ(ztbModelSetObjective(model_, "cost", 0, kInf), 0);
  EXPECT_EQ(message(), "the objective's constant has to be a finite number");
}

TEST_F(ModelC, CannotBeBuiltFurtherOnceInUse) {
  ASSERT_NE(ztbModelPbi(model_), nullptr);
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 0, 0, 1), -1);
  EXPECT_EQ(message(), "the model is in use and cannot be built further");
  EXPECT_EQ(ztbModelSetObjective(model_, "cost", 0, 1), 0);
}

TEST_F(ModelC, HasNoSolutionBeforeASolve) {
  EXPECT_EQ(ztbModelStatus(model_), ztbModelNoSolution);
  EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveFailed);
  ASSERT_NE(ztbModelPbi(model_), nullptr);
  EXPECT_EQ(ztbModelStatus(model_), ztbModelNoSolution);
  EXPECT_EQ(ztbModelIterations(model_), 0);
}

TEST_F(ModelC, TellsItsKind) {
  ztbModelAddColumn(model_, "x", ztbColumnInteger, 0, 1);
  ztbModelAddProduct(model_, 0, 0, 0, 1);
  EXPECT_EQ(ztbModelKind(model_), 0);
  EXPECT_EQ(ztbModelUpdatedKind(model_), 0);
  ASSERT_NE(ztbModelPbi(model_), nullptr);
  EXPECT_EQ(ztbModelKind(model_), ztbKindMixedIntegerQuadratic);
  EXPECT_EQ(ztbModelUpdatedKind(model_), ztbKindMixedIntegerQuadratic);
}

TEST_F(ModelC, RefusesABinaryColumnBeyondZeroAndOne) {
  EXPECT_EQ(ztbModelAddColumn(model_, "b", ztbColumnBinary, 0, 10), -1);
  EXPECT_EQ(message(),
            "column \"b\" is binary but has bounds beyond 0 and 1, expected bounds within them");
  EXPECT_EQ(ztbModelAddColumn(model_, "b", ztbColumnBinary, -1, 1), -1);
  EXPECT_EQ(ztbModelAddColumn(model_, "b", ztbColumnBinary, 1, 1), 0);
}

TEST_F(ModelC, TellsTheLastReason) {
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 9, 0, 1), -1);
  const std::string refusal = message();
  EXPECT_NE(refusal, "");
  ASSERT_NE(ztbModelPbi(model_), nullptr);
  EXPECT_EQ(message(), refusal);
  EXPECT_EQ(ztbModelAddColumn(model_, "x", 0, 0, 1), -1);
  EXPECT_EQ(message(), "the model is in use and cannot be built further");
}

TEST_F(ModelC, PassesOptions) {
  std::array<char, 64> value{};
  EXPECT_EQ(ztbModelSetOption(model_, "TimeLimit", "3"), 1);
  EXPECT_EQ(ztbModelGetOption(model_, "timelimit", value.data(), 64), 1);
  EXPECT_STREQ(value.data(), "3");
  EXPECT_EQ(ztbModelSetOption(model_, "TimeLimit", "-3"), 0);
  EXPECT_THAT(message(), testing::StartsWith("option \"TimeLimit\" takes a number"));
  EXPECT_EQ(ztbModelGetOption(model_, "No", value.data(), 64), 0);
  EXPECT_EQ(ztbModelSetOption(model_, nullptr, "3"), 0);
  EXPECT_EQ(message(), "an option needs a name and a value");
  EXPECT_EQ(ztbModelGetOption(model_, "NameSysDir", value.data(), 3), 1);
  EXPECT_EQ(std::string(value.data()).size(), 2U) << "cut to the buffer";
}

TEST_F(ModelC, TellsChangedNames) {
  ztbModelAddColumn(model_, "x.1", 0, 0, 1);
  EXPECT_EQ(ztbModelNoteCount(model_), 0);
  ASSERT_NE(ztbModelPbi(model_), nullptr);
  ASSERT_EQ(ztbModelNoteCount(model_), 1);
  EXPECT_STREQ(ztbModelNote(model_, 0), "variable \"x.1\" of dimension 0 is called \"x_1\"");
  EXPECT_STREQ(ztbModelNote(model_, 1), "");
  EXPECT_STREQ(ztbModelNote(model_, -1), "");
}

// 3 x[a] + 0.5 x[b] with x[a] + 4 x[b] <= 7 and a product of the two.
TEST_F(ModelC, TellsItsSizeAndFamilies) {
  ztbModelAddColumn(model_, "x[a]", ztbColumnContinuous, 0, 20);
  ztbModelAddColumn(model_, "x[b]", ztbColumnInteger, -2, kInf);
  ztbModelAddRow(model_, "limit", ztbRowLessOrEqual, 7, 0);
  ztbModelAddTerm(model_, 0, 0, 3);
  ztbModelAddTerm(model_, 0, 1, 0.5);
  ztbModelAddTerm(model_, 1, 0, 1);
  ztbModelAddTerm(model_, 1, 1, -4);
  ztbModelAddProduct(model_, 1, 0, 1, 8);
  ztbModelSize size{};
  ASSERT_EQ(ztbModelGetSize(model_, &size), 1) << message();
  EXPECT_EQ(size.columns, 2);
  EXPECT_EQ(size.integers, 1);
  EXPECT_EQ(size.binaries, 0);
  EXPECT_EQ(size.rows, 1);
  EXPECT_EQ(size.terms, 4);
  EXPECT_EQ(size.products, 1);
  EXPECT_EQ(size.families, 3);
  EXPECT_EQ(size.smallest, 0.5);
  EXPECT_EQ(size.largest, 8);
  ztbModelFamily family{};
  ASSERT_EQ(ztbModelGetFamily(model_, 0, &family), 1);
  EXPECT_STREQ(family.name, "x");
  EXPECT_EQ(family.isRow, 0);
  EXPECT_EQ(family.dimension, 1);
  EXPECT_EQ(family.count, 2);
  EXPECT_EQ(family.kind, -1);
  EXPECT_EQ(family.entries, 5);
  EXPECT_EQ(family.smallestSide, 2);
  EXPECT_EQ(family.largestSide, 20);
  ASSERT_EQ(ztbModelGetFamily(model_, 2, &family), 1);
  EXPECT_STREQ(family.name, "limit");
  EXPECT_EQ(family.isRow, 1);
  EXPECT_EQ(family.kind, ztbRowLessOrEqual);
  EXPECT_EQ(family.entries, 3);
  EXPECT_EQ(family.largest, 8);
  EXPECT_EQ(ztbModelGetFamily(model_, 3, &family), 0);
  EXPECT_EQ(message(), "there is no family 3, the model has 3");
  ztbModelAddColumn(model_, "y", ztbColumnContinuous, 0, 1);
  ASSERT_EQ(ztbModelGetSize(model_, &size), 1);
  EXPECT_EQ(size.families, 4) << "counted afresh when the model has changed";
  ASSERT_NE(ztbModelPbi(model_), nullptr);
  EXPECT_EQ(ztbModelGetSize(model_, &size), 0);
  EXPECT_EQ(message(), "the model is in use and cannot be described any more");
  EXPECT_EQ(ztbModelWrite(model_, "m.lp"), 0);
  EXPECT_EQ(message(), "the model is in use and cannot be written any more");
}

TEST_F(ModelC, WritesAFileThatOpens) {
  ztbModelAddColumn(model_, "x", ztbColumnContinuous, 0.1, 20);
  ztbModelAddTerm(model_, 0, 0, 3);
  const std::string file = testing::TempDir() + "ztb_model_c_test.mps";
  ASSERT_EQ(ztbModelWrite(model_, file.c_str()), 1) << message();
  ztbModel* read = nullptr;
  std::array<char, 256> text{};
  ASSERT_EQ(ztbModelOpen(&read, file.c_str(), nullptr, text.data(), 256), 1) << text.data();
  ztbModelFamily family{};
  EXPECT_EQ(ztbModelGetFamily(read, 0, &family), 1);
  EXPECT_EQ(family.smallestSide, 0.1);
  ztbModelFree(&read);
  std::remove(file.c_str());
  EXPECT_EQ(ztbModelWrite(model_, ""), 0);
  EXPECT_EQ(message(), "no file to write was named");
}

TEST(ModelCNotes, OfTheReadingComeBeforeThoseOfTheDictionary) {
  const std::string file = testing::TempDir() + "ztb_model_c_notes.lp";
  const std::string log = file + ".log";
  std::ofstream(file) << "min x.1\nend\nrest\n";
  ztbModel* model = nullptr;
  ASSERT_EQ(ztbModelOpen(&model, file.c_str(), nullptr, nullptr, 0), 1);
  ASSERT_EQ(ztbModelNoteCount(model), 1);
  const std::string note = file + ":3:1: what stands behind End is passed over";
  EXPECT_EQ(ztbModelNote(model, 0), note);
  ztbModelSetOption(model, "LogFile", log.c_str());
  ASSERT_NE(ztbModelPbi(model), nullptr);
  ASSERT_EQ(ztbModelNoteCount(model), 2);
  EXPECT_EQ(ztbModelNote(model, 0), note);
  EXPECT_STREQ(ztbModelNote(model, 1), "variable \"x.1\" of dimension 0 is called \"x_1\"");
  std::ifstream in(log);
  std::string line;
  std::getline(in, line);
  EXPECT_EQ(line, note);
  ztbModelFree(&model);
  std::remove(file.c_str());
  std::remove(log.c_str());
}

// x[a] >= 2 and x[b] >= 3, from outside; an LP file takes nothing.
TEST(ModelCFills, MarksWhatTheModelTakes) {
  const std::string file = testing::TempDir() + "ztb_model_c_fill.mod";
  std::ofstream(file)
      << "set I; param p{I};\nvar x{i in I} >= p[i];\nminimize o: sum{i in I} x[i];\n"
         "end;\n";
  const std::array<const char*, 2> labels{"a", "b"};
  const std::array<double, 2> values{2, 3};
  std::array<ztbModelFill, 3> fills{{{"I", 1, 1, 2, labels.data(), nullptr, 0},
                                     {"P", 0, 1, 2, labels.data(), values.data(), 0},
                                     {"q", 0, 1, 2, labels.data(), values.data(), 1}}};
  ztbModel* model = nullptr;
  std::array<char, 256> text{};
  ASSERT_EQ(ztbModelOpenFilled(&model, file.c_str(), nullptr, fills.data(), 3, text.data(), 256), 1)
      << text.data();
  EXPECT_EQ(fills[0].taken, 1);
  EXPECT_EQ(fills[1].taken, 1);
  EXPECT_EQ(fills[2].taken, 0);
  ztbModelFamily family{};
  EXPECT_EQ(ztbModelGetFamily(model, 0, &family), 1);
  EXPECT_EQ(family.count, 2);
  EXPECT_EQ(family.smallestSide, 2);
  EXPECT_EQ(family.largestSide, 3);
  ztbModelFree(&model);
  std::remove(file.c_str());
}

TEST(ModelCWithoutModel, RefusesQuietly) {
  EXPECT_EQ(ztbModelAddColumn(nullptr, "x", 0, 0, 1), -1);
  EXPECT_EQ(ztbModelPbi(nullptr), nullptr);
  EXPECT_EQ(ztbModelStatus(nullptr), ztbModelNoSolution);
  EXPECT_STREQ(ztbModelMessage(nullptr), "");
  ztbModelTerminate(nullptr);
  ztbModelFree(nullptr);
}

TEST(ModelCOpen, NamesWhatIsWrong) {
  std::array<char, 200> message{};
  ztbModel* model = nullptr;
  EXPECT_EQ(ztbModelOpen(&model, nullptr, nullptr, message.data(), 200), 0);
  EXPECT_STREQ(message.data(), "no model file was named");
  EXPECT_EQ(ztbModelOpen(nullptr, "x.lp", nullptr, message.data(), 200), 0);
  EXPECT_STREQ(message.data(), "there is no place for the model");
  EXPECT_EQ(ztbModelOpen(&model, "no/such.lp", nullptr, message.data(), 200), 0);
  EXPECT_THAT(message.data(), testing::StartsWith("no/such.lp: "));
  EXPECT_EQ(model, nullptr);
  std::array<char, 8> tiny{};
  EXPECT_EQ(ztbModelOpen(&model, "no/such.lp", nullptr, tiny.data(), 8), 0);
  EXPECT_STREQ(tiny.data(), "no/such");
}

TEST(CatalogueCheck, TellsFileAndLine) {
  std::array<char, 200> message{};
  EXPECT_EQ(ztbCatalogueCheck("no/such", message.data(), 200), 0);
  EXPECT_STREQ(message.data(), "no/such: the solver catalogue cannot be read or is empty");
  EXPECT_EQ(ztbCatalogueCheck(".", message.data(), 200), 0);
  EXPECT_STREQ(message.data(), ".: the solver catalogue cannot be read or is empty");
  EXPECT_EQ(ztbCatalogueCheck(nullptr, message.data(), 200), 0);
  EXPECT_STREQ(message.data(), "no catalogue file was named");
}

TEST(CatalogueSolver, TellsWhatThereIs) {
  std::array<char, 400> message{};
  EXPECT_EQ(ztbCatalogueSolver("no/such", "clp", message.data(), 400), 0);
  EXPECT_STREQ(message.data(), "no/such: the solver catalogue cannot be read or is empty");
  EXPECT_EQ(ztbCatalogueSolver(nullptr, "clp", message.data(), 400), 0);
  EXPECT_STREQ(message.data(), "no catalogue file was named");
  const ztbtest::TempFolder folder;
  const std::string file = folder.file("vltcmpNT.txt");
  std::ofstream(file) << "gone LP yes " ZTB_LIBRARY_NAME("ztbglpk") "\n";
  EXPECT_EQ(ztbCatalogueSolver(file.c_str(), nullptr, message.data(), 400), 0);
  EXPECT_STREQ(message.data(), "no solver was named");
  EXPECT_EQ(ztbCatalogueSolver(file.c_str(), "clp", message.data(), 400), 0);
  EXPECT_STREQ(message.data(), "the only solver is gone");
  EXPECT_EQ(ztbCatalogueSolver(file.c_str(), "GONE", message.data(), 400), 0);
  EXPECT_EQ(message.data(),
            "the solver cannot be opened: " + folder.file(ZTB_LIBRARY_NAME("ztbglpk")) +
                ": cannot open shared object file: No such file or directory "
                "(package ztb-solvers)");
  // One that is there, but not what it needs.
  std::ofstream(folder.file(ZTB_LIBRARY_NAME("ztbglpk"))) << "no library";
  EXPECT_EQ(ztbCatalogueSolver(file.c_str(), "gone", message.data(), 400), 0);
  EXPECT_THAT(message.data(), testing::EndsWith(" (package libglpk40)"));
  std::ofstream(file) << "clp LP yes " ZTB_LIBRARY_FOLDER
                         "/" ZTB_LIBRARY_NAME("ztbclp") "\nb LP no b.so\n";
  EXPECT_EQ(ztbCatalogueSolver(file.c_str(), "Clp", message.data(), 400), 1);
  EXPECT_STREQ(message.data(), "");
  EXPECT_EQ(ztbCatalogueSolver(file.c_str(), "x", message.data(), 400), 0);
  EXPECT_STREQ(message.data(), "the solvers are clp and b");
}

TEST(Texts, NameTheStatuses) {
  EXPECT_STREQ(ztbModelStatusText(ztbModelOptimal), "optimal");
  EXPECT_STREQ(ztbModelStatusText(ztbModelLocallyOptimal), "locally optimal");
  EXPECT_STREQ(ztbModelStatusText(ztbModelUnbounded), "unbounded");
  EXPECT_STREQ(ztbModelStatusText(ztbModelInfeasible), "infeasible");
  EXPECT_STREQ(ztbModelStatusText(ztbModelFeasible), "feasible");
  EXPECT_STREQ(ztbModelStatusText(ztbModelNoSolution), "no solution");
  EXPECT_STREQ(ztbModelSolveStatusText(ztbSolveNormal), "normal completion");
  EXPECT_STREQ(ztbModelSolveStatusText(ztbSolveIterationLimit), "iteration limit");
  EXPECT_STREQ(ztbModelSolveStatusText(ztbSolveTimeLimit), "time limit");
  EXPECT_STREQ(ztbModelSolveStatusText(ztbSolveTerminated), "terminated");
  EXPECT_STREQ(ztbModelSolveStatusText(ztbSolveFailed), "failed");
}

}  // namespace
