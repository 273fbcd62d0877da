// A thread that does its work while another one holds locks, and of which it can be told for
// certain whether it waits at one of them.
//
// Nothing here can hang: a thread that neither waits nor ends within a minute is given up, and what
// was asked about it is answered so that the test fails.

#ifndef ZTB_TESTS_PEERS_CONTENDER_H_
#define ZTB_TESTS_PEERS_CONTENDER_H_

#include <functional>
#include <initializer_list>
#include <memory>

#include "peers/platform.h"

namespace peertest {

class Contender {
 public:
  // Starts the thread. REQUIRES: what `work` refers to lives until ends() gave true, or until the
  // process ends.
  explicit Contender(std::function<void()> work);

  // Waits until the thread has come to rest at one of the locks: true. False when its work came to
  // an end first.
  bool waitsAt(std::initializer_list<const ztb::peers::platform::Lock*> locks) const;

  // Waits until the work has come to its end: true. False for a thread that was given up.
  bool ends() const;

 private:
  struct State;

  std::shared_ptr<State> state_;
};

// Expects that `use` waits for the lock, which the calling thread has entered, and that it comes
// through once the lock is left. REQUIRES: as for Contender, and that one leave() frees the lock.
void expectWaitsFor(ztb::peers::platform::Lock& lock, const std::function<void()>& use);

}  // namespace peertest

#endif  // ZTB_TESTS_PEERS_CONTENDER_H_
