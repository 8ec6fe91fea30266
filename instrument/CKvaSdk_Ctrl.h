#ifndef INSTRUMENT_CKVASDK_CTRL_H
#define INSTRUMENT_CKVASDK_CTRL_H

#include "instrument/KvaSdk.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <vector>

struct CalibrationAccessory;

/** Set by a disconnect event, cleared by a standby event and by whoever acts on it. Global because
    the library's handler is a plain function without a context. Any thread. */
extern std::atomic<bool> g_deviceDisconnected;

/** The name of a result code; of a positive one the names of its warning bits joined by "/". Empty
    for a value without a name. */
QString ResultCodeToString(KVA_RESULT code);

/** The handler given to libKVASDK, called on a thread of its own. Logs the event and sets or clears
    `g_deviceDisconnected`; does nothing else. */
void DeviceEventHandler(uint32_t code, uint32_t rawDataCount, int32_t error);

/**
 * The tool's single gateway to the instrument: owns the connection to one of them, keeps the
 * records exchanged with it, and turns them into the texts that the dialogs show.
 *
 * Operations return false on failure; most failures write a debug line. They show nothing, and
 * throw only for lack of memory. Positive results of the library are warnings and count as success.
 * Operations that call the library keep its last result in `m_lastResult`, except
 * `IsWifiModuleEnabled`.
 *
 * All operations belong to the user-interface thread and block until the instrument has answered.
 * Paths and texts passed as `const char*` are in the local 8-bit encoding and owned by the caller.
 */
class CKvaSdk_Ctrl {
public:
    /** The most instruments that are listed. */
    static constexpr int maxPorts = 100;

    /** Registers `DeviceEventHandler`. */
    CKvaSdk_Ctrl();
    /** Unregisters the handler; does not disconnect. */
    ~CKvaSdk_Ctrl();
    CKvaSdk_Ctrl(const CKvaSdk_Ctrl&) = delete;
    CKvaSdk_Ctrl& operator=(const CKvaSdk_Ctrl&) = delete;

    // ---- Connection

    /** Rebuilds the list of attached instruments; a failure leaves it empty. */
    bool GetDevicePortList();

    /** Opens the connection to entry @p portIndex of the list. False without a call to the library
        when there is no such entry. @param wait passed on; every caller passes 10 */
    bool Connect(int32_t portIndex, uint32_t wait);

    /** Closes the connection; false without a call to the library when there is none. */
    bool Disconnect();

    /** Reads the identity texts; a failure leaves them empty. */
    bool GetDeviceInfo();

    // ---- Network settings

    /** Reads the settings of the instrument into `m_networkInfo` and its texts; a failure leaves
        the texts empty. */
    bool GetNetworkInfo();

    /** Sends `m_networkInfo` to the instrument. */
    bool SetNetworkInfo();

    /** Reads the settings from a file; beyond what the file itself must satisfy, both switches must
        be 0 or 1. A failure leaves the texts empty. */
    bool ReadNetworkInfoFile(const char* path);

    /** Writes `m_networkInfo` to a file. */
    bool WriteNetworkInfoFile(const char* path);

    void SetIPAddress(const uint8_t octets[4]);
    void SetSubnetMask(const uint8_t octets[4]);
    void SetDefaultGateway(const uint8_t octets[4]);
    void SetDNS(const uint8_t octets[4]);

    /** Stores up to 32 bytes of a NUL-terminated text; the rest is cut off. Null is an empty text.
     */
    void SetSSID(const char* bytes);
    /** The same with up to 64 bytes. */
    void SetEncryptKey(const char* bytes);

    /** Whether the instrument has a wireless module; false also when the query fails. */
    bool IsWifiModuleEnabled();

    // ---- Calibration reference values

    /** Reads the serial numbers of the accessories that the instrument holds; a failure leaves the
        texts empty. */
    bool GetCalRefSerialNo();

    /** Checks a value file and keeps its serial number's text. The text is cleared by an invalid
        serial number and kept when the file cannot be read. */
    bool ReadWCPFile(const char* path);
    bool ReadAmbAdpFile(const char* path);

    /** Registers the values of a file: fetches the whole record, replaces the part that the file
        carries, sends and commits it, reads it back and compares every byte. After a failure the
        old values are not restored. */
    bool WriteWCPData(const char* path);
    bool WriteAmbAdpData(const char* path);

    // ---- Automatic power-off

    /** Reads the mode (`eShutdownTime_…`) into the caller's byte. After a failure the byte is what
        the library left in it. */
    bool GetShutdownTime(uint8_t& mode);

    /** Writes the mode; its range is not checked. */
    bool SetShutdownTime(uint8_t mode);

    // ---- State, read by the dialogs

    int32_t m_portCount = 0;                ///< as stored last by the library
    int32_t m_deviceCount = 0;              ///< entries listed by the last enumeration
    KVA_PORTINFO m_portList[maxPorts] = {}; ///< what the library fills
    std::vector<KVA_PORTINFO> m_ports;      ///< listed entries, byte for byte, in its order
    bool m_connected = false;     ///< from a successful `Connect` to a successful `Disconnect`
    QStringList m_deviceNameList; ///< a text for each entry of m_ports
    KVA_RESULT m_lastResult = KVA_SUCCESS;
    QString m_serialNo;
    QString m_firmVersion;
    QString m_macAddress;
    KVA_DEVICEINFO m_deviceInfo = {};

    /** The working copy: every read overwrites all of it, every write sends it unchanged. The
        dialog sets its two switches directly. */
    KVA_NETWORKINFO m_networkInfo = {};

    // Texts of m_networkInfo as of the last successful read; address lists have four entries then.
    bool m_apConnectUse = false;
    bool m_dhcpUse = false;
    QString m_ssid;
    QString m_encryptKey;
    QStringList m_ipAddress;
    QStringList m_subnetMask;
    QStringList m_defaultGateway;
    QStringList m_dns;

    // Serial numbers of the accessories: empty, or eight digits; nine where their bytes are not
    // binary-coded decimal.
    QString m_curWCPSerialNo;     ///< held by the instrument
    QString m_curAmbAdpSerialNo;  ///< held by the instrument
    QString m_fileWCPSerialNo;    ///< of the value file checked last
    QString m_fileAmbAdpSerialNo; ///< of the value file checked last

private:
    void clearNetworkInfo();
    void rebuildNetworkTexts();
    bool checkValueFile(const CalibrationAccessory& accessory, const char* path,
                        QString& fileSerialNo);
    bool registerValueFile(const CalibrationAccessory& accessory, const char* path);
};

#endif
