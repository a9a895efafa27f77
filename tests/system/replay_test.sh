# Archives of reports run again, here and without a gateway.
# runs: outside
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status

archives=${BASH_SOURCE[0]%/*}/archives
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
library=$WLSIM_BUILD/libwlbrcm.so.1

# ARCHIVE [OPTION...]
replay() { "$WLSIM_BUILD/host/wlhost" replay --library "$library" "$@"; }

# ARCHIVE SCRIPT: the archive in $changed, its operations after this script of sed.
change() {
    mkdir -p "$work/files"
    tar -xzf "$1" -C "$work/files"
    sed -i "$2" "$work"/files/*.json*
    changed=$work/changed.tar.gz
    tar -czf "$changed" --format=ustar -C "$work/files" archive.json operations.jsonl
}

# Made by earlier builds: what the module does now is what it did then.
test_kept_archives_replay_the_same() {
    local name before
    before=$(find /tmp -maxdepth 1 -name 'wl[0-9]*' | sort)
    for name in home minimal; do
        assert_status 0 replay --json "$archives/$name.tar.gz"
        assert_eq true "$(jq .same <<<"$output")" "$name"
        assert_eq true "$(jq '.calls > 400' <<<"$output")" "calls of $name"
    done
    assert_eq "$before" "$(find /tmp -maxdepth 1 -name 'wl[0-9]*' | sort)" "files of the module in /tmp"
}

test_an_answer_that_the_module_follows_makes_a_difference() {
    change "$archives/minimal.tar.gz" 's/deviceid 0x43c5/deviceid 0x43c6/'
    assert_status 1 replay "$changed"
    assert_contains "$output" "operation 0 wlModuleInit, call "
    assert_contains "$output" "module:  no such call"
    assert_contains "$output" "different: "
}

test_a_changed_module_shows_both_sides_of_the_first_difference() {
    local original=$library
    library=$work/libwlbrcm.so.1
    sed 's/wlctl -i %s leddc 0 /wlctl -i %s leddc 1 /' "$original" >"$library"
    assert_status 1 replay --json "$archives/minimal.tar.gz"
    assert_eq 'system wlctl -i wl0 leddc 0 2>/dev/null|wlModuleInit|system wlctl -i wl0 leddc 1 2>/dev/null|wlModuleInit|1' \
        "$(jq -r '.differences[0] as $d | [$d.archive, $d.archive_function, $d.module, $d.module_function, .difference_count] | join("|")' <<<"$output")"
}

test_lost_operations_are_told() {
    change "$archives/minimal.tar.gz" '/"number":[34],/d; s/"operation_count": [0-9]*/"operation_count": '"$(($(tar -xzOf "$archives/minimal.tar.gz" operations.jsonl | wc -l) - 2))/"
    assert_status 0 replay --json "$changed"
    assert_eq '[{"from":3,"to":4}]' "$(jq -c .gaps <<<"$output")"
}

test_what_is_no_archive_is_refused() {
    head -c 4000 "$archives/home.tar.gz" >"$work/cut.tar.gz"
    assert_status 2 replay "$work/cut.tar.gz"
    assert_contains "$output" "is cut"
    change "$archives/home.tar.gz" 's/"format": 1/"format": 2/'
    assert_status 2 replay "$changed"
    assert_contains "$output" "later version"
    change "$archives/home.tar.gz" 's/"maxSta":128/"maxSta":"many"/'
    assert_status 2 replay "$changed"
    assert_contains "$output" "bss[0].maxSta: is not a whole number"
    assert_status 2 replay /dev/null
    assert_status 2 replay "$archives/missing.tar.gz"
    library=$work/missing.so
    assert_status 7 replay "$archives/home.tar.gz"
}
