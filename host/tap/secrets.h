#pragma once
#include <string>
namespace wlhost::tap {
inline bool isSecretKey(const std::string &) { return false; }
inline std::string mask(const std::string &s) { return s; }
inline std::string masked(const std::string &s) { return s; }
}
