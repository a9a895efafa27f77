# What the module does, as the journal tells it: in order, with causes, without secrets, to be done again; and what it
# would do, without doing it.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh

entries() { wlhost journal --json "$@"; }
# FILTER [OPTION...]
entry() { entries "${@:2}" | jq -r "$1"; }

test_bringup_is_told_in_order_with_its_causes() {
    vary .
    start_host "$variant" --journal "$work"/journal.jsonl --log-level debug
    local told
    told=$(entry '.[] | select(.request == "run") | "\(.kind) \(.function): \(.what)"')
    assert_contains "$told" 'command qvWlConfDown: /bin/wlconf wl0 down'
    assert_contains "$told" 'nvram qvWlanSetSSID: set wl0.1_ssid=guest'
    assert_contains "$told" 'driver qvWlanSetTxPower: wlctl -i wl0 pwr_percent 100'
    assert_contains "$told" 'command run: wlctl -i wl0 tp_id > /tmp/wlctl_tp_id' # one that is not logged
    assert_eq "$(grep -nE 'wlconf wl0 (down|up|security|start)' <<<"$told" | sed 's/.* //' | paste -sd' ')" \
        "down up security start" "order"
    assert_eq "$(entry '[.[].time] | . == sort')" true "times"
    assert_eq "$(entry '[.[] | select(.kind=="pause" and .what=="1" and .ms >= 1000)] | length > 0')" true "pauses"
    assert_eq "$(jq -s 'map(.what)' "$work"/journal.jsonl)" "$(entries | jq 'map(.what)')" "the file"
    assert_eq "$(stat -c %a "$work"/journal.jsonl)" 600 "its mode"
}

test_secrets_stand_nowhere() {
    local secret
    vary '.radios[0].ssids[0].key = "it'"'"'s a  secret="'
    assert_status 0 wlhost reload --config "$variant"
    for secret in "a  secret" "come in and sit down"; do
        assert_eq "$(grep -c "$secret" "$work"/journal.jsonl "$work"/host.log | paste -sd' ')" \
            "$work/journal.jsonl:0 $work/host.log:0" "$secret"
        assert_lacks "$(wlhost journal; wlhost journal --json; wlhost journal --shell)" "$secret"
        assert_contains "$(wlhost journal --secrets)" "$secret"
    done
    assert_contains "$(wlhost journal --shell)" "# with a secret: set wl0_wpa_psk=********"
    assert_status 0 wlhost wps pin wl0 12345670
    assert_status 0 wlhost wps cancel wl0
    assert_contains "$(entry '.[] | select(.kind=="datagram") | "\(.request): \(.what)"')" \
        "wps pin wl0 ********: SET wps_method=1 wps_sta_pin=********"
}

stored() { nvram show 2>/dev/null | grep ^wl | sort; } # the daemons write others
test_the_script_does_the_same_again() {
    local before
    wlhost journal --shell --secrets >"$work"/again.sh
    before=$(stored)
    nvram set wl0.1_ssid=other
    nvram unset wl0_wpa_psk
    assert_status 0 sh -n "$work"/again.sh
    grep -E '^nvram ' "$work"/again.sh | sh
    assert_eq "$before" "$(stored)" "store"
}

test_failures_are_told_of_the_command() {
    local number
    brctl delbr br1 2>/dev/null || { ip link set br1 down && brctl delbr br1; }
    wlhost reload wl0 >/dev/null 2>&1
    number=$(entry '[.[] | select(.request == "reload wl0") | .operation] | max')
    assert_contains "$(entry '.[] | "\(.status) \(.what): \(.stderr)"' --failed --operation "$number")" \
        "1 brctl addif br1 wl0.1: brctl: bridge br1: No such device"
    assert_contains "$(cat "$work"/host.log)" "error brctl: brctl: bridge br1: No such device"
    assert_lacks "$(grep ' error ' "$work"/host.log)" "rule does not exist"
    assert_eq "$(entry 'length' --since 1d)" "$(entry length)"
    assert_status 2 wlhost journal --since yesterday
    brctl addbr br1 && ifconfig br1 up # for those that follow
    stop_host
    brctl addbr br1 && ip link set br1 up
}

test_the_log_goes_where_and_as_far_as_asked() {
    : >"$work"/host.log
    JOURNAL_STREAM=$(stat -c %d:%i "$work"/host.log) start_host "$variant" --log-level info
    (exec wlhost journal --follow --json --failed >"$work"/followed 2>&1 &)
    assert_status 0 wlhost log-level debug
    assert_status 0 wlhost reload wl1
    assert_contains "$(grep -v '^<' "$work"/host.log)" "started" # a result, not the log
    assert_contains "$(cat "$work"/host.log)" "<7>debug module: BRCM qvWlConfUp"
    assert_status 0 wlhost log-level error
    : >"$work"/host.log
    assert_status 0 wlhost reload wl1
    assert_lacks "$(cat "$work"/host.log)" debug
    assert_eq "$(jq -r .what "$work"/followed)" "$(entry '.[] | select(.request == "reload wl1") | .what' --failed)"
    stop_host
}
