# The host's commands as programs see them: exit status, one JSON document, errors that tell.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh

test_without_a_host() {
    assert_status 7 wlhost status
    assert_status 0 wlhost version
    assert_status 7 wlhost run --library libnothing.so /src/examples/minimal.json
    assert_contains "$output" libnothing.so
    assert_status 7 wlhost --json status
    assert_eq environment "$(wlhost --json status 2>/dev/null | jq -r .error.code)"
}

test_configurations_that_are_refused() {
    vary '.radios[0].ssids[2].kye = 1'
    assert_status 2 wlhost run "$variant"
    assert_contains "$output" 'radios[0].ssids[2]'
    echo '{ "radios": [' >"$variant"
    assert_status 2 wlhost run "$variant"
    assert_status 2 wlhost run /no/such/file
    assert_eq down "$(driver '.radios[0].stage')" 'the radio'
}

start_host_once() { pidof wlhost >/dev/null || start_host /src/examples/home.json; }

# COMMAND...: exactly one document on stdout, nothing else.
one_document() { assert_eq 1 "$(wlhost --json "$@" 2>/dev/null | jq -c . | wc -l)" "documents of wlhost $*"; }

test_results() {
    local command
    start_host_once
    for command in status ssids version 'filter wl0' doctor 'status wl0 --items Channel' schema 'check /src/examples/home.json'; do
        # shellcheck disable=SC2086 # a command's words
        one_document $command
    done
    assert_eq '36 80 -92 3' "$(wlhost --json status wl0 | jq -r '.[0] | [.channel, .width_mhz, .noise_dbm, .ssids] | join(" ")')"
    assert_eq 'wl0 home br0' "$(wlhost --json ssids | jq -r '.[0] | [.interface, .ssid, .bridge] | join(" ")')"
    assert_status 0 wlhost mac wl0 02:10:18:00:00:99
    assert_eq 02:10:18:00:00:99 "$(cat /sys/class/net/wl0/address)" 'the address of a radio'
}

test_errors() {
    local status words
    start_host_once
    while read -r status words; do
        # shellcheck disable=SC2086 # a command's words
        assert_status "$status" wlhost $words
        # shellcheck disable=SC2086
        one_document $words
        # shellcheck disable=SC2086
        assert_eq string "$(wlhost --json $words 2>/dev/null | jq -r '.error.text | type')" "text of wlhost $words"
    done <<'END'
3 status wl7
3 preset wl0 on
3 reload wl7
2 stat
2 filter wl0 deny 02:00:00:00:00:xx
2 ban wl0 01:00:5e:00:00:01
2 mac wl0 zz
2 lan /no/such/file
2 status wl0 wl1
END
    assert_eq '' "$(wlhost status wl7 2>/dev/null)" 'stdout of an error'
    assert_status 2 wlhost wps pim
    assert_contains "$output" 'pim: is no command'
    assert_contains "$output" 'did you mean "pin"?'
}

test_completion() {
    local COMP_LINE COMP_POINT COMPREPLY words
    start_host_once
    joins wl0 'correct horse battery'
    # shellcheck source=host/wlhost.bash-completion
    . /src/host/wlhost.bash-completion
    while IFS='|' read -r COMP_LINE words; do
        COMP_POINT=${#COMP_LINE}
        _wlhost
        assert_eq "$words" "${COMPREPLY[*]}" "words behind $COMP_LINE"
    done <<'END'
wlhost wps p|push-button pin
wlhost status w|wl0 wl1
wlhost kick wl0 02:00|00:00:00:00:01
wlhost reload --config /src/examples/ho|/src/examples/home.json
END
    COMP_LINE='wlhost sta --all' COMP_POINT=10
    _wlhost
    assert_eq 'status stations' "${COMPREPLY[*]}" 'words at the cursor'
}

test_the_host_ends_cleanly() {
    start_host_once
    stop_host
    assert_status 1 test -e /run/wlhost.sock
    joins wl0 'correct horse battery'
}
