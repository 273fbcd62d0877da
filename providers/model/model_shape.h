// What a model consists of: how much of everything, and its families of columns and rows, which
// share the name in front of their labels.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_SHAPE_H_
#define ZTB_PROVIDERS_MODEL_MODEL_SHAPE_H_

#include <ztb/model.h>

#include <deque>
#include <string>

#include "providers/model/model_data.h"

namespace lomu {

struct ModelShape {
  // Names without labels stay those of `data`, which has to live as long and be as it is.
  explicit ModelShape(const ModelData& data);

  ztbModelSize size{};
  std::deque<std::string> names;  // of families with labels
  // Columns first, each as they first stand in the model. There may be as many as columns and rows,
  // so they are never moved to a larger place.
  std::deque<ztbModelFamily> families;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_SHAPE_H_
