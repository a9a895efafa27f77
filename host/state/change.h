// What a changed configuration asks of a radio: the lightest operation that brings it about.
#pragma once

#include <string>
#include <vector>

#include "host/config/configuration.h"

namespace wlhost {

// From the lightest to the heaviest. The last three take the radio down.
enum class ChangeKind { kNone, kFilter, kPreset, kLan, kReload, kBringUp, kDown };
const char *operationWord(ChangeKind operation);
inline bool takesDown(ChangeKind operation) { return operation >= ChangeKind::kReload; }

// Settings of one BSS that change while its stations stay.
struct LightChange {
    size_t index;
    bool filter, limits, preset, bridge;
};

struct Change {
    ChangeKind operation = ChangeKind::kNone;
    std::string reason;
    std::vector<LightChange> parts; // of an operation that takes nothing down
};

// From the records in force to others of the same radio.
Change changeBetween(const RadioRecords &now, const RadioRecords &next);

// Names of the settings that differ between two descriptions of a radio in configuration files: "channel,
// ssids[0].key".
std::string changedSettings(const json &now, const json &next);

// What was set at run time on top of what a file gave, and is lost with the records of another: rows of `interface`
// and `what`.
json undoneBetween(const RadioRecords &given, const RadioRecords &now, const RadioRecords &next);

} // namespace wlhost
