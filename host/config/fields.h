// One row for every setting of the configuration file: its name, what it may be, and where it goes in the record that
// the module reads. The reader, the messages and the JSON schema all come from these rows.
#pragma once

#include <cstdint>
#include <vector>

#include <wlbrcm/radio.h>

#include "host/base/masking.h"
#include "host/config/problems.h"
#include "host/config/text_rules.h"

namespace wlhost {

// A radio's settings: the module's record and what only the host needs.
struct RadioFields {
    WlRadioCfg record;
    int8_t htmode;
    uint8_t beamforming;
};

// An SSID's settings.
struct SsidFields {
    WlSsidCfg record;
    int8_t security; // index into securityKinds()
};

// A LAN group; its texts are as long as the module's own.
struct GroupFields {
    char name[16];
    char hwaddr[18];
    char ports[256]; // joined by blanks
};

// Value of `htmode`, in the order of the words.
struct HtMode {
    const char *name;
    uint8_t width;
    int8_t sideband;
    bool vht;
};
// Value of `encryption`, in the order of the words.
struct SecurityKind {
    const char *name;
    const char *authMode;
    const char *encryption;
};
// Value of `hwmode`: the module's mode number is the index.
struct HwMode {
    const char *name;
    bool band2g, band5g, ht, vht;
};
extern const std::vector<HtMode> kHtModes;
extern const std::vector<SecurityKind> kSecurityKinds;
extern const std::vector<HwMode> kHwModes;

enum class Kind {
    kFlag,    // true or false, into an integer
    kNumber,  // a whole number or one of some words, into an integer
    kChoice,  // one of some words, into a text
    kText,    // checked by a rule
    kMac,     // address text, into six bytes
    kList,    // array of texts or numbers, into one text
    kGroup,   // object whose members go into the same record
    kRecords, // array of objects with records of their own
    kIgnored
};

struct Word {
    const char *name;
    long value;
    const char *text = nullptr;
};

struct Field {
    const char *name;
    Kind kind;
    size_t offset, size;
    const char *about;
    long low = 0, high = -1; // of a number, or of the length of a list; low above high: words only
    long initial = 0;
    bool inverted = false; // flag: true is stored as 0
    bool required = false;
    std::vector<Word> words = {};
    const TextRule *rule = nullptr;
    const char *initialText = "";
    char separator = ' ';
    const std::vector<Field> *children = nullptr;
    bool secret = false; // the value is never shown
};

// Settings of the whole file, down to every record.
const std::vector<Field> &rootFields();
// The row behind a chain of names, such as {"radios", "ssids"}.
const Field &fieldAt(const std::vector<std::string> &names);
// The row of a name; null when there is none.
const Field *findField(const std::vector<Field> &fields, const std::string &name);
// Whether a setting by this name is a secret, wherever it stands.
bool isSecretName(const std::string &name);

// What a field may be, for a message: `20 to 1024`.
std::string allowedText(const Field &field);
// Clears a record to its initial values and reads the members of `node` into it; members of kind kRecords are left
// to the caller. `node` that is no object is a problem, too.
void readRecord(const json &node, const Path &path, const std::vector<Field> &fields, void *record, size_t size,
                Problems &problems);
// A value as a message shows it: cut when it is long, lists and objects by their kind alone.
std::string shown(const json &value);

// The JSON schema of the file, from the same rows.
json configSchema();

} // namespace wlhost
