<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>ConnectSelectDialog</name>
    <message>
        <source>Select Device</source>
        <translation>Select Device</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Instruments</source>
        <translation>Instruments</translation>
    </message>
    <message>
        <source>The instruments that can be connected</source>
        <translation>The instruments that can be connected</translation>
    </message>
    <message>
        <source>Connects to the chosen instrument</source>
        <translation>Connects to the chosen instrument</translation>
    </message>
</context>
<context>
    <name>InitSettingDialog</name>
    <message>
        <source>Spectrophotometer Configuration Tool VQ-TL4</source>
        <translation>Spectrophotometer Configuration Tool VQ-TL4</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>Network</translation>
    </message>
    <message>
        <source>Wireless LAN</source>
        <translation>Wireless LAN</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Enable</translation>
    </message>
    <message>
        <source>Disable</source>
        <translation>Disable</translation>
    </message>
    <message>
        <source>Access Point</source>
        <translation>Access Point</translation>
    </message>
    <message>
        <source>SSID:</source>
        <translation>SSID:</translation>
    </message>
    <message>
        <source>Security Key:</source>
        <translation>Security Key:</translation>
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
        <translation>IP Address:</translation>
    </message>
    <message>
        <source>.</source>
        <translation>.</translation>
    </message>
    <message>
        <source>Subnet Mask:</source>
        <translation>Subnet Mask:</translation>
    </message>
    <message>
        <source>Default Gateway:</source>
        <translation>Default Gateway:</translation>
    </message>
    <message>
        <source>DNS Server:</source>
        <translation>DNS Server:</translation>
    </message>
    <message>
        <source>File</source>
        <translation>File</translation>
    </message>
    <message>
        <source>Read From File...</source>
        <translation>Read From File...</translation>
    </message>
    <message>
        <source>Write To File...</source>
        <translation>Write To File...</translation>
    </message>
    <message>
        <source>Body</source>
        <translation>Body</translation>
    </message>
    <message>
        <source>Read From Body</source>
        <translation>Read From Body</translation>
    </message>
    <message>
        <source>Write To Body</source>
        <translation>Write To Body</translation>
    </message>
    <message>
        <source>Auto Power Off</source>
        <translation>Auto Power Off</translation>
    </message>
    <message>
        <source>Configure auto power off time</source>
        <translation>Configure auto power off time</translation>
    </message>
    <message>
        <source>Disabled</source>
        <translation>Disabled</translation>
    </message>
    <message>
        <source>15minutes</source>
        <translation>15minutes</translation>
    </message>
    <message>
        <source>30minutes</source>
        <translation>30minutes</translation>
    </message>
    <message>
        <source>60minutes</source>
        <translation>60minutes</translation>
    </message>
    <message>
        <source>White calibration plate</source>
        <translation>White calibration plate</translation>
    </message>
    <message>
        <source>Current Serial No:</source>
        <translation>Current Serial No:</translation>
    </message>
    <message>
        <source>Select White Calibration Plate To Register</source>
        <translation>Select White Calibration Plate To Register</translation>
    </message>
    <message>
        <source>White Calibration Plate Values File(.csv)</source>
        <translation>White Calibration Plate Values File(.csv)</translation>
    </message>
    <message>
        <source>Serial No:</source>
        <translation>Serial No:</translation>
    </message>
    <message>
        <source>Ambient light adapter</source>
        <translation>Ambient light adapter</translation>
    </message>
    <message>
        <source>Select Ambient Light Adapter To Register</source>
        <translation>Select Ambient Light Adapter To Register</translation>
    </message>
    <message>
        <source>Ambient Light Adapter Value File(.csv)</source>
        <translation>Ambient Light Adapter Value File(.csv)</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Connect</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Disconnect</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Firmware Ver:</source>
        <translation>Firmware Ver:</translation>
    </message>
    <message>
        <source>MAC Address:</source>
        <translation>MAC Address:</translation>
    </message>
    <message>
        <source>Tool Ver.1.10.0008</source>
        <translation>Tool Ver.1.10.0008</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>Failed to write WhiteCalibPlate file.</source>
        <translation>Failed to write WhiteCalibPlate file.</translation>
    </message>
    <message>
        <source>Failed to write WhiteCalibPlate data.</source>
        <translation>Failed to write WhiteCalibPlate data.</translation>
    </message>
    <message>
        <source>Failed to write AmbientLightAdapter file.</source>
        <translation>Failed to write AmbientLightAdapter file.</translation>
    </message>
    <message>
        <source>Failed to write AmbientLightAdapter data.</source>
        <translation>Failed to write AmbientLightAdapter data.</translation>
    </message>
    <message>
        <source>csv(*.csv)</source>
        <translation>csv(*.csv)</translation>
    </message>
    <message>
        <source>Successful read file data.</source>
        <translation>Successful read file data.</translation>
    </message>
    <message>
        <source>Failed to read file data.</source>
        <translation>Failed to read file data.</translation>
    </message>
    <message>
        <source>Successful device writing.</source>
        <translation>Successful device writing.</translation>
    </message>
    <message>
        <source>Failed to connect device.</source>
        <translation>Failed to connect device.</translation>
    </message>
    <message>
        <source>Failed to read device data.</source>
        <translation>Failed to read device data.</translation>
    </message>
    <message>
        <source>Wireless LAN is invalid.</source>
        <translation>Wireless LAN is invalid.</translation>
    </message>
    <message>
        <source>Failed to device WhiteCalibPlateSerialNo.</source>
        <translation>Failed to device WhiteCalibPlateSerialNo.</translation>
    </message>
    <message>
        <source>Failed to device AmbientLightAdapterSerialNo.</source>
        <translation>Failed to device AmbientLightAdapterSerialNo.</translation>
    </message>
    <message>
        <source>Failed to read automatic shutdown time.</source>
        <translation>Failed to read automatic shutdown time.</translation>
    </message>
    <message>
        <source>The measuring instruments is not connected.</source>
        <translation>The measuring instruments is not connected.</translation>
    </message>
    <message>
        <source>Failed to device disconnect.</source>
        <translation>Failed to device disconnect.</translation>
    </message>
    <message>
        <source>Failed to disconnect device.</source>
        <translation>Failed to disconnect device.</translation>
    </message>
    <message>
        <source>The connection with the measuring instrument was disconnected.</source>
        <translation>The connection with the measuring instrument was disconnected.</translation>
    </message>
    <message>
        <source>The input value is invalid.</source>
        <translation>The input value is invalid.</translation>
    </message>
    <message>
        <source>Failed to read Network Infomation data.</source>
        <translation>Failed to read Network Infomation data.</translation>
    </message>
    <message>
        <source>Successful read body data.</source>
        <translation>Successful read body data.</translation>
    </message>
    <message>
        <source>*(*.*)</source>
        <translation>*(*.*)</translation>
    </message>
    <message>
        <source>Failed to read Network Infomation file data.</source>
        <translation>Failed to read Network Infomation file data.</translation>
    </message>
    <message>
        <source>ini(*.ini)</source>
        <translation>ini(*.ini)</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>Successful file writing.</source>
        <translation>Successful file writing.</translation>
    </message>
    <message>
        <source>Failed to write Network Infomation file data.</source>
        <translation>Failed to write Network Infomation file data.</translation>
    </message>
    <message>
        <source>Write successful. To reflect, after [Disconnect], turn the power supply of the measuring instrument OFF -&gt; ON.</source>
        <translation>Write successful. To reflect, after [Disconnect], turn the power supply of the measuring instrument OFF -&gt; ON.</translation>
    </message>
    <message>
        <source>Failed to write Network Infomation data.</source>
        <translation>Failed to write Network Infomation data.</translation>
    </message>
    <message>
        <source>Failed to write automatic shutdown time.</source>
        <translation>Failed to write automatic shutdown time.</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>The settings of the instrument</source>
        <translation>The settings of the instrument</translation>
    </message>
    <message>
        <source>Connects to an instrument and reads its settings</source>
        <translation>Connects to an instrument and reads its settings</translation>
    </message>
    <message>
        <source>Ends the connection with the instrument</source>
        <translation>Ends the connection with the instrument</translation>
    </message>
    <message>
        <source>Ends the program</source>
        <translation>Ends the program</translation>
    </message>
    <message>
        <source>Serial number of the instrument</source>
        <translation>Serial number of the instrument</translation>
    </message>
    <message>
        <source>Firmware version of the instrument</source>
        <translation>Firmware version of the instrument</translation>
    </message>
    <message>
        <source>MAC address of the instrument</source>
        <translation>MAC address of the instrument</translation>
    </message>
    <message>
        <source>Wireless LAN: enable</source>
        <translation>Wireless LAN: enable</translation>
    </message>
    <message>
        <source>The instrument connects to the access point</source>
        <translation>The instrument connects to the access point</translation>
    </message>
    <message>
        <source>Wireless LAN: disable</source>
        <translation>Wireless LAN: disable</translation>
    </message>
    <message>
        <source>The instrument does not connect to the access point</source>
        <translation>The instrument does not connect to the access point</translation>
    </message>
    <message>
        <source>SSID</source>
        <translation>SSID</translation>
    </message>
    <message>
        <source>Name of the access point, up to 32 bytes</source>
        <translation>Name of the access point, up to 32 bytes</translation>
    </message>
    <message>
        <source>Security Key</source>
        <translation>Security Key</translation>
    </message>
    <message>
        <source>Key of the access point, up to 64 bytes; the first key pressed empties it</source>
        <translation>Key of the access point, up to 64 bytes; the first key pressed empties it</translation>
    </message>
    <message>
        <source>DHCP: on</source>
        <translation>DHCP: on</translation>
    </message>
    <message>
        <source>The instrument gets its addresses from the network</source>
        <translation>The instrument gets its addresses from the network</translation>
    </message>
    <message>
        <source>DHCP: off</source>
        <translation>DHCP: off</translation>
    </message>
    <message>
        <source>The instrument uses the addresses below; choosing this empties them</source>
        <translation>The instrument uses the addresses below; choosing this empties them</translation>
    </message>
    <message>
        <source>IP Address, octet %1</source>
        <translation>IP Address, octet %1</translation>
    </message>
    <message>
        <source>Subnet Mask, octet %1</source>
        <translation>Subnet Mask, octet %1</translation>
    </message>
    <message>
        <source>Default Gateway, octet %1</source>
        <translation>Default Gateway, octet %1</translation>
    </message>
    <message>
        <source>DNS Server, octet %1</source>
        <translation>DNS Server, octet %1</translation>
    </message>
    <message>
        <source>A number from 0 to 255</source>
        <translation>A number from 0 to 255</translation>
    </message>
    <message>
        <source>Loads network settings from a file into the fields</source>
        <translation>Loads network settings from a file into the fields</translation>
    </message>
    <message>
        <source>Saves the network settings in the fields to a file</source>
        <translation>Saves the network settings in the fields to a file</translation>
    </message>
    <message>
        <source>Reads the network settings of the instrument</source>
        <translation>Reads the network settings of the instrument</translation>
    </message>
    <message>
        <source>Writes the network settings to the instrument</source>
        <translation>Writes the network settings to the instrument</translation>
    </message>
    <message>
        <source>The time after which the instrument switches itself off</source>
        <translation>The time after which the instrument switches itself off</translation>
    </message>
    <message>
        <source>The instrument does not switch itself off</source>
        <translation>The instrument does not switch itself off</translation>
    </message>
    <message>
        <source>The instrument switches itself off after 15 minutes</source>
        <translation>The instrument switches itself off after 15 minutes</translation>
    </message>
    <message>
        <source>The instrument switches itself off after 30 minutes</source>
        <translation>The instrument switches itself off after 30 minutes</translation>
    </message>
    <message>
        <source>The instrument switches itself off after 60 minutes</source>
        <translation>The instrument switches itself off after 60 minutes</translation>
    </message>
    <message>
        <source>Reads the power-off time of the instrument</source>
        <translation>Reads the power-off time of the instrument</translation>
    </message>
    <message>
        <source>Writes the power-off time to the instrument</source>
        <translation>Writes the power-off time to the instrument</translation>
    </message>
    <message>
        <source>Serial number of the white calibration plate that the instrument holds</source>
        <translation>Serial number of the white calibration plate that the instrument holds</translation>
    </message>
    <message>
        <source>Name of the chosen value file</source>
        <translation>Name of the chosen value file</translation>
    </message>
    <message>
        <source>Serial number in the chosen value file</source>
        <translation>Serial number in the chosen value file</translation>
    </message>
    <message>
        <source>Chooses the value file of a white calibration plate</source>
        <translation>Chooses the value file of a white calibration plate</translation>
    </message>
    <message>
        <source>Registers the white calibration plate of the chosen file in the instrument</source>
        <translation>Registers the white calibration plate of the chosen file in the instrument</translation>
    </message>
    <message>
        <source>Serial number of the ambient light adapter that the instrument holds</source>
        <translation>Serial number of the ambient light adapter that the instrument holds</translation>
    </message>
    <message>
        <source>Chooses the value file of an ambient light adapter</source>
        <translation>Chooses the value file of an ambient light adapter</translation>
    </message>
    <message>
        <source>Registers the ambient light adapter of the chosen file in the instrument</source>
        <translation>Registers the ambient light adapter of the chosen file in the instrument</translation>
    </message>
</context>
<context>
    <name>LangSelectDialog</name>
    <message>
        <source>Select Language</source>
        <translation>Select Language</translation>
    </message>
    <message>
        <source>LanguageType</source>
        <translation>LanguageType</translation>
    </message>
    <message>
        <source>English</source>
        <translation>English</translation>
    </message>
    <message>
        <source>Japanese</source>
        <translation>Japanese</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>The windows are in Japanese</source>
        <translation>The windows are in Japanese</translation>
    </message>
    <message>
        <source>The windows are in English</source>
        <translation>The windows are in English</translation>
    </message>
    <message>
        <source>Goes on in the chosen language</source>
        <translation>Goes on in the chosen language</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Spectrophotometer Configuration Tool VQ-TL4</source>
        <translation>Spectrophotometer Configuration Tool VQ-TL4</translation>
    </message>
    <message>
        <source>Failed to set default language.</source>
        <translation>Failed to set default language.</translation>
    </message>
    <message>
        <source>Failed to set select(japanese) language.</source>
        <translation>Failed to set select(japanese) language.</translation>
    </message>
    <message>
        <source>Failed to set select(English) language.</source>
        <translation>Failed to set select(English) language.</translation>
    </message>
    <message>
        <source>The measuring instruments is not connected.</source>
        <translation>The measuring instruments is not connected.</translation>
    </message>
</context>
</TS>
