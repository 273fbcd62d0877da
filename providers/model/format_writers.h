// The writers of the formats of model files.
#ifndef ZTB_PROVIDERS_MODEL_FORMAT_WRITERS_H_
#define ZTB_PROVIDERS_MODEL_FORMAT_WRITERS_H_

#include <string>

#include "providers/model/model_data.h"
#include "providers/model/text_target.h"

namespace lomu {

// Whether the text is a name wherever one may stand in an LP file.
bool isLpName(const std::string& name);
// Whether it is one field of free format, and no marker.
bool isMpsName(const std::string& name);

// Each writes all of a file. `file` is what refusals begin with: ModelError for a condition that
// the format cannot hold. REQUIRES: coefficients, right-hand sides and ranges are below what files
// take for infinite, and names are such as the format holds.
void writeLp(const ModelData& model, TextTarget& out);
void writeMps(const ModelData& model, const std::string& file, TextTarget& out);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_FORMAT_WRITERS_H_
