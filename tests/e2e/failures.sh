# Failures on each tab: one message each, and what the instrument holds stays. A connection that is
# lost while a window is open. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

# fails FUNCTION PRESS NAME: a call fails once, and the button says so.
fails() {
    kvasim fault add --function "$1" --result KVA_ERROR_COMMUNICATION_SEND --times 1
    "$2"
    answer "$3"
    expect_one_window
    expect_called "$1" KVA_ERROR_COMMUNICATION_SEND 1
}

scenario_fail_network() {
    connected
    fails KVA_GetNetworkInfo press_read_body read
    fails KVA_SetNetworkInfo press_write_body write
    step "A number that is none, and one too high"
    fill 307 478 1a
    press_write_body
    answer letter
    fill 307 478 256
    press_write_body
    answer too-high
    press_write_file
    choose save "$work/refused.ini"
    answer not-saved
    [ ! -e "$work/refused.ini" ] || stop "a file was written"
    step "A file without settings"
    press_read_file
    choose open "$root/docs/samples/white-plate.csv"
    answer no-settings
    expect_held .network.pending null
    expect_held .network.active.SSID press-hall
    expect_called KVA_SetNetworkInfo KVA_SUCCESS 0
    leave
}

scenario_fail_power_off() {
    connected
    open_tab 1
    fails KVA_GetShutdownTime press_read_body read
    click 290 363
    fails KVA_SetShutdownTime press_write_body write
    expect_held .powerOffMode 3
    press_write_body
    answer written
    expect_held .powerOffMode 2
    leave
}

# fail_calibration TAB GOOD FIELD
fail_calibration() {
    connected
    local values=".calibration.committed.$3 | tostring" before
    before=$(held "$values")
    open_tab "$1"
    step "A file of the other kind"
    press_read_file
    choose refused-open "$root/docs/samples/network.ini"
    answer refused
    step "A good one, and an instrument that does not take it"
    press_read_file
    choose open "$root/docs/samples/$2"
    answer checked
    fails KVA_JIG_SetFactoryCalib_CALREFDATA press_write_body set
    fails KVA_JIG_SetFactoryCalib_WriteSector press_write_body commit
    [ "$(held "$values")" = "$before" ] || stop "the values changed"
    step "It takes it the next time"
    press_write_body
    answer written
    [ "$(held "$values")" != "$before" ] || stop "the values are the old"
    leave
}
scenario_fail_white_plate() { fail_calibration 2 white-plate.csv white; }
scenario_fail_ambient_adapter() { fail_calibration 3 ambient-adapter.csv ambientAdapter; }

scenario_fail_disconnect() {
    connected
    fails KVA_Disconnect press_disconnect failed
    press_disconnect
    expect_called KVA_Disconnect KVA_SUCCESS 1
    leave_by press_close
}

# lost_behind PRESS: the window that the button opened is $window again, after the message that the
# connection was lost came over it.
lost_behind() {
    connected
    "$1"
    await_dialog
    local opened=$window
    kvasim unplug "$serial"
    confirm lost "$opened"
    window=$opened
    until_true "the window did not become active again" is_active "$window"
}

scenario_lost_with_message_open() {
    lost_behind press_read_body
    dismiss
    expect_called KVA_Disconnect KVA_SUCCESS 0
    leave_by close_by_manager
}

# lost_in_file_dialog PRESS PATH: the file chosen after the loss is left alone.
lost_in_file_dialog() {
    lost_behind "$1"
    enter_path "$2"
    window=$main_window
    sleep 0.3
    shoot afterwards
}

# lost_and_not_read PRESS SAMPLE
lost_and_not_read() {
    lost_in_file_dialog "$1" "$root/docs/samples/$2"
    expect_one_window
    leave_by press_close
    expect_called KVA_JIG_SetFactoryCalib_CALREFDATA KVA_SUCCESS 0
}
press_value_file() {
    open_tab 2
    press_read_file
}
scenario_lost_with_file_dialog_open() { lost_and_not_read press_read_file network.ini; }
scenario_lost_with_value_file_dialog_open() { lost_and_not_read press_value_file white-plate.csv; }

scenario_lost_with_save_dialog_open() {
    # The fields are empty by then. Nothing is saved, and nothing more is said.
    lost_in_file_dialog press_write_file "$work/lost.ini"
    expect_one_window
    [ ! -e "$work/lost.ini" ] || stop "a file was written"
    leave_by press_close
}

scenario_lost_with_choice_open() {
    offered
    kvasim unplug "$serial"
    choose_instrument 1
    confirm refused
    await_main
    leave_by close_by_manager
    expect_called KVA_Connect KVA_SUCCESS 0
}

scenario_lost_and_back() {
    connected
    kvasim unplug "$serial"
    answer lost
    kvasim plug "$serial"
    reconnect 1 "$serial"
    press_read_body
    answer read
    leave
}
