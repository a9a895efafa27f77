# Systems that are not two good radios.
# runs: outside
# seconds: 180
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status

root=$(readlink -f "${GATEWAY%/*}/../../..")

# SCENARIO COMMANDS: in a gateway, with the helpers at hand.
inside() { "$GATEWAY" --scenario "$1" --bind "$root:/src:ro" -- bash -c ". /src/tests/system/lib.sh; . /src/tests/system/host.sh; $2"; }

test_no_radio() {
    assert_status 7 inside no-radio 'wlhost run /src/examples/minimal.json'
    assert_contains "$output" 'radios found: none'
}

test_a_single_radio() {
    # shellcheck disable=SC2016 # expands inside
    assert_status 1 inside single-radio 'wlhost run --once /src/examples/home.json; status=$?; wlsim join wl0 --passphrase "correct horse battery" && exit $status'
    assert_contains "$output" 'wl1: does not exist'
    assert_status 0 inside single-radio 'start_host /src/examples/minimal.json && wlsim join wl0 --passphrase "correct horse"'
    assert_contains "$output" 'ssid "minimal" bridge br0'
}

test_a_radio_of_an_unknown_chip_is_left_alone() {
    assert_status 0 inside unknown-chip 'start_host /src/examples/minimal.json && wlhost --json version | jq -c .radios &&
        wlsim join wl0 --passphrase "correct horse" && driver ".radios[1].stage" && nvram get acs_ifnames'
    assert_contains "$output" '["wl0"]'
    assert_contains "$output" $'bridge br0\ndown\nwl0'
}
