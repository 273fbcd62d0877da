#include <windows.h>

#include <string>
#include <vector>

#include "providers/windows/wide_text.h"
#include "tools/commands/main.h"

// Arguments stay as they are: "*" has its meaning in slices, and is for no files.
extern "C" {
extern int _dowildcard;
int _dowildcard = 0;
}

extern "C" int wmain(int argc, wchar_t** argv);

int wmain(int argc, wchar_t** argv) {
  // A process that dies ends, and asks nobody.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  std::vector<std::string> words;
  for (int i = 0; i < argc; ++i) words.push_back(ztbwindows::narrowText(argv[i]));
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return ztbMain(argc, arguments.data());
}
