# A driver that answers badly: every command ends, says so or shows what is left, and recovers.
# scenario: badly
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
vary 'del(.radios[].ssids[0].preset, .radios[].ssids[].wps)'
start_host "$variant"

ended() { [ "$1" = 0 ] || [ "$1" = 1 ]; }
# The rates of a radio are handed over in a file, the other two are kept.
only_lasting_files() { [ "$(files_in_tmp)" = 'wl0DataTxRates.txt wl0_cap wl1DataTxRates.txt wl1_cap wlhost.sock' ]; }

ask_everything() {
    local command
    for command in status stations scan 'scan --cached' survey rates load beacon ssids 'status --items TrafficInfo_wl0'; do
        # shellcheck disable=SC2086 # a command's words
        timeout 60 wlhost --json $command >"$work"/answer 2>/dev/null
        assert_status 0 ended $?
        assert_eq 1 "$(jq -c . "$work"/answer | wc -l)" "documents of $command"
    done
    wait_for 5 only_lasting_files
}

test_the_scenario() {
    joins wl0 'correct horse battery' --count 3
    assert_eq 8 "$(wlsim fail --list | wc -l)" faults
    ask_everything
}

test_every_report_spoiled() {
    local mode
    for mode in cut empty garbage fail; do
        wlsim fail --clear >/dev/null
        wlsim fail 'wlctl*' forever --mode $mode
        ask_everything
    done
}

test_recovery() {
    assert_status 0 wlsim fail --clear
    assert_eq 3 "$(wlhost --json stations wl0 | jq length)" stations
    assert_eq 3 "$(wlhost --json scan wl0 2>/dev/null | jq length)" neighbours
}
