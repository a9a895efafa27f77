#include "module/text.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

namespace wlbrcm {

bool copyText(char *to, size_t size, std::string_view from) {
    const size_t length = from.size() < size ? from.size() : size - 1;
    if (length > 0) // an unset text has no address
        memcpy(to, from.data(), length);
    to[length] = '\0';
    return length == from.size();
}

bool appendFormat(char *text, size_t size, size_t *used, const char *format, va_list args) {
    const size_t room = size - *used;
    const int length = vsnprintf(text + *used, room, format, args);
    if (length < 0) {
        text[*used] = '\0';
        return false;
    }
    const bool fits = static_cast<size_t>(length) < room;
    *used += fits ? static_cast<size_t>(length) : room - 1;
    return fits;
}

bool Words::next(std::string_view *word) {
    while (!done_) {
        const size_t length = indexOf(rest_, separator_);
        *word = {rest_.data(), length};
        done_ = length == rest_.size();
        rest_.remove_prefix(done_ ? length : length + 1);
        if (keepEmpty_ || !word->empty())
            return true;
    }
    return false;
}

size_t positionOf(std::string_view text, std::string_view part) {
    return text.empty() ? std::string_view::npos : text.find(part);
}

int decimal(const char *text) {
    const long number = strtol(text, nullptr, 10);
    return number > INT_MAX ? INT_MAX : number < INT_MIN ? INT_MIN : static_cast<int>(number);
}

} // namespace wlbrcm
