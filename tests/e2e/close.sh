# The window's close control in each state. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

# click_close_button: the one in the title bar of $window, at its right end.
click_close_button() {
    local WIDTH=0 HEIGHT=0 X=0 Y=0 WINDOW=0 SCREEN=0
    eval "$(xdotool getwindowgeometry --shell "$window")"
    : "$HEIGHT" "$X" "$Y" "$WINDOW" "$SCREEN"
    xdotool mousemove --window "$window" -- $((WIDTH - 10)) -10 click 1
}

scenario_close_connected() {
    connected
    close_by_manager
    expect_end
    expect_called KVA_Disconnect KVA_SUCCESS 1
}

scenario_close_connected_by_mouse() {
    connected
    click_close_button
    expect_end
    expect_called KVA_Disconnect KVA_SUCCESS 1
}

scenario_close_disconnected() {
    connected
    press_disconnect
    close_by_manager
    expect_end
    expect_called KVA_Disconnect KVA_SUCCESS 1
}

scenario_close_fails_to_disconnect() {
    connected
    kvasim fault add --function KVA_Disconnect --result KVA_ERROR
    close_by_manager
    await_dialog
    shoot failed
    keys Return
    expect_end
    expect_called KVA_Disconnect KVA_ERROR 1
}

scenario_close_lost() {
    connected
    kvasim unplug "$serial"
    answer lost
    close_by_manager
    expect_end
}

scenario_close_choice() {
    start_tool
    choose_language
    await "$instruments_title"
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

scenario_close_file_dialog() {
    connected
    press_read_file
    await_dialog
    close_by_manager
    expect_gone "$window"
    to_main
    expect_one_window
    leave
}

scenario_close_while_choosing() {
    connected
    press_disconnect
    press_connect
    await "$instruments_title"
    local choice=$window
    xdotool windowmove "$choice" 40 400
    xdotool windowactivate --sync "$main_window"
    window=$main_window
    close_by_manager
    expect_end
    is_gone "$choice" || stop "the choice stayed"
    expect_called KVA_Connect KVA_SUCCESS 1
}
