// Libraries that are opened at run time.
#ifndef ZTB_TOOLS_FILES_SHARED_LIBRARY_H_
#define ZTB_TOOLS_FILES_SHARED_LIBRARY_H_

#include <string>

namespace tool {

// The file of ZTB's own library of this name, such as "libztbsweep.so" or "ztbsweep.dll" of
// "ztbsweep".
std::string libraryFile(const std::string& name);

// Opens a library, and keeps it to the end of the process; one without a folder is looked for by
// the run path of the program and where the system does, on Windows in the folder of the program
// first and never in the current one. nullptr with a reason, which names the file, where there is
// none.
void* openLibrary(const std::string& file, std::string& reason);

// nullptr where the library has no function of the name.
void* functionOf(void* library, const char* name);

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_SHARED_LIBRARY_H_
