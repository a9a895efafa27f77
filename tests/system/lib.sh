# Helpers for system tests. A test file defines functions test_*; each runs in a shell of its own and fails with the first
# assertion that does not hold. A case without any assertion fails too: it would prove nothing.
# shellcheck shell=bash

assertions=0

fail() {
    echo "${BASH_SOURCE[2]##*/}:${BASH_LINENO[1]}: $*"
    assertions_hold=no
    exit 1
}

# EXPECTED ACTUAL [WHAT]
assert_eq() {
    assertions=$((assertions + 1))
    [ "$1" = "$2" ] || fail "${3:-value}: expected \"$1\", got \"$2\""
}

# TEXT PART [WHAT]
assert_contains() {
    assertions=$((assertions + 1))
    case $1 in *"$2"*) ;; *) fail "${3:-text}: no \"$2\" in \"$1\"" ;; esac
}

# TEXT PART [WHAT]
assert_lacks() {
    assertions=$((assertions + 1))
    case $1 in *"$2"*) fail "${3:-text}: unexpected \"$2\" in \"$1\"" ;; esac
}

# STATUS COMMAND...: runs the command; what it printed, errors too, is in $output.
assert_status() {
    local expected=$1 status=0
    shift
    output=$("$@" 2>&1) || status=$?
    assertions=$((assertions + 1))
    [ "$status" = "$expected" ] || fail "status of $*: expected $expected, got $status: $output"
}

# SECONDS COMMAND...: until the command succeeds, at most so long.
wait_for() {
    local end=$((SECONDS + $1 + 1))
    shift
    assertions=$((assertions + 1))
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || fail "waited in vain for: $*"
        sleep 0.05
    done
}

# FILE: runs its cases in the order they stand there and prints one line each; "done" at the end tells that all were run.
run_cases() {
    local file=$1 name title text
    title=$(basename "$file" _test.sh)
    # shellcheck disable=SC1090 # the file is the caller's choice
    . "$file"
    while read -r name; do
        if text=$(run_case "$name" 2>&1); then
            echo "ok    $title: ${name#test_}"
        else
            echo "FAIL  $title: ${name#test_}"
            printf '%s\n' "$text" | sed 's/^/      /'
        fi
    done < <(grep -oE '^test_[a-z0-9_]+' "$file")
    echo "done  $title"
}

# A test file may have something done before each case.
before_case() { :; }

# NAME: the case's last command may fail; only assertions and the lack of them decide.
run_case() {
    assertions_hold=yes
    trap end_case EXIT
    before_case
    "$1" </dev/null
}

end_case() {
    local left
    left=$(jobs -p)
    # shellcheck disable=SC2086 # pids are words
    [ -z "$left" ] || kill -KILL $left 2>/dev/null
    if [ "$assertions" = 0 ]; then
        echo "asserts nothing"
        assertions_hold=no
    fi
    [ "$assertions_hold" = yes ]
    exit $?
}
