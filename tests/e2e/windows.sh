# The start, and each window's close control and Escape. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

language_closed() {
    start_tool
    await "$language_title"
    leave_by "$1"
    expect_called KVA_GetDevicePortList KVA_SUCCESS 0
}
scenario_language_closed() { language_closed close_by_manager; }
scenario_language_closed_by_mouse() { language_closed click_close_button; }

scenario_other_language() {
    local other=jp y=114
    [ "$locale" = en_US.UTF-8 ] || other=en y=60
    start_tool
    await "$language_title"
    click 36 "$y" # the radio button that is not checked: English is the first one
    shoot chosen
    click 285 90
    expect_gone "$window"
    speak "$other"
    await "$instruments_title"
    shoot instruments
    choose_instrument 0
    await_main
    leave
}

# use_bench: the bench on standard input in place of the usual one.
use_bench() {
    bench="$work/bench.json"
    cat >"$bench"
    export KVASIM_BENCH=$bench
}

scenario_three_instruments() {
    use_bench <<'JSON'
{"version": 1, "instruments": [
  {"serialNumber": 2000001},
  {"serialNumber": 2000002, "port": {"type": 2, "name": "192.168.0.22"}},
  {"serialNumber": 2000003, "port": {"type": 2, "name": "192.168.0.23"}}]}
JSON
    offered
    shoot three
    choose_instrument 2
    await_main
    expect_connected 2000003
    press_disconnect
    press_connect
    await "$instruments_title"
    click 100 18
    keys Down Return
    expect_gone "$window"
    to_main
    expect_connected 2000002
    leave
}

scenario_no_instrument() {
    use_bench <"$root/simulator/benches/none.json"
    offered
    step "An empty list, and its first entry is not there"
    shoot none
    click 455 110
    expect_gone "$window"
    confirm refused
    await_main
    shoot not-connected
    press_connect
    answer none-again
    leave_by press_close
    expect_called KVA_Connect KVA_SUCCESS 0
}

scenario_connect_fails() {
    offered
    kvasim fault add --function KVA_Connect --result KVA_ERROR_CONNECT --times 1
    choose_instrument 1
    confirm refused
    await_main
    reconnect 1 "$serial"
    leave
}

# choose_behind: the choice is open, and the settings dialog is $window.
choose_behind() {
    connected
    press_disconnect
    press_connect
    await "$instruments_title"
    choice=$window
    xdotool windowmove "$choice" 40 400 # off the Connect button
    window=$main_window
}

scenario_connect_twice() {
    choose_behind
    press_connect
    sleep 0.3
    ! other_window "$choice" >/dev/null || stop "there is a second choice"
    window=$choice
    until_true "the choice did not come to the front" is_active "$choice"
    choose_instrument 0
    to_main
    expect_connected 1000001
    expect_called KVA_Connect KVA_SUCCESS 2
    leave
}

scenario_close_while_choosing() {
    choose_behind
    xdotool windowactivate --sync "$main_window"
    leave_by close_by_manager
    is_gone "$choice" || stop "the choice stayed"
    expect_called KVA_Connect KVA_SUCCESS 1
}

# closed CLOSE [BEFORE]: disconnected once, be it before or by closing.
closed() {
    connected
    "${2:-:}"
    leave_by "$1"
    expect_called KVA_Disconnect KVA_SUCCESS 1
}
scenario_close_connected() { closed close_by_manager; }
scenario_close_connected_by_mouse() { closed click_close_button; }
scenario_close_disconnected() { closed close_by_manager press_disconnect; }

scenario_close_fails_to_disconnect() {
    connected
    kvasim fault add --function KVA_Disconnect --result KVA_ERROR
    close_by_manager
    confirm failed
    expect_end
    expect_called KVA_Disconnect KVA_ERROR 1
}

scenario_close_lost() {
    connected
    kvasim unplug "$serial"
    answer lost
    leave_by close_by_manager
}

scenario_close_choice() {
    offered
    step "Nobody could choose without the choice: it comes again"
    close_by_manager
    await "$instruments_title"
    choose_instrument 1
    await_main
    expect_connected "$serial"
    leave
}

scenario_close_message_box() {
    connected
    press_read_body
    await_dialog
    local box=$window
    step "The settings dialog behind it does not close"
    window=$main_window
    click_close_button
    sleep 0.4
    is_running || stop "the tool ended behind an open message"
    window=$box
    is_gone "$box" && stop "the message closed with the window behind it"
    xdotool windowactivate --sync "$box"
    step "The message closes"
    close_by_manager
    expect_gone "$box"
    to_main
    leave
}

# opened PRESS CLOSE: that button opens a window, which the command closes.
opened() {
    "$1"
    await_dialog
    "${@:2}"
    expect_gone "$window"
    to_main
}

scenario_close_file_dialog() {
    connected
    opened press_read_file close_by_manager
    expect_one_window
    leave
}

# expect_kept NAME: Escape leaves $window open, and with the keyboard.
expect_kept() {
    keys Escape
    sleep 0.4
    is_active "$window" || stop "Escape closed the window $1"
}

scenario_escape() {
    start_tool
    await "$language_title"
    expect_kept language
    click 285 90
    expect_gone "$window"
    await "$instruments_title"
    expect_kept instruments
    choose_instrument 1
    await_main
    expect_kept settings

    step "A message box closes as with Ok"
    opened press_read_body keys Escape
    expect_called KVA_GetNetworkInfo KVA_SUCCESS 2

    step "A file dialog closes, and nothing was read or written"
    opened press_read_file keys Escape
    opened press_write_file keys Escape
    sleep 0.3
    expect_one_window
    [ -z "$(ls "$work/Documents")" ] || stop "a file was written"
    leave
}
