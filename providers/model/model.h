// A loaded model: the instance, its dictionary and its environment. The model handle of a database
// is a pointer to one.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_H_
#define ZTB_PROVIDERS_MODEL_MODEL_H_

#include <memory>
#include <string>

#include "providers/model/dictionary.h"
#include "providers/model/environment.h"
#include "providers/model/instance.h"

namespace lomu {

struct Model {
  Model(const ModelData& data, std::shared_ptr<Environment> itsEnvironment);

  Instance instance;
  Dictionary dictionary;
  std::shared_ptr<Environment> environment;
  std::string message;  // why the last solve or call failed
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_H_
