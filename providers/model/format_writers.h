// The writers of the formats of model files.
#ifndef ZTB_PROVIDERS_MODEL_FORMAT_WRITERS_H_
#define ZTB_PROVIDERS_MODEL_FORMAT_WRITERS_H_

#include <string>

#include "providers/model/model_data.h"
#include "providers/model/text_target.h"

namespace lomu {

// Each writes all of a file. `file` is what refusals begin with: ModelError for a name or a
// condition that the format cannot hold. REQUIRES: coefficients, right-hand sides and ranges are
// below what files take for infinite.
void writeLp(const ModelData& model, const std::string& file, TextTarget& out);
void writeMps(const ModelData& model, const std::string& file, TextTarget& out);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_FORMAT_WRITERS_H_
