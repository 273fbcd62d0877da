// C++20 wrapper of ztb/model.h and of the model operations of ztb/ztb.h. Programs that use it link
// liblomudclib64.so: ztb::model in CMake, ztb-model in pkg-config.
//
//   ztb::Model model = ztb::Model::open("diet.lp");
//   ztb::Database database;
//   ztb::ModelTie tie(database, model);
//   ztb::Symbol price = database.addParameter("price", {"*"});
//   price.merge("Milk").setLevel(1.1);
//   tie.update(price, ztb::Action::fix, price, ztb::Missing::base);
//   tie.solve("clp");
//   std::cout << model.objective() << '\n';
//
// A failed operation throws ztb::Error. The model lives longer than any use of the tie.
#ifndef ZTB_MODEL_HPP_
#define ZTB_MODEL_HPP_

#include <ztb/model.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/ztb.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// Owns a model.
class Model {
 public:
  // An empty model to be built.
  Model() {
    Message message{};
    require(ztbModelCreate(&handle_, message.data(), kMessageSize), "ztbModelCreate", message);
  }
  // A model file (.lp, .mps, both also with .gz; .mod with or without a data file).
  [[nodiscard]] static Model open(const ZString& file, const ZString& dataFile = "") {
    Message message{};
    ztbModel* handle = nullptr;
    require(ztbModelOpen(&handle, file.c_str(), dataFile.c_str(), message.data(), kMessageSize),
            "ztbModelOpen", message);
    return Model(handle);
  }
  // The same with records for the sets and parameters of a MathProg model, which are marked as
  // taken where it declares them.
  [[nodiscard]] static Model open(const ZString& file, const ZString& dataFile,
                                  std::span<ztbModelFill> fills) {
    Message message{};
    ztbModel* handle = nullptr;
    require(ztbModelOpenFilled(&handle, file.c_str(), dataFile.c_str(), fills.data(),
                               static_cast<int>(fills.size()), message.data(), kMessageSize),
            "ztbModelOpenFilled", message);
    return Model(handle);
  }
  Model(Model&& other) noexcept
      : handle_(std::exchange(other.handle_, nullptr)), watch_(std::move(other.watch_)) {}
  Model& operator=(Model&& other) noexcept {
    std::swap(handle_, other.handle_);
    std::swap(watch_, other.watch_);
    return *this;
  }
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;
  ~Model() { ztbModelFree(&handle_); }

  void setObjective(const ZString& name, bool maximize = false, double constant = 0) {
    check(ztbModelSetObjective(own(), name.c_str(), maximize ? 1 : 0, constant),
          "ztbModelSetObjective");
  }
  int addColumn(const ZString& name, double lower, double upper, int kind = ztbColumnContinuous) {
    const int number = ztbModelAddColumn(own(), name.c_str(), kind, lower, upper);
    check(number >= 0, "ztbModelAddColumn");
    return number;
  }
  int addRow(const ZString& name, int type, double rhs, double range = 0) {
    const int number = ztbModelAddRow(own(), name.c_str(), type, rhs, range);
    check(number >= 0, "ztbModelAddRow");
    return number;
  }
  void addTerm(int row, int column, double value) {
    check(ztbModelAddTerm(own(), row, column, value), "ztbModelAddTerm");
  }
  void addProduct(int row, int column1, int column2, double value) {
    check(ztbModelAddProduct(own(), row, column1, column2, value), "ztbModelAddProduct");
  }

  // A special ordered set of kind 1 or 2; ztbModelAddSet tells of which columns and weights.
  void addSet(const ZString& name, int kind, std::span<const int> columns,
              std::span<const double> weights) {
    if (columns.size() != weights.size()) {
      throw Error("ztbModelAddSet", "a set has as many weights as columns");
    }
    check(ztbModelAddSet(own(), name.c_str(), kind, static_cast<int>(columns.size()),
                         columns.data(), weights.data()),
          "ztbModelAddSet");
  }

  // Says which numbers of the model a symbol drives: "price(food) = cost of buy"; ztbModelDrive
  // tells all forms. Before the model is tied to a database.
  void drive(const ZString& statement) {
    check(ztbModelDrive(own(), statement.c_str()), "ztbModelDrive");
  }

  void setOption(const ZString& name, const ZString& value) {
    check(ztbModelSetOption(own(), name.c_str(), value.c_str()), "ztbModelSetOption");
  }

  // ztbKindLinear and so on.
  [[nodiscard]] int kind() {
    (void)pbi();
    return ztbModelKind(own());
  }
  // The kind that the next solve finds once variables or parameters were updated.
  [[nodiscard]] int updatedKind() {
    (void)pbi();
    return ztbModelUpdatedKind(own());
  }

  // Solves without a database, with a solver that begins afresh each time, and gives the processor
  // time that it took, in seconds; a solver that finds no solution has solved. Repeated solves with
  // changed data go through a ModelTie, whose solver stays alive; the symbols of one that there was
  // before are not told of this solution.
  double solve(const ZString& solver) {
    check(watched([&] { return ztbModelSolve(own(), solver.c_str()); }), "ztbModelSolve");
    return processorSeconds();
  }
  // The same with the solver for this kind of model.
  double solve();

  // Why the last solve had no solution: rows and bounds that cannot hold together, in words such
  // as "demand(oslo) >= 30", and what ztbModelConflictIsIrreducible and its like tell.
  struct Conflict {
    struct Member {
      std::string text;
      int part = 0;    // ztbPartRow and so on
      int number = 0;  // of the row or column
    };
    std::vector<Member> members;
    bool irreducible = false;
    bool byIntegers = false;
    std::string condition;  // what else counts, such as "columns that have to be integers"
  };
  [[nodiscard]] Conflict explain(double seconds = 1e8) {
    check(watched([&] { return ztbModelExplain(own(), seconds); }), "ztbModelExplain");
    Conflict conflict{{},
                      ztbModelConflictIsIrreducible(own()) != 0,
                      ztbModelConflictIsByIntegers(own()) != 0,
                      ztbModelConflictCondition(own())};
    for (int n = 0; n < ztbModelConflictCount(own()); ++n) {
      Conflict::Member member{ztbModelConflictText(own(), n)};
      ztbModelConflictMember(own(), n, &member.part, &member.number);
      conflict.members.push_back(std::move(member));
    }
    return conflict;
  }

  // How far the running solve is, infinite as long as it is not known; of any thread.
  struct Progress {
    bool isKnown = false;
    double objective = 0;
    double bound = 0;
  };
  [[nodiscard]] Progress progress() const {
    Progress progress;
    progress.isKnown = ztbModelProgress(own(), &progress.objective, &progress.bound) != 0;
    return progress;
  }
  // Has `watch` called now and then while a solve runs, by the thread that solves, with how far it
  // is: the solve goes on as long as it gives true. What it throws ends the solve, too, and leaves
  // it. Empty: none any more. Not while a solve runs.
  void setWatch(std::function<bool(const Progress&)> watch) {
    watch_ = watch ? std::make_unique<Watch>(Watch{own(), std::move(watch)}) : nullptr;
    ztbModelSetWatch(own(), watch_ ? &Watch::asked : nullptr, watch_.get());
  }
  // Ends the running solve as soon as the solver asks; of any thread, and of a signal handler.
  void terminate() const noexcept {
    if (handle_ != nullptr) ztbModelTerminate(handle_);
  }

  // How far each cost and each right-hand side can move by itself while the basis that the last
  // solve left stays optimal; ztbModelRanging tells more. An entry a column, and a row.
  struct Ranging {
    struct Range {
      std::string symbol;
      std::vector<std::string> labels;
      double lower = 0;
      double upper = 0;
    };
    std::vector<Range> costs;
    std::vector<Range> sides;  // the first is the objective's, without an end
  };
  [[nodiscard]] Ranging ranging() {
    check(watched([&] { return ztbModelRanging(own()); }), "ztbModelRanging");
    Ranging ranging;
    for (int j = 0; j < ztbModelColumnCount(own()); ++j) {
      ranging.costs.push_back(rangeOf(j, ztbModelColumnElement, ztbModelCostRange));
    }
    for (int i = 0; i < ztbModelRowCount(own()); ++i) {
      ranging.sides.push_back(rangeOf(i, ztbModelRowElement, ztbModelRhsRange));
    }
    return ranging;
  }

  // What the last solve left.
  [[nodiscard]] int status() const { return ztbModelStatus(own()); }
  [[nodiscard]] int solveStatus() const { return ztbModelSolveStatus(own()); }
  [[nodiscard]] bool hasSolution() const {
    return status() == ztbModelOptimal || status() == ztbModelLocallyOptimal ||
           status() == ztbModelFeasible;
  }
  [[nodiscard]] double objective() const { return ztbModelObjective(own()); }
  [[nodiscard]] double iterations() const { return ztbModelIterations(own()); }
  // What no objective can be better than, as far as the last solve knows.
  [[nodiscard]] double bound() const { return ztbModelBound(own()); }
  // Of the last solve: time by the wall clock, and of the processor.
  [[nodiscard]] double seconds() const { return ztbModelSeconds(own()); }
  [[nodiscard]] double processorSeconds() const { return ztbModelProcessorSeconds(own()); }
  // A field of all records of a variable or equation, in their order; into as many numbers as there
  // are records.
  [[nodiscard]] std::vector<double> values(const ZString& symbol, Field field = Field::level) {
    std::vector<double> result(countOf(symbol, field));
    copyValues(symbol, result, field);
    return result;
  }
  void copyValues(const ZString& symbol, std::span<double> cells, Field field = Field::level) {
    const int size = static_cast<int>(std::min<std::size_t>(cells.size(), kMostCells));
    const int count =
        ztbModelGetField(own(), symbol.c_str(), static_cast<int>(field), cells.data(), size);
    check(count >= 0, "ztbModelGetField");
    if (static_cast<std::size_t>(count) != cells.size()) {
      throw Error("ztbModelGetField", std::string(symbol.c_str()) + " has " +
                                          std::to_string(count) + " records, and there are " +
                                          std::to_string(cells.size()) + " numbers for them");
    }
  }
  // Whether the last solve began with the solution that option UseStart asked for.
  [[nodiscard]] bool startTaken() const { return ztbModelStartTaken(own()) != 0; }
  // Solves that were followed by another one from the beginning, since nothing proved the first.
  [[nodiscard]] int coldSolves() const { return ztbModelColdSolves(own()); }
  // The basis that the last solve left, to a file, and from one for the next solve; whether that
  // was taken. clp and glpk have bases.
  void writeBasis(const ZString& file) {
    check(ztbModelWriteBasis(own(), file.c_str()), "ztbModelWriteBasis");
  }
  void readBasis(const ZString& file) {
    (void)pbi();
    check(ztbModelReadBasis(own(), file.c_str()), "ztbModelReadBasis");
  }
  [[nodiscard]] bool basisTaken() const { return ztbModelBasisTaken(own()) != 0; }
  // Levels as before the first solve, where a solver such as ipopt begins.
  void resetLevels() { check(ztbModelResetLevels(own()), "ztbModelResetLevels"); }
  // Why the last call that failed did; empty when none did, and after a solve that worked.
  [[nodiscard]] std::string message() const { return ztbModelMessage(own()); }

  // What the reading of a file noted, and names that had to be changed, one text each.
  [[nodiscard]] int noteCount() const { return ztbModelNoteCount(own()); }
  [[nodiscard]] std::string note(int number) const { return ztbModelNote(own(), number); }

  // How much of everything the model has, and its families of columns and rows; ztb/model.h tells
  // more. Until the model is tied to a database.
  [[nodiscard]] ztbModelSize size() {
    ztbModelSize size{};
    check(ztbModelGetSize(own(), &size), "ztbModelGetSize");
    return size;
  }
  [[nodiscard]] ztbModelFamily family(int number) {
    ztbModelFamily family{};
    check(ztbModelGetFamily(own(), number, &family), "ztbModelGetFamily");
    return family;
  }
  // Writes the model as .lp or .mps, until it is tied to a database.
  void write(const ZString& file) { check(ztbModelWrite(own(), file.c_str()), "ztbModelWrite"); }

  // For ztb.h; the model cannot be built further.
  [[nodiscard]] void* pbi() {
    void* pbi = ztbModelPbi(own());
    check(pbi != nullptr, "ztbModelPbi");
    return pbi;
  }
  [[nodiscard]] ztbModel* handle() const { return own(); }

 private:
  [[nodiscard]] ztbModel* own() const {
    return detail::notMoved(handle_, "ztb::Model", "This model was");
  }

  static constexpr int kMessageSize = 1024;
  using Message = std::array<char, kMessageSize>;

  static constexpr std::size_t kMostCells = 2147483647;
  std::size_t countOf(const ZString& symbol, Field field) {
    const int count = ztbModelGetField(own(), symbol.c_str(), static_cast<int>(field), nullptr, 0);
    check(count >= 0, "ztbModelGetField");
    return static_cast<std::size_t>(count);
  }

  friend class ModelTie;
  struct Watch {
    ztbModel* handle;
    std::function<bool(const Progress&)> goesOn;
    // Where a call of this thread takes what a watch throws, on its way out of it. No object with a
    // destructor: some compilers give the memory of a thread's variables back before that runs.
    static inline thread_local std::exception_ptr* thrown = nullptr;

    static int asked(void* context) noexcept {
      auto& watch = *static_cast<Watch*>(context);
      if (thrown != nullptr && *thrown) return 1;
      try {
        Progress progress;
        progress.isKnown =
            ztbModelProgress(watch.handle, &progress.objective, &progress.bound) != 0;
        return watch.goesOn(progress) ? 0 : 1;
      } catch (...) {
        if (thrown != nullptr) *thrown = std::current_exception();
        return 1;
      }
    }
  };
  // What `call` gives; throws on what a watch has thrown meanwhile.
  template <class Call>
  static int watched(const Call& call) {
    std::exception_ptr thrown;
    std::exception_ptr* const outer = std::exchange(Watch::thrown, &thrown);
    const int result = call();
    Watch::thrown = outer;
    if (thrown) std::rethrow_exception(thrown);
    return result;
  }

  explicit Model(ztbModel* handle) noexcept : handle_(handle) {}
  static ErrorKind latestKind() noexcept { return static_cast<ErrorKind>(ztbModelErrorKind()); }
  static void require(int result, const char* operation, const Message& message) {
    if (result == 0) throw Error(operation, message.data(), latestKind());
  }
  void check(int result, const char* operation) const {
    if (result == 0) throw Error(operation, ztbModelMessage(own()), latestKind());
  }

  template <class Element, class Find>
  [[nodiscard]] Ranging::Range rangeOf(int number, const Element& element, const Find& find) const {
    std::array<const char*, kMaxDimension> labels{};
    int dimension = 0;
    Ranging::Range range;
    range.symbol = element(own(), number, &dimension, labels.data());
    range.labels.assign(labels.begin(), labels.begin() + dimension);
    find(own(), number, &range.lower, &range.upper);
    return range;
  }
  static constexpr std::size_t kMaxDimension = 20;

  ztbModel* handle_ = nullptr;
  std::unique_ptr<Watch> watch_;
};

// What an update writes, and what a row or column gets that the data have no record for.
enum class Action { fix = 0, upper = 1, lower = 2, bounds = 3, level = 4, marginal = 5 };
enum class Missing { zero = 0, base = 1, keep = 2 };

// The solver for models of a kind, as Model::kind() gives it: clp for linear ones, cbc with integer
// columns, ipopt with products of columns that can move, bonmin with both.
inline const char* standardSolver(int kind) noexcept {
  switch (kind) {
    case ztbKindLinear:
      return "clp";
    case ztbKindMixedInteger:
      return "cbc";
    case ztbKindQuadratic:
      return "ipopt";
    default:
      return "bonmin";
  }
}

inline double Model::solve() {
  return solve(standardSolver(kind()));
}

// Ties a database to a model: its symbols take their records from the model's solution.
class ModelTie {
 public:
  // Fills the empty database with the model's labels and symbols. `database` and `model` have to
  // stay where they are while the tie is used.
  ModelTie(Database& database, Model& model) : database_(&database), model_(&model) {
    void* pbi = model.pbi();
    detail::require(c__ztbinitfromdict(database.handle(), pbi), database.handle(),
                    "ztbInitFromDict");
    if (c__ztbinitupdate(database.handle(), pbi) == 0) failUpdate();
  }

  // Writes the values of parameter `data` into the model. Gives the records that met no row or
  // column. Throws for bounds of an equation and for level or marginal of a parameter, which have
  // none: the library would take numbers of rows for those of columns there, and the other way
  // round.
  int update(const Symbol& modelSymbol, Action action, const Symbol& data, Missing missing) {
    const bool isOfPoint = action == Action::level || action == Action::marginal;
    const Type type = modelSymbol.type();
    if (type == (isOfPoint ? Type::parameter : Type::equation)) {
      throw Error("ztbUpdateModelSymbol",
                  modelSymbol.name().str() +
                      (isOfPoint ? " is a parameter: fix or a bound is expected"
                                 : " is an equation: level or marginal is expected"));
    }
    int unmatched = 0;
    const int updated =
        c__ztbupdatemodelsymbol(database_->handle(), modelSymbol.handle(), static_cast<int>(action),
                                data.handle(), static_cast<int>(missing), &unmatched);
    if (updated == 0) failValue(data);
    boundsCount_ = modelSymbol.type() != Type::equation;
    return unmatched;
  }

  // The kind of the model with the bounds that the last update left, where it wrote any.
  [[nodiscard]] int kind() const { return boundsCount_ ? model_->updatedKind() : model_->kind(); }

  // Solves with the solver for this kind of model, as the command and Python do.
  double solve() { return solve(standardSolver(kind())); }
  // Solves and gives the processor time that the solver took, in seconds. A solver that finds no
  // solution has solved: Model::status tells. Symbols of the model have the new solution
  // afterwards. The error of a solver that did not solve says so, and behind that what the library
  // and the solver say.
  double solve(const ZString& solver) {
    double seconds = 0;
    const int solved = Model::watched(
        [&] { return c__ztbcallsolvertimed(database_->handle(), solver.c_str(), &seconds); });
    if (solved == 0) {
      if (database_->lastErrorKind() == ErrorKind::notFound) failName(solver);
      if (database_->lastErrorKind() != ErrorKind::solver) {
        fail("ztbCallSolverTimed", "");
      }
      // Of a solver that failed the model knows more than the database.
      fail("ztbCallSolverTimed", model_->message(),
           "solver " + std::string(solver.c_str()) + " did not solve the model: ");
    }
    return seconds;
  }

 private:
  using Reason = std::array<char, ZTB_TEXT_BUFFER_SIZE>;
  [[nodiscard]] std::string catalogueFile() const {
    Reason directory{};
    ztbModelGetOption(model_->handle(), "NameSysDir", directory.data(),
                      static_cast<int>(directory.size()));
    return std::string(directory.data()) + "vltcmpNT.txt";
  }
  // A catalogue that cannot be read gets its line and reason.
  [[noreturn]] void failUpdate() const {
    Reason reason{};
    ztbCatalogueCheck(catalogueFile().c_str(), reason.data(), static_cast<int>(reason.size()));
    fail("ztbInitUpdate", reason.data());
  }
  // A name that is none gets the names that there are, one without its library what is missing.
  [[noreturn]] void failName(const ZString& solver) const {
    Reason reason{};
    ztbCatalogueSolver(catalogueFile().c_str(), solver.c_str(), reason.data(),
                       static_cast<int>(reason.size()));
    fail("ztbCallSolverTimed", reason.data(),
         kind() == ztbKindMixedIntegerQuadratic && std::string_view(solver.c_str()) == "bonmin"
             ? "The model has integer columns and products of columns that can move. "
             : "");
  }
  // A value that no column can stand at gets the first record that has one.
  [[noreturn]] void failValue(const Symbol& data) const {
    constexpr double kTooLarge = 1e300;  // and beyond, but for infinities
    std::string text = database_->lastError().str();
    const ErrorKind kind = database_->lastErrorKind();
    if (!text.starts_with("Bad value")) throw Error("ztbUpdateModelSymbol", text, kind);
    for (Record& record : data.records()) {
      const double level = record.level();
      const bool isInfinite = level > std::numeric_limits<double>::max();
      if (level < kTooLarge || isInfinite) continue;
      text += " in " + data.name().str();
      for (int position = 0; position < data.dimension(); ++position) {
        text += (position == 0 ? "(" : ", ") + record.key(position).str();
      }
      if (data.dimension() > 0) text += ")";
      break;
    }
    throw Error("ztbUpdateModelSymbol", text, kind);
  }
  // The library's text, with `more` behind it where that says more, and plain words in front.
  [[noreturn]] void fail(const char* operation, const std::string& more,
                         const std::string& plainly = "") const {
    std::string text = database_->lastError().str();
    if (more.starts_with(text)) {
      text = more;
    } else if (!more.empty()) {
      text += ": " + more;
    }
    throw Error(operation, plainly + text, database_->lastErrorKind());
  }

  Database* database_;
  Model* model_;
  bool boundsCount_ = false;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_MODEL_HPP_
