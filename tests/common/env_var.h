// Sets or clears one environment variable for the lifetime of the object.
#pragma once

#include <cstdlib>
#include <string>

namespace orv::test {

class EnvVar {
public:
    EnvVar(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            old_ = old;
            had_ = true;
        }
        value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    }
    ~EnvVar() { had_ ? setenv(name_, old_.c_str(), 1) : unsetenv(name_); }
    EnvVar(const EnvVar&) = delete;
    EnvVar& operator=(const EnvVar&) = delete;

private:
    const char* name_;
    std::string old_;
    bool had_ = false;
};

}  // namespace orv::test
