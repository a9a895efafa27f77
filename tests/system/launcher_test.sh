# The launcher, seen from outside.
# runs: outside
# seconds: 300
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status

gateway() { "$GATEWAY" "$@"; }

# No process of this machine has this mark in its arguments; the bracket keeps grep from finding itself.
gone() { ! grep -qsa "[${1:0:1}]${1:1}" /proc/[0-9]*/cmdline; }

# Starts a gateway in the background that lives until it is killed; its launcher's pid is in $launcher.
start_marked() {
    env --default-signal=INT "$GATEWAY" "${@:2}" -- sh -c "echo ready; sleep 1000; : $1" >"$scratch/$1" 2>&1 &
    launcher=$!
    wait_for 60 grep -qx ready "$scratch/$1"
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

test_passes_the_exit_status_on() {
    assert_status 0 gateway -- true
    assert_status 42 gateway -- sh -c 'exit 42'
    assert_status 143 gateway -- sh -c 'kill -TERM $$'
    assert_status 127 gateway -- no-such-program
}

test_passes_arguments_and_input_unchanged() {
    # shellcheck disable=SC2016 # not to be expanded here
    assert_eq '<a b><$HOME><><*>' "$(gateway -- sh -c 'printf "<%s>" "$@"' sh 'a b' '$HOME' '' '*')"
    assert_eq 'fed' "$(echo fed | gateway -- cat)"
}

test_refuses_wrong_arguments() {
    assert_status 2 gateway
    assert_contains "$output" 'no command given'
    assert_status 2 gateway --colour red -- true
    assert_contains "$output" 'unknown argument --colour'
    assert_status 2 gateway --scenario no-such-scenario -- true
    assert_contains "$output" 'no such scenario'
    assert_status 2 gateway --bind relative:inside -- true
    assert_status 7 gateway --build "$scratch" -- true
    assert_contains "$output" 'build it'
    echo '{"bridges": [{"nmae": "br0"}]}' >"$scratch/wrong.json"
    assert_status 7 gateway --scenario "$scratch/wrong.json" -- true
    assert_contains "$output" "bridges[0]: unknown key 'nmae'"
}

test_names_what_is_missing() {
    mkdir "$scratch/bin"
    local tool
    for tool in sh readlink dirname id; do ln -s "$(command -v $tool)" "$scratch/bin/$tool"; done
    sed 's|:/usr/sbin:/sbin||' "$GATEWAY" >"$scratch/gateway"
    output=$(PATH=$scratch/bin sh "$scratch/gateway" --build "$WLSIM_BUILD" --scenario "${GATEWAY%/*}/../scenarios/default.json" -- true 2>&1)
    assert_eq 7 $? status
    assert_contains "$output" 'apt-get install util-linux'
}

# SCENARIO: the radio interfaces that its gateway has, in one line.
radios() { gateway --scenario "$1" -- ip -o link | grep -oE ' wl[0-9]+' | xargs; }

test_boots_every_scenario() {
    local scenario
    for scenario in "${GATEWAY%/*}"/../scenarios/*.json; do
        assert_status 0 gateway --scenario "$scenario" -- wlsim status
    done
    assert_eq 'wl0 wl1' "$(radios default)"
    assert_eq 'wl0' "$(radios single-radio)"
    assert_eq '' "$(radios no-radio)"
    assert_contains "$(gateway --scenario unknown-chip -- wlctl -i wl1 revinfo)" 'deviceid 0x4415'
}

# What other programs of this machine leave alone while the test runs.
machine_state() {
    ls /sys/class/net /mnt "$scratch/empty"
    sed 's/ - .*//; s/^[0-9]* [0-9]* //' /proc/self/mountinfo
    hostname
    ls -d "/tmp/$1" "/var/$1" "/run/$1" 2>&1
}

test_changes_nothing_outside() {
    local before mark=gateway-test-$$
    mkdir "$scratch/empty"
    before=$(machine_state $mark)
    assert_status 0 env -C "$scratch/empty" TMPDIR="$scratch/empty" "$GATEWAY" -- sh -c "touch /tmp/$mark /var/$mark /run/$mark &&
        ip link add wl7 type veth peer name air7 && brctl addbr br7 && hostname other && nvram set a=b"
    assert_eq "$before" "$(machine_state $mark)" 'the machine'
    assert_status 1 gateway -- touch /usr/$mark
    assert_status 1 gateway -- touch /opt/sim/$mark
}

test_has_its_own_processes_and_interfaces() {
    output=$(gateway -- sh -c 'ls /proc | grep -c "^[0-9]"; cut -d: -f1 /proc/net/dev')
    assert_lacks "$output" "$(ip -o link | sed -n '2s/^[0-9]*: \([^:@]*\).*/\1/p')"
    assert_contains "$output" br0
    assert_eq /usr/bin/busybox "$(gateway -- sh -c 'readlink -f /bin/sh')" 'the shell'
    assert_eq 'hidden' "$(gateway -- sh -c 'echo shown &>/dev/null; echo hidden')" 'the redirection &>'
}

test_two_run_side_by_side() {
    start_marked first-of-two --run "$scratch/first"
    local first=$launcher
    start_marked second-of-two --run "$scratch/second"
    assert_status 0 gateway enter --run "$scratch/first" -- sh -c 'echo one >/tmp/who && eapd && nvram set who=one'
    assert_status 0 gateway enter --run "$scratch/second" -- sh -c 'echo two >/tmp/who && eapd && killall -9 eapd'
    assert_eq one "$(gateway enter --run "$scratch/first" -- cat /tmp/who)"
    assert_eq one "$(gateway enter --run "$scratch/first" -- nvram get who)"
    assert_status 0 gateway enter --run "$scratch/first" -- pidof eapd
    assert_status 1 gateway --run "$scratch/first" -- true
    assert_contains "$output" 'runs in'
    kill "$first" "$launcher"
    wait_for 20 gone of-two
    assert_status 1 gateway enter --run "$scratch/first" -- true
}

test_everything_ends_with_the_launcher() {
    local signal
    for signal in TERM HUP INT KILL; do
        start_marked "ends-by-$signal"
        kill -"$signal" "$launcher"
        wait_for 20 gone "ends-by-$signal"
    done
}

test_a_host_takes_its_gateway_along() {
    local end signal status host socket=$scratch/sim/host.sock wlhost=$WLSIM_BUILD/host/wlhost
    mkdir "$scratch/sim"
    # The last one cleans nothing up, but another host could start there, and no process is left.
    for end in TERM=0 INT=0 KILL=137; do
        signal=${end%=*} status=0
        env --default-signal=INT "$wlhost" run --sim --socket "$socket" "${GATEWAY%/platform/*}/examples/minimal.json" >/dev/null 2>&1 &
        host=$!
        wait_for 60 "$wlhost" --socket "$socket" status
        kill -"$signal" "$host"
        wait "$host" || status=$?
        assert_eq "${end#*=}" "$status" "status by $signal"
        [ "$signal" = KILL ] || assert_eq '' "$(ls -A "$scratch/sim")" "left by $signal"
        wait_for 20 gone host.sock.sim
    done
    output=$("$wlhost" run --sim --once --socket "$socket" "${GATEWAY%/platform/*}/examples/minimal.json" 2>&1)
    assert_eq 0 $? "a host after a killed one: $output"
    assert_eq '' "$(ls -A "$scratch/sim")" 'left in the end'
}

test_background_processes_end_with_the_command() {
    assert_status 0 gateway -- sh -c '(trap "" HUP TERM; sleep 1000; : left-over-process) & eapd'
    wait_for 20 gone left-over-process
}

test_works_as_an_ordinary_user() {
    if [ "$(id -u)" != 0 ]; then
        assert_status 0 gateway -- test -d /proc/1
        return
    fi
    local user copy=$scratch/copy
    user=$(getent passwd | awk -F: '$3 >= 1000 && $3 < 60000 { print $1; exit }')
    mkdir -p "$copy/build/platform/sim" # the tree itself may stand where only root can read
    cp -r "${GATEWAY%/*}" "${GATEWAY%/*}/../scenarios" "$copy"
    cp -r "$WLSIM_BUILD"/platform/sim/bin "$WLSIM_BUILD"/platform/sim/lib "$copy/build/platform/sim"
    chmod -R a+rX "$scratch"
    output=$(su -s /bin/sh "${user:-nobody}" -c \
        "'$copy/gateway/gateway' --build '$copy/build' -- sh -c 'eapd && nvram set a=b && nvram get a'" 2>&1)
    assert_eq b "$output" "as ${user:-nobody}"
}
