// Secrets in texts that are shown: passphrases, keys and PINs.
#pragma once

#include <string>
#include <string_view>

namespace wlhost {

// Stands for the value of a secret.
constexpr const char *kMask = "********";

// Whether the variable of this name holds a secret, whatever interface stands before: wpa_psk, key1 to key4,
// radius_key, the PINs and keys of WPS.
bool isSecretKey(std::string_view key);

// A value that masked() knows from now on, wherever it stands. The last few hundred are kept.
void learnSecret(const std::string &value);

// The text with a mask in the place of each known secret, plain or in a shell's quotes, and of the value behind the
// name of a secret variable and "=".
std::string masked(std::string text);

} // namespace wlhost
