# A host that hands over texts which a shell would run: the module's own checks stand alone.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
gcc -std=c11 -Wall -Wextra -Werror -I /src/include /src/tests/system/hostile_host.c -o "$work"/hostile_host -ldl

# CASE: nothing of its texts runs, and the sane network of the same configuration admits a station.
survives() {
    mkdir -p "$work"/here && cd "$work"/here || exit
    assert_status 0 timeout 60 "$work"/hostile_host "$1"
    assert_contains "$output" 'result 0'
    assert_eq '' "$(find "$work"/here / /tmp /var/run -maxdepth 1 -name '*owned*')" 'what was run'
    log=$output
}

test_networks() {
    survives entries
    joins wl0 'correct horse'
    assert_contains "$log" 'br0; touch /tmp/owned'
    assert_contains "$log" 'wl0.2; touch /tmp/owned'
    assert_contains "$log" 'wl0.5-and-a-name'
    # A name and a key are no commands: these networks work, with exactly this text.
    # shellcheck disable=SC2016 # the text as it stands
    joins wl0.1 'correct horse' --ssid '$(touch /tmp/owned)' --mac 02:00:00:00:00:02
    assert_contains "$output" 'bridge none'
    # shellcheck disable=SC2016 # the text as it stands
    joins wl0.3 '`touch /tmp/owned`'"'\"; touch /tmp/owned" --mac 02:00:00:00:00:03
    assert_contains "$output" 'bridge none'
    joins wl0.4 'correct horse' --mac 02:00:00:00:00:04
    assert_eq '' "$(nvram get wl0.4_maclist)" 'a malformed list'
}

# The driver takes no such country or mode, so nothing goes on air.
test_name_country_and_mode_of_the_radio() {
    survives words
    survives radio
    assert_contains "$log" 'wl0; touch /tmp/owned'
    refused 'BSS is down' wl0 --passphrase 'correct horse'
}

test_settings_groups_and_texts_without_an_end() {
    local case told
    while IFS='|' read -r case told; do
        survives "$case"
        joins wl0 'correct horse'
        assert_contains "$log" "$told"
    done <<'END'
settings|
lan|br0; touch /tmp/owned
unterminated|AAAAAAAA
END
}

test_operations() {
    survives operations
    joins wl0 'correct horse'
    assert_eq 'ban -5,fat 0,filter 0,info 0,kick -14,kick -14,pin -14,preset -14' \
        "$(echo "$log" | grep -E '^(preset|ban|kick|info|fat|pin|filter) ' | sort | paste -sd,)"
    assert_contains "$log" 'wl0.1; touch /tmp/owned'
}

test_values_of_other_programs() {
    nvram set lan_ifname='br0; touch /tmp/owned'
    nvram set acs_ifnames='wl1 ; touch /tmp/owned'
    nvram set wl0_vifs='wl0.7; touch /tmp/owned'
    nvram set wps_proc_mac='; touch /tmp/owned'
    nvram set DEV_MODELNAME='; touch /tmp/owned'
    survives entries
    joins wl0 'correct horse'
}
