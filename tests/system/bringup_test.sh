# What a host's configuration becomes on the radios, the bridges and the kernel.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
start_host /src/examples/home.json

test_every_network_is_on_air_in_its_bridge() {
    assert_eq "wl0 on-air br0 home wpa2psk aes mfp
wl0.1 on-air br1 guest wpa2psk aes
wl0.2 down br1 party wpa2psk aes
wl1 on-air br0 home wpapsk+wpa2psk tkip+aes
wl1.1 on-air br1 guest wpa2psk aes
wl1.2 on-air br0 things wpa2psk aes" "$(networks)"
    assert_eq $'wl0 36/80 DE/3 started\nwl1 6 DE/3 started' \
        "$(driver '.radios[] | [.name, .chanspec, .country, .stage] | join(" ")')"
    assert_eq 62:10:18:AA:BB:C1 "$(bss wl0.1 .bssid)"
}

test_only_the_right_stations_join() {
    joins wl0 'correct horse battery'
    joins wl1 'correct horse battery' --security wpapsk --cipher tkip --mac 02:00:00:00:00:02
    joins wl0.1 'come in and sit down' --mac 02:00:00:00:00:03
    assert_contains "$output" 'bridge br1'
    assert_status 0 wlsim join --ssid things --passphrase 'bulbs and sockets' --mac 02:00:00:00:00:04
    assert_contains "$output" 'joined wl1.2'
    refused 'wrong passphrase' wl0 --passphrase 'wrong horse'
    refused 'security mismatch' wl0
    refused 'security mismatch' wl0 --passphrase 'correct horse battery' --security wpapsk
    refused 'denied by the MAC filter' wl1.2 --passphrase 'bulbs and sockets' --mac 02:00:00:00:DE:01
    refused 'BSS is down' wl0.2 --passphrase 'dance all night'
    assert_eq 1 "$(bss wl1.2 .settings.closed)" 'hidden'
    assert_eq 1 "$(bss wl0.1 .settings.ap_isolate)" 'isolated'
}

test_a_network_on_demand_comes_and_goes() {
    assert_status 0 wlhost preset wl0.2 on
    joins wl0.2 'dance all night' --mac 02:00:00:00:00:05
    assert_eq 'wl0.1 wl0.2' "$(nvram get wl0_vifs)"
    assert_status 0 wlhost preset wl0.2 off
    refused 'BSS is down' wl0.2 --passphrase 'dance all night' --mac 02:00:00:00:00:05
    assert_eq wl0.1 "$(nvram get wl0_vifs)"
}

test_only_the_guests_are_limited() {
    local interface
    assert_contains "$(tc qdisc show dev wl0.1 root)" 'rate 20Mbit burst'
    assert_contains "$(tc filter show dev wl0.1 parent ffff: | sed s/000kbit/Mbit/)" 'rate 5Mbit'
    assert_contains "$(ebtables -t broute -L SKIP_FCACHE)" $'entries: 1, policy: RETURN\n-i wl0.1 -j SKIPLOG'
    for interface in wl0 wl0.2 wl1 wl1.1 wl1.2; do
        assert_lacks "$(tc qdisc show dev $interface)" tbf $interface
        assert_lacks "$(tc qdisc show dev $interface)" ingress $interface
    done
    assert_eq '1 0' "$(bss wl0 .settings.fcache) $(bss wl0.1 .settings.fcache)" 'flow cache of wl0 and wl0.1'
}

# COMM: the CPUs that a thread look-alike may use.
cpus_of() { sed -n 's/^Cpus_allowed_list:\t//p' "/proc/$(pidof "$1")/status"; }

test_driver_threads_have_their_cpus() {
    assert_eq '0 0' "$(cpus_of dhd0_dpc) $(cpus_of wfd0-thrd)" 'the threads of wl0'
    if [ -e /sys/devices/system/cpu/cpu1 ]; then
        assert_eq '1 1' "$(cpus_of wl1-kthrd) $(cpus_of wfd1-thrd)" 'the threads of wl1'
    fi
}

# A station's event may have the host read something this very moment.
nothing_else_in_tmp() { [ "$(files_in_tmp)" = 'wl0_cap wl1_cap wps_monitor.pid' ]; }

test_daemons_run_once_and_leave_nothing() {
    local daemon
    for daemon in eapd nas lld2d acsd; do
        assert_eq 1 "$(pidof $daemon | wc -w)" "processes of $daemon"
    done
    wait_for 5 pidof wps_monitor
    wait_for 5 nothing_else_in_tmp
}
