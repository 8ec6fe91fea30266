# A session of the command vq-tl4ctl: three instruments of the factory line get their rows of a plan.
# Sourced by virtual-session, after x_session; on a bench and with a data folder of its own.
# shellcheck shell=bash disable=SC2034,SC2154

# on_bench PROGRAM ARGUMENT...: runs it in the folder of the plan.
on_bench() { (cd "$desk" && XDG_DATA_HOME="$desk/data" "$bin/$1" "${@:2}"); }

# try STATUS ARGUMENT...: shows the command, what it says and its exit status, which has to be STATUS.
# Of a row of calibration values the first one is shown.
try() {
    local status=0 command=(vq-tl4ctl --lang "$said_in" "${@:2}")
    printf '    $ %s\n' "${command[*]}"
    on_bench "${command[@]}" >"$work/said" 2>&1 </dev/null || status=$?
    sed 's/^/    /; /values\[[1-9][0-9]*\]/d; s/^\(.*values\[0\].*\)$/\1 .../' "$work/said"
    printf '    exit status %s\n' "$status"
    [ "$status" -eq "$1" ] || stop "the exit status is not $1"
}

# expect_outcome OUTCOME SERIAL...
expect_outcome() {
    local serial
    for serial in "${@:2}"; do
        grep -q "^0$serial: $1" "$work/said" || stop "the outcome of $serial is not $1"
    done
}

# expect_on_bench SERIAL FILTER VALUE: what an instrument holds, as its bench file has it.
expect_on_bench() { serial=$1 bench="$desk/data/vq-tl4-simulator/bench.json" expect_held "$2" "$3"; }

set_desk() {
    desk="$work/bench"
    case "$1" in en) said_in=en ;; jp) said_in=ja ;; esac
    mkdir -p "$desk/data/vq-tl4-simulator"
    cp docs/samples/*.csv "$desk"
    grep -v '^//' simulator/benches/factory-line.json | jq '.instruments |= .[:3]' \
        >"$desk/data/vq-tl4-simulator/bench.json"
}

make_a_plan() {
    step "vq-tl4ctl: the attached instruments"
    try 0 list
    step "A plan with a row for each"
    try 0 plan init bench.csv
    step "The plan, filled in"
    sed -i -E 's/^"0(200000(.))"(,""){9}/"0\1","","Showroom","correct-horse-battery","","10.20.30.4\2","","10.20.30.1","10.20.30.1","30"/
        /^"02000001"/s/"30",""/"30","white-plate.csv"/' "$desk/bench.csv"
    sed 's/^\xef\xbb\xbf//; s/\r$//; s/,"[^,]*now"$//; s/,"wireless on;.*//; s/"correct[^"]*"/"********"/; s/"//g; s/^/    /' \
        "$desk/bench.csv"
    try 0 plan check bench.csv
}

apply_the_plan() {
    step "What would change"
    try 7 apply --plan bench.csv --dry-run
    expect_outcome would-change 2000001 2000002 2000003
    step "Write it, and prove it"
    try 0 apply --plan bench.csv --yes
    expect_outcome verified 2000001 2000002 2000003
    expect_on_bench 2000003 .network.pending.IPAddress 10.20.30.43
    expect_on_bench 2000001 .calibration.committed.white.serialNumber 20260417
    step "The same again: nothing is written"
    try 0 apply --plan bench.csv --yes
    expect_outcome unchanged 2000001 2000002 2000003
}

fail_a_commit() {
    step "A commit that fails: the old state is put back"
    local fault=(kvasim fault add --serial 2000002 --function KVA_JIG_SetFactoryCalib_WriteSector
        --times 1 --result KVA_ERROR)
    printf '    $ %s\n' "${fault[*]}"
    on_bench "${fault[@]}" | sed 's/^/    /'
    try 4 apply 2000002 --ambient-adapter ambient-adapter.csv --yes
    expect_outcome rolled-back 2000002
    expect_on_bench 2000002 .calibration.committed.ambientAdapter.serialNumber 00010002
    step "Once more, without the fault"
    try 0 apply 2000002 --ambient-adapter ambient-adapter.csv --yes
    expect_outcome verified 2000002
    expect_on_bench 2000002 .calibration.committed.ambientAdapter.serialNumber 00054321
}

# is_open: the terminal's window is there; sets $window.
is_open() { window=$(xdotool search --onlyvisible --class '^XTerm$' 2>/dev/null); }

answer_in_a_terminal() {
    step "In a terminal: other power-off times, the question, the answer, colours"
    sed -i 's/"30"/"60"/' "$desk/bench.csv"
    cat >"$work/in-terminal" <<'TERMINAL'
cd "$2"
printf '$ %s\n' "$3"
unset LC_ALL LC_MESSAGES LANGUAGE
PATH=$1:$PATH LANG=$4 LC_CTYPE=C.UTF-8 script --quiet --flush --return --command "$3" ../typescript
echo "$?" >../status
read -r end
TERMINAL
    # The terminal needs a locale that is installed; the command takes its language from the name.
    LC_ALL=C.UTF-8 XDG_DATA_HOME="$desk/data" xterm -u8 -fa 'DejaVu Sans Mono' \
        -fd 'Noto Sans Mono CJK JP' -fs 10 -geometry 90x26 -bg white -fg black -xrm '*color2: #006400' \
        -e bash "$work/in-terminal" "$bin" "$desk" "vq-tl4ctl apply --plan bench.csv" "$locale" &
    program=$!
    until_true "the terminal did not open" is_open
    until_true "the terminal did not become active" is_active "$window"
    until_true "nobody was asked" grep -qF '[y/N]' "$work/typescript"
    keys y Return
    until_true "the run did not end" test -s "$work/status"
    shoot terminal
    # Without the progress bar, which is drawn over, and without colours.
    echo "    $ vq-tl4ctl apply --plan bench.csv"
    sed -E 's/\r+$//; s/.*\r//; s/\x1b\[[0-9;?]*[A-Za-z]//g; s/^/    /; /^    Script /d' "$work/typescript"
    printf '    exit status %s\n' "$(cat "$work/status")"
    [ "$(cat "$work/status")" -eq 0 ] || stop "the exit status is not 0"
    keys Return
    until_true "the terminal did not close" has_ended
    program=''
    expect_on_bench 2000003 .powerOffMode 3
}

look_back() {
    step "The journal"
    try 0 journal
    step "The report of the first run"
    try 0 report 1 --to report.html
    cp "$desk/report.html" "$pictures/report.html"
    step "What is still held"
    try 0 verify --all
}

# command_session LANGUAGE: en or jp
command_session() {
    set_desk "$1"
    make_a_plan
    apply_the_plan
    fail_a_commit
    answer_in_a_terminal
    look_back
}
