// Sets or removes environment variables for the length of a test, then
// puts back what was there before. Changes of TZ take effect at once.
#ifndef IDXBASE_TESTS_PLATFORM_SCOPED_ENV_H_
#define IDXBASE_TESTS_PLATFORM_SCOPED_ENV_H_

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace idxbase_test {

class ScopedEnv {
 public:
  using Value = std::optional<std::string>;  // nothing: undefined

  ScopedEnv() = default;
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;
  ~ScopedEnv() {
    for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) Apply(it->first, it->second);
  }

  void Set(const std::string& name, const Value& value) {
    const char* old = std::getenv(name.c_str());
    saved_.emplace_back(name, old != nullptr ? Value(old) : std::nullopt);
    Apply(name, value);
  }

 private:
  static void Apply(const std::string& name, const Value& value) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
    tzset();
  }

  std::vector<std::pair<std::string, Value>> saved_;
};

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_PLATFORM_SCOPED_ENV_H_
