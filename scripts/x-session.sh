# The tool under a virtual X server, with a window manager, real mouse and key events, and a bench
# of its own. Sourced, not run. Expects the working directory to be the project's root.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154
#
# VQTL4_BIN    folder of vq-tl4 and kvasim (build/release/bin)
# x_session LANGUAGE PICTURES sets it up: en or jp, and the folder that pictures are kept in.
# VQTL4_WORK   a folder to work in, made and removed again; pictures of file dialogs show its name
# VQTL4_SCREEN the size of the screen (1280x840)
# VQTL4_PLAIN_NAMES  when set, the pictures' names have no number

root=$PWD
bin=${VQTL4_BIN:-$root/build/release/bin}
program='' server='' manager='' main_window='' window='' picture=0

# speak LANGUAGE: en or jp. What the titles of the windows are from now on.
speak() {
    case "$1" in
    en) locale=en_US.UTF-8 language_title="Select Language" instruments_title="Select Device" title="Spectrophotometer Configuration Tool VQ-TL4" ;;
    jp) locale=ja_JP.UTF-8 language_title="言語の選択" instruments_title="測定器の選択" title="分光測色計設定ツール VQ-TL4" ;;
    *)
        echo "The language is en or jp" >&2
        exit 2
        ;;
    esac
}

x_session() {
    speak "$1"
    pictures=$2
    mkdir -p "$pictures"
    rm -f "$pictures"/[0-9][0-9]-*.png "$pictures/failure.png" # those of an earlier run
    if [ -n "${VQTL4_WORK:-}" ]; then
        mkdir "$VQTL4_WORK" # not one that is there already: it will be removed
        work=$VQTL4_WORK
    else
        work=$(mktemp -d)
    fi
    bench="$work/data/vq-tl4-simulator/bench.json"
    trap end_x_session EXIT
    start_server
}

end_x_session() {
    local process
    for process in "$program" "$manager" "$server"; do
        [ -z "$process" ] || kill "$process" 2>/dev/null || true
    done
    wait 2>/dev/null || true
    rm -rf "$work"
}

stop() {
    echo "FAILED: $*" >&2
    [ ! -s "$work/log" ] || sed 's/^/  tool: /' "$work/log" | tail -n 60 >&2
    import -window root "$pictures/failure.png" 2>/dev/null || true
    echo "Picture of the screen: $pictures/failure.png" >&2
    exit 1
}

step() { printf '\n%s\n' "* $*"; }

start_server() {
    local display
    Xvfb -displayfd 3 -screen 0 "${VQTL4_SCREEN:-1280x840}x24" -nolisten tcp 3>"$work/display" 2>/dev/null &
    server=$!
    until_true "the X server did not start" test -s "$work/display"
    display=$(cat "$work/display")
    mkdir -p "$work/runtime"
    chmod 700 "$work/runtime"
    export DISPLAY=":$display" XDG_DATA_HOME="$work/data" XDG_RUNTIME_DIR="$work/runtime"
    export QT_FONT_DPI=72 KVASIM_TRACE="$work/trace"
    # What Qt's file dialogs remember is not the user's; the fonts that are known already are.
    export XDG_CACHE_HOME="${XDG_CACHE_HOME:-$HOME/.cache}" HOME="$work" XDG_CONFIG_HOME="$work/config"
    unset KVASIM_BENCH WAYLAND_DISPLAY QT_QPA_PLATFORM QT_QPA_PLATFORMTHEME
    unset QT_SCALE_FACTOR QT_SCREEN_SCALE_FACTORS GDK_SCALE XDG_SESSION_TYPE QT_STYLE_OVERRIDE QT_LOGGING_RULES
    until_true "the window manager did not start" manage
}

# manage: starts the window manager, again where it gave up on the new server.
manage() {
    if [ -z "$manager" ] || ! kill -0 "$manager" 2>/dev/null; then
        openbox >"$work/openbox" 2>&1 &
        manager=$!
    fi
    xdotool get_desktop
}

# start_tool: in a folder of its own, so that nothing it saves lies elsewhere.
start_tool() {
    mkdir -p "$work/Documents"
    : >>"$work/trace"
    # The locale itself may not be installed: only its name counts, the encoding is set apart.
    (cd "$work/Documents" && exec env -u LC_ALL -u LC_MESSAGES -u LANGUAGE LANG="$locale" LC_CTYPE=C.UTF-8 "$bin/vq-tl4" 2>>"$work/log") &
    program=$!
    main_window=''
}

is_running() { kill -0 "$program" 2>/dev/null; }

has_ended() { ! is_running; }

# expect_end: the tool ends by itself, with status 0.
expect_end() {
    local status=0
    until_true "the tool did not end" has_ended
    wait "$program" || status=$?
    program=''
    echo "    exit status $status"
    [ "$status" -eq 0 ] || stop "the tool did not end with 0"
}

# ---- Waiting and looking

# comes_true TRIES COMMAND...: repeats the command until it succeeds, twenty times a second.
comes_true() {
    local tries=$1
    shift
    for ((; tries > 0; --tries)); do
        if "$@" >/dev/null 2>&1; then return 0; fi
        sleep 0.05
    done
    return 1
}

# until_true WHAT COMMAND...: waits for it for twenty seconds.
until_true() { comes_true 400 "${@:2}" || stop "$1"; }

windows() { xdotool search --onlyvisible --class vq-tl4 2>/dev/null || true; }

is_named() { [ "$(xdotool getwindowname "$1" 2>/dev/null)" = "$2" ]; }

# window_named TITLE: the visible window of that title, but not the settings dialog once it is known.
window_named() {
    local candidate
    for candidate in $(windows); do
        [ "$candidate" != "$main_window" ] || continue
        if is_named "$candidate" "$1"; then
            echo "$candidate"
            return 0
        fi
    done
    return 1
}

# other_window [KNOWN...]: a visible window that is neither the settings dialog nor a known one.
other_window() {
    local candidate
    for candidate in $(windows); do
        [[ " $main_window $* " == *" $candidate "* ]] || {
            echo "$candidate"
            return 0
        }
    done
    return 1
}

is_active() { [ "$(xdotool getactivewindow 2>/dev/null)" = "$1" ]; }

is_gone() {
    local candidate
    for candidate in $(windows); do [ "$candidate" != "$1" ] || return 1; done
}

# await TITLE: waits for the window and until it has the keyboard; sets $window.
await() {
    until_true "the window \"$1\" did not appear" window_named "$1"
    window=$(window_named "$1")
    until_true "the window \"$1\" did not become active" is_active "$window"
}

# await_dialog [KNOWN...]: the same for whatever the settings dialog has opened. The list of
# completions of a file dialog may be there a moment longer than the dialog.
await_dialog() {
    until_true "no window opened" other_window "$@"
    until_true "the opened window did not become active" is_other_active "$@"
}
is_other_active() { window=$(other_window "$@") && is_active "$window"; }

expect_gone() { until_true "the window did not close" is_gone "$1"; }

# to_main: the settings dialog is what has the keyboard again.
to_main() {
    window=$main_window
    until_true "the settings dialog did not become active again" is_active "$window"
}

# expect_one_window: nothing but the settings dialog is open.
expect_one_window() { ! other_window >/dev/null || stop "a window is open that should not be"; }

# held FILTER: what the instrument $serial holds, read from the bench's state.
held() {
    jq --raw-output --argjson serial "$serial" \
        ".instruments[] | select(.serialNumber == \$serial) | $1" "$bench"
}

# expect_held FILTER VALUE
expect_held() {
    local value
    value=$(held "$1")
    [ "$value" = "$2" ] || stop "the instrument holds \"$value\" and not \"$2\" ($1)"
    printf '    %s\n' "$1: $value"
}

# count_calls FUNCTION RESULT: how often the library was called so, as its log has it.
count_calls() {
    jq --arg function "$1" --arg result "$2" --null-input \
        '[inputs | select(.function == $function and .resultName == $result)] | length' "$KVASIM_TRACE"
}

# expect_called FUNCTION RESULT TIMES
expect_called() {
    local times
    times=$(count_calls "$1" "$2")
    [ "$times" -eq "$3" ] || stop "$1 had the result $2 $times times and not $3 times"
    printf '    %s: %s, %s times\n' "$1" "$2" "$3"
}

# shoot NAME: keeps a picture of $window.
shoot() {
    sleep 0.3 # until it is painted
    picture=$((picture + 1))
    local name=$1.png
    [ -n "${VQTL4_PLAIN_NAMES:-}" ] || name=$(printf '%02d-%s' "$picture" "$name")
    # Without the time, which would make every picture another file.
    import -window "$window" -strip -define png:exclude-chunks=date,time "$pictures/$name"
}

# ---- Acting

# click X Y: presses the mouse there in $window.
click() {
    xdotool mousemove --window "$window" "$1" "$2" click 1
    sleep 0.15
}

keys() { xdotool key --clearmodifiers --delay 30 "$@"; }

# fill X Y TEXT: clicks an edit and replaces its text.
fill() {
    click "$1" "$2"
    keys ctrl+a
    xdotool type --delay 15 "$3"
}

# dismiss: presses the default button of $window.
dismiss() {
    keys Return
    expect_gone "$window"
    to_main
}

# answer NAME: a message box; takes its picture and presses Ok.
answer() {
    await_dialog
    shoot "$1"
    dismiss
}

# choose NAME PATH: a file dialog; types the path into it.
choose() {
    await_dialog
    shoot "$1" # before the typing: a list of completions would cover it
    enter_path "$2"
    window=$main_window
}

# enter_path PATH: into the file dialog $window. On a busy machine the dialog may take the folder alone,
# and go there: the path is then typed again.
enter_path() {
    local attempt
    for attempt in first second; do
        [ "$attempt" = first ] || keys ctrl+a
        xdotool type --delay 10 "$1"
        keys Return
        ! comes_true 100 is_gone "$window" || return 0
    done
    expect_gone "$window"
}

# close_by_manager: has the window manager close $window, as its menus and keys do. Not by such a
# key: on a busy machine it meets the manager's grab of the pointer and is lost.
close_by_manager() {
    until_true "the window to be closed did not become active" is_active "$window"
    wmctrl -i -c "$window"
    sleep 0.2
}

kvasim() { "$bin/kvasim" "$@"; }

is_listed() { kvasim list | grep -Eq "^$1 +plugged"; }

# ---- The steps that every session takes

choose_language() {
    await "$language_title"
    [ "$#" -eq 0 ] || shoot "$1"
    click 285 90
    expect_gone "$window"
}

# choose_instrument ROW: in the open list, from 0.
choose_instrument() {
    click 100 $((18 + 20 * $1))
    click 455 110
    expect_gone "$window"
}

await_main() {
    await "$title"
    main_window=$window
}

# connect_to ROW: from the choice of the language to the settings dialog.
connect_to() {
    choose_language
    await "$instruments_title"
    choose_instrument "$1"
    await_main
}

# leave: in order, from the connected state. leave_by CLOSE: by that command.
leave() {
    press_disconnect
    leave_by press_close
}

leave_by() {
    "$1"
    expect_end
}

# Places below are in the settings dialog's own coordinates.
press_connect() { click 1075 30; }
press_disconnect() { click 1075 80; }
press_close() { click 1075 130; }
press_read_body() { click 1007 552; }
press_write_body() { click 1007 612; }
press_read_file() { click 1002 240; }
press_write_file() { click 1002 300; }

# open_tab INDEX: from the first tab, with an edit of it focused, by the keyboard.
open_tab() {
    local index
    click 40 162
    click 500 283
    for ((index = 0; index < $1; ++index)); do
        keys ctrl+Tab
        sleep 0.1
    done
}
