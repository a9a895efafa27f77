#include "frame.h"

#include <cstring>

namespace wlsim {
namespace {

void putSize(std::string &out, size_t size) {
    auto value = static_cast<uint32_t>(size);
    out.append(reinterpret_cast<const char *>(&value), sizeof value);
}

uint32_t sizeAt(const std::string &buffer, size_t at) {
    uint32_t value;
    memcpy(&value, buffer.data() + at, sizeof value);
    return value;
}

} // namespace

std::string packFrame(const std::vector<std::string> &fields) {
    std::string body;
    for (const std::string &field : fields) {
        putSize(body, field.size());
        body += field;
    }
    std::string out;
    putSize(out, body.size());
    return out + body;
}

std::optional<std::vector<std::string>> takeFrame(std::string *buffer, bool *sane) {
    constexpr size_t kSize = sizeof(uint32_t);
    *sane = buffer->size() < kSize || sizeAt(*buffer, 0) <= kLargestFrame;
    if (!*sane || buffer->size() < kSize || buffer->size() < kSize + sizeAt(*buffer, 0)) {
        return std::nullopt;
    }
    size_t end = kSize + sizeAt(*buffer, 0);
    std::vector<std::string> fields;
    for (size_t at = kSize; at < end;) {
        if (end - at < kSize || end - at - kSize < sizeAt(*buffer, at)) {
            *sane = false;
            return std::nullopt;
        }
        fields.push_back(buffer->substr(at + kSize, sizeAt(*buffer, at)));
        at += kSize + sizeAt(*buffer, at);
    }
    buffer->erase(0, end);
    return fields;
}

} // namespace wlsim
