# What the host shows of stations and neighbours is what the driver knows.
# scenario: apartment
# seconds: 180
# shellcheck shell=bash disable=SC2154,SC2016 # $output is set by assert_status; jq has variables too
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
before_case() { wlsim leave --all; }
vary 'del(.radios[].ssids[0].preset, .radios[].ssids[].wps)'
start_host "$variant"

# A name of zeros is how a hidden network's beacon spells it.
known_neighbours() {
    driver '{"wpa2psk": "psk2", "wpapskmix": "psk-mixed", "wpapsk": "psk", "wpa2": "wpa2", "open": "open/wep"} as $words |
        .radios[] | .name as $radio | .neighbours[] | [$radio, (.bssid | ascii_downcase), (.ssid_hex | sub("^(00)+$"; "")),
        .rssi_dbm, $words[.security], .wps, .width_mhz // (.chanspec | if endswith("/80") then 80 else 20 end)] | join(" ")'
}

test_a_scan_shows_every_neighbour() {
    assert_status 0 wlhost --json scan
    assert_eq "$(known_neighbours)" "$(wlhost --json scan --cached 2>/dev/null |
        jq -r '.[] | [.radio, .bssid, .ssid_hex, .signal_dbm, .security, .wps, .width_mhz] | join(" ")')"
    assert_eq 80 "$(known_neighbours | wc -l)" neighbours
    assert_status 1 test -e /tmp/owned
    assert_lacks "$(wlhost scan 2>/dev/null)" $'\e'
    wait_for 5 only_caches
}
only_caches() { [ "$(files_in_tmp)" = 'wl0_cap wl1_cap' ]; }

test_neighbours_come_and_go() {
    assert_status 0 wlsim neighbour clear wl1
    wlsim neighbour add wl1 '{"bssid": "02:00:5E:77:00:01", "ssid": "new", "chanspec": "11", "rssi": -33}'
    assert_eq '02:00:5e:77:00:01 new 11 -33' "$(wlhost --json scan wl1 2>/dev/null |
        jq -r '.[] | [.bssid, .ssid, .channel, .signal_dbm] | join(" ")')"
    assert_eq '11:1' "$(wlhost --json survey wl1 2>/dev/null | jq -r '.[] | select(.bss_count > 0) | "\(.channel):\(.bss_count)"')"
}

known_stations() {
    driver '.radios[].bss[] | .interface as $name | .stations[] | [$name, (.mac | ascii_downcase), .phy, .width_mhz, .rssi_dbm,
        .tx_rate_kbps, .rx_rate_kbps, .tx_bytes, .rx_bytes, .tx_failures, .tx_retries] | join(" ")'
}
shown_stations() {
    wlhost --json stations "$@" | jq -r '.[] | [.interface, .mac, .mode, .width_mhz, .signal_dbm, .tx_rate_kbps, .rx_rate_kbps,
        .tx_bytes, .rx_bytes, .tx_failures, .tx_retries] | join(" ")'
}

test_stations_are_shown_with_their_reports() {
    joins wl0 'correct horse battery' --count 3 --rssi -61
    joins wl0.1 'come in and sit down' --mac 02:00:00:00:02:01 --phy n --streams 1
    joins wl1 'correct horse battery' --mac 02:00:00:00:03:01 --phy g --rssi -88
    wlsim set station 02:00:00:00:00:02 tx_bytes 5000000000
    wlsim set station 02:00:00:00:00:02 rx_bytes 4294967295
    wlsim set station 02:00:00:00:00:03 tx_retries 77
    wlsim set station 02:00:00:00:03:01 tx_failures 3
    assert_eq "$(known_stations)" "$(shown_stations)"
    assert_eq "$(known_stations | grep '^wl0.1 ')" "$(shown_stations wl0.1)"
    assert_eq '4 1' "$(wlhost --json status | jq -r '[.[].stations] | join(" ")')" 'stations of each radio'
    assert_status 0 wlhost kick wl0 02:00:00:00:00:03
    assert_status 3 wlhost kick wl0 02:00:00:00:00:03
    assert_eq 4 "$(shown_stations | wc -l)"
    assert_status 0 wlsim leave --all
    assert_eq '[]' "$(wlhost --json stations | jq -c .)"
}

sent_bytes() { wlhost --json stations wl0 | jq '[.[].tx_bytes] | add'; }
more_than() { [ "$(sent_bytes)" -gt "$1" ]; }

test_a_full_radio() {
    joins wl0 'correct horse battery' --count 128 --traffic 4000
    refused 'station limit' wl0 --passphrase 'correct horse battery' --mac 02:00:00:00:07:07
    assert_status 0 wlhost --json stations wl0
    assert_eq 128 "$(echo "$output" | jq '[.[].mac] | unique | length')"
    wait_for 10 more_than "$(echo "$output" | jq '[.[].tx_bytes] | add')"
}
