# Networks of every kind on one gateway, and the stations that each admits.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh

cat >"$work"/kinds.json <<'END'
{
    "lan": { "groups": [{ "name": "br0", "ports": ["eth0"] }] },
    "radios": [
        {
            "name": "wl0", "channel": 36, "country": "DE/3", "acs_exclude": [],
            "ssids": [
                { "ssid": "protected", "encryption": "psk2", "key": "management frames", "ieee80211w": 2, "network": "br0" },
                { "ssid": "open", "encryption": "none", "network": "br0" },
                { "ssid": "wep", "encryption": "wep", "key1": "aaaaa", "key2": "bbbbb", "wep_default_key": 2, "network": "br0" },
                { "ssid": "few", "encryption": "none", "maxassoc": 2, "network": "br0" },
                { "ssid": "family", "encryption": "none", "macfilter": "allow", "maclist": ["02:00:00:00:00:0a"] },
                { "ssid": "office", "encryption": "wpa2", "network": "br0",
                  "radius": { "server": "192.168.1.9", "port": 1645, "secret": "se cret" } }
            ]
        },
        {
            "name": "wl1", "channel": 1, "country": "DE/3", "hwmode": "n",
            "ssids": [
                { "ssid": "n only", "encryption": "none", "network": "br0", "maxassoc": 3 },
                { "ssid": "\\ \" $(reboot) `id` ; é", "encryption": "psk2", "key": "'; $HOME \" \\ key", "network": "br0" },
                { "ssid": "banned", "encryption": "none", "network": "br0" }
            ]
        }
    ]
}
END
start_host "$work"/kinds.json
before_case() { wlsim leave --all; }

test_open_and_wep() {
    assert_status 0 wlsim join wl0.1
    refused 'security mismatch' wl0.1 --passphrase something
    assert_status 0 wlsim join wl0.2 --security wep --passphrase bbbbb
    refused 'wrong passphrase' wl0.2 --security wep --passphrase aaaaa
    refused 'security mismatch' wl0.2
}

test_enterprise_and_protected_frames() {
    assert_status 0 wlsim join wl0.5 --security wpa2
    refused 'security mismatch' wl0.5 --passphrase something
    assert_eq '192.168.1.9:1645 se cret' "$(nvram get wl0.5_radius_ipaddr):$(nvram get wl0.5_radius_port) $(nvram get wl0.5_radius_key)"
    joins wl0 'management frames'
    refused 'frame protection is required' wl0 --passphrase 'management frames' --no-pmf
}

test_station_limits_of_a_network_and_of_the_radio() {
    assert_status 0 wlsim join wl0.3 --mac 02:00:00:00:01:01 --count 2
    refused 'station limit' wl0.3 --mac 02:00:00:00:01:03
    assert_status 0 wlsim leave 02:00:00:00:01:01
    assert_status 0 wlsim join wl0.3 --mac 02:00:00:00:01:03
    assert_status 0 wlsim join wl1.2 --mac 02:00:00:00:01:01 --count 3
    refused 'station limit' wl1 --mac 02:00:00:00:01:04
}

test_allow_lists() {
    assert_status 0 wlsim join wl0.4 --mac 02:00:00:00:00:0A
    refused 'denied by the MAC filter' wl0.4 --mac 02:00:00:00:00:0B
    assert_eq null "$(bss wl0.4 .bridge)" 'bridge of a network without one'
}

test_filters_change_at_run_time() {
    assert_status 0 wlhost filter wl1.2 deny 02:00:00:00:00:0c
    refused 'denied by the MAC filter' wl1.2 --mac 02:00:00:00:00:0C
    assert_status 0 wlhost ban wl1.2 02:00:00:00:00:0d
    assert_status 0 wlhost filter wl1.2 allow 02:00:00:00:00:0c 02:00:00:00:00:0d
    assert_status 0 wlsim join wl1.2 --mac 02:00:00:00:00:0C
    refused 'denied by the MAC filter' wl1.2 --mac 02:00:00:00:00:0D
    assert_status 0 wlhost unban wl1.2 --all
    assert_status 0 wlsim join wl1.2 --mac 02:00:00:00:00:0D
    refused 'denied by the MAC filter' wl1.2 --mac 02:00:00:00:00:0E
    assert_status 0 wlhost filter wl1.2 off
    assert_status 0 wlsim join wl1.2 --mac 02:00:00:00:00:0E
}

test_old_stations_where_802_11n_is_required() {
    assert_status 0 wlsim join wl1 --phy n
    refused '802.11n required' wl1 --phy g --mac 02:00:00:00:00:02
}

test_names_and_keys_are_taken_as_they_are() {
    assert_eq "$(printf '%s' "\\ \" \$(reboot) \`id\` ; é" | od -An -tx1 | tr -d ' \n')" "$(bss wl1.1 .ssid_hex)"
    joins wl1.1 "'; \$HOME \" \\ key"
}
