// Clients that take a host's places: connections that say nothing, and followers of its events.
// Usage: crowd SOCKET SILENT FOLLOWERS. Prints "ready" once all are there, then how many followers were told an event.
//        crowd SOCKET <REQUEST. One client that sends any bytes and prints what comes back.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

static int connection(const char *path) {
    struct sockaddr_un address = {.sun_family = AF_UNIX};
    struct timeval patience = {.tv_sec = 10};
    int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    snprintf(address.sun_path, sizeof address.sun_path, "%s", path);
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (fd < 0 || connect(fd, (struct sockaddr *)&address, sizeof address) != 0) {
        perror(path);
        exit(1);
    }
    return fd;
}

// Whether a line came.
static int told(int fd) {
    char letter = 0;
    while (letter != '\n')
        if (read(fd, &letter, 1) != 1)
            return 0;
    return 1;
}

static int ask(int fd) {
    static char text[65536];
    size_t length = fread(text, 1, sizeof text, stdin);
    if (write(fd, text, length) != (ssize_t)length)
        return 1;
    for (ssize_t got; (got = read(fd, text, sizeof text)) > 0;)
        fwrite(text, 1, (size_t)got, stdout);
    return 0;
}

int main(int argc, char **argv) {
    const char request[] = "{\"command\": \"events\"}\n";
    int followers[1000], count = 0;
    if (argc == 2)
        return ask(connection(argv[1]));
    if (argc != 4 || atoi(argv[3]) > 1000)
        return 2;
    for (int i = 0; i < atoi(argv[3]); ++i) {
        followers[i] = connection(argv[1]);
        if (write(followers[i], request, sizeof request - 1) < 0 || !told(followers[i]))
            return 1;
    }
    for (int i = 0; i < atoi(argv[2]); ++i)
        connection(argv[1]);
    puts("ready");
    fflush(stdout);
    for (int i = 0; i < atoi(argv[3]); ++i)
        count += told(followers[i]);
    printf("%d told\n", count);
    return 0;
}
