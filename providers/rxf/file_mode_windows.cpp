#include "providers/rxf/file_mode.h"

namespace rxffile {

// Who may do what with a new file is the folder's to say there.
mode_t newFileMode() {
  return 0666;
}

}  // namespace rxffile
