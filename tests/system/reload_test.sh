# Changing a configuration that is in force.
# seconds: 180
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
start_host /src/examples/home.json

# FILTER: home.json with this change, and without the announcement and WPS, which cost pauses.
reload_with() {
    vary "del(.radios[].ssids[0].preset, .radios[].ssids[].wps) | .radios[0].channel = 40 | $1"
    assert_status 0 wlhost reload --config "$variant"
}
on_channel_with_its_station() { [ "$(radio wl0 '[.chanspec, (.bss[0].stations | length)] | join(" ")')" = '44/80 1' ]; }
switch_count() { radio wl0 '.switches | length'; }

# The driver counts 20 beacons down, two seconds, and its stations follow; three seconds after the announcement the
# module takes the radio down. A module that did not wait would lose them before the switch.
test_stations_follow_an_announced_channel_switch() {
    joins wl0 'correct horse battery'
    vary '.radios[0].channel = 44'
    local start=${EPOCHREALTIME/[.,]/}
    wlhost reload --config "$variant" >/dev/null &
    local client=$!
    wait_for 20 on_channel_with_its_station
    assert_eq $'44/80 0 20' "$(radio wl0 '.switches[-1] | [.chanspec, .mode, .count] | join(" ")')"
    wait $client
    assert_eq 0 $? 'status of the reload'
    assert_status 0 test $(((${EPOCHREALTIME/[.,]/} - start) / 1000)) -ge 3000
    assert_eq 44/80 "$(radio wl0 .chanspec)"
    joins wl0 'correct horse battery'
}

test_no_announcement_without_an_announcer() {
    local before
    before=$(switch_count)
    reload_with .
    assert_eq "40/80 $before" "$(radio wl0 .chanspec) $(switch_count)"
    reload_with '.radios[0].channel = "auto"'
    assert_eq "true $before" "$(radio wl0 .auto_channel) $(switch_count)"
}

test_a_new_passphrase_and_name() {
    joins wl1 'correct horse battery' --mac 02:00:00:00:00:09
    reload_with '.radios[1].ssids[0].key = "another horse" | .radios[1].ssids[1].ssid = "visitors"'
    assert_eq 0 "$(bss wl1 '.stations | length')" 'stations after the reload'
    refused 'wrong passphrase' wl1 --passphrase 'correct horse battery'
    joins wl1 'another horse'
    assert_status 1 wlsim join --ssid guest --band 2 --passphrase 'come in and sit down'
    assert_status 0 wlsim join --ssid visitors --band 2 --passphrase 'come in and sit down'
}

test_networks_disabled_and_removed() {
    reload_with '.radios[0].ssids[1].disabled = true | del(.radios[1].ssids[2])'
    assert_status 1 wlsim join wl0.1 --passphrase 'come in and sit down'
    assert_lacks "$(tc qdisc show dev wl0.1 2>&1)" tbf
    assert_lacks "$(ebtables -t broute -L SKIP_FCACHE)" wl0.1
    assert_status 1 wlsim join --ssid things --passphrase 'bulbs and sockets'
    assert_eq 'wl1.1' "$(nvram get wl1_vifs)"
    assert_eq '' "$(networks | grep -E '^wl(0\.1|1\.2) on-air')"
    joins wl0 'correct horse battery'
    joins wl1.1 'come in and sit down' --mac 02:00:00:00:00:02
}

test_a_radio_switched_off_and_on() {
    reload_with '.radios[1].disabled = true'
    assert_eq 'false down' "$(radio wl1 '[.up, .stage] | join(" ")')"
    assert_eq '' "$(networks | grep '^wl1.* on-air')"
    assert_eq wl0 "$(nvram get acs_ifnames)"
    refused 'BSS is down' wl1 --passphrase 'correct horse battery'
    joins wl0 'correct horse battery'
    reload_with .
    joins wl1 'correct horse battery' --mac 02:00:00:00:00:02
}

test_reload_by_signal_and_of_one_radio() {
    cp "$variant" "$work"/file.json
    assert_status 0 wlhost reload --config "$work"/file.json
    jq '.radios[1].channel = 11' "$work"/file.json >"$variant" && cp "$variant" "$work"/file.json
    killall -HUP wlhost
    wait_for 20 test "$(wlhost --json version | jq -r .module)" = BRCM
    assert_eq 11 "$(radio wl1 .chanspec)"
    assert_status 0 wlhost reload wl1
    assert_eq 'wl0 unchanged,wl1 reloaded' "$(echo "$output" | awk '/^wl/ { print $1, $2 }' | paste -sd,)"
    assert_eq 11 "$(radio wl1 .chanspec)"
}
