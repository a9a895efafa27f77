# The README's example host: builds as it stands there, and does what the README says.
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh

test_the_example_brings_a_network_up() {
    # shellcheck disable=SC2016 # backquotes of Markdown
    sed -n '/^```c$/,/^```$/p' /src/README.md | sed '/^```/d' >"$work"/example.c
    assert_status 0 gcc -std=c11 -Wall -Wextra -Werror -I /src/include "$work"/example.c -o "$work"/example -ldl
    assert_status 0 "$work"/example
    assert_status 0 wlsim join --ssid example --passphrase 'correct horse' --mac 02:00:00:00:00:01
    assert_contains "$output" 'bridge br0'
    refused 'wrong passphrase' wl0 --passphrase 'wrong horse'
}
