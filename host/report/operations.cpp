#include "host/report/operations.h"

#include <sys/time.h>

#include <array>
#include <climits>
#include <cstring>
#include <tuple>

#include "host/base/addresses.h"
#include "host/base/escape.h"
#include "host/base/failure.h"
#include "host/report/records.h"
#include "host/tap/dry_run.h"
#include "host/tap/tap.h"

namespace wlhost {
namespace {

// The text of a record, made anew when the record has changed.
std::shared_ptr<const std::string> recordText(const WlIntf &intf, size_t &bytes) {
    struct Known {
        std::unique_ptr<WlIntf> record;
        std::shared_ptr<const std::string> text;
    };
    static std::map<const WlIntf *, Known> known;
    Known &one = known[&intf];
    if (!one.record || std::memcmp(one.record.get(), &intf, sizeof intf) != 0) {
        one.record = std::make_unique<WlIntf>();
        std::memcpy(one.record.get(), &intf, sizeof intf);
        one.text = std::make_shared<const std::string>(recordToJson(intf).dump());
        bytes += one.text->size();
    }
    return one.text;
}

// An operation that begins: each put() adds an argument. `next` is the argument behind it, the count of a list.
struct Noted {
    Operation operation;
    json input = json::object();

    void put(const char *, const WlIntf *intf, int) {
        if (!intf)
            return;
        operation.record = recordText(*intf, operation.bytes);
        operation.radio.assign(intf->intfName, strnlen(intf->intfName, sizeof intf->intfName));
    }
    void put(const char *name, const WlLanCfg *lan, int) { input[name] = lanToJson(lan); }
    void put(const char *name, const char *text, int) { input[name] = text ? bytesToJson(text) : json(); }
    void put(const char *name, int number, int) {
        if (!input.contains(name)) // the count of a list stands in the list
            input[name] = number;
    }
    void put(const char *name, const uint8_t *mac, int) {
        input[name] = mac ? json(toHex({reinterpret_cast<const char *>(mac), sizeof(MacBytes)})) : json();
    }
    void put(const char *name, const WlStatusItem *items, int count) {
        json &names = input[name] = json::array();
        for (int i = 0; items && i < count; ++i)
            names.push_back(items[i].name ? bytesToJson(items[i].name) : json());
    }
    void put(const char *name, WlIntf *const *intfs, int count) {
        json &records = input[name] = json::array();
        for (int i = 0; intfs && i < count; ++i)
            records.push_back(intfs[i] ? recordToJson(*intfs[i]) : json());
    }

    template <typename First, typename... Rest> void putAll(const char *const *names, First first, Rest... rest) {
        int next = 0;
        if constexpr (sizeof...(rest) > 0)
            if constexpr (std::is_same_v<std::tuple_element_t<0, std::tuple<Rest...>>, int>)
                next = std::get<0>(std::tuple(rest...));
        if (*names)
            if constexpr (!std::is_same_v<First, void *> && !kIsOutput<First>)
                put(*names, first, next);
        if constexpr (sizeof...(rest) > 0)
            putAll(names + 1, rest...);
    }
    template <typename Type>
    static constexpr bool kIsOutput =
        std::is_same_v<Type, WlStaInfo **> || std::is_same_v<Type, WlChanScanInfo **> ||
        std::is_same_v<Type, WlScanAp **> || std::is_same_v<Type, int *> || std::is_same_v<Type, uint8_t *> ||
        std::is_same_v<Type, WlIntfInfo *> || std::is_same_v<Type, WlEvent **>;
};

// An argument from a trace, with the storage behind it. The first form is that of outputs: room that nobody looks at.
template <typename Type> struct Argument {
    explicit Argument(const json &) {}
    std::remove_pointer_t<Type> room{};
    Type get() { return &room; }
};
// Lists that the module hands out.
template <typename Record> struct Argument<Record **> {
    explicit Argument(const json &) {}
    ~Argument() { std::free(list); }
    Record *list = nullptr;
    Record **get() { return &list; }
};
template <> struct Argument<void *> {
    explicit Argument(const json &) {}
    static void *get() { return nullptr; }
};
template <> struct Argument<int> {
    int number = 0;
    explicit Argument(const json &from) {
        if (!from.is_array() && !(from.is_number_integer() && from >= INT_MIN && from <= INT_MAX))
            refuseArchive("input", "holds no number where one is wanted");
        number = from.is_array() ? static_cast<int>(from.size()) : from.get<int>();
    }
    int get() const { return number; }
};
template <> struct Argument<const char *> {
    bool present;
    std::string text;
    explicit Argument(const json &from) : present(!from.is_null()), text(present ? bytesFromJson(from) : "") {}
    const char *get() const { return present ? text.c_str() : nullptr; }
};
template <> struct Argument<const uint8_t *> {
    bool present;
    std::string bytes;
    explicit Argument(const json &from)
        : present(!from.is_null()), bytes(present ? bytesFromJson(json{{"hex", from}}) : "") {
        if (present && bytes.size() != sizeof(MacBytes))
            refuseArchive("input", "holds what is no address");
    }
    const uint8_t *get() const { return present ? reinterpret_cast<const uint8_t *>(bytes.data()) : nullptr; }
};
template <> struct Argument<const WlLanCfg *> : LanFromJson { using LanFromJson::LanFromJson; };
template <> struct Argument<WlIntf *> {
    std::unique_ptr<WlIntf> record;
    explicit Argument(const json &from) {
        if (from.is_null())
            return;
        record = std::make_unique<WlIntf>();
        recordFromJson(from, *record);
    }
    WlIntf *get() const { return record.get(); }
};
constexpr size_t kMostListed = 64;
template <> struct Argument<WlIntf **> {
    std::vector<Argument<WlIntf *>> records;
    std::vector<WlIntf *> list;
    explicit Argument(const json &from) {
        if (!from.is_array() || from.size() > kMostListed)
            refuseArchive("input", "holds no list of radios");
        for (const json &one : from)
            list.push_back(records.emplace_back(one).get());
    }
    WlIntf **get() { return list.data(); }
};
template <> struct Argument<WlStatusItem *> {
    std::vector<Argument<const char *>> names;
    std::vector<WlStatusItem> items;
    explicit Argument(const json &from) {
        if (!from.is_array() || from.size() > kMostListed)
            refuseArchive("input", "holds no list of items");
        for (const json &one : from)
            names.emplace_back(one);
        for (const auto &name : names)
            items.push_back({name.get(), 0, nullptr});
    }
    Argument(const Argument &) = delete;
    Argument &operator=(const Argument &) = delete;
    ~Argument() {
        for (const WlStatusItem &item : items)
            std::free(item.value);
    }
    WlStatusItem *get() { return items.data(); }
};

int64_t number(int result) { return result; }
int64_t number(const char *text) { return text ? *text : -1; }

double now() {
    timeval time;
    gettimeofday(&time, nullptr);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

Operation beginning(const char *name) {
    Operation operation;
    operation.name = name;
    operation.request = tap::Operation::current().request();
    operation.time = now();
    operation.dry = tap::isDry();
    return operation;
}

struct Row {
    const char *name;
    void (*record)(Module &module, TraceRing &trace, const Row &row);
    int64_t (*again)(Module &module, const Row &row, const json &input);
    std::array<const char *, 5> arguments; // by place; null for those that are no input
};

// Where the pointer to an operation stands in what the module registered.
template <auto Member> auto &slot(Module &module) { return module.ops->*Member; }
auto &receive(Module &module) {
    static decltype(WlEvtHandler::receive) none;
    return module.events ? module.events->receive : none;
}
auto &phyType(Module &module) { return module.phyType; }
auto &upstreamRate(Module &module) { return module.setUpstreamRate; }
auto &downstreamRate(Module &module) { return module.setDownstreamRate; }
auto &flowCache(Module &module) { return module.setFlowCache; }
auto &checkPin(Module &module) { return module.checkPin; }

template <auto Place> struct Of;
template <typename Result, typename... Args, Result (*&(*Place)(Module &))(Args...)> struct Of<Place> {
    static inline Result (*original)(Args...) = nullptr;
    static inline TraceRing *trace = nullptr;
    static inline const Row *row = nullptr;

    static Result recorded(Args... args) {
        Noted noted;
        noted.operation = beginning(row->name);
        noted.putAll(row->arguments.data(), args...);
        noted.operation.input = noted.input.dump();
        trace->begin(std::move(noted.operation));
        Result result = original(args...);
        trace->end(number(result));
        return result;
    }

    static void record(Module &module, TraceRing &ring, const Row &own) {
        if (!Place(module))
            return;
        original = Place(module);
        trace = &ring;
        row = &own;
        Place(module) = recorded;
    }

    template <size_t... At>
    static int64_t again(Module &module, const Row &own, const json &input, std::index_sequence<At...>) {
        if (!Place(module))
            throw Failure(Status::kFailed, own.name, "this module does not offer it");
        auto given = [&](const char *name) { return name ? input.value(name, json()) : json(0); };
        std::tuple<Argument<Args>...> arguments(given(own.arguments[At])...);
        return number(Place(module)(std::get<At>(arguments).get()...));
    }
    static int64_t again(Module &module, const Row &own, const json &input) {
        return again(module, own, input, std::index_sequence_for<Args...>());
    }
};

template <auto Place> Row row(const char *name, std::array<const char *, 5> arguments) {
    return {name, Of<Place>::record, Of<Place>::again, arguments};
}

const std::vector<Row> &rows() {
    using Ops = WlModuleOps;
    static const std::vector<Row> kRows = {
        row<slot<&Ops::initWlan>>("initWlan", {"intf", "lan"}),
        row<slot<&Ops::reloadWlan>>("reloadWlan", {"intf"}),
        row<slot<&Ops::statusUpdate>>("statusUpdate", {"intf", "items", "items"}),
        row<slot<&Ops::setWlanMacAddr>>("setWlanMacAddr", {"intf", "mac"}),
        row<slot<&Ops::updateLaninfo>>("updateLaninfo", {nullptr, nullptr, "lan"}),
        row<slot<&Ops::channelScan>>("channelScan", {"intf"}),
        row<slot<&Ops::getChanScanRpt>>("getChanScanRpt", {"intf"}),
        row<slot<&Ops::wpsReload>>("wpsReload", {"intf"}),
        row<slot<&Ops::wpsSwPushButton>>("wpsSwPushButton", {"intf"}),
        row<slot<&Ops::wpsHwPushButton>>("wpsHwPushButton", {"intfs", "intfs", "uuid"}),
        row<slot<&Ops::wpsStartStaPin>>("wpsStartStaPin", {"intf", "pin"}),
        row<slot<&Ops::wpsCancel>>("wpsCancel", {"intf"}),
        row<slot<&Ops::wpsUpdateConfg>>("wpsUpdateConfg", {"intf"}),
        row<slot<&Ops::stationFilter>>("stationFilter", {"intf", "path"}),
        row<slot<&Ops::getAssocDevList>>("getAssocDevList", {"intf", "index"}),
        row<slot<&Ops::bsaMacFilter>>("bsaMacFilter", {"interface", "command", "mac"}),
        row<slot<&Ops::disassociateSta>>("disassociateSta", {"interface", "station"}),
        row<slot<&Ops::getGenIntfInfo>>("getGenIntfInfo", {"interface", "index"}),
        row<slot<&Ops::getFatIntfInfo>>("getFatIntfInfo", {"interface", "index"}),
        row<slot<&Ops::enablePresetSsid>>("enablePresetSsid", {"interface", "enable"}),
        row<slot<&Ops::enableFenraEvt>>("enableFenraEvt", {"enable"}),
        row<receive>("receive", {}),
        row<phyType>("qvWlanGetPhyType", {"interface"}),
        row<upstreamRate>("qvWlanSetUpstreamRate", {"interface", "kbit"}),
        row<downstreamRate>("qvWlanSetDownstreamRate", {"interface", "kbit"}),
        row<flowCache>("qvWlanFlowCacheSetup", {"interface", "use"}),
        row<checkPin>("qvWlanWscPincheck", {"pin"}),
    };
    return kRows;
}

} // namespace

void beginModuleStart(TraceRing &trace) { trace.begin(beginning(kModuleStart)); }

void recordOperations(Module &module, TraceRing &trace) {
    for (const Row &one : rows())
        one.record(module, trace, one);
}

int64_t runAgain(Module &module, const std::string &name, const json &input) {
    for (const Row &one : rows())
        if (name == one.name)
            return one.again(module, one, input);
    refuseArchive(name, "is no operation that this program knows");
}

} // namespace wlhost
