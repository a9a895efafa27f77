# A host that interrupts, ignores and exhausts, and a /tmp that others write to: the module's work gets done.
# seconds: 240
# shellcheck shell=bash disable=SC2154 # $output is set by assert_status
# shellcheck source=tests/system/host.sh
. /src/tests/system/host.sh
g++ -std=c++17 -Wall -Wextra -Werror -I /src/include /src/tests/system/rude_host.cpp -o "$work"/rude_host \
    -L /opt/sim -l:libwlbrcm.so.1 -Wl,--allow-shlib-undefined

# NUMBERS STEP...: the steps give these, joined by commas; all that is printed is in $output.
steps_give() {
    assert_status 0 timeout 60 "$work"/rude_host "${@:2}"
    assert_eq "$1" "$(echo "$output" | grep -xE '[a-z-]+ -?[0-9]+' | cut -d' ' -f2 | paste -sd,)" "${*:2}"
}

# PROGRAM NUMBERS STEP...: the same while that program answers late.
steps_give_without() {
    killall -STOP "$1"
    (sleep 1.5 && killall -CONT "$1") &
    steps_give "${@:2}"
    wait $!
}

test_ignored_children_are_told() {
    steps_give 2 discover
    assert_lacks "$output" SIGCHLD
    steps_give 0,2 ignore-children discover
    assert_eq 1 "$(echo "$output" | grep -c 'BRCM wlModuleInit:.*SIGCHLD')" messages
}

test_signals_cut_nothing_short() {
    steps_give 0,2,0 interrupt discover start
    joins wl0 'correct horse'
    wlsim set counters wl0 rxbadda 4711
    steps_give_without wlsimd 0,4711 interrupt traffic
    steps_give_without wlsimd 0,0 interrupt scan
    local start=${EPOCHREALTIME/[.,]/}
    steps_give 0,0 interrupt announce
    assert_status 0 test $(((${EPOCHREALTIME/[.,]/} - start) / 1000)) -ge 3000
    steps_give 0,0 interrupt press
    steps_give_without wps_monitor 0,1,0,0 interrupt session cancel session
}

test_many_descriptors() {
    steps_give 0 start
    wait_for 10 wlsim wps state
    ulimit -Sn 2000
    steps_give 1100,0,1,0,0 open-many press session cancel session
}

# KIND FILE NUMBER: what goes wrong, in words, when this stands in the file's place.
try_plant() {
    local printed=$work/printed victim=$work/victim left=''
    rm -rf "$2" && echo theirs >"$victim"
    case $1 in
    fifo) mkfifo "$2" ;;
    link) ln -s "$victim" "$2" ;;
    *) mkdir "$2" ;;
    esac
    case $1:$2 in
    full:*) left=directory && mv "$victim" "$2" && victim=$2/victim ;;
    *_cap | *Rates.txt) left='regular file' ;;
    esac
    # Not through a pipe, which a command that hangs would keep open.
    timeout 10 "$work"/rude_host "$2" >"$printed" 2>&1 || echo "ended with $?"
    if [ "$1" != full ]; then
        [ "$(cat "$printed")" = "$2 $3" ] || echo "printed $(paste -sd' ' "$printed")"
    else
        grep -q "^BRCM .*$2" "$printed" || echo 'no message'
    fi
    [ "$(cat "$victim" 2>&1)" = theirs ] || echo 'changed what is not ours'
    [ "$(stat -c %F "$2" 2>/dev/null)" = "$left" ] || echo "left a $(stat -c %F "$2" 2>&1)"
    rm -rf "$2"
}

test_plants_at_the_names_of_result_files() {
    steps_give 0,0 start scan
    joins wl0 'correct horse'
    local file number kind fault faults='' tried=0
    while read -r file number; do
        for kind in fifo link folder full; do
            fault=$(try_plant "$kind" "$file" "$number" | paste -sd,)
            faults+=${fault:+$'\n'"$kind at $file: $fault"}
            tried=$((tried + 1))
        done
    done < <("$work"/rude_host)
    assert_eq '88 tried, faults:' "$tried tried, faults:$faults"
}
