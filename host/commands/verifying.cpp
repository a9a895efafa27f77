#include <algorithm>

#include "host/commands/arguments.h"
#include "host/commands/host_commands.h"
#include "host/verify/verification.h"

namespace wlhost {

json verify(Host &host, const json &args) {
    bool all = flagArg(args, "all");
    json rows = json::array();
    for (const Finding &finding : examineAll(host, kOfEverything, textArg(args, "radio")))
        if (all || !finding.holds)
            rows.push_back(findingRow(finding));
    return {{"findings", rows}};
}

Status meaningOfFindings(const json &result) {
    const json &findings = result["findings"];
    bool well = std::all_of(findings.begin(), findings.end(), [](const json &one) { return one["holds"] == true; });
    return well ? Status::kDone : Status::kFailed;
}

} // namespace wlhost
