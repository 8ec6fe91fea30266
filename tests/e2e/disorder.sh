# Whatever order a user presses in: seeded disorder. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

# topmost: the active window of the tool, or any one that it has.
topmost() {
    local active
    active=$(xdotool getactivewindow 2>/dev/null || true)
    if [ -n "$active" ] && ! is_gone "$active"; then
        echo "$active"
    else
        windows | head -n 1
    fi
}

press_somewhere() {
    local width height
    read -r width height < <(size_of "$window") || return 0
    xdotool mousemove --window "$window" $((RANDOM % width)) $((RANDOM % height)) \
        click --repeat $((1 + RANDOM % 3)) --delay 20 1 2>/dev/null || true
}

# The buttons of the settings dialog, which chance alone would seldom meet.
press_a_button() {
    local places=("1075 30" "1075 80" "1007 552" "1007 612" "1002 240" "1002 300")
    # shellcheck disable=SC2086 # two words on purpose
    xdotool mousemove --window "$window" ${places[RANDOM % ${#places[@]}]} click 1 2>/dev/null || true
}

press_a_key() {
    local names=(Tab Return space Escape ctrl+Tab ctrl+shift+Tab Up Down Left Right 1 9 a BackSpace
        Return Escape shift+Tab ctrl+a)
    xdotool key --clearmodifiers "${names[RANDOM % ${#names[@]}]}"
}

handle_an_instrument() {
    local commands=(unplug plug plug power-cycle)
    kvasim "${commands[RANDOM % ${#commands[@]}]}" $((1000001 + RANDOM % 2)) 2>/dev/null || true
}

# settle: leaves through whatever is open, with both instruments attached.
settle() {
    local tries
    for ((tries = 0; tries < 200; ++tries)); do
        is_running || return 0
        window=$(topmost)
        [ -z "$window" ] || {
            xdotool windowactivate "$window" 2>/dev/null || true
            # A choice and a language want their button; all else goes with the window's close key.
            if is_named "$window" "$instruments_title"; then
                click 455 110 2>/dev/null || true
            elif [ $((tries % 2)) -eq 0 ]; then
                keys Escape
            else
                keys alt+F4
            fi
        }
        sleep 0.1
    done
    stop "the tool could not be left"
}

scenario_disorder() {
    local action runs=1
    RANDOM=${VQTL4_DISORDER_SEED:-4711}
    start_tool
    choose_language
    for ((action = 0; action < ${VQTL4_DISORDER_ACTIONS:-200}; ++action)); do
        if ! is_running; then
            expect_end
            runs=$((runs + 1))
            start_tool
            choose_language
        fi
        window=$(topmost)
        [ -n "$window" ] || {
            sleep 0.05
            continue
        }
        case $((RANDOM % 10)) in
        0 | 1 | 2) press_somewhere ;;
        3 | 4 | 5) press_a_button ;;
        6 | 7 | 8) press_a_key ;;
        9) handle_an_instrument ;;
        esac
    done
    echo "    $action actions, $runs runs"
    settle
    expect_end
}
