# Escape in each window. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

# expect_kept: Escape leaves $window open, and with the keyboard.
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
    press_read_body
    await_dialog
    keys Escape
    expect_gone "$window"
    to_main
    expect_called KVA_GetNetworkInfo KVA_SUCCESS 2

    step "A file dialog closes, and nothing was read or written"
    press_read_file
    await_dialog
    keys Escape
    expect_gone "$window"
    to_main
    press_write_file
    await_dialog
    keys Escape
    expect_gone "$window"
    to_main
    sleep 0.3
    expect_one_window
    [ -z "$(ls "$work/Documents")" ] || stop "a file was written"
    leave
}
