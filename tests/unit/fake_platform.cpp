#include "fake_platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <net/if.h>
#include <pthread.h>
#include <sched.h>
#include <set>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bcmnvram.h>
#include <wlctl_lib.h>

namespace {

FakePlatform *current = nullptr;

bool startsWith(const std::string &text, const std::string &start) { return text.compare(0, start.size(), start) == 0; }

std::string format(const char *text, ...) __attribute__((format(printf, 1, 2)));
std::string format(const char *text, ...) {
    char buffer[4096];
    va_list args;
    va_start(args, text);
    vsnprintf(buffer, sizeof buffer, text, args);
    va_end(args);
    return buffer;
}

void record(const std::string &entry) { current->journal.push_back(entry); }

bool fails(const std::string &call) { return current != nullptr && current->failing.count(call) != 0; }

void recordLog(int level, const char *module, const char *function, int line, const char *text, ...) {
    EXPECT_STREQ("BRCM", module);
    EXPECT_GT(line, 0);
    char buffer[8192];
    va_list args;
    va_start(args, text);
    vsnprintf(buffer, sizeof buffer, text, args);
    va_end(args);
    current->logs.push_back({level, function, buffer});
}

// The file that a command's standard output goes to, or nothing.
std::string redirection(const std::string &command) {
    for (size_t at = command.rfind('>'); at != std::string::npos && at > 0; at = command.rfind('>', at - 1)) {
        if (command[at - 1] == '2' || command[at - 1] == '&')
            continue;
        const size_t from = command.find_first_not_of(' ', at + 1);
        const std::string file = command.substr(from, command.find(' ', from) - from);
        return file == "/dev/null" ? "" : file;
    }
    return "";
}

// "rm FILE" and "rm -f START*" act on the files, as the shell would.
void removeFiles(const std::string &command) {
    const size_t from = command.find_first_not_of(' ', startsWith(command, "rm -f ") ? 6 : 3);
    std::string name = command.substr(from, command.find(' ', from) - from);
    const bool pattern = !name.empty() && name.back() == '*';
    if (pattern)
        name.pop_back();
    for (auto file = current->files.begin(); file != current->files.end();)
        file = (pattern ? startsWith(file->first, name) : file->first == name) ? current->files.erase(file) : ++file;
}

struct Cookie {
    std::string path; // empty for a pipe
    std::string content;
    size_t at = 0;
    bool writes = false;
};

ssize_t readCookie(void *stream, char *to, size_t size) {
    auto *cookie = static_cast<Cookie *>(stream);
    const size_t count = std::min(size, cookie->content.size() - cookie->at);
    memcpy(to, cookie->content.data() + cookie->at, count);
    cookie->at += count;
    return static_cast<ssize_t>(count);
}

ssize_t writeCookie(void *stream, const char *from, size_t size) {
    static_cast<Cookie *>(stream)->content.append(from, size);
    return static_cast<ssize_t>(size);
}

int seekCookie(void *stream, off64_t *offset, int whence) {
    auto *cookie = static_cast<Cookie *>(stream);
    const off64_t size = static_cast<off64_t>(cookie->content.size());
    const off64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? static_cast<off64_t>(cookie->at) : size;
    *offset += base;
    if (*offset < 0 || *offset > size)
        return -1;
    cookie->at = static_cast<size_t>(*offset);
    return 0;
}

int closeCookie(void *stream) {
    auto *cookie = static_cast<Cookie *>(stream);
    if (cookie->writes && current != nullptr)
        current->files[cookie->path] = cookie->content;
    delete cookie;
    return 0;
}

FILE *openCookie(Cookie *cookie, const char *mode) {
    return fopencookie(cookie, mode, {readCookie, writeCookie, seekCookie, closeCookie});
}

bool isOurs(const char *path) {
    if (current == nullptr || strstr(path, "gtest") != nullptr)
        return false;
    for (const char *start : {"/tmp/", "/var/", "/proc/", "/bin/", "/dev/chipinfo", "/dev/brcmboard"}) {
        if (startsWith(path, start))
            return true;
    }
    return false;
}

std::map<FILE *, int> pipes; // open pipe -> exit status of its command
std::map<int, std::string> openDevices;
std::set<int> openSockets; // the module keeps its event sockets for the life of the process; a test must not
constexpr int kFirstDevice = 9000;

struct Processes {
    std::map<int, std::string>::const_iterator next;
    bool self = true; // "self" and "meminfo" stand in /proc as well
    dirent entry = {};
};

} // namespace

struct FakeCalls {
    static const FakePlatform::Answer &find(const std::string &command) { return current->find(command); }
    static bool allocationFails() {
        if (current == nullptr || current->allocationsLeft_ < 0 || current->allocationsLeft_-- > 0)
            return false;
        current->allocationFailed = true;
        return true;
    }
};

extern "C" {

FILE *__real_fopen(const char *path, const char *mode);
int __real_remove(const char *path);
int __real_unlink(const char *path);
int __real_open(const char *path, int flags, ...);
int __real_close(int fd);
int __real_socket(int domain, int type, int protocol);
int __real_ioctl(int fd, unsigned long request, ...);
DIR *__real_opendir(const char *path);
dirent *__real_readdir(DIR *dir);
int __real_closedir(DIR *dir);
int __real_pclose(FILE *pipe);
void *__real_calloc(size_t count, size_t size);
int __real_pthread_mutex_init(pthread_mutex_t *mutex, const pthread_mutexattr_t *attributes);
int __real_select(int count, fd_set *reads, fd_set *writes, fd_set *errors, timeval *timeout);

int __wrap_system(const char *command) {
    record(std::string("run ") + command);
    if (startsWith(command, "rm "))
        removeFiles(command);
    const auto &answer = FakeCalls::find(command);
    const std::string file = redirection(command);
    if (!file.empty() && !answer.lost)
        current->files[file] = answer.output;
    return answer.status << 8;
}

FILE *__wrap_popen(const char *command, const char *mode) {
    record(std::string("pipe ") + command);
    const auto &answer = FakeCalls::find(command);
    if (answer.noPipe)
        return nullptr;
    auto *cookie = new Cookie;
    cookie->content = answer.output;
    FILE *pipe = openCookie(cookie, mode);
    pipes[pipe] = answer.status << 8;
    return pipe;
}

int __wrap_pclose(FILE *pipe) {
    const auto opened = pipes.find(pipe);
    if (opened == pipes.end())
        return __real_pclose(pipe);
    const int status = opened->second;
    pipes.erase(opened);
    fclose(pipe);
    return status;
}

unsigned __wrap_sleep(unsigned seconds) {
    record(format("sleep %u", seconds));
    return 0;
}

int __wrap_select(int count, fd_set *reads, fd_set *writes, fd_set *errors, timeval *timeout) {
    if (current == nullptr || timeout == nullptr)
        return __real_select(count, reads, writes, errors, timeout);
    const long wait = (timeout->tv_sec * 1000000L + timeout->tv_usec) / 20;
    timeval shorter = {wait / 1000000, static_cast<suseconds_t>(wait % 1000000)};
    return __real_select(count, reads, writes, errors, &shorter);
}

FILE *__wrap_fopen(const char *path, const char *mode) {
    if (!isOurs(path))
        return __real_fopen(path, mode);
    if (fails(std::string("fopen ") + path)) {
        errno = EACCES;
        return nullptr;
    }
    auto cookie = std::make_unique<Cookie>();
    cookie->path = path;
    cookie->writes = mode[0] == 'w';
    int pid = 0;
    if (sscanf(path, "/proc/%d/stat", &pid) == 1 && current->processes.count(pid) != 0)
        cookie->content = format("%d (%s) S 1 1 1 0", pid, current->processes[pid].c_str());
    else if (mode[0] == 'r' && current->files.count(path) == 0)
        return nullptr;
    else if (mode[0] == 'r')
        cookie->content = current->files[path];
    return openCookie(cookie.release(), mode);
}

int __wrap_remove(const char *path) {
    if (!isOurs(path))
        return __real_remove(path);
    return current->files.erase(path) == 1 ? 0 : -1;
}

int __wrap_unlink(const char *path) { return isOurs(path) ? __wrap_remove(path) : __real_unlink(path); }

int __wrap_chmod(const char *path, mode_t mode) {
    record(format("chmod %o %s", static_cast<unsigned>(mode), path));
    return 0;
}

int __wrap_open(const char *path, int flags, ...) {
    if (!isOurs(path)) {
        va_list args;
        va_start(args, flags);
        const unsigned mode = va_arg(args, unsigned);
        va_end(args);
        return __real_open(path, flags, mode);
    }
    if (current->devices.count(path) == 0 || fails(std::string("open ") + path)) {
        errno = ENOENT;
        return -1;
    }
    const int fd = kFirstDevice + static_cast<int>(openDevices.size());
    openDevices[fd] = path;
    return fd;
}

int __wrap_socket(int domain, int type, int protocol) {
    const int fd = __real_socket(domain, type, protocol);
    if (fd >= 0 && current != nullptr)
        openSockets.insert(fd);
    return fd;
}

int __wrap_close(int fd) {
    openSockets.erase(fd);
    return openDevices.erase(fd) == 1 ? 0 : __real_close(fd);
}

int __wrap_ioctl(int fd, unsigned long request, ...) {
    va_list args;
    va_start(args, request);
    void *block = va_arg(args, void *);
    va_end(args);
    const auto device = openDevices.find(fd);
    if (device != openDevices.end()) {
        record(format("ioctl %s %lx", device->second.c_str(), request));
        return current->devices[device->second](request, block);
    }
    if (current == nullptr || request != SIOCGIFHWADDR)
        return __real_ioctl(fd, request, block);
    auto *interface = static_cast<ifreq *>(block);
    const auto address = current->addresses.find(interface->ifr_name);
    if (address == current->addresses.end())
        return -1;
    EXPECT_EQ(2, interface->ifr_hwaddr.sa_family);
    memcpy(interface->ifr_hwaddr.sa_data, address->second.data(), address->second.size());
    return 0;
}

DIR *__wrap_opendir(const char *path) {
    if (current == nullptr || strcmp(path, "/proc") != 0)
        return __real_opendir(path);
    if (fails("opendir"))
        return nullptr;
    return reinterpret_cast<DIR *>(new Processes{current->processes.begin()});
}

dirent *__wrap_readdir(DIR *dir) {
    if (current == nullptr)
        return __real_readdir(dir);
    auto *processes = reinterpret_cast<Processes *>(dir);
    processes->entry.d_type = DT_DIR;
    if (processes->self) {
        processes->self = false;
        strcpy(processes->entry.d_name, "self");
    } else if (processes->next != current->processes.end()) {
        strcpy(processes->entry.d_name, std::to_string(processes->next->first).c_str());
        ++processes->next;
    } else {
        return nullptr;
    }
    return &processes->entry;
}

int __wrap_closedir(DIR *dir) {
    if (current == nullptr)
        return __real_closedir(dir);
    delete reinterpret_cast<Processes *>(dir);
    return 0;
}

int __wrap_sched_setaffinity(pid_t pid, size_t size, const cpu_set_t *cpus) {
    EXPECT_EQ(128U, size);
    record(format("affinity %d %lx", pid, *reinterpret_cast<const unsigned long *>(cpus)));
    return fails("affinity") ? -1 : 0;
}

int __wrap_sched_setscheduler(pid_t pid, int policy, const sched_param *parameters) {
    record(format("priority %d %d %d", pid, policy, parameters->sched_priority));
    return fails("priority") ? -1 : 0;
}

int __wrap_pthread_mutex_init(pthread_mutex_t *mutex, const pthread_mutexattr_t *attributes) {
    return fails("mutex") ? EAGAIN : __real_pthread_mutex_init(mutex, attributes);
}

void *__wrap_calloc(size_t count, size_t size) {
    return FakeCalls::allocationFails() ? nullptr : __real_calloc(count, size);
}

char *nvram_get(const char *name) {
    static std::string held; // as on the device: the text holds until the next call
    const auto variable = current->nvram.find(name);
    if (variable == current->nvram.end())
        return nullptr;
    held = variable->second;
    return held.data();
}

int nvram_set(const char *name, const char *value) {
    record(std::string("set ") + name + "=" + value);
    current->nvram[name] = value;
    return 0;
}

int nvram_unset(const char *name) {
    record(std::string("unset ") + name);
    current->nvram.erase(name);
    return 0;
}

int wlctl_cmd(const char *line) {
    record(std::string("wlctl ") + line);
    return FakeCalls::find(line).status;
}

// Provided by the host on a device.
int qvUtilStrReplace(char *text, const char *from, const char *to) {
    std::string replaced = text;
    for (size_t at = 0; (at = replaced.find(from, at)) != std::string::npos; at += strlen(to))
        replaced.replace(at, strlen(from), to);
    strcpy(text, replaced.c_str());
    return 0;
}

} // extern "C"

FakePlatform::FakePlatform() {
    current = this;
    brcm_print_fn = recordLog;
}

FakePlatform::~FakePlatform() {
    brcm_print_fn = nullptr;
    current = nullptr;
    for (const int fd : openSockets)
        __real_close(fd);
    openSockets.clear();
}

void FakePlatform::answer(const std::string &start, const std::string &output, int status) {
    answers_[start] = {output, status};
}

void FakePlatform::loseOutput(const std::string &start) { answers_[start].lost = true; }

void FakePlatform::failPipe(const std::string &start) { answers_[start].noPipe = true; }

const FakePlatform::Answer &FakePlatform::find(const std::string &command) const {
    static const Answer none;
    const Answer *best = &none;
    size_t length = 0;
    for (const auto &[start, answer] : answers_) {
        if (start.size() >= length && startsWith(command, start)) {
            best = &answer;
            length = start.size();
        }
    }
    return *best;
}

Lines FakePlatform::did(const std::string &start) const {
    Lines found;
    for (const std::string &entry : journal) {
        if (startsWith(entry, start))
            found.push_back(entry);
    }
    return found;
}

void FakePlatform::forget() {
    journal.clear();
    logs.clear();
}

Lines FakePlatform::logged(int level) const {
    Lines texts;
    for (const LogLine &line : logs) {
        if (line.level == level)
            texts.push_back(line.text);
    }
    return texts;
}

void FakePlatform::failAllocation(int n) {
    allocationsLeft_ = n;
    allocationFailed = false;
}

Lines FakePlatform::leftFiles() const {
    Lines left;
    for (const auto &[path, content] : files) {
        const bool cache = path.size() > 4 && path.compare(path.size() - 4, 4, "_cap") == 0;
        if ((startsWith(path, "/tmp/") || startsWith(path, "/var/")) && !cache)
            left.push_back(path);
    }
    return left;
}

long FakePlatform::slept() const {
    long seconds = 0;
    for (const std::string &entry : did("sleep "))
        seconds += std::stol(entry.substr(6));
    return seconds;
}

PlatformTest::PlatformTest() {
    act_wl_cnt = 0;
    brcm_gmode = 0;
    brcm_nmode = brcm_vhtmode = mcs_index = -1;
    brcm_nreqd = nonly5G = 0;
    brcm_bw = 20;
    for (int &id : wepkeyid)
        id = 1;
    wps_config_command = wps_action = wps_method = 0;
    memset(wps_uuid, 0, sizeof wps_uuid);
    memset(wps_autho_sta_mac, 0, sizeof wps_autho_sta_mac);
    enable_fenra_evt = 0;
}

void PlatformTest::TearDown() { EXPECT_EQ(Lines{}, platform.leftFiles()); }

Arg::Arg(std::string prefix_, std::string value_, std::string aux_, int index, void *result)
    : prefix(std::move(prefix_)),
      value(std::move(value_)),
      aux(std::move(aux_)),
      record{prefix.data(), value.data(), aux.data(), result, index} {}
