// Keeps a signal that a call of this thread raises for its own thread away from the process.
//
// While the object lives the signal waits; at the end one that came meanwhile is dropped. A signal
// that waited already before is left waiting.
#ifndef ZTB_PROVIDERS_RXF_HELD_SIGNAL_H_
#define ZTB_PROVIDERS_RXF_HELD_SIGNAL_H_

#include <csignal>

namespace rxffile {

class HeldSignal {
 public:
  explicit HeldSignal(int signal);
  HeldSignal(const HeldSignal&) = delete;
  HeldSignal& operator=(const HeldSignal&) = delete;
  ~HeldSignal();

 private:
  sigset_t signal_;
  sigset_t before_;
  bool waitedBefore_ = false;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_HELD_SIGNAL_H_
