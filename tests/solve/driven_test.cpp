// Symbols that drive numbers of a model that was written without them: each solve has the result of
// the model with these numbers written into its file, as GLPK finds it there.
#include <glpk.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>
#include <ztb/model.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::DoubleNear;
using testing::HasSubstr;

constexpr std::array<const char*, 2> kPlants{"north", "south"};
constexpr std::array<const char*, 3> kCities{"oslo", "bern", "new york"};
constexpr double kInf = std::numeric_limits<double>::infinity();

using PerPair = std::array<std::array<double, 3>, 2>;  // plant, city

// What is made in two plants and shipped to three cities, of which some arrives.
struct Plan {
  PerPair price{{{2, 4, 5}, {3, 1, 2}}};
  PerPair rate{{{1, 0.9, 0.8}, {0.9, 1, 0.95}}};
  std::array<double, 3> need{10, 20, 15};
  std::array<double, 2> cap{40, 30};
  std::array<double, 2> low{0, 5};
  double gap = 4;     // north makes this much more than south, but for `extra`
  double total = 80;  // at most this much is made, and at least 20 less
  bool integer = false;
  // Pairs that are not in the model at all.
  [[nodiscard]] static bool has(std::size_t plant, std::size_t city) {
    return plant != 1 || city != 0;
  }

  // For a judge that knows no ranges, these are two rows.
  [[nodiscard]] std::string text(bool withRange) const;
  // The optimum by GLPK from this text; infinity without a feasible point.
  [[nodiscard]] double optimum(const std::string& file) const;
};

std::string ship(std::size_t plant, std::size_t city) {
  std::string name = kCities[city];
  if (name == "new york") name = "ny";
  return std::string("ship(") + kPlants[plant] + "," + name + ")";
}

std::string term(double value, const std::string& name) {
  std::array<char, 40> number{};
  std::snprintf(number.data(), number.size(), " %+.17g ", value);
  return number.data() + name;
}

std::string Plan::text(bool withRange) const {
  std::string s = "Minimize\n cost:";
  for (std::size_t p = 0; p < 2; ++p) {
    for (std::size_t c = 0; c < 3; ++c) {
      if (has(p, c)) s += term(price[p][c], ship(p, c)) + "\n";
    }
  }
  s += " + 7 extra\nSubject To\n";
  for (std::size_t p = 0; p < 2; ++p) {
    s += std::string(" supply(") + kPlants[p] + "):";
    for (std::size_t c = 0; c < 3; ++c) {
      if (has(p, c)) s += " + " + ship(p, c);
    }
    s += std::string(" - make(") + kPlants[p] + ") <= 0\n";
  }
  for (std::size_t c = 0; c < 3; ++c) {
    s += std::string(" demand(") + (c == 2 ? "ny" : kCities[c]) + "):";
    for (std::size_t p = 0; p < 2; ++p) {
      if (has(p, c)) s += term(rate[p][c], ship(p, c));
    }
    s += " >=" + term(need[c], "\n");
  }
  s += " mix: make(north) - make(south) + extra =" + term(gap, "\n");
  const std::string sum = "make(north) + make(south)";
  if (withRange) {
    s += " total:" + term(total - 20, "<= ") + sum + " <=" + term(total, "\n");
  } else {
    s += " total: " + sum + " <=" + term(total, "\n");
    s += " least: " + sum + " >=" + term(total - 20, "\n");
  }
  s += "Bounds\n";
  for (std::size_t p = 0; p < 2; ++p) {
    const std::string name = std::string("make(") + kPlants[p] + ")";
    // GLPK takes whole bounds of integers alone.
    const bool whole = integer && !withRange;
    s += " " + name + " >=" + term(whole ? std::ceil(low[p]) : low[p], "\n");
    if (cap[p] != kInf) s += " " + name + " <=" + term(whole ? std::floor(cap[p]) : cap[p], "\n");
  }
  s += " -100 <= extra <= 100\n";
  if (integer) {
    s += "Generals\n make(north)\n make(south)\n ship(north,oslo)\n ship(south,ny)\n extra\n";
  }
  return s + "End\n";
}

double Plan::optimum(const std::string& file) const {
  std::ofstream(file) << text(false);
  glp_term_out(GLP_OFF);
  glp_prob* problem = glp_create_prob();
  EXPECT_EQ(glp_read_lp(problem, nullptr, file.c_str()), 0);
  double objective = kInf;
  if (integer) {
    glp_iocp parameters;
    glp_init_iocp(&parameters);
    parameters.presolve = GLP_ON;
    const int result = glp_intopt(problem, &parameters);
    if (result == 0 && glp_mip_status(problem) == GLP_OPT) objective = glp_mip_obj_val(problem);
  } else {
    glp_smcp parameters;
    glp_init_smcp(&parameters);
    parameters.presolve = GLP_ON;
    const int result = glp_simplex(problem, &parameters);
    if (result == 0 && glp_get_status(problem) == GLP_OPT) objective = glp_get_obj_val(problem);
  }
  glp_delete_prob(problem);
  return objective;
}

// A database with the parameters that drive a plan, and the statements that say so.
class DrivenPlan {
 public:
  DrivenPlan(const Plan& base, const std::string& file) : base_(base) {
    std::ofstream(file) << base.text(true);
    model_ = ztb::Model::open(file);
    model_.drive("price(plant, city) = cost of ship");
    model_.drive("rate(plant, city) = coefficient of ship in demand(city)");
    model_.drive("demand(city) = rhs of demand");
    model_.drive("cap(plant) = upper of make");
    model_.drive("low(plant) = lower of make");
    model_.drive("gap = rhs of mix");
    model_.drive("room = RHS of total");
    tie_.emplace(database_, model_);
    for (const auto& [name, positions] : {std::pair{"price", 2},
                                          {"rate", 2},
                                          {"need", 1},
                                          {"cap", 1},
                                          {"low", 1},
                                          {"gap", 0},
                                          {"room", 0}}) {
      const std::vector<ztb::DomainArgument> any(static_cast<std::size_t>(positions), "*");
      database_.addSymbol(name, ztb::Type::parameter, any);
    }
  }

  ztb::Model& model() { return model_; }
  ztb::Database& database() { return database_; }
  ztb::ModelTie& tie() { return *tie_; }

  // Gives records for the numbers that are not those of the base, and sometimes for others too.
  void apply(const Plan& plan, std::mt19937& random) {
    for (const char* name : {"price", "rate", "need", "cap", "low", "gap", "room"}) {
      database_.symbol(name).clear();
    }
    const auto put = [&](const char* name, const std::vector<const char*>& keys, double value,
                         double base) {
      if (value == base && random() % 2 == 0) return;
      database_.symbol(name).merge(ztb::Keys(keys)).setLevel(value);
    };
    const auto city = [](std::size_t c) { return c == 2 ? "ny" : kCities[c]; };
    for (std::size_t p = 0; p < 2; ++p) {
      for (std::size_t c = 0; c < 3; ++c) {
        if (!Plan::has(p, c)) continue;
        put("price", {kPlants[p], city(c)}, plan.price[p][c], base_.price[p][c]);
        put("rate", {kPlants[p], city(c)}, plan.rate[p][c], base_.rate[p][c]);
      }
      put("cap", {kPlants[p]}, plan.cap[p], base_.cap[p]);
      put("low", {kPlants[p]}, plan.low[p], base_.low[p]);
    }
    for (std::size_t c = 0; c < 3; ++c) put("need", {city(c)}, plan.need[c], base_.need[c]);
    put("gap", {}, plan.gap, base_.gap);
    put("room", {}, plan.total, base_.total);
    for (const char* name : {"price", "rate", "cap", "low", "gap", "room"}) {
      const ztb::Symbol data = database_.symbol(name);
      EXPECT_EQ(tie_->update(data, ztb::Action::fix, data, ztb::Missing::base), 0) << name;
    }
    // An equation has the name of this symbol, so its data stand under another one.
    EXPECT_EQ(tie_->update(database_.symbol("demand_var"), ztb::Action::fix,
                           database_.symbol("need"), ztb::Missing::base),
              0);
  }

 private:
  Plan base_;
  ztb::Model model_;
  ztb::Database database_;
  std::optional<ztb::ModelTie> tie_;
};

// A plan some numbers of which are others.
Plan changed(Plan plan, std::mt19937& random) {
  std::uniform_real_distribution<double> part(0, 1);
  const auto maybe = [&](double& number, double low, double high) {
    if (random() % 3 == 0) number = low + std::floor(part(random) * 64) / 64 * (high - low);
  };
  for (std::size_t p = 0; p < 2; ++p) {
    for (std::size_t c = 0; c < 3; ++c) {
      maybe(plan.price[p][c], -2, 8);
      maybe(plan.rate[p][c], 0, 1.5);
    }
    maybe(plan.cap[p], 0, 60);
    if (random() % 12 == 0) plan.cap[p] = kInf;
    maybe(plan.low[p], 0, 25);
  }
  for (double& need : plan.need) maybe(need, 0, 40);
  maybe(plan.gap, -30, 30);
  maybe(plan.total, 20, 120);
  return plan;
}

class Driven : public testing::TestWithParam<std::pair<const char*, bool>> {};

TEST_P(Driven, EqualsTheFileWithTheNumbersWrittenIn) {
  const auto [solver, integer] = GetParam();
  const ztbtest::TempFolder folder;
  Plan base;
  base.integer = integer;
  DrivenPlan driven(base, folder.file("base.lp"));
  std::mt19937 random(7);
  int infeasible = 0;
  for (int step = 0; step < 150; ++step) {
    const Plan plan = step == 0 ? base : changed(base, random);
    driven.apply(plan, random);
    driven.tie().solve(solver);
    const double expected = plan.optimum(folder.file("judge.lp"));
    if (expected == kInf) {
      ++infeasible;
      EXPECT_EQ(driven.model().status(), ztbModelInfeasible) << step << "\n" << plan.text(true);
      continue;
    }
    ASSERT_EQ(driven.model().status(), ztbModelOptimal) << step << "\n" << plan.text(true);
    EXPECT_NEAR(driven.model().objective(), expected, 1e-7 * std::max(1.0, std::abs(expected)))
        << step << "\n"
        << plan.text(true);
  }
  EXPECT_GT(infeasible, 10);
  EXPECT_LT(infeasible, 120);
}

INSTANTIATE_TEST_SUITE_P(Solvers, Driven,
                         testing::Values(std::pair{"clp", false}, std::pair{"glpk", false},
                                         std::pair{"cbc", false}, std::pair{"cbc", true},
                                         std::pair{"glpk", true}),
                         [](const auto& test) {
                           return std::string(test.param.first) +
                                  (test.param.second ? "Integer" : "Linear");
                         });

// min 2 x + 3 y, x + y >= 4, x <= 3: x = 3, y = 1.
class DrivenByHand : public testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(folder_.file("m.lp")) << "Minimize\n cost: 2 buy(x) + 3 buy(y)\nSubject To\n"
                                           " need: buy(x) + buy(y) >= 4\nBounds\n buy(x) <= 3\n"
                                           "End\n";
    model_ = ztb::Model::open(folder_.file("m.lp"));
  }

  double value(const char* symbol, const std::vector<const char*>& keys, bool marginal = false) {
    const auto record = database_.symbol(symbol).find(ztb::Keys(keys));
    EXPECT_TRUE(record) << symbol;
    return !record ? 0 : marginal ? record->marginal() : record->level();
  }

  ztbtest::TempFolder folder_;
  ztb::Model model_;
  ztb::Database database_;
};

TEST_F(DrivenByHand, TellsTheWorthOfTheData) {
  model_.drive("price(food) = cost of buy");
  model_.drive("need = rhs of need");
  model_.drive("most(food) = upper of buy");
  model_.drive("share(food) = coefficient of buy in need");
  ztb::ModelTie tie(database_, model_);
  tie.solve("clp");
  EXPECT_THAT(model_.objective(), DoubleNear(9, 1e-9));
  EXPECT_EQ(value("price_var", {"x"}), 2);
  EXPECT_EQ(value("need_var", {}), 4);
  EXPECT_EQ(value("most_var", {"y"}), kInf);
  // Price: what is bought. Need: the price of y. At most: x is 1 cheaper. Share: with a of each y,
  // y = (4 - 3) / a, so 6 + 3 / a; with a of each x, y = 4 - 3 a, so 18 - 9 a.
  EXPECT_THAT(value("price_var", {"x"}, true), DoubleNear(3, 1e-9));
  EXPECT_THAT(value("price_var", {"y"}, true), DoubleNear(1, 1e-9));
  EXPECT_THAT(value("need_var", {}, true), DoubleNear(3, 1e-9));
  EXPECT_THAT(value("most_var", {"x"}, true), DoubleNear(-1, 1e-9));
  EXPECT_THAT(value("most_var", {"y"}, true), DoubleNear(0, 1e-9));
  EXPECT_THAT(value("share_var", {"y"}, true), DoubleNear(-3, 1e-9));
  EXPECT_THAT(value("share_var", {"x"}, true), DoubleNear(-9, 1e-9));
}

TEST_F(DrivenByHand, ShowsDrivenBoundsInTheSolution) {
  model_.drive("need = rhs of need");
  model_.drive("most(food) = upper of buy");
  ztb::ModelTie tie(database_, model_);
  ztb::Symbol most = database_.addParameter("most", {"*"});
  most.merge("x").setLevel(1.5);
  most.merge("z").setLevel(1);
  EXPECT_EQ(tie.update(most, ztb::Action::fix, most, ztb::Missing::base), 1);
  ztb::Symbol six = database_.addParameter("six", {});
  six.merge(ztb::Keys()).setLevel(6);
  tie.update(database_.symbol("need_var"), ztb::Action::fix, six, ztb::Missing::base);
  tie.solve("clp");
  EXPECT_THAT(model_.objective(), DoubleNear(2 * 1.5 + 3 * 4.5, 1e-9));
  EXPECT_EQ(database_.symbol("buy").find("x")->upper(), 1.5);
  EXPECT_EQ(database_.symbol("need").find()->lower(), 6);
  EXPECT_THAT(database_.symbol("need").find()->level(), DoubleNear(6, 1e-9));
  EXPECT_THAT(database_.symbol("need").find()->marginal(), DoubleNear(3, 1e-9));
}

TEST_F(DrivenByHand, TakesTermsThatTheFileDoesNotHave) {
  std::ofstream(folder_.file("m.lp")) << "Minimize\n cost: buy(x)\nSubject To\n need(a): buy(x) + "
                                         "buy(y) >= 4\n need(b): buy(y) >= 1\nEnd\n";
  model_ = ztb::Model::open(folder_.file("m.lp"));
  model_.drive("price(food) = cost of buy");
  model_.drive("holds(food, what) = coefficient of buy(food) in need(what)");
  ztb::ModelTie tie(database_, model_);
  // x = 0, y = 4: y costs nothing in the file.
  tie.solve("glpk");
  EXPECT_THAT(model_.objective(), DoubleNear(0, 1e-9));
  ztb::Symbol price = database_.addParameter("price", {"*"});
  price.merge("y").setLevel(5);
  tie.update(price, ztb::Action::fix, price, ztb::Missing::base);
  tie.solve("glpk");
  EXPECT_THAT(model_.objective(), DoubleNear(3 + 5, 1e-9));
  ztb::Symbol holds = database_.addParameter("holds", {"*", "*"});
  holds.merge("x", "b").setLevel(0.5);
  tie.update(holds, ztb::Action::fix, holds, ztb::Missing::base);
  tie.solve("glpk");
  EXPECT_THAT(model_.objective(), DoubleNear(4, 1e-9));
}

TEST_F(DrivenByHand, LivesOnAfterDataThatNoModelCanHave) {
  model_.drive("price(food) = cost of buy");
  ztb::ModelTie tie(database_, model_);
  ztb::Symbol price = database_.addParameter("price", {"*"});
  tie.solve("clp");
  price.merge("x").setLevel(kInf);
  tie.update(price, ztb::Action::fix, price, ztb::Missing::base);
  try {
    tie.solve("clp");
    FAIL() << "an infinite price was taken";
  } catch (const ztb::Error& error) {
    EXPECT_THAT(error.what(), HasSubstr("price_var(x) has to stand at one number, and at a finite "
                                        "one where it drives a coefficient, but stands from inf "
                                        "to inf"));
  }
  price.merge("x").setLevel(4);
  tie.update(price, ztb::Action::fix, price, ztb::Missing::base);
  tie.solve("clp");
  EXPECT_THAT(model_.objective(), DoubleNear(12, 1e-9));
  tie.update(database_.symbol("price_var"), ztb::Action::upper, price, ztb::Missing::keep);
  EXPECT_NO_THROW(tie.solve("clp"));
  price.merge("x").setLevel(5);
  tie.update(database_.symbol("price_var"), ztb::Action::upper, price, ztb::Missing::keep);
  EXPECT_THROW(tie.solve("clp"), ztb::Error);
}

TEST_F(DrivenByHand, DrivesOneThingAlongWithAnother) {
  model_.drive("only(food) = upper of buy");
  model_.drive("limit = lower of buy('y')");
  ztb::ModelTie tie(database_, model_);
  ztb::Symbol limit = database_.addParameter("limit", {});
  limit.merge(ztb::Keys()).setLevel(2.5);
  tie.update(limit, ztb::Action::fix, limit, ztb::Missing::base);
  // Levels of equations after it do not make the data count less.
  ztb::Symbol none = database_.addParameter("none", {});
  tie.update(database_.symbol("need"), ztb::Action::level, none, ztb::Missing::keep);
  tie.solve("clp");
  EXPECT_THAT(model_.objective(), DoubleNear(3 + 7.5, 1e-9));
}

class DriveRefusal : public DrivenByHand {
 protected:
  std::string refusal(const std::string& statement) {
    try {
      model_.drive(statement);
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(DriveRefusal, TellsWhatTheModelHas) {
  EXPECT_EQ(
      refusal("price(food) = cost of bui"),
      "drive \"price(food) = cost of bui\": the model has no variable bui, is buy meant?; its "
      "variables are: buy");
  EXPECT_EQ(refusal("d = rhs of demand"),
            "drive \"d = rhs of demand\": the model has no equation demand; its equations are: "
            "cost, need");
  EXPECT_EQ(refusal("d = rhs of buy"),
            "drive \"d = rhs of buy\": buy is a variable of the model, expected an equation; its "
            "equations are: cost, need");
  EXPECT_EQ(refusal("d(i) = cost of need"),
            "drive \"d(i) = cost of need\": need is an equation of the model, expected a variable; "
            "its variables are: buy");
  EXPECT_EQ(refusal("d = rhs of cost"),
            "drive \"d = rhs of cost\": cost has no right-hand side: its rows are free");
  EXPECT_EQ(refusal("d = upper of buy('xx')"),
            "drive \"d = upper of buy('xx')\": buy has no label 'xx', is x meant?; its labels are: "
            "x, y");
}

// Labels of the model that stand elsewhere in it, or not together.
TEST_F(DriveRefusal, TellsWhichLabelsAFamilyHas) {
  const int ship = model_.addColumn("ship(x,north)", 0, 1);
  model_.addColumn("ship(y,south)", 0, 1);
  model_.addTerm(0, ship, 1);
  EXPECT_EQ(refusal("d = upper of buy('north')"),
            "drive \"d = upper of buy('north')\": buy has no label 'north'; its labels are: x, y");
  EXPECT_EQ(
      refusal("d(i) = upper of ship(i, 'x')"),
      "drive \"d(i) = upper of ship(i, 'x')\": ship has no label 'x' at position 2; its labels "
      "there are: north, south");
  EXPECT_EQ(refusal("d = upper of ship('x', 'south')"),
            "drive \"d = upper of ship('x', 'south')\": nothing in the model fits it; ship has: "
            "ship(x,north), ship(y,south)");
  model_.addRow("meet(north)", ztbRowLessOrEqual, 1);
  EXPECT_EQ(
      refusal("d(i, j) = coefficient of ship(i, j) in meet(i)"),
      "drive \"d(i, j) = coefficient of ship(i, j) in meet(i)\": nothing in the model fits it; "
      "ship has: ship(x,north), ship(y,south); meet has: meet(north)");
}

TEST_F(DriveRefusal, TellsWhatTheStatementLacks) {
  EXPECT_EQ(refusal("p = cost of buy"),
            "drive \"p = cost of buy\": buy has 1 position, p has 0; write which they are, as in "
            "buy(*)");
  EXPECT_EQ(refusal("p(i) = cost of buy(i, *)"),
            "drive \"p(i) = cost of buy(i, *)\": buy has 1 position, 2 are given");
  EXPECT_EQ(refusal("p(i) = cost of buy(*)"),
            "drive \"p(i) = cost of buy(*)\": position i of p is none of buy");
  EXPECT_EQ(refusal("p(i, j) = coefficient of buy(i) in need"),
            "drive \"p(i, j) = coefficient of buy(i) in need\": position j of p is none of buy or "
            "need");
  EXPECT_EQ(refusal("p = cost of buy(*)"),
            "drive \"p = cost of buy(*)\": p_var would drive numbers that differ: the cost of "
            "buy(x) is 2, the cost of buy(y) is 3; name more positions, so that each has a value "
            "of its own");
}

TEST_F(DriveRefusal, TellsHowAStatementIsWritten) {
  const std::string form =
      "; write it as \"price(food) = cost of buy\", \"demand(city) = rhs of demand\", \"cap(plant) "
      "= upper of make\" or \"yield(crop, soil) = coefficient of grow in harvest(soil)\"";
  for (const auto& [statement, problem] : std::vector<std::pair<std::string, std::string>>{
           {"", "the name of a symbol is expected at \"\""},
           {"2p = cost of buy",
            "\"2p\" is no name of a parameter, which begins with a letter and has at most 59 "
            "characters"},
           {"p(i) cost of buy", "an \"=\" is expected behind the symbol"},
           {"p(i) = costs of buy",
            "\"costs\" is none of cost, rhs, lower, upper and coefficient, is cost meant?"},
           {"p(i) = cost in buy", "\"of\" is expected in the place of \"in\""},
           {"p(i) = cost of", "the name of a variable or equation is expected at \"\""},
           {"p(i,I) = cost of buy", "position I of p stands twice"},
           {"p('i') = cost of buy",
            "\"i\" is no name of a position, which has letters, digits and _"},
           {"p(i = cost of buy", "a bracket is left open"},
           {"p(i,) = cost of buy", "a position is empty"},
           {"p(i) = cost of buy('a'b)", "a comma has to follow a quoted label"},
           {"p(item) = cost of buy(itme)",
            "\"itme\" is no position of p, is item meant?; a label stands in quotes, any label is "
            "*"},
           {"p(i) = cost of buy(i) here",
            "nothing is expected behind it but stands there: "
            "\"here\""},
           {"p(i) = coefficient of buy", "\"in\" is expected at \"\""}}) {
    EXPECT_EQ(refusal(statement), "drive \"" + statement + "\": " + problem + form);
  }
}

TEST_F(DriveRefusal, LeavesTheModelAsItWas) {
  EXPECT_NE(refusal("p = cost of buy(*)"), "");
  model_.addColumn("more", 0, 1);
  EXPECT_EQ(refusal("p(i) = cost of buy"), "");
  EXPECT_EQ(refusal("q(j) = cost of buy"),
            "drive \"q(j) = cost of buy\": the cost of buy(x) is driven by p already");
  EXPECT_EQ(refusal("P(i, j) = coefficient of buy(i) in need(j)"),
            "drive \"P(i, j) = coefficient of buy(i) in need(j)\": need has 0 positions, 1 are "
            "given");
  EXPECT_EQ(refusal("p = rhs of need"),
            "drive \"p = rhs of need\": p has 1 position in the statement before");
  EXPECT_EQ(ztbModelWrite(model_.handle(), folder_.file("w.lp").c_str()), 0);
  EXPECT_EQ(model_.message(), "the model is driven by symbols and cannot be written any more");
  EXPECT_THROW(model_.addColumn("later", 0, 1), ztb::Error);
  EXPECT_EQ(model_.message(), "the model is driven by symbols and cannot be built further");
  ztb::ModelTie tie(database_, model_);
  EXPECT_EQ(refusal("n = rhs of need"),
            "the model is in use and can be driven by no further symbols; say what they drive "
            "before");
}

TEST_F(DriveRefusal, LeavesColumnsThatCarryDataInTheFileAlone) {
  model_.addColumn("price_var[x]", 3, 3);
  EXPECT_EQ(refusal("price(i) = cost of buy"),
            "drive \"price(i) = cost of buy\": the model has price_var, which price drives without "
            "a statement; give the symbol another name");
}

double solvedByItsKind(const std::string& file, const std::string& text) {
  std::ofstream(file) << text;
  ztb::Model model = ztb::Model::open(file);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve();
  return model.objective();
}

// A solver for linear models would give 1.5 for integers as well: x^2 - 3x is -2.25 at 1.5, and -2
// at the integers beside it.
TEST(ModelTie, SolvesWithTheSolverForTheKindOfModel) {
  const ztbtest::TempFolder folder;
  const std::string file = folder.file("m.lp");
  const std::string linear = "Minimize\n o: x\nSubject To\n c: x >= 1.5\n";
  const std::string product = "Minimize\n o: - 3 x + [ 2 x ^ 2 ] / 2\nSubject To\n c: x <= 9\n";
  EXPECT_EQ(solvedByItsKind(file, linear + "End\n"), 1.5);
  EXPECT_EQ(solvedByItsKind(file, linear + "Generals\n x\nEnd\n"), 2);
  EXPECT_THAT(solvedByItsKind(file, product + "End\n"), DoubleNear(-2.25, 1e-6));
  EXPECT_THAT(solvedByItsKind(file, product + "Generals\n x\nEnd\n"), DoubleNear(-2, 1e-6));
}

}  // namespace
