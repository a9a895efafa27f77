# Helpers for tests of a host in the gateway.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status

export WLHOST_LIBRARY=libwlbrcm.so.1
work=/var/tmp/test
mkdir -p "$work"

# CONFIG [OPTION...]: a host that outlives the case which starts it.
start_host() {
    (exec wlhost run "$@" >"$work"/host.log 2>&1 &)
    wait_for 60 wlhost ssids
}

stop_host() {
    killall wlhost
    wait_for 20 no_host
}
no_host() { ! pidof wlhost; }

# DAEMON: how a shell ends it and waits until it is gone.
ends() { echo "killall -9 $1; while pidof $1; do sleep 0.02; done"; }

# FILTER: examples/home.json after this jq filter, in $variant.
variant=$work/variant.json
vary() { sed 's|//.*||' /src/examples/home.json | jq "$1" >"$variant"; }

# FILTER: what the driver really does.
driver() { wlsim status --json | jq -r "$1"; }
# RADIO FILTER, BSS FILTER
radio() { driver ".radios[] | select(.name==\"$1\") | $2"; }
bss() { driver ".radios[].bss[] | select(.interface==\"$1\") | $2"; }

# One line per BSS.
networks() {
    driver '.radios[].bss[] | [.interface, if .on_air then "on-air" else "down" end, .bridge // "-", .ssid, .security] | join(" ")'
}

# IF PASSPHRASE [OPTION...]
joins() { assert_status 0 wlsim join "$1" --passphrase "${@:2}"; }
# REASON IF [OPTION...]
refused() {
    assert_status 1 wlsim join "${@:2}"
    assert_contains "$output" "$1" "joining $2"
}

# Their names in one line.
files_in_tmp() { find /tmp -mindepth 1 -maxdepth 1 | sed 's|^/tmp/||' | sort | paste -sd' '; }
