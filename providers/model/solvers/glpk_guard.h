// Calls of GLPK under which an error that GLPK would end the process for comes back as a text, and
// under which GLPK prints nothing.
//
// The called function is left by longjmp in that case: it must hold no objects with destructors.
// The problem object that it worked on is then in no usable state, not even for deleting it; its
// memory stays with GLPK's own environment.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_GUARD_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_GUARD_H_

#include <cstdint>
#include <string>

namespace lomu {

// Calls function(context). False with GLPK's text when GLPK gave up, or when mustStop(context) was
// true while GLPK wrote a line: what GLPK writes is asked for, seen by nobody, and a way into it.
bool guardedGlpkCall(void (*function)(void* context), void* context, std::string& reason,
                     bool (*mustStop)(void* context) = nullptr);

// The calling thread, by a number that no other thread of the process has or had. GLPK keeps an
// environment for each thread, to which all memory of the objects made there belongs: they may be
// changed and deleted on their own thread only, and end with it (the process's first thread keeps
// its environment to the end of the process).
std::uint64_t glpkThread();

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_GUARD_H_
