# A connection that is lost while a window is open. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

# expect_lost: the message that the connection was lost comes over the window given.
expect_lost() {
    await_dialog "$1"
    shoot lost
    keys Return
    expect_gone "$window"
}

scenario_lost_with_message_open() {
    connected
    press_read_body
    await_dialog
    local box=$window
    kvasim unplug "$serial"
    expect_lost "$box"
    window=$box
    until_true "the first message did not become active" is_active "$box"
    dismiss
    expect_called KVA_Disconnect KVA_SUCCESS 0
    close_by_manager
    expect_end
}

# lost_in_file_dialog PRESS PATH: the file chosen after the loss is left alone.
lost_in_file_dialog() {
    connected
    "$1"
    await_dialog
    local dialog=$window
    kvasim unplug "$serial"
    expect_lost "$dialog"
    window=$dialog
    until_true "the file dialog did not become active" is_active "$dialog"
    xdotool type --delay 10 "$2"
    keys Return
    expect_gone "$dialog"
    window=$main_window
    sleep 0.3
    shoot afterwards
}

scenario_lost_with_file_dialog_open() {
    lost_in_file_dialog press_read_file "$root/docs/samples/network.ini"
    expect_one_window
    press_close
    expect_end
}

press_value_file() {
    open_tab 2
    press_read_file
}

scenario_lost_with_value_file_dialog_open() {
    lost_in_file_dialog press_value_file "$root/docs/samples/white-plate.csv"
    expect_one_window
    press_close
    expect_end
    expect_called KVA_JIG_SetFactoryCalib_CALREFDATA KVA_SUCCESS 0
}

scenario_lost_with_save_dialog_open() {
    # The fields are empty by then, and the loss has been reported: nothing is saved or said.
    lost_in_file_dialog press_write_file "$work/lost.ini"
    expect_one_window
    [ ! -e "$work/lost.ini" ] || stop "a file was written"
    press_close
    expect_end
}

scenario_lost_with_choice_open() {
    start_tool
    choose_language
    await "$instruments_title"
    kvasim unplug "$serial"
    choose_instrument 1
    await_dialog
    shoot refused
    keys Return
    expect_gone "$window"
    await_main
    close_by_manager
    expect_end
    expect_called KVA_Connect KVA_SUCCESS 0
}

scenario_lost_and_back() {
    connected
    kvasim unplug "$serial"
    answer lost
    kvasim plug "$serial"
    press_connect
    await "$instruments_title"
    choose_instrument 1
    to_main
    expect_connected "$serial"
    press_read_body
    answer read
    leave
}
