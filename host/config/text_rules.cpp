#include "host/config/text_rules.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cctype>

#include "host/base/addresses.h"
#include "host/base/escape.h"

namespace wlhost {
namespace {

std::string lengthOf(const std::string &text) { return "is " + std::to_string(text.size()) + " characters"; }

bool onlyHex(const std::string &text) { return text.size() % 2 == 0 && fromHex(text).has_value(); }

bool printableAscii(const std::string &text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

std::string ssidProblem(std::string &text) {
    if (text.find('\0') != std::string::npos)
        return "holds a NUL";
    return text.empty() || text.size() > 32 ? "is " + std::to_string(text.size()) + " bytes" : "";
}

std::string ssidHexProblem(std::string &text) {
    auto bytes = fromHex(text);
    if (!bytes)
        return "is not pairs of hexadecimal digits";
    text = *bytes;
    return ssidProblem(text);
}

std::string pskProblem(std::string &text) {
    if (text.size() == 64)
        return onlyHex(text) ? "" : "is 64 characters, but not all hexadecimal digits";
    if (text.size() < 8 || text.size() > 64)
        return lengthOf(text);
    return printableAscii(text) ? "" : "holds characters outside printable ASCII";
}

std::string wepProblem(std::string &text) {
    if (text.size() == 5 || text.size() == 13)
        return printableAscii(text) ? "" : "holds characters outside printable ASCII";
    if (text.size() == 10 || text.size() == 26)
        return onlyHex(text) ? "" : "is not all hexadecimal digits";
    return lengthOf(text);
}

std::string interfaceProblem(std::string &text) { return isInterfaceName(text) ? "" : "is no interface name"; }

std::string radioProblem(std::string &text) {
    std::string number = text.substr(std::min<size_t>(2, text.size()));
    bool digits = std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    bool plain = !number.empty() && number.size() <= 2 && (number[0] != '0' || number == "0");
    return text.compare(0, 2, "wl") == 0 && digits && plain ? "" : "is no name of a radio";
}

std::string macProblem(std::string &text) {
    auto mac = parseMac(text);
    if (!mac)
        return "is no MAC address";
    if ((*mac)[0] & 1)
        return "is a group address";
    text = formatMac(*mac, true);
    return "";
}

std::string countryProblem(std::string &text) {
    size_t slash = std::min(text.find('/'), text.size());
    std::string revision = text.substr(std::min(slash + 1, text.size()));
    bool letters = slash == 2 && std::isupper(static_cast<unsigned char>(text[0])) &&
                   std::isalnum(static_cast<unsigned char>(text[1])) &&
                   !std::islower(static_cast<unsigned char>(text[1]));
    bool digits = std::all_of(revision.begin(), revision.end(), [](char c) { return c >= '0' && c <= '9'; });
    bool lengthFits = slash == text.size() || (!revision.empty() && revision.size() <= 3);
    return letters && digits && lengthFits ? "" : "is no country";
}

std::string addressProblem(std::string &text) {
    uint8_t bytes[16];
    bool address = inet_pton(AF_INET, text.c_str(), bytes) == 1 || inet_pton(AF_INET6, text.c_str(), bytes) == 1;
    return address ? "" : "is no IP address";
}

std::string secretProblem(std::string &text) {
    if (text.empty() || text.size() > 255)
        return lengthOf(text);
    return printableAscii(text) ? "" : "holds characters outside printable ASCII";
}

std::string pathProblem(std::string &text) {
    return text.empty() || text.size() > 35 ? lengthOf(text)
           : printableAscii(text)           ? ""
                                            : "holds characters outside printable ASCII";
}

std::string pinProblem(std::string &text) {
    int sum = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] < '0' || text[i] > '9')
            return "is not all digits";
        sum += (text[i] - '0') * (i % 2 == 0 ? 3 : 1);
    }
    if (text.size() != 8)
        return lengthOf(text);
    return sum % 10 == 0 ? "" : "has a wrong checksum digit";
}

// The WPS daemon's reply has room for 35 characters: the record holds the digits alone.
std::string uuidProblem(std::string &text) {
    std::string digits = text;
    if (text.size() == 36 && text[8] == '-' && text[13] == '-' && text[18] == '-' && text[23] == '-')
        digits.erase(std::remove(digits.begin(), digits.end(), '-'), digits.end());
    auto bytes = fromHex(digits);
    if (!bytes || bytes->size() != 16)
        return "is no UUID";
    text = toHex(*bytes);
    return "";
}

} // namespace

const TextRule kSsidRule{ssidProblem, "1 to 32 bytes of UTF-8 without NUL",
                         "^[\\u0001-\\u007f]*([^\\u0000-\\u007f][\\u0001-\\u007f]*){0,16}$", 1, 32};
const TextRule kSsidHexRule{ssidHexProblem, "1 to 32 bytes as pairs of hexadecimal digits, without 00",
                            "^(0[1-9A-Fa-f]|[1-9A-Fa-f][0-9A-Fa-f]){1,32}$"};
const TextRule kPskRule{pskProblem, "8 to 63, or 64 hexadecimal digits; WEP has key1 to key4",
                        "^([ -~]{8,63}|[0-9A-Fa-f]{64})$"};
const TextRule kWepRule{wepProblem, "5 or 13 characters, or 10 or 26 hexadecimal digits",
                        "^([ -~]{5}|[ -~]{13}|[0-9A-Fa-f]{10}|[0-9A-Fa-f]{26})$"};
const TextRule kInterfaceRule{interfaceProblem, "1 to 15 of A-Z a-z 0-9 . _ -, the first not -",
                              "^[A-Za-z0-9._][A-Za-z0-9._-]{0,14}$"};
const TextRule kRadioRule{radioProblem, "wl and its number, wl0 to wl99", "^wl(0|[1-9][0-9]?)$"};
const TextRule kMacRule{macProblem, "six hexadecimal pairs of a station, such as 00:10:18:aa:bb:cc",
                        "^[0-9A-Fa-f][02468ACEace]((:[0-9A-Fa-f]{2}){5}|(-[0-9A-Fa-f]{2}){5})$"};
const TextRule kCountryRule{countryProblem, "two capitals and perhaps a slash and a revision, such as DE/3",
                            "^[A-Z][A-Z0-9](/[0-9]{1,3})?$"};
#define OCTET "(25[0-5]|2[0-4][0-9]|1[0-9][0-9]|[1-9]?[0-9])"
const TextRule kAddressRule{addressProblem, "an IPv4 or IPv6 address",
                            "^(" OCTET "\\.){3}" OCTET "$|^[0-9A-Fa-f:]*:[0-9A-Fa-f:.]*$"};
const TextRule kSecretRule{secretProblem, "1 to 255 characters of printable ASCII", "^[ -~]{1,255}$"};
const TextRule kPathRule{pathProblem, "1 to 35 characters of printable ASCII", "^[ -~]{1,35}$"};
const TextRule kPinRule{pinProblem, "8 digits, the last one the checksum", "^[0-9]{8}$"};
const TextRule kUuidRule{uuidProblem, "32 hexadecimal digits, with or without the four dashes",
                         "^([0-9A-Fa-f]{32}|[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12})$"};

} // namespace wlhost
