# WPS sessions, driver events and their forwarding, through host, module, daemons and driver.
# seconds: 180
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
vary 'del(.radios[].ssids[0].preset) | .radios[].ssids[0].wps.configured = false'
start_host "$variant"

progress() { wlhost --json wps status | jq -r .state; }
enrolled() { echo "$output" | sed -n "s/.*$1=\([0-9a-f]*\).*/\1/p"; }
text_of() { printf '%b' "$(printf %s "$1" | fold -w 2 | sed 's/^/\\x/' | tr -d '\n')"; }

# RADIO: an unconfigured network gets a name and a key of its own, and the station that pressed its button knows them.
session_on() {
    local ssid key
    assert_status 0 wlhost wps push-button "$1"
    assert_eq running "$(progress)"
    assert_status 0 wlsim wps enrol "$1" --push-button --seconds 20
    ssid=$(enrolled ssid_hex) key=$(text_of "$(enrolled key_hex)")
    assert_status 0 wlhost --json wps apply "$1"
    assert_eq true "$(echo "$output" | jq .changed)" 'the take-over changed something'
    assert_eq "$ssid" "$(bss "$1" .ssid_hex)" 'the name on the air'
    joins "$1" "$key" --ssid-hex "$ssid"
    refused 'wrong passphrase' "$1" --passphrase 'correct horse battery' --mac 02:00:00:00:00:02
    assert_eq 'wpa2psk aes' "$(bss "$1" .security | sed 's/ mfp//')"
    assert_status 0 wlhost --json wps apply "$1"
    assert_eq false "$(echo "$output" | jq .changed)" 'a second take-over'
}

test_a_session_on_each_radio() {
    session_on wl0
    session_on wl1
}

test_a_pin_session() {
    assert_status 2 wlhost wps pin wl0 12345678
    assert_status 0 wlhost wps pin wl0 12345670
    assert_status 0 wlsim wps enrol wl0 --pin 12345670 --seconds 20
    assert_status 1 wlhost wps push-button wl1
    assert_contains "$output" 'wlhost wps apply wl0'
    assert_status 0 wlhost wps apply wl0
}

test_a_silent_daemon_holds_nobody_up() {
    local start=$SECONDS
    kill -STOP "$(pidof wps_monitor)"
    wlhost wps push-button wl0 >/dev/null 2>&1
    timeout 60 wlhost wps cancel wl0 >/dev/null 2>&1
    assert_status 0 wlhost version
    assert_status 0 test $((SECONDS - start)) -lt 30
    kill -CONT "$(pidof wps_monitor)"
    assert_status 0 wlhost wps cancel wl0
}

follow() { wlhost --json events --count "$1" >"$work"/events 2>/dev/null & }
seen() { jq -r '[.event, .interface, .mac] | join(" ")' "$work"/events; }
saw() { [ "$(seen | tail -n 1)" = "$1" ]; }

test_events_tell_who_came_and_went() {
    follow 3
    sleep 0.5 # until it listens
    joins wl0.1 'come in and sit down' --mac 02:00:00:00:00:44
    wait_for 10 saw 'associated wl0.1 02:00:00:00:00:44'
    assert_eq "$(bss wl0.1 '.stations[0].rssi_dbm')" "$(jq -r 'select(.event == "associated") | .signal_dbm' "$work"/events)"
    wlsim event wl0.1 10 --mac 02:00:00:00:00:44
    wait_for 10 saw 'reassociated wl0.1 02:00:00:00:00:44'
    wlsim event wl1 6 --mac 02:00:00:00:00:45
    wait_for 10 saw 'deauthenticated wl1 02:00:00:00:00:45'
}

test_the_steering_agent_gets_events_while_asked() {
    wlsim agent --count 2 >"$work"/agent 2>"$work"/agent.log &
    wait_for 5 grep -q listening "$work"/agent.log
    wlsim event wl0 137
    assert_status 0 wlhost forward on
    wlsim event wl0 137 --mac 02:00:00:00:00:46
    wlsim event wl0.1 6 --mac 02:00:00:00:00:47
    wait $!
    assert_eq '4096 bytes event 137 station 02:00:00:00:00:46 interface wl0
4096 bytes event 6 station 02:00:00:00:00:47 interface wl0.1' "$(cat "$work"/agent)"
    assert_status 0 wlhost forward off
}

memory() { awk '/^VmRSS/ { print $2 }' "/proc/$(pidof wlhost)/status"; }
received() { wlhost --json version | jq .events; }

test_a_flood_of_events() {
    local before after events
    # Until journal and recording hold all that they keep.
    wlsim flood wl0 --count 100000 >/dev/null
    before=$(memory) events=$(received)
    assert_status 0 wlsim flood wl0 --count 100000
    assert_status 0 timeout 20 wlhost version
    assert_status 0 test "$(received)" -gt "$events"
    assert_status 0 wlsim flood 'wl0; touch /tmp/owned' --number 8 --count 1000
    after=$(memory)
    assert_status 0 test $((after - before)) -le 256
    assert_status 0 timeout 20 wlhost ssids
    assert_status 1 test -e /tmp/owned
}
