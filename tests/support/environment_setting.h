// Variables of the environment, which programs that a test starts have too.
#ifndef ZTB_TESTS_SUPPORT_ENVIRONMENT_SETTING_H_
#define ZTB_TESTS_SUPPORT_ENVIRONMENT_SETTING_H_

#include <cstdlib>
#include <string>

namespace ztbtest {

// An empty value is none.
inline void setVariable(const std::string& name, const std::string& value) {
#ifdef _WIN32
  _putenv_s(name.c_str(), value.c_str());
#else
  value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
#endif
}

// One that was not set before, set while this object lives.
class EnvironmentSetting {
 public:
  EnvironmentSetting(const char* name, const char* value) : name_(name) {
    setVariable(name_, value);
  }
  EnvironmentSetting(const EnvironmentSetting&) = delete;
  EnvironmentSetting& operator=(const EnvironmentSetting&) = delete;
  ~EnvironmentSetting() { setVariable(name_, ""); }

 private:
  std::string name_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_ENVIRONMENT_SETTING_H_
