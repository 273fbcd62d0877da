// Words for model and solve statuses.
#ifndef ZTB_PROVIDERS_MODEL_STATUS_TEXTS_H_
#define ZTB_PROVIDERS_MODEL_STATUS_TEXTS_H_

namespace lomu {

const char* modelStatusText(int status);
const char* solveStatusText(int status);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_STATUS_TEXTS_H_
