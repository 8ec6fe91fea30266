# What the tests of the Debian packages share. Sourced after scripts/x-session.sh, not run.
# shellcheck shell=bash disable=SC2154

# find_packages FOLDER VERSION: sets $tool and $simulator, the files of the two packages there.
find_packages() {
    local ending
    ending=_$2_$(dpkg --print-architecture).deb
    tool=$1/vq-tl4$ending
    simulator=$1/vq-tl4-simulator$ending
    [ -f "$tool" ] || stop "there is no ${tool##*/}"
    [ -f "$simulator" ] || stop "there is no ${simulator##*/}"
}

# refuse PATTERN COMMAND...: it ends with status 1 and says one line, on standard error.
refuse() {
    local pattern=$1 status=0
    shift
    "$@" >"$work/said" 2>"$work/refusal" || status=$?
    [ "$status" -eq 1 ] || stop "without a library the tool ended with $status and not with 1"
    [ ! -s "$work/said" ] || stop "it said on standard output: $(cat "$work/said")"
    [ "$(wc -l <"$work/refusal")" -eq 1 ] || stop "it said more or less than a line: $(cat "$work/refusal")"
    grep -Eq "$pattern" "$work/refusal" || stop "it said: $(cat "$work/refusal")"
}

# take_session: the started tool, from the choice of the language to its end with status 0.
take_session() {
    choose_language
    await "$instruments_title"
    choose_instrument 1
    await_main
    press_read_body
    answer read
    press_disconnect
    press_close
    expect_end
}
