# A platform whose tools fail, answer nonsense or are missing: operations return, leave nothing behind, and the next one works.
# seconds: 240
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
vary 'del(.radios[].ssids[0].preset, .radios[].ssids[].wps)'
start_host "$variant"

# The two files that are kept; a station's event may have the host read something this very moment.
only_caches() { [ "$(files_in_tmp)" = 'wl0_cap wl1_cap' ]; }

no_files() { [ -z "$(files_in_tmp)" ]; }

# RADIO...: reloads and shows that the host still answers and no result file stays in /tmp.
returns() {
    timeout 60 wlhost reload "$@" >/dev/null 2>&1
    assert_eq yes "$([ $? -lt 124 ] && echo yes)" "reload $* returns"
    timeout 20 wlhost --json status >/dev/null 2>&1
    assert_eq yes "$([ $? -lt 124 ] && echo yes)" 'status returns'
    assert_status 0 wlhost version
    wait_for 5 "${kept:-only_caches}"
}

ended() { [ "$1" = 0 ] || [ "$1" = 1 ]; }

# Every report ends with one document. The rates of a radio are handed over in a file that is kept.
ask_everything() {
    local command
    for command in status stations scan 'scan --cached' survey rates load beacon ssids 'status --items TrafficInfo_wl0'; do
        # shellcheck disable=SC2086 # a command's words
        timeout 60 wlhost --json $command >"$work"/answer 2>/dev/null
        assert_status 0 ended $?
        assert_eq 1 "$(jq -c . "$work"/answer | wc -l)" "documents of $command"
    done
    rm -f /tmp/wl[01]DataTxRates.txt
}

works_again() {
    assert_status 0 wlsim fail --clear
    assert_status 0 wlhost reload "$1"
    joins "$1" 'correct horse battery'
    assert_status 0 wlsim leave --all
}

test_tools_that_fail() {
    wlsim fail 'wlconf * up' forever
    returns wl0
    refused 'BSS is down' wl0 --passphrase 'correct horse battery'
    wlsim fail --clear >/dev/null
    wlsim fail 'wlctl*' forever
    ask_everything
    wlsim fail 'wl *' forever
    returns wl0
    works_again wl0
}

test_tools_that_answer_nonsense_or_late() {
    local mode
    for mode in garbage empty cut 'slow --ms 30'; do
        # shellcheck disable=SC2086 # a mode's words
        wlsim fail 'wlctl*' forever --mode $mode
        [ "$mode" = "${mode#slow}" ] && ask_everything
        returns wl1
        wlsim fail --clear >/dev/null
    done
    works_again wl1
}

# PROGRAM...: takes them out of the gateway's own /bin.
without() {
    local program
    mkdir -p "$work"/bin
    for program in "$@"; do mv "/bin/$program" "$work"/bin; done
}
put_back() { mv "$work"/bin/* /bin; }

test_daemons_that_are_missing() {
    without acsd lld2d wps_monitor
    returns wl1
    joins wl1 'correct horse battery'
    put_back
    without nas
    returns wl1
    refused 'authenticator not running' wl1 --passphrase 'correct horse battery'
    put_back
    works_again wl1
}

test_tools_that_are_missing() {
    without brctl tc ebtables acs_cli dhdctl wl
    returns wl1
    put_back
    without wlconf wlctl
    returns wl1
    put_back
    works_again wl1
    assert_eq br0 "$(bss wl1 .bridge)"
}

test_an_nvram_that_takes_nothing() {
    local store=/var/sim/nvram
    cp "$store" "$work"/store
    mount --bind /var/sim /var/sim && mount -o remount,bind,ro /var/sim
    returns wl1
    umount /var/sim
    assert_eq '' "$(cmp "$store" "$work"/store 2>&1)" 'the store'
    works_again wl1
}

# Nothing can be read back, yet the radio is configured: only reports need files.
test_a_tmp_that_takes_no_files() {
    mount -t tmpfs -o ro none /tmp
    local kept=no_files
    returns wl1
    joins wl1 'correct horse battery'
    umount /tmp
    works_again wl1
}
