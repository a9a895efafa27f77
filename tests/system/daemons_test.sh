# The platform's daemons and stand-ins, inside.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status

test_a_daemon_runs_once() {
    local daemon
    for daemon in eapd nas lld2d acsd wps_monitor; do
        assert_status 0 "/bin/$daemon"
        assert_status 1 "/bin/$daemon"
        assert_contains "$output" 'already running' "$daemon"
        assert_status 0 killall -15 "$daemon"
        assert_status 0 "/bin/$daemon"
        assert_status 0 killall -9 "$daemon"
        assert_status 0 "/bin/$daemon"
        assert_eq "$(pidof "$daemon")" "$(cat "/var/run/$daemon.pid")" "$daemon's pid file"
        killall -9 "$daemon"
    done
}

test_a_daemon_lets_go_of_its_caller() {
    # shellcheck disable=SC2016 # the inner shell's variable
    assert_status 0 timeout 5 sh -c 'echo "$(eapd; nas; acsd; wps_monitor; lld2d; echo started)"'
    assert_eq started "$output"
    killall -9 eapd nas acsd wps_monitor lld2d
}

test_unknown_arguments_are_errors() {
    local command
    for command in 'eapd x' 'nas -i wl0' 'lld2d br0 br1' 'lld2d -x' 'acsd x' 'wps_monitor -v' 'acs_cli' \
        'acs_cli -i wl0' 'acs_cli -i wl0 acs_policy' 'acs_cli -i wl0 scan' 'acs_cli -i wl0 dump bss x'; do
        # shellcheck disable=SC2086 # a command's words
        assert_status 1 $command
        assert_contains "$output" usage "$command"
    done
    assert_status 1 lld2d br9
    assert_contains "$output" 'no such interface'
    assert_status 1 acs_cli -i wl0 csscan_force
    assert_contains "$output" 'acsd does not answer'
    assert_status 2 simthread
    assert_status 2 simthread sixteen-letters-
}

flow_cache_rule() { ebtables -t broute "$1" SKIP_FCACHE -i "$2" -j SKIPLOG; }

test_ebtables_keeps_the_chain() {
    assert_status 255 flow_cache_rule -D wl0
    assert_status 0 flow_cache_rule -A wl0
    assert_status 0 flow_cache_rule -A wl0.1
    assert_status 0 flow_cache_rule -D wl0
    assert_contains "$(ebtables -t broute -L SKIP_FCACHE)" $'entries: 1, policy: RETURN\n-i wl0.1 -j SKIPLOG'
    assert_status 255 flow_cache_rule -D wl0
    assert_status 255 ebtables -t broute -A OTHER -i wl0 -j SKIPLOG
    assert_status 255 ebtables -t filter -L
    assert_status 255 ebtables -t broute -A SKIP_FCACHE -i wl0 -j SKIPLOG -x 1
}

police() { tc filter add dev eth0 parent ffff: protocol all u32 match u32 0 0 police rate 1000kbit burst 50kb drop flowid :1; }

test_tc_limits_both_ways() {
    assert_status 2 tc qdisc del dev eth0 ingress
    assert_status 2 police
    assert_status 0 tc qdisc add dev eth0 handle ffff: ingress
    assert_status 2 tc qdisc add dev eth0 handle ffff: ingress
    assert_status 0 police
    assert_contains "$(tc filter show dev eth0 parent ffff:)" police
    assert_status 0 tc qdisc del dev eth0 ingress
    assert_lacks "$(tc filter show dev eth0 parent ffff: 2>&1)" police
    assert_status 1 tc qdisc add dev eth9 root tbf rate 1000kbit latency 50ms burst 10kb
}

test_bridges_are_shown() {
    ip link set wl0 master br1
    assert_eq 'br0 eth0 eth1 br1 wl0' "$(brctl show | awk 'NR > 1 { print (NF > 1 ? $1 " " $4 : $1) }' | xargs)"
    assert_contains "$(brctl show br1)" "8000.$(tr -d : </sys/class/net/wl0/address)"
    assert_status 1 brctl show br9
}

# TEXT: the log's last line with it, without the time.
logged() { grep -F "$1" /var/log/gateway.log | tail -n 1 | cut -d' ' -f2-; }

test_the_log_tells_what_happened() {
    nvram set 'wl0_ssid=Home Net'
    nvram set wl0_wpa_psk='correct horse'
    wlsim join wl0 --mac 02:00:00:00:0A:01 --passphrase 'correct horse' 2>/dev/null
    wlctl -i wl0 isup >/dev/null
    wlconf wl0 sideways 2>/dev/null
    wlsim event wl0 8 --mac 02:00:00:00:0A:02
    flow_cache_rule -D wl7 2>/dev/null
    assert_eq 'nvram nvram set wl0_ssid=Home Net' "$(logged wl0_ssid)"
    assert_eq 'nvram nvram set wl0_wpa_psk=(hidden)' "$(logged wl0_wpa_psk)"
    assert_eq 'wlsimd join 02:00:00:00:0A:01 refused by wl0: BSS is down: the radio is down' "$(logged ' join 02')"
    assert_eq 'wlsimd command wlctl -i wl0 isup -> 0' "$(logged isup)"
    assert_eq 'wlsimd command wlconf wl0 sideways -> 2 unknown verb sideways' "$(logged sideways)"
    assert_contains "$(logged ' event wl0 number')" 'number 8 station 02:00:00:00:0A:02 reason 0 status 0 kept back'
    assert_contains "$(logged wl7)" '-> 255 Sorry'
    assert_lacks "$(cat /var/log/gateway.log)" 'correct horse'
}

test_the_log_stays_small() {
    head -c 3000000 /dev/zero >>/var/log/gateway.log
    nvram set a=1
    nvram set a=2
    assert_eq "$(logged set)" "$(cut -d' ' -f2- /var/log/gateway.log)" 'the only line'
    assert_contains "$(tail -n 1 /var/log/gateway.log.1)" 'set a=1'
}
