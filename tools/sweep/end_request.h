// How a sweep is asked to end before its time: it then leaves what is solved in parts.
#ifndef ZTB_TOOLS_SWEEP_END_REQUEST_H_
#define ZTB_TOOLS_SWEEP_END_REQUEST_H_

namespace tool {

// From now on SIGTERM, which the system sends before a time limit, asks this process to end and
// does not end it, and with `interruptToo` SIGINT as well, unless the process ignores it. On
// Windows Ctrl-C and Ctrl-Break do. A second SIGINT, Ctrl-C or Ctrl-Break ends the process.
void watchForEnd(bool interruptToo);

// Whether somebody asked.
bool isAskedToEnd();

// To be called by a worker: `stop` runs when WorkerProcesses::askToStop() of its parent asks. It
// may do what a signal handler may.
void whenAskedToStop(void (*stop)());

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_END_REQUEST_H_
