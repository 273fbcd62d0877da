#include <csignal>

#include "tools/commands/main.h"

int main(int argc, char** argv) {
  // A limit on the size of files is then an error of the write.
  std::signal(SIGXFSZ, SIG_IGN);
  return ztbMain(argc, argv);
}
