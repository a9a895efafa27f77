// What the host reads from files and from its control socket.
#include "tests/fuzz/target.h"

#include <algorithm>

#include "host/base/escape.h"
#include "host/command_table.h"
#include "host/config/configuration.h"
#include "host/control/dispatch.h"

namespace wlhost {
namespace {

bool sameSsid(const SsidFields &one, const SsidFields &other) {
    return fuzz::same(one.record, other.record) && one.security == other.security;
}

bool sameRadio(const RadioConfig &one, const RadioConfig &other) {
    return fuzz::same(one.fields.record, other.fields.record) && one.fields.htmode == other.fields.htmode &&
           one.fields.beamforming == other.fields.beamforming &&
           std::equal(one.ssids.begin(), one.ssids.end(), other.ssids.begin(), other.ssids.end(), sameSsid);
}

bool sameSettings(const Config &one, const Config &other) {
    return std::equal(one.radios.begin(), one.radios.end(), other.radios.begin(), other.radios.end(), sameRadio) &&
           std::equal(one.lan.begin(), one.lan.end(), other.lan.begin(), other.lan.end(), fuzz::same<GroupFields>);
}

// A refusal that can be shown and sent: a usage error in UTF-8 without control characters, and a document.
void checkRefusal(const Failure &failure) {
    const std::string text = failure.what();
    HOLDS(failure.status == Status::kUsage && !text.empty() && wellFormedLength(text) == text.size());
    HOLDS(std::none_of(text.begin(), text.end(), [](char c) { return c >= 0 && c < ' ' && c != '\n'; }));
    const json error = errorOf(failure);
    HOLDS(json::parse(error.dump()) == error);
}

FUZZ_TARGET(configuration) {
    const auto lines = 1 + std::count(input.begin(), input.end(), '\n');
    try {
        const Config config = Config::from(Document::parse("file", input));
        HOLDS(!config.radios.empty() && config.radios.size() <= 16);
        // Comments, blanks and the order of names mean nothing.
        HOLDS(sameSettings(config, Config::from(Document::parse("again", dumped(config.document.root, 3)))));
    } catch (const Failure &failure) {
        checkRefusal(failure);
        HOLDS(std::string(failure.what()).compare(0, 5, "file:") == 0);
        const json rows = failure.details.at("errors");
        HOLDS(!rows.empty());
        for (const json &row : rows)
            HOLDS(row.at("line") >= 1 && row.at("line") <= lines);
    }
}

FUZZ_TARGET(request) {
    try {
        const Request request = readRequest(input);
        HOLDS(request.command->answer != nullptr && request.args.is_object());
        const json same = {{"command", request.command->name}, {"args", request.args}};
        HOLDS(readRequest(dumped(same)).args == request.args);
    } catch (const Failure &failure) {
        checkRefusal(failure);
    }
}

} // namespace
} // namespace wlhost
