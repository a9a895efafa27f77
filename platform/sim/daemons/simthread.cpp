// A look-alike of one of the driver's kernel threads: a process of that name that does nothing, there to be found,
// placed on a CPU and given a priority.
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

void detach() {
    setsid();
    int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int fd = 0; fd <= 2; ++fd)
        dup2(null, fd);
    if (chdir("/") != 0)
        _exit(1);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2 || argv[1][0] == '-' || std::strlen(argv[1]) > 15) {
        std::fputs("usage: simthread NAME (1 to 15 characters)\n", stderr);
        return 2;
    }
    pid_t pid = fork();
    if (pid < 0) {
        std::perror("simthread");
        return 1;
    }
    if (pid > 0)
        return 0;
    prctl(PR_SET_NAME, argv[1]);
    detach();
    for (;;)
        pause();
}
