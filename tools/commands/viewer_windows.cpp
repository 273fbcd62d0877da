#include "tools/commands/viewer.h"
#include "tools/text/failure.h"

namespace tool {

void runView(const ViewOptions& /*options*/) {
  throw Failure("the viewer is not built for Windows; 'ztb show' prints what a file has");
}

}  // namespace tool
