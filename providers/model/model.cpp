#include "providers/model/model.h"

#include <utility>

namespace lomu {

Model::Model(const ModelData& data, std::shared_ptr<Environment> itsEnvironment)
    : instance(data), dictionary(data), environment(std::move(itsEnvironment)) {}

}  // namespace lomu
