// What a model consists of: how much of everything, and its families of columns and rows, which
// share the name in front of their labels.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_SHAPE_H_
#define ZTB_PROVIDERS_MODEL_MODEL_SHAPE_H_

#include <ztb/model.h>

#include <string>
#include <vector>

#include "providers/model/model_data.h"

namespace lomu {

struct ModelShape {
  explicit ModelShape(const ModelData& data);

  ztbModelSize size{};
  std::vector<std::string> names;        // of the families
  std::vector<ztbModelFamily> families;  // columns first, each as they first stand in the model
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_SHAPE_H_
