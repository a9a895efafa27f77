// Files under /tmp, which other local processes share, and how files and pipes are read. A host's signals never cut a
// read short.
#ifndef WLBRCM_MODULE_FILES_H
#define WLBRCM_MODULE_FILES_H

#include <cstdio>

#include "module/log.h"
#include "module/text.h"

namespace wlbrcm {

// Opens a file for reading: waits for nobody, follows no link, and takes only a regular file of this process's own user
// without another name. -1 for anything else.
int openOwnFile(const char *path);

// Creates a file for writing; -1 when anything stands at its name.
int createOwnFile(const char *path);

// Removes what stands at a name, but for a folder with something in it. False when it is still there, with a message
// that names `purpose`, what is not done therefore.
bool clearPlace(Here here, const char *path, const char *purpose);

// Lines of a file or a pipe that somebody else opened and closes.
class LineReader {
  public:
    // Before the first of these there are no lines, nor for a negative descriptor or a null stream.
    void readFrom(int descriptor) { descriptor_ = descriptor; }
    void readFrom(FILE *stream);

    // A line of at most Size - 1 characters, its end included; a longer one comes in pieces. False at the end, with
    // `line` as it was.
    template <size_t Size> bool next(char (&line)[Size]) {
        static_assert(Size <= kBufferSize);
        return copyLine(line, Size - 1);
    }
    // The same as a view of the reader's own memory, which holds until the next call. Like a terminated text it ends at
    // the first NUL.
    template <size_t Longest> bool next(std::string_view *line) {
        static_assert(Longest < kBufferSize);
        return takeLine(Longest, line);
    }

    // As much as fits of what has not been read yet, terminated. Returns its length.
    template <size_t Size> size_t rest(char (&text)[Size]) { return takeRest(text, Size - 1); }

    // Back to the first line; files only.
    void rewind();

  private:
    static constexpr size_t kBufferSize = 4096;

    bool takeLine(size_t longest, std::string_view *line);
    bool copyLine(char *line, size_t longest);
    size_t takeRest(char *text, size_t longest);
    bool fill();

    int descriptor_ = -1;
    FILE *stream_ = nullptr;
    size_t at_ = 0;
    size_t end_ = 0;
    bool sawNul_ = false;
    char buffer_[kBufferSize];
};

} // namespace wlbrcm

#endif
