# What an engineer meets every day: signals, following events, output that does not fit or cannot be written.
# seconds: 240
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh

config=$work/day.json
sed 's|//.*||' /src/examples/home.json | jq '.radios[0].ssids[1] |= (del(.ssid) | .ssid_hex = "ff" * 32)' >"$config"

# A host of this shell, in $host.
start_own() {
    wlhost run "$config" >/dev/null 2>"$work"/host.log &
    host=$!
    wait_for 60 wlhost ssids
}
# PID STATUS [WHAT]: how it ends.
ends_with() {
    wait "$1"
    assert_eq "$2" $? "status of ${3:-the host}"
}
ends_by() {
    kill -"$1" "$host"
    ends_with "$host" 0
}
events_of() { jq -r '[.event, .mac // "-", .reason // "-"] | join(" ")' "$1"; }
saw() { events_of "$1" | grep -qx "$2"; }

test_output_that_cannot_be_written() {
    local command
    start_own
    for command in --help schema --version version doctor ssids 'ssids --json' 'completion -- s' 'status wl7 --json'; do
        # shellcheck disable=SC2086 # a command's words
        wlhost $command 2>"$work"/said >/dev/full
        assert_eq 1 $? "status of $command on a full disk"
        assert_contains "$(cat "$work"/said)" 'cannot be written' "$command"
        # shellcheck disable=SC2086
        (sleep 0.3 && wlhost $command) 2>/dev/null | true
        assert_eq 1 "${PIPESTATUS[0]}" "status of $command into a closed pipe"
    done
    wlhost events 2>/dev/null | true
    assert_eq 1 "${PIPESTATUS[0]}" 'events without a reader and without events'
    ends_by TERM
}

test_tables_fit() {
    local command
    start_own
    joins wl0 'correct horse battery'
    wlhost scan >/dev/null 2>&1
    for command in ssids stations status 'scan --cached' survey beacon rates doctor 'filter wl0'; do
        # shellcheck disable=SC2086 # a command's words
        assert_status 0 env COLUMNS=80 wlhost $command
        assert_eq 0 "$(echo "${output//…/.}" | grep -cE '.{81}')" "lines of $command beyond 80 columns"
    done
    assert_contains "$(COLUMNS=80 wlhost ssids --wide)" "$(printf '\\xff%.0s' {1..32})"
    assert_status 2 wlhost ssids --sort signal
    assert_contains "$output" 'columns: if, ssid'
    ends_by INT
}

test_a_host_that_comes_back() {
    start_own
    joins wl0 'correct horse battery'
    wlhost --json events >"$work"/all 2>/dev/null &
    wlhost --json events --no-reconnect --kind refused --interface wl0 >"$work"/some 2>"$work"/said &
    local once=$!
    sleep 0.5 # until they listen
    wlhost ban wl0 02:00:00:00:00:77 >/dev/null
    refused 'MAC filter' wl0 --mac 02:00:00:00:00:77 --passphrase 'correct horse battery'
    wait_for 5 saw "$work"/some 'refused 02:00:00:00:00:77 mac-filter'
    wlsim leave 02:00:00:00:00:01 >/dev/null
    joins wl0 'correct horse battery'
    ends_by TERM
    assert_status 1 test -e /tmp/wlhost.sock
    ends_with "$once" 7 'events --no-reconnect'
    assert_eq 'refused host-ended environment' "$(jq -r '.event // .error.code' "$work"/some | xargs)" 'what one kind of event has'
    assert_status 0 saw "$work"/all 'disassociated 02:00:00:00:00:01 station-left'
    assert_status 0 saw "$work"/all 'host-ended - -'
    assert_eq 'true 02:00:00:00:00:01' "$(bss wl0 '[.on_air, .stations[].mac] | join(" ")')" 'the network without its host'
    start_own
    joins wl1 'correct horse battery' --mac 02:00:00:00:00:78
    wait_for 10 saw "$work"/all 'associated 02:00:00:00:00:78 -'
    ends_by TERM
}

on_air() { [ "$(bss wl0 .ssid)" = "taken over" ]; }
test_signals_amid_an_operation() {
    start_own
    wlhost reload --all >/dev/null &
    local reload=$!
    sleep 0.3
    assert_status 5 wlhost --timeout 1 status
    assert_contains "$output" 'goes on in the host'
    jq '.radios[0].ssids[0].ssid = "taken over"' "$config" >"$config".new
    mv "$config".new "$config"
    kill -HUP "$host"
    ends_with "$reload" 0 'the reload'
    wait_for 20 on_air # by the signal, which came while the host was busy
    wlhost reload --all >/dev/null &
    sleep 0.3
    ends_by TERM
    assert_eq true "$(bss wl0 .on_air)" 'what the reload brought up'
}

session_is() { [ "$(wlhost --json wps status | jq -r .state)" = "$1" ]; }
test_who_gives_a_session_up_ends_it() {
    start_own
    wlhost wps push-button wl1 --wait >/dev/null 2>"$work"/said &
    local waiting=$!
    wait_for 10 session_is running
    kill -TERM "$waiting"
    ends_with "$waiting" 1 'who waited'
    assert_contains "$(cat "$work"/said)" 'the session was cancelled'
    assert_status 0 session_is idle
    ends_by TERM
}
