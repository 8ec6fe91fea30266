# What the tests of the Debian packages share. Sourced after scripts/x-session.sh, not run.
# shellcheck shell=bash disable=SC2154

# quietly WHAT COMMAND...: its output is shown where it fails.
quietly() {
    local what=$1
    shift
    "$@" >"$work/output" 2>&1 || {
        tail -n 30 "$work/output" >&2
        stop "$what"
    }
}

# find_packages FOLDER: sets $tool and $simulator, the files there of the two packages of $build.
find_packages() {
    local ending
    ending=$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")/\1/p' "$build/CPackConfig.cmake")
    ending=_${ending}_$(dpkg --print-architecture).deb
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
    connect_to 1
    press_read_body
    answer read
    leave
}
