# Failures on each tab: one message each, and what the instrument holds stays. Sourced by scenario.
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

# fail_calibration TAB GOOD BAD FIELD
fail_calibration() {
    connected
    local before
    before=$(held ".calibration.committed.$4 | tostring")
    open_tab "$1"
    step "A file of the other kind"
    press_read_file
    choose refused-open "$root/docs/samples/$3"
    answer refused
    step "A good one, and an instrument that takes it not"
    press_read_file
    choose open "$root/docs/samples/$2"
    answer checked
    fails KVA_JIG_SetFactoryCalib_CALREFDATA press_write_body set
    fails KVA_JIG_SetFactoryCalib_WriteSector press_write_body commit
    [ "$(held ".calibration.committed.$4 | tostring")" = "$before" ] || stop "the values changed"
    step "It takes it the next time"
    press_write_body
    answer written
    [ "$(held ".calibration.committed.$4 | tostring")" != "$before" ] || stop "the values are the old"
    leave
}

scenario_fail_white_plate() { fail_calibration 2 white-plate.csv network.ini white; }

scenario_fail_ambient_adapter() { fail_calibration 3 ambient-adapter.csv network.ini ambientAdapter; }

scenario_fail_disconnect() {
    connected
    fails KVA_Disconnect press_disconnect failed
    press_disconnect
    expect_called KVA_Disconnect KVA_SUCCESS 1
    press_close
    expect_end
}
