# Automatic channel selection, on radios that are set up by hand.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status

# RADIO BAND CHANSPEC: up, with this configuration (channel and chanspec 0: automatic).
start_radio() {
    local pair
    wlconf "$1" down
    for pair in radio=1 bss_enabled=1 ifname="$1" mode=ap ssid=Net nband="$2" nmode=-1 vhtmode=-1 bw_cap=1 \
        channel="${3%%/*}" chanspec="$3" country_code=US acs_pol_idx=0 acs_cs_scan_timer=0; do
        nvram set "$1_$pair"
    done
    ifconfig "$1" up
    wlconf "$1" up && wlconf "$1" start
}

start_acsd() {
    killall -9 acsd 2>/dev/null
    nvram set acs_ifnames="$1"
    acsd
}

on_channel() { case $(wlctl -i "$1" chanspec) in "$2 "*) ;; *) return 1 ;; esac; }

test_an_automatic_radio_moves_to_the_quietest_channel() {
    start_radio wl1 2 0
    start_acsd wl1
    wait_for 5 on_channel wl1 11
}

test_channels_to_skip_are_skipped() {
    start_radio wl1 2 0
    nvram set wl1_acs_autoch_skip=11,10
    start_acsd wl1
    assert_status 0 acs_cli -i wl1 csscan_force
    wait_for 5 on_channel wl1 9
    nvram unset wl1_acs_autoch_skip
}

test_a_fixed_channel_stays() {
    start_radio wl1 2 1
    start_acsd wl1
    assert_status 0 acs_cli -i wl1 csscan_force
    wait_for 1 on_channel wl1 1
}

test_dump_counts_what_the_driver_hears() {
    start_radio wl0 1 36
    start_radio wl1 2 1
    start_acsd 'wl0 wl1'
    assert_status 0 acs_cli -i wl0 csscan_force
    assert_status 0 acs_cli -i wl0 dump bss
    # channel a b g n20 n40 overlap ac20 ac40 ac80 ac160 below above
    assert_contains "$output" $'\n36 0 0 0 0 0 1 0 0 1 0 0 1\n'
    assert_status 0 acs_cli -i wl1 dump bss
    assert_contains "$output" $'\n1 0 0 1 1 0 0 0 0 0 0 0 0\n'
    assert_contains "$output" $'\n5 0 0 0 0 0 3 0 0 0 0 2 1\n'
    assert_eq 13 "$(echo "$output" | tail -n 1 | wc -w)" 'numbers in a line'
}

test_requests_that_fail_say_so() {
    start_radio wl1 2 0
    start_acsd wl1
    assert_status 1 acs_cli -i wl0 csscan_force
    assert_contains "$output" 'not in acs_ifnames'
    assert_status 1 acs_cli -i wl1 acs_policy -3
    assert_status 0 acs_cli -i wl1 acs_policy 2
    assert_status 1 acs_cli -i wl1 dump stations
    wlconf wl1 down
    assert_status 1 acs_cli -i wl1 csscan_force
    assert_lacks "$output" 'Request finished'
}

test_commands_fail_as_asked() {
    start_radio wl1 2 1
    start_acsd wl1
    assert_status 0 wlsim fail 'acs_cli * csscan_force'
    assert_status 1 acs_cli -i wl1 csscan_force
    assert_status 0 wlsim fail 'acs_cli*' 1 --mode empty
    assert_status 0 acs_cli -i wl1 csscan_force
    assert_eq '' "$output"
    assert_status 0 acs_cli -i wl1 csscan_force
    assert_contains "$output" 'Request finished'
    assert_eq 2 "$(wlsim fail --list | grep -c 'hits 1 ')" 'faults that were met'
}
