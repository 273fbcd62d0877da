// A peer library that writes down every call, made from the expected rows. Definitions of the
// compiler say which families it has and what is wrong with it:
//
//   PEER_rxf, PEER_pbi, ...  the family is in the library
//   PEER_LACKS="a b"         the check says no to these operations
//   PEER_REFUSES="text"      the version entry points refuse with this text
//   NAME=OTHER               for a symbol NAME: the library doesn't have it
//
// The check agrees to an operation only if name, number of arguments and codes are the expected
// ones. An operation answers with the length of its name, or with its object if the result is a
// pointer.

#include <array>
#include <cstring>
#include <iterator>
#include <string>

#include "tests/peers/call_text.h"

#define EXPORT extern "C" __attribute__((visibility("default")))

namespace {

std::string& recorded() {
  static std::string theLog;
  return theLog;
}

void note(const std::string& line) {
  recorded() += line + '\n';
}

template <typename Result, typename... Args>
Result answer(const char* operation, void* object, Args... args) {
  note(peertest::callText(operation, object, args...));
  if constexpr (std::is_pointer_v<Result>) {
    return static_cast<Result>(object);
  } else {
    return static_cast<Result>(std::strlen(operation));
  }
}

struct Row {
  const char* family;
  const char* operation;
  int argCount;
  std::array<int, 16> codes;
};

template <typename... Codes>
Row row(const char* family, const char* operation, int result, Codes... codes) {
  return {family, operation, static_cast<int>(sizeof...(codes)), {result, codes...}};
}

#define ROW(family, result, name, symbol, parameters, arguments, ...) \
  row(#family, #name, __VA_ARGS__),
const Row rows[] = {
#include "tests/peers/expected_rows.inc"
};
#undef ROW

#ifdef PEER_LACKS
constexpr const char* lacking = " " PEER_LACKS " ";
#else
constexpr const char* lacking = "";
#endif

int check(const char* family, const char* operation, int argCount, const int* codes, char* msg) {
  if (std::strstr(lacking, (' ' + std::string(operation) + ' ').c_str()) != nullptr) {
    // Long names get the longest reason that fits a peer's message.
    const bool longReason = std::strlen(operation) > 20;
    std::strcpy(msg, longReason ? std::string(255, 'r').c_str() : "too old a peer");
    return 0;
  }
  for (const Row& row : rows) {
    if (std::strcmp(row.operation, operation) != 0 || std::strcmp(row.family, family) != 0)
      continue;
    if (row.argCount == argCount &&
        std::memcmp(row.codes.data(), codes, sizeof(int) * (1 + static_cast<unsigned>(argCount))) ==
            0) {
      return 1;
    }
  }
  std::strcpy(msg, "unknown operation or signature");
  return 0;
}

int version(const char* family, int offered, int api, char* msg, int* compatibility) {
  note(std::string(family) + "XAPIVersion" + peertest::argumentText(api));
  *compatibility = offered;
#ifdef PEER_REFUSES
  std::strcpy(msg, PEER_REFUSES);
  return 0;
#else
  if (api == offered) return 1;
  std::strcpy(msg, "another version");
  return 0;
#endif
}

void create(const char* family, void** object) {
  note(std::string(family) + "XCreate");
  if (object != nullptr) *object = new int(0);
}

void createInDirectory(const char* family, void** object, const char* directory) {
  note(std::string(family) + "XCreateD " + directory);
  if (object != nullptr) *object = new int(0);
}

void release(const char* family, void** object) {
  note(std::string(family) + "XFree");
  delete static_cast<int*>(*object);
  *object = nullptr;
}

}  // namespace

EXPORT const char* peerLog() {
  return recorded().c_str();
}

#define ENTRIES(family, offered, createName, freeName, checkName, versionName)             \
  EXPORT void createName(void** object) {                                                  \
    create(#family, object);                                                               \
  }                                                                                        \
  EXPORT void freeName(void** object) {                                                    \
    release(#family, object);                                                              \
  }                                                                                        \
  EXPORT int checkName(const char* operation, int argCount, const int* codes, char* msg) { \
    return check(#family, operation, argCount, codes, msg);                                \
  }                                                                                        \
  EXPORT int versionName(int api, char* msg, int* compatibility) {                         \
    return version(#family, offered, api, msg, compatibility);                             \
  }

#define CREATE_IN_DIRECTORY(family, name)                  \
  EXPORT void name(void** object, const char* directory) { \
    createInDirectory(#family, object, directory);         \
  }

#define DEFINE(result, name, symbol, parameters, arguments, ...) \
  EXPORT result symbol parameters {                              \
    return answer<result> ANSWER_ARGUMENTS(#name, arguments);    \
  }
#define ANSWER_ARGUMENTS(name, arguments) (name, ANSWER_LIST arguments)
#define ANSWER_LIST(...) __VA_ARGS__

#ifdef PEER_rxf
#define ROW_rxf DEFINE
ENTRIES(rxf, 9, XCreate, XFree, C__XCheck, C__XAPIVersion)
CREATE_IN_DIRECTORY(rxf, XCreateD)
EXPORT void C__rxfSetLoadPath(const char* directory) {
  note(std::string("SetLoadPath ") + directory);
}
EXPORT void C__rxfGetLoadPath(char* directory) {
  *directory = '\0';
}
EXPORT int C__rxfDataReadBlockStart(void* /*rxf*/, int /*number*/, int* /*count*/) {
  return 0;
}
EXPORT int C__rxfDataReadBlock(void* /*rxf*/, int* /*keys*/, double* /*values*/, int /*room*/) {
  return 0;
}
#else
#define ROW_rxf(...)
#endif

#ifdef PEER_pbi
#define ROW_pbi DEFINE
ENTRIES(pbi, 26, pbiXCreate, pbiXFree, CpbiXCheck, CpbiXAPIVersion)
CREATE_IN_DIRECTORY(pbi, CpbiXCreateD)
#else
#define ROW_pbi(...)
#endif

#ifdef PEER_snv
#define ROW_snv DEFINE
ENTRIES(snv, 7, snvXCreate, snvXFree, CsnvXCheck, CsnvXAPIVersion)
CREATE_IN_DIRECTORY(snv, CsnvXCreateD)
#else
#define ROW_snv(...)
#endif

#ifdef PEER_nmt
#define ROW_nmt DEFINE
ENTRIES(nmt, 2, nmtXCreate, nmtXFree, CnmtXCheck, CnmtXAPIVersion)
CREATE_IN_DIRECTORY(nmt, CnmtXCreateD)
#else
#define ROW_nmt(...)
#endif

#ifdef PEER_rgy
#define ROW_rgy DEFINE
ENTRIES(rgy, 4, rgyXCreate, rgyXFree, CrgyXCheck, CrgyXAPIVersion)
#else
#define ROW_rgy(...)
#endif

#define ROW(family, ...) ROW_##family(__VA_ARGS__)
#include "tests/peers/expected_rows.inc"
#undef ROW
