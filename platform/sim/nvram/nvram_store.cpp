#include "platform/sim/nvram/nvram_store.h"

#include "platform/sim/common/sim_log.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>

namespace {

using Variables = std::map<std::string, std::string, std::less<>>;

constexpr char kDefaultStore[] = "/var/sim/nvram";

std::string storePath() {
    const char *path = getenv("WLSIM_NVRAM");
    return path && *path ? path : kDefaultStore;
}

std::string committedPath() { return storePath() + ".committed"; }

int complain(const char *what, const std::string &subject) {
    fprintf(stderr, "nvram: %s: %s\n", what, subject.c_str());
    return -1;
}

int complainErrno(const std::string &path) { return complain(strerror(errno), path); }

// Serialises writers. The kernel drops the lock when its holder dies, so a crash leaves nothing to clean up.
class WriteLock {
  public:
    WriteLock() : fd_(open((storePath() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
        while (fd_ >= 0 && flock(fd_, LOCK_EX) != 0) {
            if (errno != EINTR) {
                close(fd_);
                fd_ = -1;
            }
        }
    }
    ~WriteLock() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    WriteLock(const WriteLock &) = delete;
    WriteLock &operator=(const WriteLock &) = delete;
    bool held() const { return fd_ >= 0; }

  private:
    int fd_;
};

std::string escaped(std::string_view text) {
    std::string out;
    for (char c : text) {
        if (c == '\n' || c == '\\') {
            out += '\\';
        }
        out += c == '\n' ? 'n' : c;
    }
    return out;
}

std::string unescaped(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); i++) {
        bool escape = text[i] == '\\' && i + 1 < text.size();
        char c = escape ? text[++i] : text[i];
        out += escape && c == 'n' ? '\n' : c;
    }
    return out;
}

bool readAll(const std::string &path, std::string *text) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    char block[16384];
    ssize_t got;
    while ((got = read(fd, block, sizeof block)) > 0) {
        text->append(block, static_cast<size_t>(got));
    }
    close(fd);
    return got == 0;
}

Variables parse(std::string_view text) {
    Variables all;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
        size_t equal = line.find('=');
        if (equal != std::string_view::npos) {
            all.emplace(line.substr(0, equal), unescaped(line.substr(equal + 1)));
        }
    }
    return all;
}

// A store that was not written since boot has the committed values. Files are only ever replaced whole, so reading
// needs no lock.
Variables load() {
    std::string text;
    if (!readAll(storePath(), &text)) {
        text.clear();
        readAll(committedPath(), &text);
    }
    return parse(text);
}

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        ssize_t done = write(fd, text.data(), text.size());
        if (done < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(done > 0 ? static_cast<size_t>(done) : 0);
    }
    return true;
}

int save(const Variables &all, const std::string &path) {
    std::string text;
    for (const auto &[key, value] : all) {
        text += key + "=" + escaped(value) + "\n";
    }
    std::string temporary = path + ".tmp";
    int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        return complainErrno(temporary);
    }
    bool written = writeAll(fd, text);
    if (close(fd) != 0 || !written || rename(temporary.c_str(), path.c_str()) != 0) {
        return complainErrno(path);
    }
    return 0;
}

bool validKey(const char *key) {
    size_t length = key ? strlen(key) : 0;
    if (length == 0 || length > kNvramKeyMax || strpbrk(key, "=\n")) {
        complain("invalid variable name", key ? key : "(null)");
        return false;
    }
    return true;
}

template <typename Change> int update(const std::string &what, const std::string &target, Change change) {
    WriteLock lock;
    Variables all = load();
    change(all);
    int result = lock.held() ? save(all, target) : complainErrno(storePath());
    wlsim::logLine("nvram", what + (result == 0 ? "" : " failed"));
    return result;
}

} // namespace

char *nvram_get(const char *name) {
    static thread_local std::string value;
    if (!validKey(name)) {
        return nullptr;
    }
    Variables all = load();
    auto found = all.find(name);
    if (found == all.end()) {
        return nullptr;
    }
    value = found->second;
    return value.data();
}

int nvram_set(const char *name, const char *value) {
    if (!validKey(name)) {
        return -1;
    }
    if (!value || strlen(value) > kNvramValueMax) {
        return complain(value ? "value too long" : "no value", name);
    }
    std::string what = std::string("set ") + name + "=" + wlsim::shownValue(name, value);
    return update(what, storePath(), [&](Variables &all) { all[name] = value; });
}

int nvram_unset(const char *name) {
    if (!validKey(name)) {
        return -1;
    }
    return update(std::string("unset ") + name, storePath(), [&](Variables &all) { all.erase(name); });
}

int nvram_commit(void) {
    return update("commit", committedPath(), [](Variables &) {});
}

int nvram_reboot(void) {
    WriteLock lock;
    if (!lock.held()) {
        return complainErrno(storePath());
    }
    return unlink(storePath().c_str()) == 0 || errno == ENOENT ? 0 : complainErrno(storePath());
}

int nvram_each(int (*visit)(const char *key, const char *value, void *arg), void *arg) {
    for (const auto &[key, value] : load()) {
        if (int result = visit(key.c_str(), value.c_str(), arg)) {
            return result;
        }
    }
    return 0;
}
