# The archive of a running host: nothing secret in it, and the module takes the same way with it.
# shellcheck shell=bash disable=SC2154 # $output and $variant are set by helpers
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh

archive=$work/report.tar.gz
secrets=("correct horse battery" "dance all night" "radio" "0123456789abcdef0123456789"
    "a shared secret" "12345670" "$(printf 'b%.0s' {1..64})")

# Every kind of key, in the configuration and typed.
run_variant() {
    vary '.radios[0].ssids[0].wps.device_pin = "12345670"
        | .radios[1].ssids[1] += {encryption: "wep", key1: "radio", key2: "0123456789abcdef0123456789"}
        | del(.radios[1].ssids[1].key)
        | .radios[1].ssids[2].key = "b" * 64
        | .radios[0].ssids[1] += {encryption: "wpa2", radius: {server: "192.0.2.1", secret: "a shared secret"}}
        | del(.radios[0].ssids[1].key)'
    start_host "$variant"
}

test_a_report_replays_and_holds_no_secret() {
    run_variant
    assert_status 0 wlhost reload --all
    assert_status 0 wlhost wps pin wl0 12345670
    assert_status 0 wlhost wps cancel wl0
    assert_status 0 wlhost ban wl0 02:00:00:00:00:08
    assert_status 0 wlhost filter wl0 allow 02:00:00:00:00:07
    assert_status 0 wlhost scan wl0
    ln -sf /etc/passwd "$archive"
    assert_status 0 wlhost --json report "$archive"
    assert_eq 0 "$(jq .lost_operations <<<"$output")"
    assert_eq "600 regular file" "$(stat -c '%a %F' "$archive")"
    assert_status 0 wlhost --json replay "$archive"
    assert_eq true "$(jq '.same and .calls > 1500' <<<"$output")"
    mkdir "$work/files"
    tar -xzf "$archive" -C "$work/files"
    assert_eq "archive.json configuration.json doctor.json journal.jsonl nvram.json operations.jsonl verify.json" \
        "$(find "$work/files" -type f | sed 's|.*/||' | sort | paste -sd' ')"
    local secret
    for secret in "${secrets[@]}"; do
        [ "$secret" = radio ] || assert_status 1 grep -rF "$secret" "$work/files"
    done
    # A short key is an ordinary word elsewhere, so it is looked for where it stands.
    assert_status 1 grep -rE '"(key1|wl1\.1_key1)": ?"radio"|"wepKeys":\["radio"' "$work/files"
    assert_eq "5 26" "$(jq -r '.radios[1].ssids[1] | "\(.key1 | length) \(.key2 | test("^[0-9a-f]*$") | if . then 26 else 0 end)"' "$work/files/configuration.json")"
    # The same secret is the same mask everywhere: in the file, in the store, in what the module wrote.
    local mask
    mask=$(jq -r '.radios[0].ssids[0].key' "$work/files/configuration.json")
    assert_eq "$mask" "$(jq -r '.wl0_wpa_psk' "$work/files/nvram.json")"
    assert_eq "$mask" "$(jq -r '[.entries[] | select(.what == "wl1_wpa_psk" and .call == "nvram_set")][0].value // empty' "$work/files/operations.jsonl" | head -n 1)"
}

test_a_host_that_took_radios_on_as_they_were_replays_too() {
    stop_host
    start_host "$variant"
    assert_status 0 wlhost reload wl1
    assert_status 0 wlhost report "$archive"
    assert_status 0 wlhost replay "$archive"
}

test_a_report_that_cannot_be_written_is_an_error() {
    assert_status 1 wlhost report /nowhere/report.tar.gz
    assert_contains "$output" "cannot be written"
    assert_status 1 wlhost report "$work"
    stop_host
    assert_status 7 wlhost report "$archive"
}
