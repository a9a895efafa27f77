# A host that goes on whatever it is given, and a gateway that has one host only.
# seconds: 180
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
gcc -std=gnu11 -Wall -Wextra -Werror /src/tests/system/crowd.c -o "$work"/crowd

ulimit -Sn 1024
start_host /src/examples/home.json
first=$(pidof wlhost)
before=$(networks)

# The same process, with the networks it had.
goes_on() {
    assert_status 0 timeout 1 wlhost status
    assert_eq "$first" "$(pidof wlhost)" 'the host'
    assert_eq "$before" "$(networks)" 'the networks'
}

# TEXT...: $variant is refused with these texts by the host, by the check, and by a second host.
refused_file() {
    local way text
    for way in 'reload --config' check run 'lan'; do
        # shellcheck disable=SC2086 # a command's words
        assert_status 2 timeout 5 wlhost $way "$variant"
        for text in "$@"; do assert_contains "$output" "$text" "wlhost $way"; done
        # shellcheck disable=SC2086
        assert_eq usage "$(timeout 5 wlhost --json $way "$variant" 2>/dev/null | jq -r .error.code)" "code of $way"
    done
    goes_on
}

test_files_of_any_bytes() {
    LC_ALL=C sed $'s/"home"/"caf\xe9"/' /src/examples/home.json >"$variant"
    refused_file "$variant:$(grep -n caf "$variant" | cut -d: -f1 | head -n 1):" '"caf\xe9'
    head -c 200000 /dev/zero | tr '\0' '[' >"$variant"
    refused_file 'more than 64 brackets'
    head -c 1100000 /dev/zero | tr '\0' ' ' >"$variant"
    refused_file 'larger than 1 MiB'
    rm "$variant" && mkfifo "$variant"
    refused_file 'is a FIFO; a regular file is wanted'
    rm "$variant"
}

test_requests_of_any_bytes() {
    local request
    # shellcheck disable=SC2059 # the format is the request
    for request in '{"command": "status\xff"}' '{"command": "\xe9' '\xff\xfe' '7' '{"command": 7}' "$(head -c 60000 /dev/zero | tr '\0' '[')" \
        '{"command": "status", "args": []}' '{"command": "kick", "args": {"interface": {}}}'; do
        assert_eq 2 "$(printf "$request\n" | "$work"/crowd /run/wlhost.sock | jq .status)" "${request:0:40}"
        goes_on
    done
    assert_status 2 wlhost kick wl0 $'\xff'
}

test_a_crowd_shuts_nobody_out() {
    "$work"/crowd /run/wlhost.sock 300 60 >"$work"/crowd.log 2>&1 &
    wait_for 20 grep -q ready "$work"/crowd.log
    goes_on
    joins wl0 'correct horse battery'
    wait_for 20 grep -qx '60 told' "$work"/crowd.log
    assert_status 0 wlsim leave --all
}

test_a_second_host() {
    local start=${EPOCHREALTIME/[.,]/}
    assert_status 7 wlhost run --socket "$work"/other /src/examples/minimal.json
    assert_contains "$output" "pid $first, socket /run/wlhost.sock"
    assert_status 0 test $(((${EPOCHREALTIME/[.,]/} - start) / 1000)) -lt 2000
    goes_on
}

# What the host started does not keep its lock.
test_a_host_after_a_dead_one() {
    assert_status 0 kill -KILL "$first"
    wait_for 5 pidof nas
    start_host /src/examples/home.json
    assert_status 0 wlhost status
    assert_eq "$(pidof wlhost) /run/wlhost.sock" "$(cat /run/wlhost.lock)"
    stop_host
}

# Anybody may take a name in /tmp before the user does.
test_a_run_that_is_not_writable() {
    local own=/tmp/wlhost-0
    mount --bind /var/run /var/run && mount -o remount,bind,ro /var/run
    start_host /src/examples/minimal.json
    assert_eq '700 wlhost.lock wlhost.sock' "$(stat -c %a "$own") $(cd "$own" && echo *)"
    stop_host
    mv "$own" "$work"/theirs && ln -s "$work"/theirs "$own"
    for command in status 'run /src/examples/minimal.json'; do
        # shellcheck disable=SC2086 # a command's words
        assert_status 7 wlhost $command
        assert_contains "$output" "not this user's own folder"
    done
    assert_status 0 wlhost check /src/examples/minimal.json
}
