# The WPS daemon with simulated enrollees.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status

set_all() {
    local pair
    for pair in "$@"; do nvram set "$pair"; done
}

no_daemon() { ! pidof wps_monitor; }

# A radio on the air with WPS, as a host leaves it; further variables as arguments.
start_radio() {
    killall -15 wps_monitor 2>/dev/null
    wait_for 5 no_daemon
    wlconf wl0 down
    set_all wl0_radio=1 wl0_bss_enabled=1 wl0_ifname=wl0 wl0_mode=ap wl0_ssid=Home wl0_akm=psk2 wl0_crypto=aes wl0_wpa_psk=secret-1234 \
        wl0_nband=1 wl0_nmode=-1 wl0_vhtmode=-1 wl0_bw_cap=7 wl0_channel=36 wl0_chanspec=36/80 wl0_country_code=US \
        wl0_wps_mode=enabled wl0_wps_config_state=1 wl0_wps_enable_pbc=1 wl0_wps_enable_stapin=1 wl0_wps_uuid=0123456789abcdef \
        wps_version2=enabled wps_proc_status=0 wps_random_ssid_prefix=Sim_ wlsim_wps_walk_time=120 "$@"
    ifconfig wl0 up
    wlconf wl0 up && wlconf wl0 security && wlconf wl0 start
    pidof nas >/dev/null || nas
    pidof eapd >/dev/null || eapd
    wps_monitor
    wait_for 5 wlsim wps state # what is sent before it listens is lost
}

progress() { nvram get wps_proc_status; }
progress_is() { [ "$(progress)" = "$1" ]; }
push() { wlsim wps send "SET wps_method=2 wps_sta_pin=00000000 wps_action=3 wps_config_command=1 wps_pbc_method=2 wps_ifname=${1:-wl0} ${2:-}"; }
pin() { wlsim wps send "SET wps_method=1 wps_sta_pin=$1 wps_action=3 wps_config_command=1 wps_pbc_method=2 wps_ifname=wl0 "; }
running() { case $(wlsim wps state) in *wps_config_command=1*) ;; *) return 1 ;; esac; }
idle() { ! running; }

# FILE: an enrollee with this error output has sent its request; the daemon takes requests in their order.
announced() { grep -q looking "$1"; }

test_state_and_cancel() {
    start_radio
    assert_eq 'wps_config_command=0 wps_action=0 wps_method=1 wps_uuid=0123456789abcdef' "$(wlsim wps state)"
    push wl0 'wps_uuid=fedcba wps_autho_sta_mac=02:00:5E:00:53:07 '
    wait_for 5 running
    assert_eq 'wps_config_command=1 wps_action=3 wps_method=2 wps_uuid=fedcba wps_autho_sta_mac=02:00:5E:00:53:07' "$(wlsim wps state)"
    assert_eq 1 "$(progress)"
    wlsim wps send 'SET wps_config_command=2 wps_action=0'
    wait_for 5 idle
    assert_eq 0 "$(progress)"
}

test_push_button_hands_over_the_network() {
    start_radio
    push
    assert_status 0 wlsim wps enrol wl0 --push-button --mac 02:00:5E:00:53:09 --seconds 5
    assert_contains "$output" 'crypto=aes'
    assert_eq '2 02:00:5E:00:53:09' "$(progress) $(nvram get wps_proc_mac)"
    assert_eq 'Home[psk2 ]secret-1234' "$(nvram get wl0_ssid)[$(nvram get wl0_akm)]$(nvram get wl0_wpa_psk)"
    assert_status 1 wlsim wps enrol wl0 --push-button --seconds 1
    assert_contains "$output" 'no session within the walk time'
}

test_an_enrollee_that_pressed_first_is_taken() {
    start_radio
    rm -f /tmp/first
    wlsim wps enrol wl0 --push-button --seconds 10 --join 2>/tmp/first &
    wait_for 5 announced /tmp/first
    push
    wait $!
    assert_eq 0 $? 'the enrollee'
    assert_contains "$(wlctl -i wl0 assoclist)" 02:00:5E:00:53:01
}

test_two_pressed_buttons_are_an_overlap() {
    start_radio
    rm -f /tmp/first /tmp/second
    wlsim wps enrol wl0 --push-button --mac 02:00:5E:00:53:01 --seconds 10 2>/tmp/first &
    local first=$!
    wlsim wps enrol wl0 --push-button --mac 02:00:5E:00:53:02 --seconds 10 2>/tmp/second &
    wait_for 5 announced /tmp/first
    wait_for 5 announced /tmp/second
    push
    wait $first
    assert_eq 1 $? 'the first enrollee'
    wait $!
    assert_eq 1 $? 'the second enrollee'
    assert_eq 3 "$(progress)"
}

test_pins_are_checked() {
    start_radio
    pin 12345678
    wait_for 5 progress_is 3
    pin 12345670
    wait_for 5 running
    assert_status 1 wlsim wps enrol wl0 --pin 31415927 --seconds 5
    assert_contains "$output" 'wrong PIN'
    assert_eq 3 "$(progress)"
    pin 12345670
    assert_status 0 wlsim wps enrol wl0 --pin 12345670 --seconds 5
}

test_sessions_that_are_not_allowed() {
    start_radio wl0_wps_enable_pbc=0
    push
    wait_for 5 progress_is 3
    nvram set wps_proc_status=0
    push wl1
    wait_for 5 progress_is 3
    start_radio
    push wl0 'wps_autho_sta_mac=02:00:5E:00:53:07 '
    assert_status 1 wlsim wps enrol wl0 --push-button --mac 02:00:5E:00:53:08 --seconds 5
    assert_contains "$output" 'only 02:00:5E:00:53:07 may enrol'
    wlconf wl0 down
    push
    wait_for 5 progress_is 3
}

test_the_walk_time_ends_a_session() {
    start_radio wlsim_wps_walk_time=1
    push
    wait_for 5 progress_is 4
    assert_status 0 idle
}

test_foreign_datagrams_do_no_harm() {
    start_radio
    local text
    for text in '' SET 'SET =' 'SET wps_config_command' 'SET wps_config_command=1' 'GETx' 'ENROL' "$(head -c 1500 /dev/zero | tr '\0' x)" \
        'SET wps_config_command=9 wps_ifname=wl0;reboot'; do
        wlsim wps send "$text"
    done
    assert_contains "$(wlsim wps state)" wps_config_command=0
}
