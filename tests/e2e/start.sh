# From the start to the settings dialog. Sourced by scenario.
# shellcheck shell=bash disable=SC2034,SC2119,SC2120,SC2154

scenario_language_closed() {
    start_tool
    await "$language_title"
    close_by_manager
    expect_end
    expect_called KVA_GetDevicePortList KVA_SUCCESS 0
}

scenario_language_closed_by_mouse() {
    start_tool
    await "$language_title"
    click_close_button
    expect_end
    expect_called KVA_GetDevicePortList KVA_SUCCESS 0
}

scenario_other_language() {
    local other_title="分光測色計設定ツール VQ-TL4"
    [ "$locale" = en_US.UTF-8 ] || other_title="Spectrophotometer Configuration Tool VQ-TL4"
    start_tool
    await "$language_title"
    # The radio button that is not checked: English is the first one.
    if [ "$locale" = en_US.UTF-8 ]; then click 36 114; else click 36 60; fi
    shoot chosen
    click 285 90
    expect_gone "$window"
    await_dialog
    shoot instruments
    choose_instrument 0
    title=$other_title
    await_main
    leave
}

three_instruments() {
    cat >"$work/three.json" <<'JSON'
{"version": 1, "instruments": [
  {"serialNumber": 2000001},
  {"serialNumber": 2000002, "port": {"type": 2, "name": "192.168.0.22"}},
  {"serialNumber": 2000003, "port": {"type": 2, "name": "192.168.0.23"}}]}
JSON
    export KVASIM_BENCH="$work/three.json"
    bench=$KVASIM_BENCH
}

# expect_connected SERIAL: the last one that was connected to.
expect_connected() {
    local last
    last=$(jq --null-input '[inputs | select(.function == "KVA_Connect")] | last
        | if .result == 0 then .arguments.serialNumber else null end' "$KVASIM_TRACE")
    [ "$last" = "$1" ] || stop "connected to $last and not to $1"
    printf '    connected to %s\n' "$1"
}

scenario_three_instruments() {
    three_instruments
    start_tool
    choose_language
    await "$instruments_title"
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
    cp "$root/simulator/benches/none.json" "$work/none.json"
    export KVASIM_BENCH="$work/none.json"
    start_tool
    choose_language
    step "An empty list, and its first entry is not there"
    await "$instruments_title"
    shoot none
    click 455 110
    expect_gone "$window"
    await_dialog
    shoot refused
    keys Return
    expect_gone "$window"
    await_main
    shoot not-connected
    press_connect
    answer none-again
    press_close
    expect_end
    expect_called KVA_Connect KVA_SUCCESS 0
}

scenario_connect_fails() {
    start_tool
    choose_language
    await "$instruments_title"
    kvasim fault add --function KVA_Connect --result KVA_ERROR_CONNECT --times 1
    choose_instrument 1
    await_dialog
    shoot refused
    keys Return
    expect_gone "$window"
    await_main
    press_connect
    await "$instruments_title"
    choose_instrument 1
    to_main
    expect_connected "$serial"
    leave
}

scenario_connect_twice() {
    connected
    press_disconnect
    press_connect
    await "$instruments_title"
    local choice=$window
    # Off the choice, on the Connect button.
    xdotool windowmove "$choice" 40 400
    window=$main_window
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
