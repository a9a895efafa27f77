#include "host/report/masks.h"

#include <sys/random.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <stdexcept>

#include "host/base/escape.h"
#include "host/base/masking.h"
#include "host/report/records.h"

namespace wlhost {
namespace {

constexpr size_t kShortestSearched = 8;

struct SecretName {
    std::string_view name;
    SecretKind kind;
};
// Members of the module's records, inputs of operations and settings of the configuration; what variables hold secrets
// tells isSecretKey().
constexpr SecretName kNames[] = {
    {"wpaPsk", SecretKind::kKey},       {"wpaPskFallback", SecretKind::kKey}, {"wepKeys", SecretKind::kKey},
    {"radiusKey", SecretKind::kKey},    {"wpsDevicePin", SecretKind::kPin},   {"key", SecretKind::kKey},
    {"key_fallback", SecretKind::kKey}, {"secret", SecretKind::kKey},
};

// Not secret, but public constants that the module tells from all others: push button, and the PIN of no device.
constexpr std::string_view kPublicPins[] = {WLBRCM_PBC_PIN, WLBRCM_DEFAULT_DEVICE_PIN};

bool isAlnum(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool isHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

// One of `choice`, by the kernel's randomness.
char drawn(std::string_view choice) {
    unsigned char byte = 0;
    const auto limit = 256 - 256 % choice.size(); // so that all are equally likely
    do {
        if (getrandom(&byte, 1, 0) != 1)
            throw std::runtime_error("the system gives no random numbers");
    } while (byte >= limit);
    return choice[byte % choice.size()];
}

// The digit that makes the seven before it a PIN (Wi-Fi Protected Setup).
char checksumDigit(std::string_view pin) {
    int sum = 0;
    for (size_t i = 0; i < 7; ++i)
        sum += (pin[i] - '0') * (i % 2 == 0 ? 3 : 1);
    return static_cast<char>('0' + (10 - sum % 10) % 10);
}

bool allDigits(std::string_view text) { return std::all_of(text.begin(), text.end(), isDigit); }

std::string drawnPin(const std::string &pin) {
    std::string mask = pin;
    for (char &c : mask)
        if (isDigit(c))
            c = drawn("0123456789");
    if (pin.size() == 8 && allDigits(pin)) {
        // A wrong checksum stays as wrong as it was.
        const int wrongBy = pin[7] - checksumDigit(pin);
        mask[7] = static_cast<char>('0' + (checksumDigit(mask) - '0' + wrongBy + 10) % 10);
    }
    return mask;
}

bool isHexKey(const std::string &text) {
    return (text.size() == 64 || text.size() == 26 || text.size() == 10) &&
           std::all_of(text.begin(), text.end(), isHexDigit);
}

// Letters that are no hexadecimal digits: a text never becomes a key of digits. A blank at the end has a meaning for
// the module and stays.
std::string drawnKey(const std::string &key) {
    const bool hex = isHexKey(key);
    std::string mask = key;
    for (char &c : mask)
        if (hex || !(isBlank(c) && &c == &mask.back()))
            c = drawn(hex ? "0123456789abcdef" : "ghijkmnopqrstuvwxyzGHJKLMNPQRSTUVWXYZ");
    return mask;
}

bool isPublic(SecretKind kind, std::string_view text) {
    return text.empty() || (kind == SecretKind::kPin &&
                            std::find(std::begin(kPublicPins), std::end(kPublicPins), text) != std::end(kPublicPins));
}

SecretKind ofVariable(std::string_view name) {
    constexpr std::string_view kPinEnd = "pin";
    const bool isPin = name.size() >= kPinEnd.size() && name.substr(name.size() - kPinEnd.size()) == kPinEnd;
    return !isSecretKey(name) ? SecretKind::kNone : isPin ? SecretKind::kPin : SecretKind::kKey;
}

// A word `name=value` of a text: where its value stands. With `at` behind the "=".
struct SecretValue {
    SecretKind kind = SecretKind::kNone;
    size_t at = 0, size = 0;
};
SecretValue valueBehind(const std::string &text, size_t equals) {
    size_t start = equals;
    while (start > 0 && (isAlnum(text[start - 1]) || std::string_view("_.").find(text[start - 1]) != std::string::npos))
        --start;
    const SecretKind kind = ofVariable({text.data() + start, equals - start});
    size_t at = equals + 1;
    const char quote = at < text.size() && (text[at] == '\'' || text[at] == '"') ? text[at++] : '\0';
    size_t end = at;
    while (end < text.size() && (quote ? text[end] != quote : !isBlank(text[end]) && text[end] != '\0'))
        ++end;
    return {kind, at, end - at};
}

// 'a''b' for ab.
std::string singlyQuoted(const std::string &text) {
    std::string out;
    for (char c : text)
        out += std::string("'") + c + "'";
    return out;
}

// Digits amid other digits are a number, not a PIN.
bool standsAt(const std::string &secret, const std::string &text, size_t at) {
    if (text.compare(at, secret.size(), secret) != 0)
        return false;
    const size_t end = at + secret.size();
    return !allDigits(secret) || ((at == 0 || !isDigit(text[at - 1])) && (end == text.size() || !isDigit(text[end])));
}

bool isBytes(const json &value) { return value.is_object() && value.size() == 1 && value.contains("hex"); }

} // namespace

SecretKind secretKind(std::string_view name) {
    for (const SecretName &row : kNames)
        if (name == row.name)
            return row.kind;
    return ofVariable(name);
}

// Calls `leaf` with each text, which it may change, and the kind of its place.
template <typename Leaf> void Masks::walk(json &document, SecretKind kind, const Leaf &leaf) {
    if (document.is_string() || isBytes(document)) {
        std::string text = bytesFromJson(document);
        leaf(kind, text);
        document = bytesToJson(text);
    } else if (document.is_array()) {
        for (json &element : document)
            walk(element, kind, leaf);
    } else if (document.is_object()) {
        // A call names in `what` the variable that its value and answer belong to.
        const json what = document.value("what", json());
        const SecretKind variable = what.is_string() ? secretKind(what.get<std::string>()) : SecretKind::kNone;
        for (auto &[name, value] : document.items()) {
            const bool ofVariable = name == "value" || name == "answer";
            const SecretKind own = ofVariable ? variable : secretKind(name);
            walk(value, own == SecretKind::kNone && !ofVariable ? kind : own, leaf);
        }
    }
}

void Masks::learn(const json &document) {
    json copy = document;
    walk(copy, SecretKind::kNone, [this](SecretKind kind, const std::string &text) {
        if (kind == SecretKind::kNone)
            learnWords(text);
        else
            learnSecret(kind, text);
    });
}

void Masks::apply(json &document) {
    walk(document, SecretKind::kNone, [this](SecretKind kind, std::string &text) {
        text = kind == SecretKind::kNone ? ofText(text) : ofSecret(kind, text);
    });
}

void Masks::learnWords(const std::string &text) {
    for (size_t at = text.find('='); at != std::string::npos; at = text.find('=', at + 1))
        if (const SecretValue value = valueBehind(text, at); value.kind != SecretKind::kNone)
            learnSecret(value.kind, text.substr(value.at, value.size));
}

void Masks::learnSecret(SecretKind kind, const std::string &secret) {
    if (isPublic(kind, secret) || masks_.count(secret))
        return;
    std::string mask;
    auto taken = [&] {
        return mask == secret || isPublic(kind, mask) ||
               std::any_of(masks_.begin(), masks_.end(), [&](const auto &known) { return known.second == mask; });
    };
    int tries = 1000; // a radius key of one letter may leave none
    do
        mask = kind == SecretKind::kPin ? drawnPin(secret) : drawnKey(secret);
    while (taken() && --tries > 0);
    masks_[secret] = mask;
    if (secret.size() < kShortestSearched || moduleText_.find(secret) != std::string::npos)
        return;
    // As it is, as the module quotes texts in commands, and as it is shown.
    for (const auto &spelling : {std::pair(secret, mask), std::pair(singlyQuoted(secret), singlyQuoted(mask)),
                                 std::pair(escapeBytes(secret), escapeBytes(mask))}) {
        auto longer = [](const auto &a, const auto &b) { return a.first.size() > b.first.size(); };
        auto &same = searched_[static_cast<unsigned char>(spelling.first[0])];
        same.insert(std::upper_bound(same.begin(), same.end(), spelling, longer), spelling);
    }
}

std::string Masks::ofSecret(SecretKind kind, const std::string &secret) {
    if (isPublic(kind, secret))
        return secret;
    learnSecret(kind, secret);
    return masks_.at(secret);
}

const Masks::Spelling *Masks::spellingAt(const std::string &text, size_t at) const {
    const auto &same = searched_[static_cast<unsigned char>(text[at])];
    auto found =
        std::find_if(same.begin(), same.end(), [&](const Spelling &one) { return standsAt(one.first, text, at); });
    return found == same.end() ? nullptr : &*found;
}

std::string Masks::ofText(const std::string &text) {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const SecretValue value = text[at] == '=' ? valueBehind(text, at) : SecretValue{};
        if (value.kind != SecretKind::kNone) {
            out.append(text, at, value.at - at);
            at = value.at;
            // A value with blanks in it is known from elsewhere; else it ends at the first.
            if (at < text.size() && spellingAt(text, at))
                continue;
            out += ofSecret(value.kind, text.substr(value.at, value.size));
            at = value.at + value.size;
            continue;
        }
        if (const auto *spelling = spellingAt(text, at)) {
            out += spelling->second;
            at += spelling->first.size();
        } else {
            out += text[at++];
        }
    }
    return out;
}

} // namespace wlhost
