// What the data of a file leave in a model before it is solved, as a solver finds it there.
#include "tools/models/model_input.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <optional>
#include <ostream>
#include <string>

#include "tests/support/temp_folder.h"
#include "tools/models/model_session.h"
#include "tools/text/failure.h"

// Operations of the model library that its header leaves to the core.
extern "C" {
double pbiGetVarLowerOne(void* pbi, int column);
double pbiGetVarUpperOne(void* pbi, int column);
int pbiGetSolutionVarRec(void* pbi, int column, double* level, double* marginal, int* status,
                         int* secondStatus);
int pbiGetSolutionEquRec(void* pbi, int row, double* level, double* marginal, int* status,
                         int* secondStatus);
void pbiAltBoundsSet(void* pbi, int on);
}

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Point {
  double level = -1;
  double marginal = -1;

  friend bool operator==(const Point&, const Point&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Point& point) {
    return out << point.level << " with marginal " << point.marginal;
  }
};

struct Bounds {
  double lower;
  double upper;

  friend bool operator==(const Bounds&, const Bounds&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Bounds& bounds) {
    return out << bounds.lower << " to " << bounds.upper;
  }
};

// Columns 0 and 1 are ship(a) and ship(b); rows 1 and 2 are need(x) and need(y).
class ModelInputTest : public testing::Test {
 protected:
  ModelInputTest() {
    std::ofstream(file("m.lp")) << "Minimize\n total: 3 ship(a) + 5 ship(b)\n"
                                   "Subject To\n need(x): ship(a) + ship(b) >= 10\n"
                                   " need(y): ship(a) + 2 ship(b) >= 2\n"
                                   "Bounds\n ship(a) <= 20\nEnd\n";
    session_.emplace(file("m.lp"), "");
  }

  std::string file(const char* name) const { return folder_.file(name); }

  void apply(ztb::Database& data) {
    data.write(file("data.rxf"));
    tool::ModelInput(*session_).applyFile(file("data.rxf"));
  }

  // The text of the failure that applying the file ends in.
  std::string failure(ztb::Database& data) {
    try {
      apply(data);
    } catch (const tool::Failure& error) {
      return error.what();
    }
    return "";
  }

  void* pbi() { return session_->model().pbi(); }
  Point column(int number) {
    Point point;
    int status = 0;
    int secondStatus = 0;
    pbiGetSolutionVarRec(pbi(), number, &point.level, &point.marginal, &status, &secondStatus);
    return point;
  }
  Point row(int number) {
    Point point;
    int status = 0;
    int secondStatus = 0;
    pbiGetSolutionEquRec(pbi(), number, &point.level, &point.marginal, &status, &secondStatus);
    return point;
  }
  // Those that the next solve goes by, or the model's own.
  Bounds bounds(int number, bool updated = true) {
    pbiAltBoundsSet(pbi(), updated ? 1 : 0);
    return {.lower = pbiGetVarLowerOne(pbi(), number), .upper = pbiGetVarUpperOne(pbi(), number)};
  }

 private:
  ztbtest::TempFolder folder_;
  std::optional<tool::ModelSession> session_;
};

TEST_F(ModelInputTest, AVariableGivesBoundsLevelsAndMarginals) {
  ztb::Database data;
  ztb::Record record = data.addVariable("ship", 3, {"*"}).add("a");
  record.setLower(1);
  record.setUpper(6);
  record.setLevel(4);
  record.setMarginal(0.5);
  apply(data);
  EXPECT_EQ(bounds(0), (Bounds{1, 6}));
  EXPECT_EQ(column(0), (Point{4, 0.5}));
  EXPECT_EQ(bounds(0, false), (Bounds{0, 20})) << "the model's own stay";
  EXPECT_EQ(bounds(1), (Bounds{0, infinity})) << "a column without a record";
  EXPECT_EQ(column(1), (Point{0, 0}));
}

TEST_F(ModelInputTest, AnEquationGivesLevelsAndMarginals) {
  ztb::Database data;
  ztb::Record record = data.addEquation("need", 1, {"*"}).add("x");
  record.setLevel(12);
  record.setMarginal(2.5);
  record.setLower(3);
  record.setUpper(8);
  apply(data);
  EXPECT_EQ(row(1), (Point{12, 2.5}));
  EXPECT_EQ(row(2), (Point{0, 0})) << "a row without a record";
  EXPECT_EQ(column(1), (Point{0, 0}));
  EXPECT_EQ(bounds(1), (Bounds{0, infinity})) << "an equation gives no bounds to columns";
}

TEST_F(ModelInputTest, EachValueOfARecordHasToBeOneForAModel) {
  const auto variable = [&](auto set) {
    ztb::Database data;
    ztb::Record record = data.addVariable("ship", 3, {"*"}).add("a");
    (record.*set)(notANumber);
    return failure(data);
  };
  const std::string text = file("data.rxf") + ": ship(*): Bad value nan in ship(a)";
  EXPECT_EQ(variable(&ztb::Record::setLevel), text);
  EXPECT_EQ(variable(&ztb::Record::setMarginal), text);
  EXPECT_EQ(variable(&ztb::Record::setLower), text);
  EXPECT_EQ(variable(&ztb::Record::setUpper), text);

  ztb::Database data;
  data.addEquation("need", 1, {"*"}).add("x").setMarginal(notANumber);
  EXPECT_EQ(failure(data), file("data.rxf") + ": need(*): Bad value nan in need(x)");
}

}  // namespace
