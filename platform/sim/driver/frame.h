// Messages between tools and driver: fields with their length before them, and the whole length before that.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace wlsim {

constexpr uint32_t kLargestFrame = 64u << 20;

std::string packFrame(const std::vector<std::string> &fields);

/** Takes one frame off the front of a buffer; nothing while it is incomplete. Clears `sane` for a broken one. */
std::optional<std::vector<std::string>> takeFrame(std::string *buffer, bool *sane);

} // namespace wlsim
