# The lightest operation that takes a change over, planned beforehand and verified afterwards.
# seconds: 180
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
# Without WPS and the announcement, which cost pauses.
base='del(.radios[].ssids[0].preset, .radios[].ssids[].wps)'
vary "$base"
cp "$variant" "$work"/base.json
files_everywhere() { find /tmp /run /etc -type f | sort; }
files_before=$(files_everywhere)
first_plan=$(wlhost --json plan "$work"/base.json)
before_first=$(nvram show 2>/dev/null | grep '=' | sort)
files_after=$(files_everywhere)
start_host "$work"/base.json
after_first=$(nvram show 2>/dev/null | grep '=' | sort)

# Everything that a plan must leave alone, in one text.
world() {
    driver '.radios'
    nvram show | sort
    ip -o link show | sed 's/ state [A-Z]*//; s/ qlen.*//'
    ps -o comm | sort | grep -vE '^(ps|sort|grep|bash|sed|sh)$'
    files_in_tmp
}
stored() { nvram show 2>/dev/null | grep '=' | sort; }
# Keys whose value differs between two listings.
changed_keys() { printf '%s\n' "$1" "$2" | sort | uniq -u | sed 's/=.*//' | sort -u | paste -sd' '; }

# PLAN
planned_keys() { jq -r '[.radios[].nvram[].key, .lan.nvram[].key] | sort | join(" ")' <<<"$1"; }

# FILTER OPERATIONS KEEPS: the plan of this change tells the operation of each radio and exactly the keys that the reload
# then changes, and touches nothing; stations of the radios named in KEEPS stay.
change() {
    local before planned kept radio
    vary "$base | $1"
    before=$(world)
    assert_status 10 wlhost plan "$variant"
    planned=$(wlhost --json plan "$variant")
    assert_eq "$2" "$(jq -r '[.radios[].operation] | join(" ")' <<<"$planned")" "operations of $1"
    assert_eq "$before" "$(world)" "the world after the plan of $1"
    before=$(stored)
    assert_status 0 wlhost reload --config "$variant"
    assert_eq "$(planned_keys "$planned")" "$(changed_keys "$before" "$(stored)")" "keys of $1"
    for radio in wl0 wl1; do
        kept=$(radio $radio '.bss[0].stations | length')
        case " $3 " in *" $radio "*) assert_eq 1 "$kept" "stations of $radio after $1" ;; esac
    done
    assert_status 0 wlhost plan "$variant"
}

# On a gateway that had no host yet; what the module does when it is loaded belongs to it.
test_a_first_start() {
    assert_eq "$(planned_keys "$first_plan")" "$(changed_keys "$before_first" "$after_first")"
    assert_eq "$files_before" "$files_after" 'files of the plan'
    assert_contains "$(jq -r '.radios[1].commands[].command' <<<"$first_plan")" 'wlctl -i wl1 leddc 0'
}

test_changes_that_keep_the_stations() {
    joins wl0 'correct horse battery'
    joins wl1 'correct horse battery' --mac 02:00:00:00:00:02
    change '.radios[0].ssids[1] += {macfilter: "deny", maclist: ["02:00:00:00:00:77"]}' 'filter none' 'wl0 wl1'
    refused 'MAC filter' wl0.1 --passphrase 'come in and sit down' --mac 02:00:00:00:00:77
    change '.radios[0].ssids[1].limit_down = 9000' 'filter none' 'wl0 wl1'
    assert_contains "$(tc qdisc show dev wl0.1)" 9Mbit
    change 'del(.radios[0].ssids[2].preset)' 'preset none' 'wl0 wl1'
    joins wl0.2 'dance all night' --mac 02:00:00:00:00:03
    change '.lan.groups[0].ports = ["eth0"]' 'lan lan' 'wl0 wl1'
    change '.radios[0].ssids[1].network = "br0"' 'lan lan' 'wl0 wl1'
    assert_eq br0 "$(bss wl0.1 .bridge)"
    change 'del(.radios[0].ssids[1].network)' 'lan none' 'wl0 wl1'
    assert_eq null "$(bss wl0.1 .bridge)"
    change '.' 'lan none' 'wl0 wl1'
}

test_changes_that_take_one_radio_down() {
    joins wl1 'correct horse battery' --mac 02:00:00:00:00:02
    change '.radios[0].channel = 44' 'reload none' wl1
    assert_contains "$output" wl0
    change 'del(.radios[0])' 'none down' wl1
    assert_eq '' "$(networks | grep '^wl0.* on-air')"
    wlctl -i wl0 up
    assert_eq 'wl0 wlhost reload' "$(wlhost --json verify | jq -r '.findings[] | [.radio, .cure] | join(" ")')"
    assert_status 0 wlhost reload
    assert_eq false "$(radio wl0 .up)" 'what left the file'
    change '.' 'reload none' wl1
    change 'del(.radios[1].ssids[2])' 'none reload' ''
}

test_what_the_run_time_set_survives() {
    assert_status 0 wlhost reload --config "$work"/base.json
    assert_status 0 wlhost preset wl0.2 on
    assert_status 0 wlhost ban wl0.1 02:00:00:00:00:56
    assert_status 0 wlhost filter wl0.1 deny 02:00:00:00:00:66
    assert_status 0 wlhost reload wl0
    assert_contains "$output" 'undone filter of wl0.1'
    joins wl0.2 'dance all night' --mac 02:00:00:00:00:03
    refused 'MAC filter' wl0.1 --passphrase 'come in and sit down' --mac 02:00:00:00:00:56
    joins wl0.1 'come in and sit down' --mac 02:00:00:00:00:66
    assert_status 0 wlhost verify
}

test_a_ban_sends_the_station_away() {
    joins wl0.1 'come in and sit down' --mac 02:00:00:00:00:55
    assert_status 0 wlhost ban wl0.1 02:00:00:00:00:55
    assert_lacks "$(bss wl0.1 .stations)" 02:00:00:00:00:55
    assert_status 0 wlhost unban wl0.1 --all
    joins wl0.1 'come in and sit down' --mac 02:00:00:00:00:55
    assert_status 0 wlhost filter wl0.1 deny 02:00:00:00:00:55 --keep
    assert_contains "$(bss wl0.1 .stations)" 02:00:00:00:00:55
    assert_status 0 wlsim fail deauthenticate forever
    for command in kick ban; do
        assert_status 1 wlhost $command wl0.1 02:00:00:00:00:55
        assert_contains "$output" 'wl0.1 station 02:00:00:00:00:55: wanted sent away, found still associated: wlctl: driver error'
    done
    assert_status 0 wlsim fail --clear
    assert_status 0 wlhost unban wl0.1 --all
}

test_a_radio_that_is_not_as_wanted_is_retried() {
    assert_status 0 wlhost reload --config "$work"/base.json
    killall nas
    assert_status 10 wlhost plan
    assert_status 0 wlhost reload
    joins wl0 'correct horse battery'
    wlctl -i wl1 down
    assert_status 1 wlhost verify
    assert_status 0 wlhost reload
    assert_contains "$output" 'wl1    reloaded'
    joins wl1 'correct horse battery'
}

test_failures_of_the_platform_are_told() {
    assert_status 0 wlsim fail 'wlconf wl1 start' forever
    assert_status 1 wlhost reload wl1
    assert_contains "$output" 'wl1 BSS: wanted on air, found down: wlconf: driver error (injected)'
    assert_status 1 wlhost --json reload
    assert_eq wl1 "$(jq -r '.error.differences[0].radio' <<<"$output")"
    wlsim fail --clear >/dev/null
    assert_status 0 wlhost reload
    joins wl0 'correct horse battery'
    vary "$base | .radios[0].ssids[0] += {macfilter: \"deny\", maclist: [\"02:00:00:00:00:77\"]} | .radios[1].channel = 1"
    assert_status 0 wlsim fail 'wlctl -i wl0 assoclist' forever
    assert_status 1 wlhost reload --config "$variant"
    assert_eq 1 "$(radio wl1 .chanspec)" 'the radio after the one that failed'
    wlsim fail --clear >/dev/null
    assert_status 0 wlhost reload --config "$work"/base.json
}

test_missing_radios_and_rollback() {
    vary "$base | .radios[1].name = \"wl7\" | del(.radios[1].ssids[].ifname)"
    assert_status 1 wlhost reload --config "$variant"
    assert_contains "$output" 'wl7'
    joins wl0 'correct horse battery'
    assert_status 0 wlhost reload --config "$work"/base.json
    vary "$base | .radios[0].ssids[0].key = \"locked out now\""
    assert_status 1 wlhost confirm
    wlhost --json events --kind rollback --count 1 >"$work"/told 2>&1 &
    assert_status 0 wlhost reload --config "$variant" --rollback 2
    assert_contains "$output" 'comes back in 2 s, unless: wlhost confirm'
    refused 'wrong passphrase' wl0 --passphrase 'correct horse battery'
    wait_for 10 wlsim join wl0 --passphrase 'correct horse battery'
    wait_for 5 grep -q rollback "$work"/told
    assert_eq "done $work/base.json" "$(jq -r '[.result, .config] | join(" ")' "$work"/told)"
    assert_contains "$(tail -n 5 "$work"/host.log)" 'rollback: not confirmed in time'
    assert_status 0 wlhost reload --config "$variant" --rollback 2
    assert_status 0 wlhost confirm
    sleep 2.5
    joins wl0 'locked out now'
}

test_a_new_host_leaves_what_is_as_wanted() {
    assert_status 0 wlhost preset wl0.2 off
    assert_status 0 wlhost unban wl0.1 --all
    assert_status 0 wlhost reload --config "$work"/base.json
    assert_status 0 wlhost reload wl0 # the radios' order among those that select channels is another one now
    joins wl0 'correct horse battery'
    stop_host
    assert_status 0 wlhost run "$work"/base.json --dry-run
    start_host "$work"/base.json
    assert_eq 1 "$(bss wl0 '.stations | length')" 'stations after the restart'
    stop_host
    vary "$base | .radios[1].channel = 1"
    start_host "$variant"
    assert_eq '1 1' "$(bss wl0 '.stations | length') $(radio wl1 .chanspec)" 'after a restart with one change'
    stop_host
    start_host "$variant" --fresh
    assert_contains "$(cat "$work"/host.log)" 'drops  02:00:00:00:00:01 on wl0'
    assert_eq 0 "$(bss wl0 '.stations | length')" 'stations after a fresh start'
}

test_a_refused_configuration_touches_nothing() {
    joins wl0 'correct horse battery'
    stop_host
    local before
    before=$(world)
    vary "$base | .radios[0].band = \"2g\""
    assert_status 2 wlhost run "$variant"
    assert_status 2 wlhost check "$variant"
    assert_eq "$before" "$(world)"
    vary "$base | .radios[0].ssids[0].macfilter = \"deny\" | .radios[1].channel = 14 | .radios[1].country = \"US/0\""
    assert_status 0 wlhost --json check "$variant"
    assert_contains "$(jq -r '.warnings[0] | tostring' <<<"$output")" 14
    assert_eq "$before" "$(world)"
}
