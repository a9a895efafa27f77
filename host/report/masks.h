// Secrets of an archive, replaced by others of the same kind, so that the module takes the same way with them:
// hexadecimal digits stay such, a PIN keeps its digits' number and whether its checksum is right, a text its length.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/json.h"

namespace wlhost {

enum class SecretKind { kNone, kKey, kPin };

// By the name under which a value stands: a member of a record, an input, a setting, a variable of the store.
SecretKind secretKind(std::string_view name);

// The mask of each secret is drawn from the kernel's randomness and kept here alone: with this table it is gone.
//
// A secret is recognised by its place: the member, variable or `key=value` word that it stands in. One of 8 or more
// characters is then replaced wherever else it stands, unless the module spells the same text (such as a verb of a
// command): that would change what is compared. Shorter ones are not looked for elsewhere, since they may be any word.
class Masks {
  public:
    // `moduleText`: the bytes of the library.
    explicit Masks(std::string moduleText) : moduleText_(std::move(moduleText)) {}

    // First every document is learned from, then every one is masked.
    void learn(const json &document);
    void apply(json &document);

    // Of a text that is a secret, and of any text.
    std::string ofSecret(SecretKind kind, const std::string &secret);
    std::string ofText(const std::string &text);

  private:
    using Spelling = std::pair<std::string, std::string>; // and its mask
    const Spelling *spellingAt(const std::string &text, size_t at) const;
    template <typename Leaf> void walk(json &document, SecretKind kind, const Leaf &leaf);
    void learnSecret(SecretKind kind, const std::string &secret);
    void learnWords(const std::string &text);

    std::string moduleText_;
    std::map<std::string, std::string> masks_; // by secret
    // To be replaced wherever they stand: secrets by the first byte of their spelling, the longest first.
    std::array<std::vector<Spelling>, 256> searched_;
};

} // namespace wlhost
