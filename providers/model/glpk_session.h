// One use of GLPK, on a thread of its own.
//
// GLPK keeps its state for each thread apart. So the hooks that catch its messages, and the
// freeing of all that it holds after an error inside it, touch nobody else's problems.
#ifndef ZTB_PROVIDERS_MODEL_GLPK_SESSION_H_
#define ZTB_PROVIDERS_MODEL_GLPK_SESSION_H_

#include <csetjmp>
#include <cstddef>
#include <functional>
#include <string>

#include "tools/text/point_numbers.h"

namespace lomu {

class GlpkSession {
 public:
  // Runs `work` on a thread with a stack of `stackBytes` and waits for its end. What it throws is
  // thrown here. Throws std::system_error when there is no thread to be had. Everything of GLPK
  // that was made in the session ends with it.
  static void run(std::size_t stackBytes, const std::function<void(GlpkSession&)>& work);

  GlpkSession(const GlpkSession&) = delete;
  GlpkSession& operator=(const GlpkSession&) = delete;

  // Calls step(argument). False when GLPK gave up with an error inside it; then no more of GLPK may
  // be used in this session. The step may own nothing that has to be destroyed, since it is left by
  // a jump then.
  bool guarded(void (*step)(void* argument), void* argument);

  // What GLPK had to say, the latest 64 KB at least.
  [[nodiscard]] const std::string& messages() const { return messages_; }

 private:
  GlpkSession();
  ~GlpkSession();
  static int keepMessage(void* session, const char* text);
  static void leave(void* session);

  tool::PointNumbers pointNumbers_;  // on the thread of the session
  std::string messages_;
  std::jmp_buf exit_{};
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_GLPK_SESSION_H_
