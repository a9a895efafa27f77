#include "host/state/radio_check.h"

#include <algorithm>

#include "host/base/word_lists.h"
#include "host/verify/readers.h"

namespace wlhost {
namespace {

// The channels of a width that the driver allows in a country; empty when it does not tell.
std::vector<std::string> allowedChannels(const Platform &platform, const WlRadioCfg &radio,
                                         const std::string &country) {
    ToolAnswer answer = platform.run(
        {"wlctl", "-i", radio.ifName, "chanspecs", "-b", radio.band == WLBRCM_BAND_5G ? "5" : "2", "-c", country});
    std::vector<std::string> channels;
    for (const std::string &line : splitWords(answer ? answer.out : "", '\n')) {
        if (auto chanspec = readChanspec(line); chanspec && chanspec->width == radio.bandwidth)
            if (std::string channel = std::to_string(chanspec->channel);
                std::count(channels.begin(), channels.end(), channel) == 0)
                channels.push_back(channel);
    }
    return answer && channels.empty() ? std::vector<std::string>{"none"} : channels;
}

void checkChannelOf(const Platform &platform, const WlRadioCfg &radio, const Path &path, Problems &problems) {
    std::string country = radio.countryCode;
    country.erase(std::min(country.find('/'), country.size()));
    if (radio.autoChannel || country.empty())
        return;
    std::vector<std::string> allowed = allowedChannels(platform, radio, country);
    if (!allowed.empty() && std::count(allowed.begin(), allowed.end(), std::to_string(radio.channel)) == 0)
        problems.warn(path / "channel", std::to_string(radio.channel) + " at " + std::to_string(radio.bandwidth) +
                                            " MHz is not allowed by " + radio.ifName + " in " + country + "; " +
                                            joined(allowed));
}

} // namespace

json warningsOfRadios(const Module &module, const Platform &platform, const Config &config) {
    Problems problems(config.document);
    for (size_t i = 0; i < config.radios.size(); ++i) {
        std::string name = config.radios[i].name();
        Path path = Path() / "radios" / i;
        WlIntf *intf = module.find(name);
        if (intf)
            checkChannelOf(platform, bindRadio(config, i, *intf, nullptr, problems).radio, path, problems);
        else
            problems.warn(path / "name", "\"" + name + "\" does not exist; " + joined(module.names()));
    }
    problems.throwIfAny();
    json rows = json::array();
    for (const Problem &problem : problems.warnings())
        rows.push_back(warningRow(problem));
    return rows;
}

} // namespace wlhost
