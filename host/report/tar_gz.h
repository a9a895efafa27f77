// A tar.gz in memory: a few small files, written and read without touching the disk.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace wlhost {

using Files = std::map<std::string, std::string>; // contents by name

// POSIX ustar, mode 0600, compressed with gzip. Names have at most 99 characters. `time` is that of the files.
std::string packTarGz(const Files &files, long time);
// The regular files of an archive whose names are in `known`; others are skipped. Throws a Failure with status 2 when
// it is no archive, is cut, or holds more than `most` bytes.
Files unpackTarGz(std::string_view archive, const std::vector<std::string> &known, size_t most);

} // namespace wlhost
