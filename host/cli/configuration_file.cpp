// Commands that look at a configuration file alone.
#include "host/cli/calls.h"
#include "host/config/configuration.h"
#include "host/config/fields.h"

namespace wlhost {

Status checkConfiguration(const Call &call) {
    const std::string file = call.args["config"];
    Config config = Config::load(file);
    showResult(call, {{"config", file}, {"radios", config.radios.size()}});
    return Status::kDone;
}

Status printSchema(const Call &) {
    std::printf("%s\n", configSchema().dump(2).c_str());
    return Status::kDone;
}

} // namespace wlhost
