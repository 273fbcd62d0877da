#include "providers/model/solvers/glpk_guard.h"

#include <glpk.h>

#include <array>
#include <atomic>
#include <csetjmp>
#include <cstring>

#include "providers/model/solvers/thread_end.h"

namespace lomu {

namespace {

struct Guard {
  std::jmp_buf back;
  // What GLPK says; the last lines before it gives up are the reason.
  std::array<char, 400> text;
  bool (*mustStop)(void* context);
  void* context;
};

std::atomic<std::uint64_t> lastThread{0};
thread_local std::uint64_t threadNumber = 0;

// Frees GLPK's environment of a thread that ends. That of the first thread stays: it may hold
// objects of the program's own.
void freeEnvironment() {
  threadNumber = 0;
  glp_free_env();
}

int keepText(void* info, const char* text) {
  auto* guard = static_cast<Guard*>(info);
  if (guard->mustStop != nullptr && guard->mustStop(guard->context)) std::longjmp(guard->back, 1);
  const std::size_t used = std::strlen(guard->text.data());
  const std::size_t length = std::strlen(text);
  if (used + length < guard->text.size()) {
    std::memcpy(guard->text.data() + used, text, length + 1);
  } else if (length < guard->text.size()) {
    std::memcpy(guard->text.data(), text, length + 1);
  }
  return 1;
}

void goBack(void* info) {
  std::longjmp(static_cast<Guard*>(info)->back, 1);
}

// Apart from guardedGlpkCall, so that no object with a destructor is in the frame of setjmp.
bool callWithin(Guard& guard, void (*function)(void* context), void* context) {
  if (setjmp(guard.back) != 0) return false;
  function(context);
  return true;
}

}  // namespace

bool guardedGlpkCall(void (*function)(void* context), void* context, std::string& reason,
                     bool (*mustStop)(void* context)) {
  Guard guard;
  guard.text[0] = '\0';
  guard.mustStop = mustStop;
  guard.context = context;
  const int output = glp_term_out(mustStop == nullptr ? GLP_OFF : GLP_ON);
  glp_term_hook(keepText, &guard);
  glp_error_hook(goBack, &guard);
  const bool done = callWithin(guard, function, context);
  glp_error_hook(nullptr, nullptr);
  glp_term_hook(nullptr, nullptr);
  glp_term_out(output);
  if (!done) {
    reason = "glpk: " + std::string(guard.text.data());
    while (!reason.empty() && reason.back() == '\n') reason.pop_back();
    for (char& c : reason) c = c == '\n' ? ' ' : c;
  }
  return done;
}

std::uint64_t glpkThread() {
  if (threadNumber == 0) {
    atThreadEnd(freeEnvironment);
    threadNumber = ++lastThread;
  }
  return threadNumber;
}

}  // namespace lomu
