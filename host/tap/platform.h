// The platform's own functions, past the tap.
#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <bcmnvram.h>
#include <wlctl_lib.h>

#ifdef _FILE_OFFSET_BITS
#error "the module's open() and lseek() are those of the default offsets"
#endif

// Every function through which the module reaches the world; the same names as in tests/checks/tapped.txt.
#define WLHOST_TAPPED(row)                                                                                             \
    row(bind) row(chmod) row(clock_gettime) row(close) row(closedir) row(dprintf) row(fcntl) row(fileno) row(fprintf)  \
        row(fputs) row(fread) row(fstat) row(geteuid) row(ioctl) row(lseek) row(nanosleep) row(nvram_get)              \
            row(nvram_set) row(nvram_unset) row(open) row(opendir) row(pclose) row(poll) row(popen) row(printf)        \
                row(puts) row(rand) row(read) row(readdir) row(recv) row(recvfrom) row(remove) row(sched_setaffinity)  \
                    row(sched_setscheduler) row(sendto) row(setsockopt) row(sigaction) row(socket) row(srand)          \
                        row(system) row(time) row(wlctl_cmd)

namespace wlhost::tap {

struct Platform {
// NOLINTBEGIN(bugprone-macro-parentheses,readability-identifier-naming): declarations, as the platform names them
#define WLHOST_MEMBER(name) decltype(&::name) name;
    WLHOST_TAPPED(WLHOST_MEMBER)
#undef WLHOST_MEMBER
    // NOLINTEND(bugprone-macro-parentheses,readability-identifier-naming)
};

// Those behind this program, until a module is loaded; then those that the module would have without the tap. A
// function that there is not is null.
const Platform &platform();

// Takes the platform's functions from a loaded library and what it needs.
void takePlatform(void *library);

} // namespace wlhost::tap
