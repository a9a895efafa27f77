#include "tests/unit/fake_platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <net/if.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
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

// A descriptor with this content, at its start.
int openMemory(const std::string &content) {
    const int fd = memfd_create("fake", MFD_CLOEXEC);
    EXPECT_EQ(static_cast<ssize_t>(content.size()), write(fd, content.data(), content.size()));
    lseek(fd, 0, SEEK_SET);
    return fd;
}

std::string contentOf(int fd) {
    std::string content(static_cast<size_t>(lseek(fd, 0, SEEK_END)), '\0');
    EXPECT_EQ(static_cast<ssize_t>(content.size()), pread(fd, content.data(), content.size(), 0));
    return content;
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
// Files and devices that are open, by descriptor.
struct OpenFile {
    std::string path;
    bool writes;
};
std::map<int, OpenFile> openFiles;

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

int __real_remove(const char *path);
ssize_t __real_sendto(int sock, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length);
int __real_open(const char *path, int flags, ...);
int __real_fstat(int fd, struct stat *status);
int __real_close(int fd);
int __real_ioctl(int fd, unsigned long request, ...);
DIR *__real_opendir(const char *path);
dirent *__real_readdir(DIR *dir);
int __real_closedir(DIR *dir);
int __real_pclose(FILE *pipe);
void *__real_calloc(size_t count, size_t size);
int __real_pthread_mutex_init(pthread_mutex_t *mutex, const pthread_mutexattr_t *attributes);
int __real_nanosleep(const timespec *time, timespec *left);
int __real_poll(pollfd *descriptors, nfds_t count, int timeout);

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
    FILE *pipe = fdopen(openMemory(answer.output), mode);
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

int __wrap_nanosleep(const timespec *time, timespec *left) {
    if (current == nullptr)
        return __real_nanosleep(time, left);
    EXPECT_EQ(0, time->tv_nsec);
    record(format("sleep %ld", static_cast<long>(time->tv_sec)));
    if (current->failing.erase("nanosleep") == 0)
        return 0;
    left->tv_sec = time->tv_sec - 1;
    errno = EINTR;
    return -1;
}

int __wrap_poll(pollfd *descriptors, nfds_t count, int timeout) {
    return __real_poll(descriptors, count, current != nullptr ? timeout / 20 : timeout);
}

ssize_t __wrap_sendto(int sock, const void *data, size_t size, int flags, const sockaddr *to, socklen_t length) {
    const ssize_t sent = __real_sendto(sock, data, size, flags, to, length);
    return fails("sendto") ? sent - 1 : sent;
}

int __wrap_remove(const char *path) {
    if (!isOurs(path))
        return __real_remove(path);
    if (fails(std::string("remove ") + path)) {
        errno = ENOTEMPTY;
        return -1;
    }
    current->foreign.erase(path);
    if (current->files.erase(path) == 1)
        return 0;
    errno = ENOENT;
    return -1;
}

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
    EXPECT_NE(0, flags & O_CLOEXEC) << path;
    const bool writes = (flags & O_CREAT) != 0;
    int pid = 0;
    std::string content;
    errno = ENOENT;
    if (fails(std::string("open ") + path))
        return -1;
    if (!writes && sscanf(path, "/proc/%d/stat", &pid) == 1 && current->processes.count(pid) != 0)
        content = format("%d (%s) S 1 1 1 0", pid, current->processes[pid].c_str());
    else if (!writes && current->files.count(path) != 0)
        content = current->files[path];
    else if (!writes && current->devices.count(path) == 0)
        return -1;
    // What others could have planted neither holds the module up nor leads it elsewhere.
    const int careful = O_NOFOLLOW | (writes ? O_EXCL : O_NONBLOCK);
    if (startsWith(path, "/tmp/")) {
        EXPECT_EQ(careful, flags & careful) << path;
    }
    const int fd = openMemory(content);
    openFiles[fd] = {path, writes};
    return fd;
}

int __wrap_fstat(int fd, struct stat *status) {
    const int result = __real_fstat(fd, status);
    const auto file = openFiles.find(fd);
    if (file != openFiles.end() && current->foreign.count(file->second.path) != 0)
        ++status->st_uid;
    return result;
}

int __wrap_close(int fd) {
    const auto file = openFiles.find(fd);
    if (file != openFiles.end()) {
        if (file->second.writes && current != nullptr)
            current->files[file->second.path] = contentOf(fd);
        openFiles.erase(file);
    }
    return __real_close(fd);
}

int __wrap_ioctl(int fd, unsigned long request, ...) {
    va_list args;
    va_start(args, request);
    void *block = va_arg(args, void *);
    va_end(args);
    const auto device = openFiles.find(fd);
    if (device != openFiles.end()) {
        record(format("ioctl %s %lx", device->second.path.c_str(), request));
        return current->devices[device->second.path](request, block);
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

int wlctl_cmd(char *line) {
    record(std::string("wlctl ") + line);
    const int status = FakeCalls::find(line).status;
    strtok(line, " "); // as on the device: the line is taken apart in place
    return status;
}

// Provided by the host on a device, and in a program that it is linked into.
__attribute__((weak)) int qvUtilStrReplace(char *text, const char *from, const char *to) {
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
}

void FakePlatform::answer(const std::string &start, const std::string &output, int status) {
    answers_[start] = {output, status};
}

void FakePlatform::loseOutput(const std::string &start) { answers_[start].lost = true; }

void FakePlatform::failPipe(const std::string &start) { answers_[start].noPipe = true; }

const FakePlatform::Answer &FakePlatform::find(const std::string &command) const {
    static const Answer kNone;
    const Answer *best = &kNone;
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

Lines openDescriptors() {
    Lines descriptors;
    for (int fd = 0; fd < 2048; ++fd) {
        if (fcntl(fd, F_GETFD) >= 0)
            descriptors.push_back(std::to_string(fd));
    }
    return descriptors;
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

PlatformTest::PlatformTest() : descriptors_(openDescriptors()) {
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

PlatformTest::~PlatformTest() {
    EXPECT_EQ(Lines{}, platform.leftFiles());
    EXPECT_EQ(descriptors_, openDescriptors());
}

Arg::Arg(std::string where, std::string what, std::string more, int index, void *result)
    : prefix(std::move(where)),
      value(std::move(what)),
      aux(std::move(more)),
      record{prefix.data(), value.data(), aux.data(), result, index} {}
