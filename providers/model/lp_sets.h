// The special ordered sets of an LP file.
#ifndef ZTB_PROVIDERS_MODEL_LP_SETS_H_
#define ZTB_PROVIDERS_MODEL_LP_SETS_H_

#include "providers/model/lp_expression.h"
#include "providers/model/lp_sections.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/model_data.h"

namespace lomu {

// Reads sets such as "s: S1 :: x : 1 y : 2", up to the keyword of the next section. The kind stands
// in each set where `section` is `sets`; otherwise the section tells it and "S1 ::" may be missing.
// A set without a label gets a name by its position.
void readLpSets(LpTokens& tokens, const LpColumns& columns, LpSection section, ModelData& model);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_LP_SETS_H_
