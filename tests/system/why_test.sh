# Each broken link: a station is refused, wlhost names the link, and its cure lets the station in.
# seconds: 240
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
vary 'del(.radios[].ssids[0].preset, .radios[].ssids[].wps) | .radios[0].ssids[1].maxassoc = 1'
start_host "$variant"
station=02:00:00:00:00:01

# IF: the station's way in.
passphrase() { jq -r ".radios[].ssids | to_entries[] | select(.value.ssid == \"$(bss "$1" .ssid)\") | .value.key" "$variant" | head -n 1; }

nothing_in_the_way() { wlhost why "$@"; }

# LINK REASON IF BREAK: what breaks the link, why the driver refuses the station, and what the host says of it.
broken() {
    local link=$1 reason=$2 ifname=$3 key cure
    wait_for 10 nothing_in_the_way "$ifname" "$station"
    key=$(passphrase "$ifname")
    sh -c "$4" >/dev/null || fail "cannot break $link by $4"
    if [ -n "$reason" ]; then
        # shellcheck disable=SC2086 # an option's words
        refused "$reason" "$ifname" --passphrase "$key" --mac "$station" ${5-}
    fi
    assert_status 1 wlhost why "$ifname" "$station"
    assert_contains "$output" 'cure: '
    assert_eq "$link" "$(wlhost --json why "$ifname" "$station" | jq -r .link)" "the link broken by $4"
    cure=$(wlhost --json why "$ifname" "$station" | jq -r .cure)
    assert_status 0 sh -c "$cure"
    assert_status 0 wlhost why "$ifname" "$station"
    joins "$ifname" "$key" --mac "$station"
    wlsim leave --all
}

test_every_link() {
    broken nas 'nas does not run' wl0 "$(ends nas)"
    broken eapd 'eapd does not run' wl0 "$(ends eapd)"
    broken interface 'its interface is down' wl0.1 'ifconfig wl0.1 down'
    broken BSS 'not started' wl0 'wl -i wl0 bss down'
    broken radio 'the radio is down' wl0 'wlctl -i wl0 down'
    broken channel 'no such network on channel 36' wl0 'wlctl -i wl0 chanspec 44/80' '--channel 36'
    broken SSID '' wl0 'wlctl -i wl0 ssid elsewhere'
    broken security '' wl0 'nvram set wl0_wpa_psk=somebody.elses'
    broken 'MAC filter' 'denied by the MAC filter' wl0 "wlhost filter wl0 deny $station 02:00:00:00:00:77"
    broken 'MAC filter' 'denied by the MAC filter' wl0 'wlhost filter wl0 allow 02:00:00:00:00:77'
    broken 'MAC filter' 'denied by the MAC filter' wl1 "wlhost ban wl1 $station"
    broken 'MAC filter' 'denied by the MAC filter' wl1.1 "wlctl -i wl1.1 macmode 1; wlctl -i wl1.1 mac $station"
    broken 'station limit' 'station limit reached' wl0.1 \
        "wlsim join wl0.1 --mac 02:00:00:00:00:99 --passphrase '$(passphrase wl0.1)'"
    broken 'station limit' 'station limit reached' wl1 \
        "wlctl -i wl1 maxassoc 1; wlsim join wl1.1 --mac 02:00:00:00:00:99 --passphrase '$(passphrase wl1.1)'"
    broken 'LAN group' 'no LAN group lists wl0' wl0 'nvram set lan_ifnames="eth0 eth1 wl1 wl1.2"'
}

# The station joins and reaches nobody.
test_out_of_its_bridge() {
    broken bridge '' wl0 'brctl delif br0 wl0'
    broken bridge '' wl0.1 'brctl delif br1 wl0.1; brctl addif br0 wl0.1'
    assert_eq 'br0 br1' "$(bss wl0 .bridge) $(bss wl0.1 .bridge)"
}

test_what_is_switched_off() {
    assert_status 1 wlhost why wl0.2
    assert_contains "$output" 'cure: wlhost preset wl0.2 on'
    assert_status 0 wlhost preset wl0.2 on
    assert_status 0 wlhost why wl0.2
    assert_status 3 wlhost why wl7
    assert_status 2 wlhost why wl0 nobody
}

# STATION LINK: the event comes when it comes.
link_is() { [ "$(wlhost --json why wl0 "$1" | jq -r .link)" = "$2" ]; }

test_the_stations_own_settings() {
    assert_status 0 wlhost filter wl0 off
    refused 'wrong passphrase' wl0 --passphrase 'incorrect horse' --mac 02:00:00:00:00:31
    wait_for 5 link_is 02:00:00:00:00:31 events
    refused 'security mismatch' wl0 --mac 02:00:00:00:00:32
    wait_for 5 link_is 02:00:00:00:00:32 events
    assert_contains "$(wlhost why wl0 02:00:00:00:00:32)" 'psk2'
    assert_status 0 wlhost why wl0 02:00:00:00:00:33
}

test_a_driver_that_does_not_answer() {
    assert_status 0 wlsim fail 'wlctl -i wl0 isup' forever
    assert_status 1 wlhost why wl0
    assert_contains "$output" 'no answer: wlctl: driver error'
    assert_status 0 wlsim fail --clear
    assert_status 0 wlhost why wl0
}
