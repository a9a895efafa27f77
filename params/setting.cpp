#include "params/setting.h"

namespace wlbrcm {

InterfaceName readNumber(Here here, const WlanParamArg *arg, const IntParam &param, int *number) {
    const InterfaceName name = interfaceOf(here, arg, kValue);
    *number = 0;
    if (!name)
        return name;
    *number = decimal(arg->value);
    if (*number >= param.lowest && *number <= param.highest)
        return name;
    fputs(param.usage, stdout);
    return {};
}

int setInt(Here here, const WlanParamArg *arg, const IntParam &param) {
    int number;
    const InterfaceName name = readNumber(here, arg, param, &number);
    return name ? writeInt(here, name, param.key, number) : WLBRCM_EINVAL;
}

int setWord(Here here, const WlanParamArg *arg, const WordParam &param) {
    int number;
    const InterfaceName name = readNumber(here, arg, param.number, &number);
    if (!name)
        return WLBRCM_EINVAL;
    return writeText(here, name, param.number.key, param.words[number - param.number.lowest]);
}

int setText(Here here, const WlanParamArg *arg, const char *key) {
    const InterfaceName name = interfaceOf(here, arg, kValue);
    return name ? writeText(here, name, key, arg->value) : WLBRCM_EINVAL;
}

int runDriver(Here here, const InterfaceName &ifname, const DriverArgs &args) {
    if (!commandFits(here, args.fits(), args.c_str()))
        return WLBRCM_EINVAL;
    return __qvWlanCmdExec(here.function, here.line, ifname.c_str(), args.c_str());
}

bool splitFirstField(const char *text, std::string_view *first, const char **rest) {
    const size_t length = strcspn(text, ",");
    *first = {text, length};
    *rest = text[length] == ',' ? text + length + 1 : text + length;
    return length > 0;
}

} // namespace wlbrcm
