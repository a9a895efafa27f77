#include "host/journal/journal.h"

#include <cstdio>

#include "host/base/escape.h"
#include "host/base/masking.h"
#include "host/tap/shell_line.h"

namespace wlhost {
namespace {

size_t sizeOf(const tap::Entry &entry) {
    size_t texts = 0;
    for (const std::string *text : {&entry.what, &entry.said, &entry.function, &entry.request})
        texts += text->capacity();
    return sizeof entry + texts;
}

std::string whatOf(const tap::Entry &entry) {
    if (entry.kind == tap::Kind::kNvram)
        return (entry.removes ? "unset " : "set ") + entry.what;
    return entry.what;
}

// A variable whose whole value is secret, blanks included.
std::string maskedWhat(const tap::Entry &entry) {
    const size_t sign = entry.what.find('=');
    if (entry.kind == tap::Kind::kNvram && !entry.removes && isSecretKey(entry.what.substr(0, sign)))
        return "set " + entry.what.substr(0, sign + 1) + kMask;
    return masked(whatOf(entry));
}

// Bytes that a script's text would not hold go through printf.
std::string shellWord(const std::string &text) {
    std::string word = tap::quoted(text);
    if (escapeBytes(text).find("\\x") == std::string::npos && text.find('\n') == std::string::npos)
        return word;
    std::string octal;
    for (unsigned char c : text) {
        char digits[8];
        snprintf(digits, sizeof digits, "\\0%03o", c);
        octal += digits;
    }
    return "\"$(printf %b '" + octal + "')\"";
}

std::string commented(const std::string &text) { return "# " + escapeBytes(text); }

} // namespace

void Journal::add(const tap::Entry &entry) {
    entries_.push_back(entry);
    bytes_ += sizeOf(entries_.back());
    while (entries_.size() > kMostEntries || bytes_ > kMostBytes) {
        bytes_ -= sizeOf(entries_.front());
        entries_.pop_front();
    }
    for (const auto &listener : listeners)
        listener(entry);
}

Journal &journal() {
    static Journal theJournal;
    return theJournal;
}

bool JournalFilter::admits(const tap::Entry &entry) const {
    return (!failed || entry.status != 0) && (!operation || entry.operation == *operation) &&
           (!since || entry.time >= *since);
}

json journalRow(const tap::Entry &entry, bool secrets) {
    const std::string what = secrets ? whatOf(entry) : maskedWhat(entry);
    return {{"time", utcText(entry.time)},
            {"operation", entry.operation},
            {"request", entry.request},
            {"function", entry.function},
            {"kind", wordOf(entry.kind)},
            {"what", escapeBytes(what)},
            {"status", entry.status},
            {"ms", static_cast<double>(entry.duration.count()) / 1000},
            {"stderr", escapeBytes(secrets ? entry.said : masked(entry.said))}};
}

std::string shellLine(const tap::Entry &entry, bool secrets) {
    const std::string shown = maskedWhat(entry);
    if (!secrets && shown != whatOf(entry))
        return commented("with a secret: " + shown);
    switch (entry.kind) {
    case tap::Kind::kNvram:
        return std::string("nvram ") + (entry.removes ? "unset " : "set ") + shellWord(entry.what);
    case tap::Kind::kPause:
        return "sleep " + entry.what;
    case tap::Kind::kDatagram:
        return commented("sent to a daemon: " + entry.what);
    default:
        return entry.what;
    }
}

} // namespace wlhost
