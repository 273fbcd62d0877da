// Models written as LP and MPS, which have to read back as the same models.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "providers/model/model_error.h"
#include "providers/model/model_file.h"
#include "providers/model/model_writer.h"
#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

using lomu::ColumnKind;
using lomu::kInfinity;
using lomu::ModelData;
using lomu::RowData;
using lomu::RowType;

std::uint64_t bits(double number) {
  return std::bit_cast<std::uint64_t>(number);
}

std::pair<double, double> boundsOf(const RowData& row) {
  switch (row.type) {
    case RowType::equal:
      return {row.rhs, row.rhs};
    case RowType::greaterOrEqual:
      return {row.rhs, row.range == 0 ? kInfinity : row.rhs + row.range};
    case RowType::lessOrEqual:
      return {row.range == 0 ? -kInfinity : row.rhs - row.range, row.rhs};
    default:
      return {-kInfinity, kInfinity};
  }
}

// Coefficients by row and columns; zeros do not count.
std::map<std::tuple<int, int, int>, double> coefficients(const ModelData& model) {
  std::map<std::tuple<int, int, int>, double> values;
  for (const auto& term : model.terms) values[{term.row, term.column, -1}] += term.value;
  for (const auto& product : model.products) {
    const auto [first, second] = std::minmax(product.column1, product.column2);
    values[{product.row, first, second}] += product.value;
  }
  std::erase_if(values, [](const auto& entry) { return entry.second == 0; });
  return values;
}

// Same names in the same order, same kinds, and every number the same to the last bit.
void expectSame(const ModelData& model, const ModelData& other, const std::string& what) {
  EXPECT_EQ(model.maximize, other.maximize) << what;
  EXPECT_EQ(bits(model.objectiveConstant), bits(other.objectiveConstant)) << what;
  ASSERT_EQ(model.columns.size(), other.columns.size()) << what;
  for (std::size_t j = 0; j < model.columns.size(); ++j) {
    const auto& a = model.columns[j];
    const auto& b = other.columns[j];
    ASSERT_EQ(a.name, b.name) << what;
    EXPECT_EQ(a.kind, b.kind) << what << " " << a.name;
    EXPECT_EQ(a.semiContinuous, b.semiContinuous) << what << " " << a.name;
    EXPECT_EQ(bits(a.lower), bits(b.lower)) << what << " " << a.name;
    EXPECT_EQ(bits(a.upper), bits(b.upper)) << what << " " << a.name;
  }
  ASSERT_EQ(model.rows.size(), other.rows.size()) << what;
  for (std::size_t i = 0; i < model.rows.size(); ++i) {
    ASSERT_EQ(model.rows[i].name, other.rows[i].name) << what;
    const auto a = boundsOf(model.rows[i]);
    const auto b = boundsOf(other.rows[i]);
    EXPECT_EQ(bits(a.first), bits(b.first)) << what << " " << model.rows[i].name;
    EXPECT_EQ(bits(a.second), bits(b.second)) << what << " " << model.rows[i].name;
  }
  const auto a = coefficients(model);
  const auto b = coefficients(other);
  ASSERT_EQ(a.size(), b.size()) << what;
  for (auto entry = a.begin(), same = b.begin(); entry != a.end(); ++entry, ++same) {
    ASSERT_EQ(entry->first, same->first) << what;
    EXPECT_EQ(bits(entry->second), bits(same->second)) << what;
  }
  ASSERT_EQ(model.sets.size(), other.sets.size()) << what;
  for (std::size_t s = 0; s < model.sets.size(); ++s) {
    EXPECT_EQ(modelfiles::setText(model, s), modelfiles::setText(other, s)) << what;
  }
}

class ModelWriting : public testing::Test {
 protected:
  ModelData again(const ModelData& model, const std::string& ending) {
    const std::string file = folder_.file("w" + ending);
    lomu::writeModelFile(model, file);
    ModelData read = lomu::readModelFile(file, "");
    EXPECT_EQ("", modelfiles::notesText(read));
    return read;
  }

  std::string refusal(const ModelData& model, const std::string& name) {
    try {
      lomu::writeModelFile(model, folder_.file(name));
    } catch (const lomu::ModelError& error) {
      return error.what();
    }
    return "not refused";
  }

  ztbtest::TempFolder folder_;
};

ModelData everything() {
  ModelData model = modelfiles::lp(
      "max cost: 0.1 x - 3 y + 1e-7 z[a,'b'] + [ 3 x^2 - 0.2 x*y ] / 2 + 7.25\n"
      "st\n up: x + y <= 0.30000000000000004\n low: x - y >= -2.5\n eq: 3 z[a,'b'] - x = 1e20\n"
      " two: -1 <= x + z[a,'b'] <= 5\n none: -inf <= x + y <= inf\n q: x + [ 0.3 x*y - y^2 ] <= 4\n"
      " empty: 0 >= -1\nbounds\n -inf <= x <= 3\n y >= -2.5\n z[a,'b'] free\n i <= 9\n -4 <= k <= "
      "-4\n"
      " n <= -1\n 2 <= s <= 8\n m >= -inf\n m <= 4\n"
      "generals\n i j k p\nbinaries\n b f\nbounds\n f = 0\n p >= 1\nsemi-continuous\n s\n"
      "sos\n one: S1 :: x:1 y:2.5\n two: S2 :: i:-1 j:0 k:3\n");
  model.notes.clear();
  return model;
}

// 5 - 3.2 is not 1.8, though 1.8 + 3.2 is 5.
TEST_F(ModelWriting, rangesFromBelowKeepBothSides) {
  ModelData model = modelfiles::lp("min x\nst\nr: x >= 1.8\ns: x >= 1");
  model.rows[1].range = 3.2;
  model.rows[2].range = 1e20;
  expectSame(model, again(model, ".lp"), "lp");
  expectSame(model, again(model, ".mps"), "mps");
}

TEST_F(ModelWriting, everythingReadsBackFromLp) {
  const ModelData model = everything();
  expectSame(model, again(model, ".lp"), "lp");
}

TEST_F(ModelWriting, everythingReadsBackFromMps) {
  const ModelData model = everything();
  expectSame(model, again(model, ".mps"), "mps");
}

TEST_F(ModelWriting, rangesKeepTheirSideInMps) {
  ModelData model;
  model.columns = {{"x"}};
  model.rows.push_back({"g", RowType::greaterOrEqual, 0.1, 0.7});
  model.rows.push_back({"l", RowType::lessOrEqual, 0.1, 0.7});
  model.terms = {{1, 0, 1}, {2, 0, 1}};
  const ModelData read = again(model, ".mps");
  EXPECT_EQ(RowType::greaterOrEqual, read.rows.at(1).type);
  EXPECT_EQ(bits(0.7), bits(read.rows.at(1).range));
  EXPECT_EQ(RowType::lessOrEqual, read.rows.at(2).type);
  EXPECT_EQ(bits(0.1), bits(read.rows.at(2).rhs));
}

// Columns that stand in no row, and an order that the rows do not have.
TEST_F(ModelWriting, columnsKeepTheirOrder) {
  ModelData model;
  model.columns = {{"a"}, {"b"}, {"c"}, {"d"}};
  model.rows.push_back({"r", RowType::lessOrEqual, 4, 0});
  model.terms = {{0, 3, 2}, {1, 2, 1}, {1, 0, 1}};
  for (const std::string ending : {".lp", ".mps"}) expectSame(model, again(model, ending), ending);
}

TEST_F(ModelWriting, contradictingBoundsReadBack) {
  const ModelData model = modelfiles::lp("min x\nst\nc: 5 <= x <= 3\nbounds\n4 <= y <= 2");
  expectSame(model, again(model, ".lp"), "lp");
  EXPECT_EQ(
      folder_.file("w.mps") +
          ": the bounds of row \"c\" contradict each other, which an MPS file cannot hold; an LP "
          "file may",
      refusal(model, "w.mps"));
}

TEST_F(ModelWriting, namesThatAFormatCannotHoldAreChangedAndReadBack) {
  ModelData model;
  for (const char* name : {"2x", "_2x", "End", "free", "inf", "subject", "a b", "a_b", "x[", "x]",
                           "...1", "m-n", "buy('Wheat Flour')"}) {
    model.columns.push_back({name});
  }
  model.rows.push_back({"3", RowType::greaterOrEqual, 1, 0});
  model.rows.push_back({"a b", RowType::greaterOrEqual, 1, 0});
  model.terms = {{0, 0, 1}, {1, 0, 2}, {2, 6, 3}};
  model.sets = {{"4", 1, {{0, 1}, {1, 2}}}};
  const std::string file = folder_.file("w.lp");
  EXPECT_EQ(lomu::writeModelFile(model, file),
            file +
                ": 13 names cannot stand in an LP file and were changed: \"2x\" as \"_2x_2\" "
                "first; comments at its beginning tell all");
  expectSame(model, lomu::readModelFile(file, ""), "lp");
  EXPECT_EQ(lomu::readModelFile(file, "").rows[2].name, "a b");
  // Without the comments no two names are one.
  std::ifstream in(file);
  std::string text(std::istreambuf_iterator<char>(in), {});
  EXPECT_TRUE(text.starts_with("\\ ztb: column _2x_2 was 2x\n")) << text;
  text.erase(0, text.find("Minimize"));
  modelfiles::writeFile(folder_.file("bare.lp"), text);
  const ModelData bare = lomu::readModelFile(folder_.file("bare.lp"), "");
  ASSERT_EQ(bare.columns.size(), 13);
  EXPECT_EQ(bare.columns[1].name, "_2x");
  EXPECT_EQ(bare.columns[2].name, "_End");
  EXPECT_EQ(bare.columns[6].name, "a_b_2");

  const std::string mps = folder_.file("w.mps");
  EXPECT_EQ(lomu::writeModelFile(model, mps),
            mps +
                ": 4 names cannot stand in an MPS file and were changed: \"a b\" as \"a_b_2\" "
                "first; comments at its beginning tell all");
  expectSame(model, lomu::readModelFile(mps, ""), "mps");
  std::ifstream packed(mps);
  const std::string written(std::istreambuf_iterator<char>(packed), {});
  EXPECT_THAT(written,
              testing::HasSubstr("* ztb: column buy('Wheat_Flour') was buy('Wheat Flour')\n"));
}

TEST_F(ModelWriting, commentsOnNamesThatDoNotFitChangeNothing) {
  const std::string file = folder_.file("w.lp");
  const std::string body = "min\n o: _1 + _2\nst\n c: _1 + _2 >= 1\nend\n";
  for (const char* comment :
       {"\\ ztb: column _1 was _2\n", "\\ ztb: column _1\n", "\\ ztb: \n",
        "\\ ztb: column  was 3\n", "\\ ztb: column other was 3\n", "\\ ztb: column _1 was a\rb\n",
        "\\ other\n\\ ztb: column _1 was 3\n", "\n\\ ztb: column _1 was 3\n"}) {
    modelfiles::writeFile(file, comment + body);
    const ModelData model = lomu::readModelFile(file, "");
    EXPECT_EQ(model.columns[0].name, "_1") << comment;
    EXPECT_EQ(model.columns[1].name, "_2") << comment;
  }
  modelfiles::writeFile(file, "\\ ztb: column _1 was 1\n" + body);
  EXPECT_EQ(lomu::readModelFile(file, "").columns[0].name, "1");
}

#ifdef ZTB_NETLIB
// Other programs read what is written, and find the published optima.
TEST_F(ModelWriting, otherProgramsReadChangedNames) {
  for (const auto& [name, optimum] : {std::pair{"adlittle", 225494.963}, {"shell", 1208825346.}}) {
    const ModelData model = lomu::readModelFile(std::string(ZTB_NETLIB) + "/" + name + ".mps", "");
    const std::string file = folder_.file(std::string(name) + ".lp");
    EXPECT_THAT(lomu::writeModelFile(model, file),
                testing::HasSubstr("names cannot stand in an LP file"));
    const std::string told = modelfiles::outputOf(ZTB_CBC " " + file + " solve 2>&1");
    const std::size_t place = told.find("Optimal objective ");
    ASSERT_NE(place, std::string::npos) << told;
    EXPECT_NEAR(std::stod(told.substr(place + 18)), optimum, optimum * 1e-6);
    const std::string glpsol =
        modelfiles::outputOf(ZTB_GLPSOL " --lp " + file + " -o /dev/stdout 2>&1");
    const std::size_t objective = glpsol.find(" = ", glpsol.find("Objective:"));
    ASSERT_NE(objective, std::string::npos) << glpsol;
    EXPECT_NEAR(std::stod(glpsol.substr(objective + 3)), optimum, optimum * 1e-6);
  }
}
#endif

TEST_F(ModelWriting, numbersThatFilesTakeForInfiniteAreRefused) {
  ModelData model;
  model.columns = {{"x"}};
  model.terms = {{0, 0, 1e30}};
  const std::string file = folder_.file("w.lp");
  EXPECT_EQ(
      file +
          ": a coefficient of row \"objective\" is 1e+30, which model files take for infinite; "
          "expected a size below 1e30",
      refusal(model, "w.lp"));
}

TEST_F(ModelWriting, boundsThatFilesTakeForInfiniteAreRefused) {
  ModelData model;
  for (const char* name : {"w.lp", "w.mps"}) {
    const std::string file = folder_.file(name);
    model.columns = {{"x", ColumnKind::continuous, 0, 1e31}};
    EXPECT_EQ(
        file +
            ": the upper bound of column \"x\" is 1e+31, which model files take for infinite; "
            "expected a size below 1e30",
        refusal(model, name));
    model.columns = {{"x", ColumnKind::continuous, -1e30, 5}};
    EXPECT_EQ(file +
                  ": the lower bound of column \"x\" is -1e+30, which model files take for "
                  "infinite; expected a size below 1e30",
              refusal(model, name));
  }
}

TEST_F(ModelWriting, semiContinuousUpToNothingIsRefusedForMps) {
  ModelData model;
  model.columns = {{"x", ColumnKind::continuous, -2, 0, true}};
  EXPECT_EQ(
      folder_.file("w.mps") +
          ": the semi-continuous column \"x\" has the upper bound 0, which an MPS file takes for "
          "none; an LP file may hold it",
      refusal(model, "w.mps"));
  expectSame(model, again(model, ".lp"), "lp");
}

TEST_F(ModelWriting, aRefusedModelLeavesTheFileAndNothingBesideIt) {
  modelfiles::writeFile(folder_.file("w.lp"), "old");
  ModelData model;
  model.terms = {{0, 0, 1e30}};
  model.columns = {{"x"}};
  refusal(model, "w.lp");
  std::ifstream in(folder_.file("w.lp"));
  EXPECT_EQ("old", std::string(std::istreambuf_iterator<char>(in), {}));
  EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder_.path()), {}));
}

TEST_F(ModelWriting, placesThatCannotBeWrittenAreTold) {
  const std::string file = folder_.file("no/w.lp");
  EXPECT_EQ(file + ": No such file or directory, expected a file that can be written",
            refusal(ModelData(), "no/w.lp"));
  EXPECT_EQ(folder_.file("w.txt") + ": unknown ending, expected .lp or .mps",
            refusal(ModelData(), "w.txt"));
  EXPECT_EQ(folder_.file("w.lp.gz") + ": unknown ending, expected .lp or .mps",
            refusal(ModelData(), "w.lp.gz"));
}

TEST_F(ModelWriting, examplesReadBack) {
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(ZTB_EXAMPLES)) {
    const std::string file = entry.path().string();
    if (!file.ends_with(".lp") && !file.ends_with(".mps")) continue;
    const ModelData model = lomu::readModelFile(file, "");
    expectSame(model, again(model, ".lp"), file);
    ++count;
    expectSame(model, again(model, ".mps"), file);
  }
  EXPECT_LT(0, count);
}

#ifdef ZTB_NETLIB
TEST_F(ModelWriting, netlibProblemsReadBack) {
  for (const std::string name : {"adlittle", "afiro", "israel", "scrs8", "shell", "stair"}) {
    const ModelData model = lomu::readModelFile(std::string(ZTB_NETLIB) + "/" + name + ".mps", "");
    expectSame(model, again(model, ".mps"), name);
    expectSame(model, again(model, ".lp"), name);
  }
}
#endif

}  // namespace
