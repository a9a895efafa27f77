#include "host/report/calls.h"

#include <arpa/inet.h>
#include <net/if.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/base/escape.h"
#include "module/board.h"

namespace wlhost {
namespace {

// The name of a number that is another one on other processors, or the number.
struct Named {
    int number;
    const char *name;
};
template <size_t Count> std::string nameOf(const Named (&names)[Count], int number) {
    for (const Named &row : names)
        if (row.number == number)
            return row.name;
    return std::to_string(number);
}
constexpr Named kOptions[] = {{SO_REUSEADDR, "SO_REUSEADDR"}, {SO_RCVBUF, "SO_RCVBUF"}};
constexpr Named kPolicies[] = {{SCHED_RR, "SCHED_RR"}, {SCHED_FIFO, "SCHED_FIFO"}, {SCHED_OTHER, "SCHED_OTHER"}};

// The board's requests have the same numbers on every processor, but their blocks have not.
template <typename Block> const Block &as(const void *block) { return *static_cast<const Block *>(block); }

} // namespace

Entry callOf(const char *name, std::string what, std::string value) {
    Entry entry;
    entry.call = name;
    entry.what = std::move(what);
    entry.value = std::move(value);
    return entry;
}

bool isCommand(const Entry &entry) {
    return entry.call == "system" || entry.call == "popen" || entry.call == "wlctl_cmd";
}

std::string addressText(const sockaddr *address, socklen_t length) {
    sockaddr_in v4;
    char text[INET_ADDRSTRLEN];
    if (!address || length < sizeof v4)
        return "";
    std::memcpy(&v4, address, sizeof v4);
    if (v4.sin_family != AF_INET || !inet_ntop(AF_INET, &v4.sin_addr, text, sizeof text))
        return "";
    return text + (":" + std::to_string(ntohs(v4.sin_port)));
}

sockaddr_in inetAddressOf(const std::string &text) {
    sockaddr_in v4{};
    const size_t colon = std::min(text.find(':'), text.size());
    v4.sin_family = AF_INET;
    inet_pton(AF_INET, text.substr(0, colon).c_str(), &v4.sin_addr);
    if (colon < text.size())
        v4.sin_port = htons(static_cast<uint16_t>(std::strtoul(text.c_str() + colon + 1, nullptr, 10)));
    return v4;
}

Entry openCall(const char *path, int flags) {
    const int access = flags & O_ACCMODE;
    return callOf("open", path ? path : "", access == O_RDONLY ? "read" : access == O_WRONLY ? "write" : "device");
}

Entry priorityCall(pid_t pid, int policy, const sched_param &parameters) {
    return callOf("sched_setscheduler", std::to_string(pid),
                  nameOf(kPolicies, policy) + " " + std::to_string(parameters.sched_priority));
}

Entry affinityCall(pid_t pid, size_t size, const cpu_set_t &set) {
    std::string cpus;
    for (size_t cpu = 0; cpu < size * 8 && cpu < CPU_SETSIZE; ++cpu)
        if (CPU_ISSET(cpu, &set))
            cpus += (cpus.empty() ? "" : " ") + std::to_string(cpu);
    return callOf("sched_setaffinity", std::to_string(pid), cpus);
}

Entry signalCall(int number) { return callOf("sigaction", number == SIGCHLD ? "SIGCHLD" : std::to_string(number)); }

Entry optionCall(int level, int option, const void *value, socklen_t length) {
    int number = 0;
    if (value && length == sizeof number)
        std::memcpy(&number, value, sizeof number);
    return callOf("setsockopt", level == SOL_SOCKET ? nameOf(kOptions, option) : std::to_string(option),
                  std::to_string(number));
}

Entry sendCall(const void *data, size_t size, const sockaddr *to, socklen_t length) {
    return callOf("sendto", addressText(to, length), {static_cast<const char *>(data), data ? size : 0});
}

Entry pauseCall(const timespec &wanted) { return callOf("nanosleep", timeText(wanted)); }

Entry ioctlCall(unsigned long request, const void *block) {
    using namespace wlbrcm;
    char text[32];
    switch (request) {
    case SIOCGIFHWADDR: {
        const char *name = as<ifreq>(block).ifr_name;
        return callOf("ioctl", "SIOCGIFHWADDR", {name, strnlen(name, IFNAMSIZ)});
    }
    case kReadChipInfo:
        return callOf("ioctl", "chip-info", std::to_string(as<ChipInfoRequest>(block).item));
    case kReadBoardFlash:
        return callOf("ioctl", "board-flash", std::to_string(as<BoardRequest>(block).offset));
    case kReadGpioOverlays:
        return callOf("ioctl", "gpio-overlays");
    default:
        std::snprintf(text, sizeof text, "%#lx", request);
        return callOf("ioctl", text);
    }
}

std::string ioctlAnswer(unsigned long request, const void *block) {
    using namespace wlbrcm;
    switch (request) {
    case SIOCGIFHWADDR:
        return toHex({as<ifreq>(block).ifr_hwaddr.sa_data, 6});
    case kReadChipInfo:
        return std::to_string(as<ChipInfoRequest>(block).answer);
    case kReadBoardFlash: {
        const auto &board = as<BoardRequest>(block);
        return {static_cast<const char *>(board.buffer), static_cast<size_t>(std::max(board.length, 0))};
    }
    case kReadGpioOverlays: {
        int32_t word;
        std::memcpy(&word, as<BoardRequest>(block).buffer, sizeof word);
        return std::to_string(word);
    }
    default:
        return "";
    }
}

void putIoctlAnswer(unsigned long request, const std::string &answer, void *block) {
    using namespace wlbrcm;
    const auto number = static_cast<int32_t>(std::strtol(answer.c_str(), nullptr, 10));
    if (request == SIOCGIFHWADDR) {
        const std::string address = fromHex(answer).value_or("");
        std::memcpy(static_cast<ifreq *>(block)->ifr_hwaddr.sa_data, address.data(),
                    std::min<size_t>(address.size(), 6));
    } else if (request == kReadChipInfo) {
        static_cast<ChipInfoRequest *>(block)->answer = number;
    } else if (request == kReadBoardFlash) {
        const auto &board = as<BoardRequest>(block);
        std::memcpy(board.buffer, answer.data(),
                    std::min(answer.size(), static_cast<size_t>(std::max(board.length, 0))));
    } else if (request == kReadGpioOverlays) {
        std::memcpy(as<BoardRequest>(block).buffer, &number, sizeof number);
    }
}

std::string statusText(const struct stat &status, uid_t own) {
    return std::string(S_ISREG(status.st_mode) ? "file" : "other") + (status.st_uid == own ? " own " : " foreign ") +
           std::to_string(status.st_nlink);
}

void putStatus(const std::string &text, uid_t own, struct stat &status) {
    status = {};
    status.st_mode = text.rfind("file", 0) == 0 ? S_IFREG : S_IFIFO;
    status.st_uid = text.find(" own ") != std::string::npos ? own : own + 1;
    status.st_nlink = std::strtoul(text.c_str() + text.rfind(' ') + 1, nullptr, 10);
}

std::string listingLine(const dirent &entry) {
    return (entry.d_type == DT_DIR ? "d " : "- ") + std::string(entry.d_name) + "\n";
}

std::string timeText(const timespec &time) {
    char text[48];
    std::snprintf(text, sizeof text, "%lld.%09ld", static_cast<long long>(time.tv_sec), time.tv_nsec);
    return text;
}

timespec timespecOf(const std::string &text) {
    const size_t point = std::min(text.find('.'), text.size());
    timespec time{};
    time.tv_sec = static_cast<time_t>(std::strtoll(text.c_str(), nullptr, 10));
    if (point < text.size())
        time.tv_nsec = std::clamp(std::strtol(text.c_str() + point + 1, nullptr, 10), 0L, 999999999L);
    return time;
}

int exitStatus(int waited) {
    constexpr int kSignalled = 128;
    return waited == -1 ? -1 : WIFEXITED(waited) ? WEXITSTATUS(waited) : kSignalled + WTERMSIG(waited);
}

int waitedStatus(int64_t exited) { return exited < 0 ? -1 : static_cast<int>((exited & 0xff) << 8); }

} // namespace wlhost
