#include "providers/model/glpk_session.h"

#include <pthread.h>

#include <exception>
#include <new>
#include <system_error>

#include "providers/model/glpk_functions.h"

namespace lomu {

namespace {

constexpr std::size_t kKeptMessages = 64 << 10;

struct Thread {
  const std::function<void()>& work;
  std::exception_ptr thrown;
};

void* runThread(void* argument) {
  auto& thread = *static_cast<Thread*>(argument);
  try {
    thread.work();
  } catch (...) {
    thread.thrown = std::current_exception();
  }
  return nullptr;
}

void check(int error) {
  if (error != 0) throw std::system_error(error, std::generic_category(), "thread for GLPK");
}

void runOnThread(std::size_t stackBytes, const std::function<void()>& work) {
  Thread thread{work, nullptr};
  pthread_attr_t attributes;
  check(pthread_attr_init(&attributes));
  pthread_t id{};
  int error = pthread_attr_setstacksize(&attributes, stackBytes);
  if (error == 0) error = pthread_create(&id, &attributes, runThread, &thread);
  pthread_attr_destroy(&attributes);
  check(error);
  check(pthread_join(id, nullptr));
  if (thread.thrown) std::rethrow_exception(thread.thrown);
}

}  // namespace

GlpkSession::GlpkSession() {
  glpk().term_hook(keepMessage, this);
  glpk().error_hook(leave, this);
}

GlpkSession::~GlpkSession() {
  glpk().free_env();
}

void GlpkSession::run(std::size_t stackBytes, const std::function<void(GlpkSession&)>& work) {
  runOnThread(stackBytes, [&] {
    GlpkSession session;
    work(session);
  });
}

bool GlpkSession::guarded(void (*step)(void* argument), void* argument) {
  if (setjmp(exit_) != 0) return false;
  step(argument);
  return true;
}

int GlpkSession::keepMessage(void* session, const char* text) {
  std::string& messages = static_cast<GlpkSession*>(session)->messages_;
  try {
    if (messages.size() > 2 * kKeptMessages) messages.erase(0, messages.size() - kKeptMessages);
    messages += text;
  } catch (const std::bad_alloc&) {
    return 1;  // the message is lost, its cause is not
  }
  return 1;
}

void GlpkSession::leave(void* session) {
  std::longjmp(static_cast<GlpkSession*>(session)->exit_, 1);
}

}  // namespace lomu
