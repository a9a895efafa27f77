#include "host/base/masking.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <deque>
#include <iterator>

#include "host/base/escape.h"

namespace wlhost {
namespace {

constexpr std::string_view kSecretEnds[] = {"psk",        "key1",        "key2", "key3",      "key4",
                                            "radius_key", "network_key", "pin",  "passphrase"};
constexpr size_t kMostSecrets = 512;
constexpr size_t kShortest = 4; // shorter ones are part of everything

// A secret in the spellings in which it may stand in a text.
struct Secret {
    std::string value;
    std::array<std::string, 3> spellings;
};
std::deque<Secret> secrets;

// 'a''b' for ab, as the module writes names into commands.
std::string singlyQuoted(const std::string &value) {
    std::string text;
    for (char c : value)
        text += std::string("'") + c + "'";
    return text;
}

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Each place where it stands as a word of its own.
void replaceWords(std::string &text, const std::string &word) {
    for (size_t at = 0; (at = text.find(word, at)) != std::string::npos;) {
        const size_t end = at + word.size();
        const bool inside = (at > 0 && isWordCharacter(text[at - 1]) && isWordCharacter(word.front())) ||
                            (end < text.size() && isWordCharacter(text[end]) && isWordCharacter(word.back()));
        if (!inside)
            text.replace(at, word.size(), kMask);
        at += inside ? 1 : std::string_view(kMask).size();
    }
}

// The value behind NAME=, to the next blank, and behind "NAME = ", as the module logs it, to the end of the line.
void maskAssignments(std::string &text) {
    for (size_t sign = 0; (sign = text.find('=', sign)) != std::string::npos; ++sign) {
        const bool spaced = sign > 0 && text[sign - 1] == ' ';
        const size_t end = sign - spaced;
        size_t begin = end;
        while (begin > 0 && (isWordCharacter(text[begin - 1]) || text[begin - 1] == '.'))
            --begin;
        if (!isSecretKey(std::string_view(text).substr(begin, end - begin)))
            continue;
        const size_t value = sign + 1 + (spaced && sign + 1 < text.size() && text[sign + 1] == ' ');
        const size_t over = std::min(text.find_first_of(spaced ? "\n" : " \t\n\"'", value), text.size());
        if (over > value)
            text.replace(value, over - value, kMask);
    }
}

} // namespace

bool isSecretKey(std::string_view key) {
    return std::any_of(std::begin(kSecretEnds), std::end(kSecretEnds), [&](std::string_view end) {
        return key.size() >= end.size() && key.substr(key.size() - end.size()) == end &&
               (key.size() == end.size() || key[key.size() - end.size() - 1] == '_');
    });
}

void learnSecret(const std::string &value) {
    auto known = [&](const Secret &one) { return one.value == value; };
    if (value.size() < kShortest || std::any_of(secrets.begin(), secrets.end(), known))
        return;
    secrets.push_back({value, {value, escapeBytes(value), singlyQuoted(value)}});
    if (secrets.size() > kMostSecrets)
        secrets.pop_front();
}

std::string masked(std::string text) {
    for (const Secret &secret : secrets)
        for (const std::string &spelling : secret.spellings)
            replaceWords(text, spelling);
    maskAssignments(text);
    return text;
}

} // namespace wlhost
