// Another model registered on a database that was prepared for one, with the real peers: it is
// refused until it was prepared, and then the sizes are its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <ztb/model.hpp>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr const char* kReplaced = "Another model was registered, call ztbInitUpdate first";

// min sum of x(i), x(i) >= need(i) = 1, 2, ... for `count` of i; the right-hand side is linear.
std::unique_ptr<ztb::Model> covering(int count, const std::string& column = "x") {
  auto model = std::make_unique<ztb::Model>();
  model->setObjective("cost");
  for (int i = 1; i <= count; ++i) {
    const std::string label = "(i" + std::to_string(i) + ")";
    const int j = model->addColumn(column + label, 0, kInfinity);
    const int row = model->addRow("need" + label, ztbRowGreaterOrEqual, i);
    model->addTerm(0, j, 1);
    model->addTerm(row, j, 1);
  }
  return model;
}

class ReplacedModel : public testing::Test {
 protected:
  ReplacedModel() : tie_(database_, *first_) {
    (void)tie_.solve("clp");
    EXPECT_DOUBLE_EQ(first_->objective(), 6);
  }

  // Registers another model, meets the refusals, prepares it, and gives its optimum.
  double optimumOf(ztb::Model& other, const char* solver = "clp") {
    ztb::Symbol data = database_.addParameter("data", {"*"});
    data.merge("i1").setLevel(1.5);
    EXPECT_EQ(1, c__ztbregisterpbi(database_.handle(), other.pbi()));
    EXPECT_EQ(kReplaced, refusal([&] { (void)tie_.solve(solver); }));
    EXPECT_EQ(kReplaced, refusal([&] { update(data); }));
    EXPECT_EQ(kReplaced, refusal([&] { (void)database_.symbol("x").recordCount(); }));
    EXPECT_EQ(1, c__ztbinitupdate(database_.handle(), nullptr));
    update(data);
    (void)tie_.solve(solver);
    return other.objective();
  }

  void update(const ztb::Symbol& data) {
    (void)tie_.update(database_.symbol("x"), ztb::Action::lower, data, ztb::Missing::base);
    (void)tie_.update(database_.symbol("x"), ztb::Action::level, data, ztb::Missing::base);
    (void)tie_.update(database_.symbol("need"), ztb::Action::marginal, data, ztb::Missing::base);
    (void)tie_.update(database_.symbol("x"), ztb::Action::lower, data, ztb::Missing::base);
  }

  template <class Call>
  static std::string refusal(const Call& call) {
    try {
      call();
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "no refusal";
  }

  double level(const char* symbol, const std::string& label) {
    return database_.symbol(symbol).find(label)->level();
  }

  std::unique_ptr<ztb::Model> first_ = covering(3);
  ztb::Database database_;
  ztb::ModelTie tie_;
};

// x(i1) is 1.5 by the update, the others are what they need.
TEST_F(ReplacedModel, MoreRowsAndColumns) {
  const auto other = covering(400);
  // The labels of the larger model have to be the database's as well.
  for (int i = 4; i <= 400; ++i) {
    int number = 0;
    ASSERT_EQ(1, c__ztbmergeuel(database_.handle(), ("i" + std::to_string(i)).c_str(), &number));
    ASSERT_EQ(i, number);
  }
  EXPECT_DOUBLE_EQ(optimumOf(*other), 400 * 401 / 2.0 + 0.5);
  EXPECT_EQ(400, database_.symbol("x").recordCount());
  EXPECT_EQ(level("x", "i1"), 1.5);
  EXPECT_EQ(level("need", "i400"), 400);
}

TEST_F(ReplacedModel, FewerRowsAndColumns) {
  const auto other = covering(2);
  EXPECT_DOUBLE_EQ(optimumOf(*other), 3.5);
  EXPECT_EQ(2, database_.symbol("x").recordCount());
  EXPECT_EQ(level("need", "i2"), 2);
}

TEST_F(ReplacedModel, OfTheSameSize) {
  const auto other = covering(3);
  EXPECT_DOUBLE_EQ(optimumOf(*other), 6.5);
  EXPECT_DOUBLE_EQ(first_->objective(), 6) << "the first is left as it was";
}

TEST_F(ReplacedModel, SolvedAfreshToo) {
  const auto other = covering(3);
  EXPECT_DOUBLE_EQ(optimumOf(*other, "glpk"), 6.5);
}

TEST_F(ReplacedModel, WithOtherColumns) {
  const auto other = covering(3, "y");
  ztb::Symbol data = database_.addParameter("data", {"*"});
  data.merge("i1").setLevel(1.5);
  ASSERT_EQ(1, c__ztbregisterpbi(database_.handle(), other->pbi()));
  ASSERT_EQ(1, c__ztbinitupdate(database_.handle(), nullptr));
  EXPECT_EQ(1, tie_.update(database_.symbol("x"), ztb::Action::lower, data, ztb::Missing::base))
      << "the model has no x";
  (void)tie_.solve("clp");
  EXPECT_DOUBLE_EQ(other->objective(), 6);
  EXPECT_EQ(level("need", "i3"), 3);
  EXPECT_EQ(0, database_.symbol("x").recordCount());
}

// The second model lies where the first one lay, as far as the allocator has it so.
TEST_F(ReplacedModel, WhenTheFirstOneIsGone) {
  first_.reset();
  const auto other = covering(5);
  for (const char* label : {"i4", "i5"}) {
    int number = 0;
    ASSERT_EQ(1, c__ztbmergeuel(database_.handle(), label, &number));
  }
  EXPECT_DOUBLE_EQ(optimumOf(*other), 15.5);
}

TEST_F(ReplacedModel, ByNull) {
  ztb::Symbol data = database_.addParameter("data", {"*"});
  EXPECT_EQ(0, c__ztbregisterpbi(database_.handle(), nullptr));
  EXPECT_EQ("No dictionary available", database_.lastError().str());
  EXPECT_EQ(kReplaced, refusal([&] { (void)tie_.solve("clp"); }));
  EXPECT_EQ(kReplaced, refusal([&] { (void)database_.symbol("x").recordCount(); }));
  const std::string none = "No model registered, call ztbRegisterPBI or ztbInitFromDict first";
  EXPECT_EQ(none, refusal([&] { update(data); }));
  EXPECT_EQ(0, c__ztbinitupdate(database_.handle(), nullptr));
  EXPECT_EQ(none, database_.lastError().str());
  // The first one can be taken up again.
  EXPECT_EQ(1, c__ztbregisterpbi(database_.handle(), first_->pbi()));
  EXPECT_EQ(1, c__ztbinitupdate(database_.handle(), nullptr));
  (void)tie_.solve("clp");
  EXPECT_EQ(level("x", "i3"), 3);
}

}  // namespace
