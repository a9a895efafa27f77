#include "host/report/tar_gz.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <optional>

#include "host/base/failure.h"

namespace wlhost {
namespace {

constexpr size_t kBlock = 512;
constexpr int kGzip = 16 + MAX_WBITS; // zlib's way to say that the stream has gzip's header

// Places of a ustar header's fields.
struct Place {
    size_t at, size;
};
constexpr Place kName{0, 100}, kMode{100, 8}, kUser{108, 8}, kGroup{116, 8}, kSize{124, 12}, kTime{136, 12},
    kChecksum{148, 8}, kType{156, 1}, kMagic{257, 8};
constexpr std::string_view kUstar("ustar\00000", 8);

using Header = std::array<char, kBlock>;

size_t padded(size_t size) { return (size + kBlock - 1) / kBlock * kBlock; }

unsigned checksumOf(Header header) {
    std::fill_n(header.begin() + kChecksum.at, kChecksum.size, ' ');
    return std::accumulate(header.begin(), header.end(), 0U,
                           [](unsigned sum, char c) { return sum + static_cast<unsigned char>(c); });
}

void putOctal(Header &header, Place place, unsigned long long value) {
    std::snprintf(&header[place.at], place.size, "%0*llo", static_cast<int>(place.size - 1), value);
}

std::optional<size_t> takeOctal(std::string_view header, Place place) {
    size_t value = 0;
    std::string_view digits = header.substr(place.at, place.size);
    digits = digits.substr(0, digits.find_first_of(std::string_view(" \0", 2)));
    for (char digit : digits) {
        if (digit < '0' || digit > '7')
            return std::nullopt;
        value = value * 8 + static_cast<size_t>(digit - '0');
    }
    return digits.empty() ? std::nullopt : std::optional(value);
}

std::string headerOf(const std::string &name, size_t size, long time) {
    Header header{};
    name.copy(&header[kName.at], kName.size - 1);
    putOctal(header, kMode, 0600);
    putOctal(header, kUser, 0);
    putOctal(header, kGroup, 0);
    putOctal(header, kSize, size);
    putOctal(header, kTime, static_cast<unsigned long long>(time));
    header[kType.at] = '0';
    kUstar.copy(&header[kMagic.at], kUstar.size());
    std::snprintf(&header[kChecksum.at], kChecksum.size, "%06o", checksumOf(header));
    return {header.begin(), header.end()};
}

[[noreturn]] void refuseTar(const char *what) {
    throw Failure(Status::kUsage, "archive", what, "make one with: wlhost report");
}

// A z_stream that is ended on every path.
struct Stream : z_stream {
    int (*end)(z_stream *);
    explicit Stream(int (*ended)(z_stream *)) : z_stream{}, end(ended) {}
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    ~Stream() { end(this); }
    void setInput(std::string_view bytes) {
        next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data())); // zlib does not write there
        avail_in = static_cast<uInt>(bytes.size());
    }
};

std::string deflated(std::string_view bytes) {
    Stream stream(deflateEnd);
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzip, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    std::string out(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.setInput(bytes);
    stream.next_out = reinterpret_cast<Bytef *>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    if (deflate(&stream, Z_FINISH) != Z_STREAM_END)
        throw std::runtime_error("cannot compress");
    out.resize(stream.total_out);
    return out;
}

// No more than `most` bytes are ever held, whatever the archive would grow to.
std::string inflated(std::string_view bytes, size_t most) {
    Stream stream(inflateEnd);
    if (inflateInit2(&stream, kGzip) != Z_OK)
        throw std::bad_alloc();
    stream.setInput(bytes);
    std::string out;
    std::array<char, 1 << 16> piece;
    for (int result = Z_OK; result != Z_STREAM_END;) {
        stream.next_out = reinterpret_cast<Bytef *>(piece.data());
        stream.avail_out = static_cast<uInt>(piece.size());
        result = inflate(&stream, Z_NO_FLUSH);
        out.append(piece.data(), piece.size() - stream.avail_out);
        if (result == Z_DATA_ERROR)
            refuseTar(out.empty() ? "is no archive" : "is damaged");
        if (out.size() > most)
            refuseTar("is too large");
        if (result == Z_BUF_ERROR || (result == Z_OK && stream.avail_in == 0 && stream.avail_out != 0))
            refuseTar(out.empty() ? "is no archive" : "is cut");
        if (result != Z_OK && result != Z_STREAM_END)
            refuseTar("is no archive");
    }
    return out;
}

} // namespace

std::string packTarGz(const Files &files, long time) {
    std::string tar;
    for (const auto &[name, content] : files) {
        tar += headerOf(name, content.size(), time);
        tar += content;
        tar.resize(padded(tar.size()));
    }
    tar.resize(tar.size() + 2 * kBlock); // the end of a tar
    return deflated(tar);
}

Files unpackTarGz(std::string_view archive, const std::vector<std::string> &known, size_t most) {
    const std::string tar = inflated(archive, most);
    Files files;
    for (size_t at = 0;;) {
        if (tar.size() - at < kBlock)
            refuseTar("is cut");
        Header header;
        std::copy_n(tar.begin() + static_cast<ptrdiff_t>(at), kBlock, header.begin());
        const std::string_view text(header.data(), kBlock);
        if (text.find_first_not_of('\0') == std::string_view::npos)
            return files;
        auto size = takeOctal(text, kSize), checksum = takeOctal(text, kChecksum);
        if (!size || !checksum || *checksum != checksumOf(header))
            refuseTar("holds no tar");
        at += kBlock;
        if (*size > tar.size() - at)
            refuseTar("is cut");
        std::string_view name = text.substr(0, strnlen(text.data(), kName.size));
        if (name.substr(0, 2) == "./") // packed again by another tool
            name.remove_prefix(2);
        if (text[kType.at] == '0' && std::count(known.begin(), known.end(), name) == 1)
            files[std::string(name)] = tar.substr(at, *size);
        at = std::min(at + padded(*size), tar.size());
    }
}

} // namespace wlhost
