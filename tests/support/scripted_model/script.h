// The model of the scripted peers, what they were told to do and what they did: one of each for the
// process. Operations use what stands here without allocating memory.

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPT_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPT_H_

#include <ztb/peer.h>

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace scriptedmodel {

inline constexpr int variableType = 5;

struct Symbol {
  std::string name;
  int dim = 0;
  int type = 0;
  int userInfo = 0;
  std::string text;
  std::vector<int> places;  // its rows or columns
};

struct Column {
  int symbol = 0;
  std::vector<int> keys;
  double level = 0, marginal = 0, lower = 0, upper = 0, scale = 1;
  double altLower = 0, altUpper = 0;
  int status = 0, secondStatus = 0;
};

struct Row {
  int symbol = 0;
  std::vector<int> keys;
  double level = 0, marginal = 0, rhs = 0, scale = 1, delta = 0;
  double altRhs = 0;
  int type = 0, status = 0, secondStatus = 0;
};

struct Solver {
  std::string name;
  bool inPlace = false;
};

struct Plan {
  std::string operation;
  int callsToGo = 0;
  bool used = false;
  double answer = 0;
};

// An object of a peer that is made and ended; its number counts from 1.
struct Object {
  int number = 0;  // 0: not alive
  // A walk: the symbol and the next of its places.
  int symbol = 0;
  std::size_t next = 0;
  std::array<int, 20> keys{};
  // A catalogue: whether its file was read.
  bool configured = false;
};

// The objects of one kind.
struct Pool {
  const char* kind;
  int made = 0;
  std::array<Object, 64> objects{};

  Object* make();
  // The living object of a handle, or null.
  Object* find(void* handle);
  int alive() const;
};

struct Script {
  std::array<char, std::size_t{1} << 18> log{};
  std::size_t logLength = 0;
  std::vector<Plan> plans;
  std::string message = "scripted failure";
  std::map<std::string, std::string> lacking;  // reason by operation
  std::map<std::string, std::string> refused;  // reason by family

  int modelType = 1;
  double plusInfinity = 1e30, minusInfinity = -1e30;
  std::string directory = "/velt/";
  std::vector<Solver> solvers;
  std::vector<std::string> labels;
  std::vector<Symbol> symbols;
  std::vector<Column> columns;
  std::vector<Row> rows;
  int altBounds = 0, altRhs = 0, forceLinear = 0, modelStatus = 0, solveStatus = 0;
  int solves = 0;
  std::size_t rowsTold = 0;  // by pbiM; a client has no room for more

  // Handles are addresses of these.
  char model = 0, environment = 0, dictionary = 0;
  Pool catalogues{"rgy"}, solverObjects{"alg"}, searches{"search"}, views{"view"};

  // An infinity of the model's own in the coding that was asked for.
  double presented(double value) const;
  void solve();
};

Script& script();

// An array as an argument.
template <typename Number>
struct Array {
  const Number* first;
  std::size_t size;
};

// One call of an operation: writes it down and carries out what is planned for it.
class Call {
 public:
  template <typename... Args>
  Call(void* object, const char* operation, const Args&... args) {
    writeObject(object);
    write(" ");
    write(operation);
    (..., (write(" "), writeArgument(args)));
    write("\n");
    findPlan(operation);
  }

  // Whether the call is to do what its operation does.
  bool goesOn() const { return !planned_; }
  // The result: the one given, or the one planned.
  template <typename Result>
  Result answer(Result result) const {
    if constexpr (std::is_pointer_v<Result>) {
      return planned_ ? nullptr : result;
    } else {
      return planned_ ? static_cast<Result>(*planned_) : result;
    }
  }

 private:
  static void write(const char* text);
  static void writeObject(void* object);
  static void writeArgument(int number);
  static void writeArgument(double number);
  static void writeArgument(const char* text);
  static void writeArgument(void* object) { writeObject(object); }
  template <typename Number>
  static void writeArgument(const Array<Number>& array) {
    write("[");
    for (std::size_t i = 0; i < array.size; ++i) {
      write(i == 0 ? "" : " ");
      writeArgument(array.first[i]);
    }
    write("]");
  }

  void findPlan(const char* operation);

  std::optional<double> planned_;
};

// Copies as much of a text as fits, with its zero.
void copyOut(char* target, const std::string& text, std::size_t size);
int check(std::span<const ztbPeerOperation> operations, const char* operation, int argCount,
          const int* codes, char* msg);
int version(const char* family, int api, char* msg, int* compatibility);

}  // namespace scriptedmodel

#endif  // ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPT_H_
