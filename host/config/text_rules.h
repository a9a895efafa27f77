// What the texts of the configuration file must look like.
#pragma once

#include <cstddef>
#include <string>

namespace wlhost {

// A check and the pattern that says the same in the schema, as far as a pattern can. It cannot add up bytes (a pattern
// sees letters, and knows of those beyond ASCII only that they take two bytes at least), know a checksum or tell
// whether an IPv6 address is one: there it lets more through than the check.
struct TextRule {
    // What is wrong with the text ("is 5 characters"), or empty. May bring the text into the record's form.
    std::string (*problem)(std::string &text);
    const char *allowed;
    const char *pattern;
    size_t shortest = 0, longest = 0; // in letters, where the pattern leaves it open; 0 and 0 for no limit
};

extern const TextRule kSsidRule, kSsidHexRule, kPskRule, kWepRule, kInterfaceRule, kRadioRule, kMacRule, kCountryRule,
    kAddressRule, kSecretRule, kPathRule, kPinRule, kUuidRule;

} // namespace wlhost
