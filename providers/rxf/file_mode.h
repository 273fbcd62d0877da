// The permission bits that this process gives to new files.
#ifndef ZTB_PROVIDERS_RXF_FILE_MODE_H_
#define ZTB_PROVIDERS_RXF_FILE_MODE_H_

#include <sys/types.h>

namespace rxffile {

// Read and write for all, less what the process's file mode creation mask takes away.
mode_t newFileMode();

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_FILE_MODE_H_
