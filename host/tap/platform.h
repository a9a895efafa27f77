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

#include "tapped_functions.h" // WLHOST_TAPPED, made of tests/checks/tapped.txt

#ifdef _FILE_OFFSET_BITS
#error "the module's open() and lseek() are those of the default offsets"
#endif

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
