// What the model libraries ask of an operating system that the language does not have: opening
// libraries, files by names in UTF-8, and where things are. One source file for each system.
#ifndef ZTB_PROVIDERS_MODEL_PLATFORM_H_
#define ZTB_PROVIDERS_MODEL_PLATFORM_H_

#include <cstdio>
#include <filesystem>
#include <string>

namespace lomu::platform {

// Opens a library for the life of the process. Null on failure; openErrorText() then says why,
// the path included.
void* openLibrary(const std::string& path);
std::string openErrorText(const std::string& path);

// The address of exactly `name`, or null.
void* findSymbol(void* library, const char* name);

// The folder that this library was opened from, ending in a separator; "./" where it is not known.
std::string ownFolder();

// What opens the GLPK whose glpk.h this is compiled against.
std::string glpkLibrary();
// Where a user gets it from.
std::string glpkPlace();

// Whether a name is kept by the system for a device, which no look at it would tell.
bool isDeviceName(const std::string& path);

// A name of ours for the language's functions on files.
std::filesystem::path pathOf(const std::string& path);

// As std::fopen, and as POSIX opens a file to be read: -1 and errno where that fails.
std::FILE* openFile(const std::string& path, const char* mode);
int openDescriptor(const std::string& path);
void closeDescriptor(int descriptor);
// Bytes from where it stands: how many, 0 at the end, -1 and errno where that fails. `size` is at
// most the largest int.
long readDescriptor(int descriptor, char* bytes, unsigned size);
// Back to the beginning: 0, or -1 and errno.
int rewindDescriptor(int descriptor);

// Brings what was written to the disk. Result: 0, or errno.
int syncFile(std::FILE* file);

// Puts a file into another's place; the old one stays when that fails. Result: 0, or errno.
int replaceFile(const std::string& from, const std::string& to);
void removeFile(const std::string& path);

// The number of this process, which no other has meanwhile.
long processNumber();

}  // namespace lomu::platform

#endif  // ZTB_PROVIDERS_MODEL_PLATFORM_H_
