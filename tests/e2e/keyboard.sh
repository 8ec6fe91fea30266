# A whole session without the mouse. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

# tab [TIMES]: on to the next field.
tab() {
    local times
    for ((times = 0; times < ${1:-1}; ++times)); do keys Tab; done
}

# retype TEXT: in place of what the field holds.
retype() {
    keys ctrl+a
    xdotool type --delay 15 "$1"
}

# register_by_keyboard FILE RECORD SERIAL: on the page that was just turned to.
register_by_keyboard() {
    tab
    keys space
    choose "$2-open" "$work/Documents/$1"
    answer "$2-checked"
    tab
    keys space
    answer "$2-registered"
    expect_held ".calibration.committed.$2.serialNumber" "$3"
}

# The other language, by an arrow key: English is the first one.
scenario_keyboard_language() {
    start_tool
    await "$language_title"
    if [ "$locale" = en_US.UTF-8 ]; then
        keys Down Return
        speak jp
    else
        keys Up Return
        speak en
    fi
    await "$instruments_title"
    keys Return
    await_main
    expect_connected 1000001
    leave
}

was_disconnected() { [ "$(count_calls KVA_Disconnect KVA_SUCCESS)" -eq 1 ]; }

scenario_keyboard() {
    local octet
    mkdir -p "$work/Documents"
    cp docs/samples/* "$work/Documents"
    # The pointer is out of the way: nothing happens because of where it is.
    xdotool mousemove 1279 839
    start_tool
    await "$language_title"
    keys Return # the language that is chosen already
    expect_gone "$window"
    await "$instruments_title"
    keys Down Return
    expect_gone "$window"
    await_main

    step "Network: from the tabs past the switch to the SSID, then to the addresses"
    tab 2
    retype Showroom
    tab 3 # the key, DHCP, the first octet
    for octet in 10 20 30 40; do
        retype "$octet"
        tab
    done
    shoot network
    tab 15
    keys space
    answer network-written
    expect_held .network.pending.SSID Showroom
    expect_held .network.pending.IPAddress 10.20.30.40
    step "The button has the focus again: two back is the one that saves"
    keys shift+Tab shift+Tab space
    choose network-save "$work/saved.ini"
    answer network-saved
    grep -qx SSID=Showroom "$work/saved.ini" || stop "the file has another SSID"

    step "Auto power off"
    keys ctrl+Tab
    tab
    keys Up # from 60 minutes
    tab 2
    keys space
    answer power-off-written
    expect_held .powerOffMode 2

    step "The calibration files"
    keys ctrl+Tab
    register_by_keyboard white-plate.csv white 20260417
    keys ctrl+Tab
    register_by_keyboard ambient-adapter.csv ambientAdapter 00054321

    step "Disconnect, close"
    tab
    keys space
    until_true "it is still connected" was_disconnected
    shoot disconnected
    keys shift+Tab # from the tabs to the button before them, which closes
    keys space
    expect_end
}
