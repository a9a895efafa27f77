# What differs from what was asked for is a row, with a cure that cures; what is shown is what is found.
# seconds: 240
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
vary 'del(.radios[].ssids[0].preset, .radios[].ssids[].wps) | .radios[0].ssids[1].macfilter = "deny" | .radios[0].ssids[1].maclist = ["02:00:00:00:de:02"]'
start_host "$variant"

findings() { wlhost --json verify | jq -r '.findings[] | [.interface // .radio // "gateway", .check] | join(" ")'; }
all_holds() { wlhost verify; }

test_everything_holds_after_a_start() {
    wait_for 5 all_holds
    assert_eq ok "$(wlhost verify)"
    assert_eq '{"findings":[]}' "$(wlhost --json verify wl0 | jq -c .)"
    assert_eq 'true 6' "$(wlhost --json verify --all | jq -r '[.findings | (all(.holds)), (map(.interface // empty) | unique | length)] | join(" ")')"
    assert_eq 0 "$(wlhost --json verify wl1 --all | jq '[.findings[] | select(.radio == "wl0")] | length')"
    assert_status 3 wlhost verify wl7
    assert_status 0 test "$(nvram get wl0_wpa_psk)"
    assert_lacks "$(wlhost --json verify --all; wlhost --json why wl0)" 'correct horse'
}

# One break a line: where, the check, what breaks it. The cure makes all hold again.
breaks() {
    local place check command cure
    while IFS='|' read -r place check command; do
        sh -c "$command" >/dev/null 2>&1 || fail "cannot do $command"
        assert_eq "$place $check" "$(findings)" "after $command"
        assert_status 1 wlhost verify
        assert_contains "$output" '1 check does not hold'
        cure=$(wlhost --json verify | jq -r '.findings[].cure')
        assert_status 0 sh -c "${cure%% and start*}"
        wait_for 5 all_holds
    done
}

test_every_break_is_a_row() {
    breaks <<END_OF_ROWS
wl1|radio|wlctl -i wl1 down
wl0|country|wlctl -i wl0 country US
wl0|channel|wlctl -i wl0 chanspec 44/80
wl1|station limit|wlctl -i wl1 maxassoc 5
wl0.1|BSS|wl -i wl0.1 bss down
wl0.2|BSS|ifconfig wl0.2 up; wl -i wl0.2 bss up
wl1.1|interface|ifconfig wl1.1 down
wl1.1|SSID|wlctl -i wl1.1 ssid elsewhere
wl1.2|hidden|wlctl -i wl1.2 closed 0
wl0|bridge|brctl delif br0 wl0
wl1.1|bridge|brctl delif br1 wl1.1; brctl addif br0 wl1.1
wl1|security|nvram set wl1_wpa_psk=somebody.elses
wl1|security|nvram unset wl1_akm
wl0.1|station limit|wlctl -i wl0.1 bss_maxassoc 17
wl0.1|MAC filter|wlctl -i wl0.1 mac none
wl1|MAC filter|wlctl -i wl1 macmode 2
wl0.1|limit up|tc qdisc del dev wl0.1 ingress
wl0.1|limit up|ebtables -t broute -D SKIP_FCACHE -i wl0.1 -j SKIPLOG
wl0.1|limit down|tc qdisc del dev wl0.1 root
wl1|limit down|tc qdisc add dev wl1 root tbf rate 1000kbit latency 50ms burst 10kb
wl0|capabilities|echo sta >/tmp/wl0_cap
gateway|nas|$(ends nas)
gateway|acsd|$(ends acsd)
gateway|lld2d|$(ends lld2d)
gateway|LAN groups|nvram set lan1_ifname=br7
END_OF_ROWS
}

test_what_was_banned_belongs_to_the_filter() {
    assert_status 0 wlhost ban wl0.1 02:00:00:00:00:05
    assert_status 0 wlhost verify
    wlctl -i wl0.1 mac 02:00:00:00:de:02
    assert_eq 'wl0.1 MAC filter' "$(findings)"
    assert_status 0 wlhost unban wl0.1 --all
    assert_status 0 wlhost verify
}

# COMMAND COLUMN: of the row of wl0.
shown() { wlhost --json "$1" | jq -r ".[] | select((.interface // .radio) == \"wl0\") | [.$2, (.differs | join(\",\"))] | join(\" \")"; }

test_what_is_shown_is_what_is_found() {
    assert_eq 'up ' "$(shown status state)"
    brctl delif br0 wl0 && brctl addif br1 wl0
    assert_eq 'br1 bridge' "$(shown ssids bridge)"
    assert_contains "$(wlhost ssids)" 'br1*'
    sh -c "$(wlhost --json verify | jq -r '.findings[].cure')"
    assert_eq 'br0 ' "$(shown ssids bridge)"
    wlctl -i wl0 chanspec 44/80
    assert_eq '44 channel' "$(shown status channel)"
    wlctl -i wl0 down
    assert_eq 'down state,channel' "$(shown status state)"
    assert_eq 'down state' "$(shown ssids state)"
    assert_status 0 wlhost reload wl0
    assert_eq 'up  on ' "$(shown status state) $(shown ssids state)"
}

test_a_driver_that_fails_is_no_empty_list() {
    local pattern command
    assert_status 0 wlhost scan
    while IFS='|' read -r pattern command; do
        assert_status 0 wlsim fail "$pattern" forever
        # shellcheck disable=SC2086 # a command's words
        assert_status 1 wlhost $command
        assert_contains "$output" 'driver error'
        # shellcheck disable=SC2086
        assert_eq failed "$(wlhost --json $command | jq -r .error.code)"
        assert_lacks "$(wlsim fail --list)" 'hits 0 '
        assert_status 0 wlsim fail --clear
        # shellcheck disable=SC2086
        assert_status 0 wlhost $command
    done <<'END_OF_ROWS'
wlctl -i wl0 assoclist|stations
wlctl -i wl0.1 assoclist|stations wl0.1
wlctl -i wl1 assoclist|status
wlctl -i wl1 isup|status
wlctl -i wl0 bss|ssids
wlctl -i wl1 scanresults|scan --cached
acs_cli -i wl0 dump|survey
wlctl -i wl1|load
wlctl -i wl1|beacon
wlctl -i wl0|rates
wlctl -i wl1|status --items Noise
END_OF_ROWS
    wlsim fail 'wlctl -i wl0 country' forever
    assert_eq 'country wlctl: driver error (injected)' "$(wlhost --json verify | jq -r '.findings[] | [.check, .said] | join(" ")')"
    assert_status 0 wlsim fail --clear
    assert_status 0 wlsim fail 'wlctl*' forever --mode garbage
    assert_status 1 wlhost status
    assert_status 1 wlhost stations wl0
    assert_status 0 wlsim fail --clear
}

test_wps() {
    vary 'del(.radios[].ssids[0].preset) | .radios[1].ssids |= .[:1]'
    assert_status 0 wlhost reload --config "$variant"
    breaks <<END_OF_ROWS
wl0|WPS|nvram set wl0_wps_mode=disabled
gateway|wps_monitor|$(ends wps_monitor)
END_OF_ROWS
    sh -c "$(ends wps_monitor)"
    assert_status 1 wlhost wps push-button wl0
    assert_contains "$output" 'wps_monitor: wanted running, found not running'
    assert_status 0 wps_monitor
    wlsim wps enrol wl0 --push-button --seconds 20 >/dev/null &
    assert_status 0 wlhost wps push-button wl0 --wait
    assert_status 0 wlhost verify
}
