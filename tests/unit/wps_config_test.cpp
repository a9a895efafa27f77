// The WPS configuration in nvram, the daemon's restart, PINs, and the setters and getters.
#include "tests/unit/fake_platform.h"

#include <cstring>
#include <memory>

#include "module/board.h"

namespace {

// The steps of a text, in order.
Lines steps(const std::string &text) {
    Lines found;
    for (size_t from = 0, end = 0; !text.empty() && end != std::string::npos; from = end + 2) {
        end = text.find("; ", from);
        found.push_back(text.substr(from, end - from));
    }
    return found;
}

const std::string kDaemonState =
    "set wps_aplockdown_cap=1; set wps_aplockdown_count=10; set wps_aplockdown_duration=300; "
    "set wps_aplockdown_ageout=300; set wps_proc_status=0; set wps_force_restart=n; set wps_restart=0; "
    "set wps_config_command=0; set wps_status=0; set wps_method=1; unset wps_proc_mac; ";
const std::string kDaemonStop = "run killall -15 wps_monitor 2>/dev/null; run rm /tmp/wps_monitor.pid 2>/dev/null";

} // namespace

class WpsConfig : public PlatformTest {
  protected:
    WpsConfig() {
        strcpy(intf->radio.ifName, "wl0");
        strcpy(intf->radio.phyType, "v");
        intf->radio.bssCount = 1;
        intf->caps.wpsCapable = 1;
        for (int i = 0; i < WLBRCM_MAX_BSS; ++i) {
            const std::string name = i == 0 ? "wl0" : "wl0." + std::to_string(i);
            strcpy(intf->bss[i].ifName, name.c_str());
            intf->bss[i].enable = 1;
        }
    }
    int init() { return qvWlanWscInit(&intf->radio, intf->bss); }

    std::unique_ptr<WlIntf> intf = std::make_unique<WlIntf>();
    WlSsidCfg &main = intf->bss[0];
};

TEST_F(WpsConfig, WritesTheDaemonsConfigurationInOrder) {
    platform.nvram = {{"DEV_MODELNAME", "R&D"},
                      {"DEV_MANUFACTURER", "ACME"},
                      {"DEV_PRODUCTNAME", "P1"},
                      {"DEV_MODELDESCRIBE", "Box"},
                      {"lan_ifnames", "eth0 wl0"}};
    intf->radio.bssCount = 3;
    intf->bss[2].enable = 0;
    strcpy(main.wpsDevicePin, "12345670");
    strcpy(main.wpsUuid, "uuid-1");
    main.wpsVersion2 = main.wpsEnable = main.wpsConfigured = main.wpsPbcEnable = main.wpsApPinEnable = 1;
    main.wpsConfigMethod = 0x2288;
    EXPECT_EQ(0, init());
    const Lines expected =
        steps("set wps_device_pin=12345670; set wps_version2=enabled; set wps_modelname=R&amp;D; "
              "set wps_device_name=R&amp;D KorvaAP; set wps_mfstring=ACME; set wps_mf_url=" WLBRCM_MANUFACTURER_URL "; "
              "set wps_modelnum=P1; set boardnum=1234; set wps_modeldes=Box; set wps_timeout_enable=0; "
              "set router_disable=0; set wps_random_ssid_prefix=Korva_; set wps_sta_pin=00000000; "
              "unset wps_currentband; unset wps_autho_sta_mac; " +
              kDaemonState +
              "set wl0_wps_mode=enabled; set wl0_wps_config_state=1; set wl0_wps_oob=disabled; "
              "set wl0_wps_enable_pbc=1; set wl0_wps_enable_stapin=0; set wl0_wps_enable_appin=1; "
              "set wl0_wps_config_method=0x2288; set wl0_wps_uuid=uuid-1; set wl0.1_wps_mode=disabled; "
              "set wl0.2_wps_mode=disabled; set wl_wps_config_state=1; set wl_wps_reg=enabled; "
              "set lan_wps_reg=enabled; set lan_wps_oob=disabled; set wl0_wps_led=17");
    EXPECT_EQ(expected, platform.journal);
    EXPECT_EQ("qvWlanWscInit", platform.logs[0].function);
    EXPECT_EQ("nvram set wps_device_pin = 12345670\n", platform.logs[0].text);
}

TEST_F(WpsConfig, ABareDeviceGetsDefaults) {
    for (const char *key : {"DEV_MODELNAME", "DEV_MANUFACTURER", "DEV_PRODUCTNAME", "DEV_MODELDESCRIBE"})
        platform.nvram[key] = ""; // as good as unset
    strcpy(intf->radio.phyType, "n");
    intf->radio.bssCount = 99;
    main.enable = 0;
    for (const char *pin : {"", "1234", "1234567", "12345678"}) {
        strcpy(main.wpsDevicePin, pin);
        init();
        EXPECT_EQ(WLBRCM_DEFAULT_DEVICE_PIN, platform.nvram["wps_device_pin"]) << pin;
    }
    const char *const rows[][2] = {
        {"wps_version2", "disabled"}, {"wps_modelname", "Broadcom"},  {"wps_device_name", "KorvaAP"},
        {"wps_mfstring", "Broadcom"}, {"wps_modelnum", "123456"},     {"wps_mf_url", WLBRCM_CHIP_MAKER_URL},
        {"wl0_wps_mode", "disabled"}, {"wl0.5_wps_mode", "disabled"}, {"wl0_wps_led", "3"}};
    for (const auto &[key, value] : rows)
        EXPECT_EQ(value, platform.nvram[key]) << key;
    EXPECT_EQ(Lines{}, platform.did("unset wps_modeldes"));
    EXPECT_EQ(Lines{}, platform.did("set wl0_wps_oob"));
}

TEST_F(WpsConfig, NamesAreCutToFit) {
    const std::string x63(63, 'x');
    std::string escaped; // twelve whole ones fit
    while (escaped.size() < 60)
        escaped += "&amp;";
    const struct {
        std::string model, name, device;
    } rows[] = {{x63.substr(8), x63.substr(8), x63.substr(8) + " KorvaAP"},
                {x63.substr(7), x63.substr(7), x63.substr(7)},
                {"ABC ", "ABC", "ABC KorvaAP"},
                {x63.substr(1) + "&", x63.substr(1), x63.substr(1)},
                {x63 + "yz", x63, x63},
                {std::string(63, '&'), escaped, escaped}};
    for (const auto &row : rows) {
        platform.nvram["DEV_MODELNAME"] = row.model;
        init();
        EXPECT_EQ(row.name, platform.nvram["wps_modelname"]);
        EXPECT_EQ(row.device, platform.nvram["wps_device_name"]);
    }
}

TEST_F(WpsConfig, LanGroupsAreOutOfTheBoxWhileOneRadioIs) {
    const struct {
        const char *group, *ifnames, *first, *second; // states of wl0 and wl1, null for unset
        const char *outOfBox;                         // null when nothing is written
    } rows[] = {
        {"lan_", "wl0 wl1", "1", "0", "enabled"},
        {"lan_", "wl0 wl1", "1", "1", "disabled"},
        {"lan3_", "eth0 wl0", "2", "1", "enabled"},
        {"lan9_", "wl0 wl1", nullptr, nullptr, "disabled"},
        {"lan_", "wl0.1 eth0", "0", "0", "disabled"},
        {"lan_", "xwl0  wl1", "0", "3", "disabled"},
        {"lan1_", "", "0", "0", nullptr},
        {"lan1_", "wl0", "0", nullptr, "enabled"},
        {"lan10_", "wl0", "0", "0", nullptr},
    };
    for (const auto &row : rows) {
        const std::string group = row.group;
        // Neither a virtual BSS nor another kind of interface counts.
        platform.nvram = {
            {group + "ifnames", row.ifnames}, {"wl0.1_wps_config_state", "0"}, {"xwl0_wps_config_state", "0"}};
        intf->radio.bssCount = 0; // leaves the states alone
        if (row.first != nullptr)
            platform.nvram["wl0_wps_config_state"] = row.first;
        if (row.second != nullptr)
            platform.nvram["wl1_wps_config_state"] = row.second;
        init();
        EXPECT_EQ(row.outOfBox != nullptr ? 1U : 0U, platform.nvram.count(group + "wps_reg")) << row.ifnames;
        EXPECT_EQ(row.outOfBox != nullptr ? row.outOfBox : "", platform.nvram[group + "wps_oob"]) << row.ifnames;
    }
    platform.nvram["lan_ifnames"] = "wl0 " + std::string(3000, 'w');
    platform.nvram["wl0_wps_config_state"] = "0";
    init();
    EXPECT_EQ("disabled", platform.nvram["lan_wps_oob"]) << "a list that cannot be copied";
}

TEST_F(WpsConfig, TheDaemonRunsWhileAnyRadioWantsIt) {
    const struct {
        uint8_t enable, wps;
        const char *key, *mode;
        bool runs;
    } rows[] = {
        {1, 1, "x", "", true},
        {1, 0, "x", "", false},
        {0, 1, "x", "", false},
        {0, 0, "wl0_wps_mode", "enabled", true},
        {0, 0, "wl1_wps_mode", "enabled", true},
        {0, 0, "wl1_wps_mode", "on", false},
        {0, 0, "wl2_wps_mode", "enabled", false},
    };
    intf->radio.bssCount = 2;
    intf->bss[1].wpsEnable = 1; // only main BSSs count
    for (const auto &row : rows) {
        platform.forget();
        platform.nvram = {{row.key, row.mode}};
        main.enable = row.enable;
        main.wpsEnable = row.wps;
        qvWlanWscRestart(&intf->radio, intf->bss);
        const std::string start = "; " + kDaemonState + "sleep 1; run /bin/wps_monitor&";
        EXPECT_EQ(steps(kDaemonStop + (row.runs ? start : "")), platform.journal) << &row - rows;
    }
}

TEST_F(WpsConfig, ReloadRestartsBothDaemons) {
    intf->caps.wpsCapable = 0;
    EXPECT_EQ(0, qvbrcm_WPSReload(intf.get()));
    EXPECT_EQ(Lines{}, platform.journal);
    EXPECT_EQ(Lines{"Enter.\n"}, platform.logged(64));
    intf->caps.wpsCapable = 1;
    EXPECT_EQ(0, qvbrcm_WPSReload(intf.get()));
    EXPECT_EQ("set wl0_wps_led=17", *(platform.journal.end() - 5));
    EXPECT_EQ(steps("run killall eapd; run /bin/eapd; " + kDaemonStop), platform.did("run "));
}

TEST_F(WpsConfig, PinChecks) {
    for (const char *good : {"1234", "a;b ", "31415927", "12345670", "00000000"})
        EXPECT_EQ(0, qvWlanWscPincheck(good)) << good;
    for (const char *bad : {"", "123", "12345", "1234567", "12345678", "31415928", "314159270"})
        EXPECT_EQ(-1, qvWlanWscPincheck(bad)) << bad;
}

namespace {
const char *flashText = "";
int flashResult = 0;
int readFlash(unsigned long code, void *block) {
    auto *request = static_cast<wlbrcm::BoardRequest *>(block);
    EXPECT_EQ(0xC0184201UL, code);
    EXPECT_TRUE(request->second == nullptr && request->length == 8 && request->offset == 0x144 &&
                request->action == 1 && request->result == -1);
    memcpy(request->buffer, flashText, strnlen(flashText, 12));
    return flashResult;
}
} // namespace

TEST_F(WpsConfig, PinsComeFromTheBoardOrAreMade) {
    const struct {
        const char *flash;
        int result;
        const char *output, *pin; // null for a made one
    } rows[] = {
        {"31415927", 0, "", "31415927"},
        {"31415927999X", 0, "", "31415927"},
        {"31415928", 0, "", nullptr}, // wrong checksum
        {"3141592", 0, "There is no Predefined DevicePin in CFE\n", nullptr},
        {"31415x27", 0, "There is no Predefined DevicePin in CFE\n", nullptr},
        {"31415927", -1, "qvWlanReadCfeDevPin@# Read WPS Pin Failure\n", nullptr},
        {nullptr, 0, "Unable to open device /dev/brcmboard", nullptr},
    };
    for (const auto &row : rows) {
        platform.devices.clear();
        if (row.flash != nullptr) {
            platform.devices["/dev/brcmboard"] = readFlash;
            flashText = row.flash;
        }
        flashResult = row.result;
        char pin[11];
        memset(pin, 'x', sizeof pin);
        std::string output = printed([&] { EXPECT_EQ(0, qvWlanWscPinGen(pin)); });
        const size_t at = output.find('@');
        if (at != std::string::npos)
            output.replace(at + 1, output.find(' ') - at - 1, "#");
        EXPECT_EQ(row.output, output);
        ASSERT_EQ(8U, strnlen(pin, sizeof pin));
        EXPECT_EQ(8U, strspn(pin, "0123456789"));
        EXPECT_EQ(0, qvWlanWscPincheck(pin)) << pin;
        EXPECT_TRUE(row.pin == nullptr || strcmp(row.pin, pin) == 0) << pin;
        EXPECT_STRNE("31415928", pin);
    }
}

TEST_F(WpsConfig, Setters) {
    constexpr char kConfigured[] = "set wl1_wps_config_state=1; set wl_wps_config_state=1; set lan_wps_oob=disabled";
    const std::string tooLong = std::string(2047, '0') + "1";
    constexpr char kOutOfBox[] = "set wl1_wps_config_state=0; set wl_wps_config_state=0; set lan_wps_oob=enabled";
    const struct {
        int (*setter)(WlanParamArg *);
        std::map<std::string, std::string> before;
        const char *value, *aux;
        int result;
        const char *journal;
    } rows[] = {
        {qvWlanSetWpsConfMode, {}, "x", "", 0, ""},
        {qvWlanSetWpsMethod, {{"wps_sta_pin", "00000000"}}, "pin", "", 0, "set _wps_config_method=ap-pin"},
        {qvWlanSetWpsMethod, {{"wps_sta_pin", "12345670"}}, "pin", "", 0, "set _wps_config_method=sta-pin"},
        {qvWlanSetWpsMethod, {}, "pin", "", 0, "set _wps_config_method=sta-pin"},
        {qvWlanSetWpsMethod, {}, "pbc", "", 0, "set _wps_config_method=pbc"},
        {qvWlanSetWpsMethod, {}, "PBC", "", -14, ""},
        {qvWlanSetWpsPinCode, {}, "12345670 ", "", 0, "set wps_sta_pin=12345670 "},
        {qvWlanSetWpsConfStatus, {}, "1", "1", 0, "set wl1_wps_config_state=1"},
        {qvWlanSetWpsConfStatus, {}, "1", "0", 0, kConfigured},
        {qvWlanSetWpsConfStatus, {}, "0", "0", 0, kOutOfBox},
        {qvWlanSetWpsConfStatus, {}, "2", "0", -14, ""},
        {qvWlanSetWpsConfStatus, {}, tooLong.c_str(), "0", -14, ""},
        {qvWlanSetWpsPBCType, {}, tooLong.c_str(), "", -14, ""},
        {qvWlanSetWpsConfStatus, {}, "-1", "0", -14, ""},
        {qvWlanSetWpsVendorPinCode, {}, "12345670", "", 0, "set wps_device_pin=12345670"},
        {qvWlanSetWpsVendorPinCode, {{"wps_device_pin", "12345670"}}, "12345670", "", 0, ""},
        {qvWlanSetWpsVendorPinCode, {}, "", "", 0, ""},
        {qvWlanSetWpsPBCType, {}, "2 ", "", 0, "set wps_pbc_type=2"},
        {qvWlanSetWpsPBCType, {}, "", "", 0, "unset wps_pbc_type"},
    };
    for (const auto &row : rows) {
        platform.forget();
        platform.nvram = row.before;
        Arg arg("wl1", row.value, row.aux);
        EXPECT_EQ(row.result, row.setter(arg)) << &row - rows;
        EXPECT_EQ(steps(row.journal), platform.journal) << &row - rows;
        arg.record.value = nullptr;
        const int missing = row.setter == qvWlanSetWpsConfMode ? 0 : WLBRCM_EINVAL;
        EXPECT_EQ(missing, row.setter(arg));
        EXPECT_EQ(missing, row.setter(nullptr));
    }
    EXPECT_EQ(0, set_wps_config_method_default());
    EXPECT_EQ("0x88", platform.nvram["wps_config_method"]);
    platform.nvram["wps_version2"] = "enabled";
    EXPECT_EQ(0, set_wps_config_method_default());
    EXPECT_EQ("0x2288", platform.nvram["wps_config_method"]);
}

TEST_F(WpsConfig, Getters) {
    char text[40] = "untouched";
    int status = -7;
    for (const auto getter : {qvWlanGetWpsVendorPinCode, qvWlanGetWPSUuid}) {
        EXPECT_EQ(0, getter(Arg("", "", "", 0, text)));
        EXPECT_EQ(WLBRCM_EINVAL, getter(Arg("")));
        EXPECT_EQ(WLBRCM_EINVAL, getter(nullptr));
    }
    EXPECT_EQ(0, qvWlanGetWPSProcStatus(Arg("", "", "", 0, &status)));
    EXPECT_STREQ("untouched", text);
    EXPECT_EQ(-7, status);

    platform.nvram = {
        {"wps_device_pin", std::string(50, '1')}, {"wps_uuid", std::string(36, 'u')}, {"wps_proc_status", "12"}};
    qvWlanGetWpsVendorPinCode(Arg("", "", "", 0, text));
    EXPECT_EQ(std::string(31, '1'), text); // the caller's 32 bytes
    memset(text, 'x', sizeof text);
    qvWlanGetWPSUuid(Arg("", "", "", 0, text));
    EXPECT_EQ(std::string(36, 'u'), text);
    EXPECT_EQ(0, qvWlanGetWPSProcStatus(Arg("", "", "", 0, &status)));
    EXPECT_EQ(12, status);
    EXPECT_EQ(0, qvWlanGetWPSProcStatus(Arg("")));
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanGetWPSProcStatus(nullptr));

    platform.devices["/dev/brcmboard"] = readFlash;
    flashText = "31415927";
    flashResult = 0;
    Arg pin("", "", "123456789");
    EXPECT_EQ(0, qvWlanGenWpsVendorPinCode(pin));
    EXPECT_STREQ("31415927", pin.record.aux);
    EXPECT_EQ(Lines{}, platform.did("set "));
    pin.record.aux = nullptr;
    EXPECT_EQ(WLBRCM_EINVAL, qvWlanGenWpsVendorPinCode(pin));
}
