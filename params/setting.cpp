#include "params/setting.h"

namespace wlbrcm {

bool readNumber(const WlanParamArg *arg, const IntParam &param, int *number) {
    if (!hasValue(arg))
        return false;
    *number = decimal(arg->value);
    const bool inRange = *number >= param.lowest && *number <= param.highest;
    if (!inRange)
        fputs(param.usage, stdout);
    return inRange;
}

int setInt(Here here, const WlanParamArg *arg, const IntParam &param) {
    int number;
    if (!readNumber(arg, param, &number))
        return WLBRCM_EINVAL;
    return writeInt(here, arg->prefix, param.key, number);
}

int setWord(Here here, const WlanParamArg *arg, const WordParam &param) {
    int number;
    if (!readNumber(arg, param.number, &number))
        return WLBRCM_EINVAL;
    return writeText(here, arg->prefix, param.number.key, param.words[number - param.number.lowest]);
}

int setText(Here here, const WlanParamArg *arg, const char *key) {
    return hasValue(arg) ? writeText(here, arg->prefix, key, arg->value) : WLBRCM_EINVAL;
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
