<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP" sourcelanguage="en_US">
<context>
    <name>ConnectSelectDialog</name>
    <message>
        <source>Select Device</source>
        <translation>測定器の選択</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Instruments</source>
        <translation>測定器一覧</translation>
    </message>
    <message>
        <source>The instruments that can be connected</source>
        <translation>接続できる測定器</translation>
    </message>
    <message>
        <source>Connects to the chosen instrument</source>
        <translation>選択した測定器に接続します</translation>
    </message>
</context>
<context>
    <name>InitSettingDialog</name>
    <message>
        <source>Spectrophotometer Configuration Tool VQ-TL4</source>
        <translation>分光測色計設定ツール VQ-TL4</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>ネットワーク</translation>
    </message>
    <message>
        <source>Wireless LAN</source>
        <translation>無線LAN</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>有効</translation>
    </message>
    <message>
        <source>Disable</source>
        <translation>無効</translation>
    </message>
    <message>
        <source>Access Point</source>
        <translation>アクセスポイント</translation>
    </message>
    <message>
        <source>SSID:</source>
        <translation>SSID:</translation>
    </message>
    <message>
        <source>Security Key:</source>
        <translation>セキュリティキー:</translation>
    </message>
    <message>
        <source>TCP/IP</source>
        <translation>TCP/IP</translation>
    </message>
    <message>
        <source>DHCP:</source>
        <translation>DHCP:</translation>
    </message>
    <message>
        <source>ON</source>
        <translation>ON</translation>
    </message>
    <message>
        <source>OFF</source>
        <translation>OFF</translation>
    </message>
    <message>
        <source>IP Address:</source>
        <translation>IPアドレス:</translation>
    </message>
    <message>
        <source>.</source>
        <translation>.</translation>
    </message>
    <message>
        <source>Subnet Mask:</source>
        <translation>サブネットマスク:</translation>
    </message>
    <message>
        <source>Default Gateway:</source>
        <translation>デフォルトゲートウェイ:</translation>
    </message>
    <message>
        <source>DNS Server:</source>
        <translation>DNSサーバー:</translation>
    </message>
    <message>
        <source>File</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>Read From File...</source>
        <translation>ファイルから読み込み...</translation>
    </message>
    <message>
        <source>Write To File...</source>
        <translation>ファイルへ書き込み...</translation>
    </message>
    <message>
        <source>Body</source>
        <translation>測定器</translation>
    </message>
    <message>
        <source>Read From Body</source>
        <translation>測定器から読み込み</translation>
    </message>
    <message>
        <source>Write To Body</source>
        <translation>測定器へ書き込み</translation>
    </message>
    <message>
        <source>Auto Power Off</source>
        <translation>オートパワーオフ</translation>
    </message>
    <message>
        <source>Configure auto power off time</source>
        <translation>オートパワーオフ時間の設定</translation>
    </message>
    <message>
        <source>Disabled</source>
        <translation>無効</translation>
    </message>
    <message>
        <source>15minutes</source>
        <translation>15分</translation>
    </message>
    <message>
        <source>30minutes</source>
        <translation>30分</translation>
    </message>
    <message>
        <source>60minutes</source>
        <translation>60分</translation>
    </message>
    <message>
        <source>White calibration plate</source>
        <translation>白色校正板</translation>
    </message>
    <message>
        <source>Current Serial No:</source>
        <translation>現在のシリアル番号:</translation>
    </message>
    <message>
        <source>Select White Calibration Plate To Register</source>
        <translation>登録する白色校正板の選択</translation>
    </message>
    <message>
        <source>White Calibration Plate Values File(.csv)</source>
        <translation>白色校正板の校正値ファイル(.csv)</translation>
    </message>
    <message>
        <source>Serial No:</source>
        <translation>シリアル番号:</translation>
    </message>
    <message>
        <source>Ambient light adapter</source>
        <translation>環境光アダプター</translation>
    </message>
    <message>
        <source>Select Ambient Light Adapter To Register</source>
        <translation>登録する環境光アダプターの選択</translation>
    </message>
    <message>
        <source>Ambient Light Adapter Value File(.csv)</source>
        <translation>環境光アダプターの校正値ファイル(.csv)</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>接続</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>切断</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>Firmware Ver:</source>
        <translation>ファームウェアバージョン:</translation>
    </message>
    <message>
        <source>MAC Address:</source>
        <translation>MACアドレス:</translation>
    </message>
    <message>
        <source>Tool Ver.1.10.0008</source>
        <translation>ツール Ver.1.10.0008</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>開く</translation>
    </message>
    <message>
        <source>Failed to write WhiteCalibPlate file.</source>
        <translation>白色校正板の校正値ファイルが選択されていません。</translation>
    </message>
    <message>
        <source>Failed to write WhiteCalibPlate data.</source>
        <translation>白色校正板の校正値を測定器に書き込めませんでした。</translation>
    </message>
    <message>
        <source>Failed to write AmbientLightAdapter file.</source>
        <translation>環境光アダプターの校正値ファイルが選択されていません。</translation>
    </message>
    <message>
        <source>Failed to write AmbientLightAdapter data.</source>
        <translation>環境光アダプターの校正値を測定器に書き込めませんでした。</translation>
    </message>
    <message>
        <source>csv(*.csv)</source>
        <translation>csv(*.csv)</translation>
    </message>
    <message>
        <source>Successful read file data.</source>
        <translation>ファイルのデータを読み込みました。</translation>
    </message>
    <message>
        <source>Failed to read file data.</source>
        <translation>ファイルのデータを読み込めませんでした。</translation>
    </message>
    <message>
        <source>Successful device writing.</source>
        <translation>測定器への書き込みが完了しました。</translation>
    </message>
    <message>
        <source>Failed to connect device.</source>
        <translation>測定器に接続できませんでした。</translation>
    </message>
    <message>
        <source>Failed to read device data.</source>
        <translation>測定器の情報を読み込めませんでした。</translation>
    </message>
    <message>
        <source>Wireless LAN is invalid.</source>
        <translation>測定器に無線LANモジュールがありません。</translation>
    </message>
    <message>
        <source>Failed to device WhiteCalibPlateSerialNo.</source>
        <translation>測定器から白色校正板のシリアル番号を読み込めませんでした。</translation>
    </message>
    <message>
        <source>Failed to device AmbientLightAdapterSerialNo.</source>
        <translation>測定器から環境光アダプターのシリアル番号を読み込めませんでした。</translation>
    </message>
    <message>
        <source>Failed to read automatic shutdown time.</source>
        <translation>測定器のオートパワーオフ時間を読み込めませんでした。</translation>
    </message>
    <message>
        <source>The measuring instruments is not connected.</source>
        <translation>測定器が接続されていません。</translation>
    </message>
    <message>
        <source>Failed to device disconnect.</source>
        <translation>測定器との接続を切断できませんでした。</translation>
    </message>
    <message>
        <source>Failed to disconnect device.</source>
        <translation>終了時に測定器との接続を切断できませんでした。</translation>
    </message>
    <message>
        <source>The connection with the measuring instrument was disconnected.</source>
        <translation>測定器との接続が切断されました。</translation>
    </message>
    <message>
        <source>The input value is invalid.</source>
        <translation>入力値が正しくありません。</translation>
    </message>
    <message>
        <source>Failed to read Network Infomation data.</source>
        <translation>測定器のネットワーク設定を読み込めませんでした。</translation>
    </message>
    <message>
        <source>Successful read body data.</source>
        <translation>測定器のデータを読み込みました。</translation>
    </message>
    <message>
        <source>*(*.*)</source>
        <translation>*(*.*)</translation>
    </message>
    <message>
        <source>Failed to read Network Infomation file data.</source>
        <translation>ネットワーク設定ファイルを読み込めませんでした。</translation>
    </message>
    <message>
        <source>ini(*.ini)</source>
        <translation>ini(*.ini)</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Successful file writing.</source>
        <translation>ファイルへの書き込みが完了しました。</translation>
    </message>
    <message>
        <source>Failed to write Network Infomation file data.</source>
        <translation>ネットワーク設定をファイルに書き込めませんでした。</translation>
    </message>
    <message>
        <source>Write successful. To reflect, after [Disconnect], turn the power supply of the measuring instrument OFF -&gt; ON.</source>
        <translation>書き込みが完了しました。設定を反映するには、[切断]を押した後、測定器の電源を入れ直してください(OFF -&gt; ON)。</translation>
    </message>
    <message>
        <source>Failed to write Network Infomation data.</source>
        <translation>ネットワーク設定を測定器に書き込めませんでした。</translation>
    </message>
    <message>
        <source>Failed to write automatic shutdown time.</source>
        <translation>オートパワーオフ時間を測定器に書き込めませんでした。</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>The settings of the instrument</source>
        <translation>測定器の設定</translation>
    </message>
    <message>
        <source>Connects to an instrument and reads its settings</source>
        <translation>測定器に接続し、設定を読み込みます</translation>
    </message>
    <message>
        <source>Ends the connection with the instrument</source>
        <translation>測定器との接続を切断します</translation>
    </message>
    <message>
        <source>Ends the program</source>
        <translation>プログラムを終了します</translation>
    </message>
    <message>
        <source>Serial number of the instrument</source>
        <translation>測定器のシリアル番号</translation>
    </message>
    <message>
        <source>Firmware version of the instrument</source>
        <translation>測定器のファームウェアバージョン</translation>
    </message>
    <message>
        <source>MAC address of the instrument</source>
        <translation>測定器のMACアドレス</translation>
    </message>
    <message>
        <source>Wireless LAN: enable</source>
        <translation>無線LAN: 有効</translation>
    </message>
    <message>
        <source>The instrument connects to the access point</source>
        <translation>測定器がアクセスポイントに接続します</translation>
    </message>
    <message>
        <source>Wireless LAN: disable</source>
        <translation>無線LAN: 無効</translation>
    </message>
    <message>
        <source>The instrument does not connect to the access point</source>
        <translation>測定器はアクセスポイントに接続しません</translation>
    </message>
    <message>
        <source>SSID</source>
        <translation>SSID</translation>
    </message>
    <message>
        <source>Name of the access point, up to 32 bytes</source>
        <translation>アクセスポイントの名前、32バイトまで</translation>
    </message>
    <message>
        <source>Security Key</source>
        <translation>セキュリティキー</translation>
    </message>
    <message>
        <source>Key of the access point, up to 64 bytes; the first key pressed empties it</source>
        <translation>アクセスポイントのセキュリティキー、64バイトまで。最初に何かキーを押すと欄が空になります</translation>
    </message>
    <message>
        <source>DHCP: on</source>
        <translation>DHCP: オン</translation>
    </message>
    <message>
        <source>The instrument gets its addresses from the network</source>
        <translation>測定器がネットワークからアドレスを取得します</translation>
    </message>
    <message>
        <source>DHCP: off</source>
        <translation>DHCP: オフ</translation>
    </message>
    <message>
        <source>The instrument uses the addresses below; choosing this empties them</source>
        <translation>測定器は下のアドレスを使用します。選択するとアドレス欄が空になります</translation>
    </message>
    <message>
        <source>IP Address, octet %1</source>
        <translation>IPアドレス、第%1オクテット</translation>
    </message>
    <message>
        <source>Subnet Mask, octet %1</source>
        <translation>サブネットマスク、第%1オクテット</translation>
    </message>
    <message>
        <source>Default Gateway, octet %1</source>
        <translation>デフォルトゲートウェイ、第%1オクテット</translation>
    </message>
    <message>
        <source>DNS Server, octet %1</source>
        <translation>DNSサーバー、第%1オクテット</translation>
    </message>
    <message>
        <source>A number from 0 to 255</source>
        <translation>0から255までの数値</translation>
    </message>
    <message>
        <source>Loads network settings from a file into the fields</source>
        <translation>ファイルのネットワーク設定を入力欄に読み込みます</translation>
    </message>
    <message>
        <source>Saves the network settings in the fields to a file</source>
        <translation>入力欄のネットワーク設定をファイルに保存します</translation>
    </message>
    <message>
        <source>Reads the network settings of the instrument</source>
        <translation>測定器のネットワーク設定を読み込みます</translation>
    </message>
    <message>
        <source>Writes the network settings to the instrument</source>
        <translation>ネットワーク設定を測定器に書き込みます</translation>
    </message>
    <message>
        <source>The time after which the instrument switches itself off</source>
        <translation>測定器の電源が自動で切れるまでの時間</translation>
    </message>
    <message>
        <source>The instrument does not switch itself off</source>
        <translation>測定器の電源は自動では切れません</translation>
    </message>
    <message>
        <source>The instrument switches itself off after 15 minutes</source>
        <translation>15分間使用しないと、測定器の電源が自動で切れます</translation>
    </message>
    <message>
        <source>The instrument switches itself off after 30 minutes</source>
        <translation>30分間使用しないと、測定器の電源が自動で切れます</translation>
    </message>
    <message>
        <source>The instrument switches itself off after 60 minutes</source>
        <translation>60分間使用しないと、測定器の電源が自動で切れます</translation>
    </message>
    <message>
        <source>Reads the power-off time of the instrument</source>
        <translation>測定器のオートパワーオフ時間を読み込みます</translation>
    </message>
    <message>
        <source>Writes the power-off time to the instrument</source>
        <translation>オートパワーオフ時間を測定器に書き込みます</translation>
    </message>
    <message>
        <source>Serial number of the white calibration plate that the instrument holds</source>
        <translation>測定器に登録されている白色校正板のシリアル番号</translation>
    </message>
    <message>
        <source>Name of the chosen value file</source>
        <translation>選択した校正値ファイルの名前</translation>
    </message>
    <message>
        <source>Serial number in the chosen value file</source>
        <translation>選択した校正値ファイルのシリアル番号</translation>
    </message>
    <message>
        <source>Chooses the value file of a white calibration plate</source>
        <translation>白色校正板の校正値ファイルを選択します</translation>
    </message>
    <message>
        <source>Registers the white calibration plate of the chosen file in the instrument</source>
        <translation>選択したファイルの白色校正板を測定器に登録します</translation>
    </message>
    <message>
        <source>Serial number of the ambient light adapter that the instrument holds</source>
        <translation>測定器に登録されている環境光アダプターのシリアル番号</translation>
    </message>
    <message>
        <source>Chooses the value file of an ambient light adapter</source>
        <translation>環境光アダプターの校正値ファイルを選択します</translation>
    </message>
    <message>
        <source>Registers the ambient light adapter of the chosen file in the instrument</source>
        <translation>選択したファイルの環境光アダプターを測定器に登録します</translation>
    </message>
</context>
<context>
    <name>LangSelectDialog</name>
    <message>
        <source>Select Language</source>
        <translation>言語の選択</translation>
    </message>
    <message>
        <source>LanguageType</source>
        <translation>言語</translation>
    </message>
    <message>
        <source>English</source>
        <translation>English</translation>
    </message>
    <message>
        <source>Japanese</source>
        <translation>日本語</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>The windows are in Japanese</source>
        <translation>画面を日本語で表示します</translation>
    </message>
    <message>
        <source>The windows are in English</source>
        <translation>画面を英語で表示します</translation>
    </message>
    <message>
        <source>Goes on in the chosen language</source>
        <translation>選択した言語で続けます</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Spectrophotometer Configuration Tool VQ-TL4</source>
        <translation>分光測色計設定ツール VQ-TL4</translation>
    </message>
    <message>
        <source>Failed to set default language.</source>
        <translation>既定の言語を設定できませんでした。</translation>
    </message>
    <message>
        <source>Failed to set select(japanese) language.</source>
        <translation>選択した言語(日本語)を設定できませんでした。</translation>
    </message>
    <message>
        <source>Failed to set select(English) language.</source>
        <translation>選択した言語(英語)を設定できませんでした。</translation>
    </message>
    <message>
        <source>The measuring instruments is not connected.</source>
        <translation>測定器が接続されていません。</translation>
    </message>
</context>
</TS>
