#include "target.h"

namespace {

// As much as one datagram is read for.
constexpr size_t kLongestReply = 255;

void parse(const std::string &text) {
    std::vector<char> reply(text.begin(), text.end());
    reply.push_back('\0');
    HOLDS(parse_wps_env(reply.data()) == 0);
    HOLDS(fuzz::ends(wps_uuid) && fuzz::ends(wps_autho_sta_mac));
}

// The five variables as the daemon would report them.
std::string state() {
    return "wps_config_command=" + std::to_string(wps_config_command) + " wps_action=" + std::to_string(wps_action) +
           " wps_method=" + std::to_string(wps_method) + " wps_uuid=" + wps_uuid +
           " wps_autho_sta_mac=" + wps_autho_sta_mac;
}

bool mentions(const std::string &text, const char *word) { return text.find(word) != std::string::npos; }

} // namespace

FUZZ_TARGET(wps_reply) {
    const std::string text = input.substr(0, std::min(input.find('\0'), kLongestReply));
    wps_config_command = wps_action = wps_method = 77;
    strcpy(wps_uuid, "previous");
    strcpy(wps_autho_sta_mac, "previous");
    parse(text);
    HOLDS(mentions(text, "wps_config_command=") || wps_config_command == 0);
    HOLDS(mentions(text, "wps_action=") || wps_action == 0);
    HOLDS(mentions(text, "wps_method=") || wps_method == 0);
    HOLDS(mentions(text, "wps_uuid=") || strcmp(wps_uuid, "previous") == 0);
    HOLDS(mentions(text, wps_autho_sta_mac));
    const std::string reported = state();
    wps_config_command = wps_action = wps_method = -1;
    parse(reported);
    HOLDS(state() == reported);
}
