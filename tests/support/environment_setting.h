// A variable of the environment, set while an object lives; it was not set before.
#ifndef ZTB_TESTS_SUPPORT_ENVIRONMENT_SETTING_H_
#define ZTB_TESTS_SUPPORT_ENVIRONMENT_SETTING_H_

#include <cstdlib>
#include <string>

namespace ztbtest {

class EnvironmentSetting {
 public:
  EnvironmentSetting(const char* name, const char* value) : name_(name) { set(value); }
  EnvironmentSetting(const EnvironmentSetting&) = delete;
  EnvironmentSetting& operator=(const EnvironmentSetting&) = delete;
  ~EnvironmentSetting() { set(""); }

 private:
  // An empty value is none.
  void set(const char* value) {
#ifdef _WIN32
    _putenv_s(name_.c_str(), value);
#else
    *value == '\0' ? unsetenv(name_.c_str()) : setenv(name_.c_str(), value, 1);
#endif
  }

  std::string name_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_ENVIRONMENT_SETTING_H_
