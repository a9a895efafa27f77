// How the module's calls are told in a trace: recording and replay describe them with the same words.
#pragma once

#include <netinet/in.h>

#include <string>

#include "host/report/trace.h"
#include "host/tap/handler.h"

namespace wlhost {

inline std::string textOf(const char *text) { return text ? text : ""; }
Entry callOf(const char *name, std::string what = {}, std::string value = {});
bool isCommand(const Entry &entry);

// "127.0.0.1:40500"; empty for an address of another family.
std::string addressText(const sockaddr *address, socklen_t length);
sockaddr_in inetAddressOf(const std::string &text);

Entry openCall(const char *path, int flags);
Entry priorityCall(pid_t pid, int policy, const sched_param &parameters);
Entry affinityCall(pid_t pid, size_t size, const cpu_set_t &set);
Entry signalCall(int number);
Entry optionCall(int level, int option, const void *value, socklen_t length);
Entry sendCall(const void *data, size_t size, const sockaddr *to, socklen_t length);
Entry pauseCall(const timespec &wanted);
// What is asked for, and what the block holds when the kernel answered.
Entry ioctlCall(unsigned long request, const void *block);
std::string ioctlAnswer(unsigned long request, const void *block);
void putIoctlAnswer(unsigned long request, const std::string &answer, void *block);

// Kind, owner and links of a file, all that the module looks at.
std::string statusText(const struct stat &status, uid_t own);
void putStatus(const std::string &text, uid_t own, struct stat &status);

// A directory's entries, a line each: "d" for a folder or "-", a blank, the name.
std::string listingLine(const dirent &entry);

std::string timeText(const timespec &time);
timespec timespecOf(const std::string &text);

// Exit status of what was waited for, 128 and the number of a signal, or -1; and back.
int exitStatus(int waited);
int waitedStatus(int64_t exited);

} // namespace wlhost
