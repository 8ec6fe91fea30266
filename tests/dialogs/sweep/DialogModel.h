#ifndef TESTS_DIALOGS_SWEEP_DIALOGMODEL_H
#define TESTS_DIALOGS_SWEEP_DIALOGMODEL_H

#include "tests/dialogs/settings/SettingsFixture.h"
#include "tests/dialogs/sweep/LibraryModel.h"

#include <QMap>
#include <QSet>
#include <QStringList>

#include <cstring>

/** A value file that is accepted. */
struct ValueFile {
    QString path;
    QString baseName;
    QString serialNo;
    KVA_JIG_CALREFDATA record = {}; ///< the part of its accessory filled
};

/** The settings dialog's rules in small: what each of its buttons has to lead to. */
class DialogModel {
public:
    enum Accessory { WhitePlate, AmbientAdapter };

    DialogModel(LibraryModel& library, const QVector<ValueFile>& files)
        : m_library(library), m_files(files) {}

    /** Opens the dialog with no instrument chosen. */
    void open() {
        m_library.registerHandler(true);
        connectDevice(nullptr);
    }

    void end() { m_library.registerHandler(false); }

    // ---- What a user does
    void pressConnect() {
        KVA_PORTINFO port = {};
        const bool counted = m_library.countPorts().has_value();
        const int count = counted ? m_library.listPorts(port).value_or(0) : 0;
        if (count == 0)
            information("The measuring instruments is not connected.");
        connectDevice(count == 0 ? nullptr : &port);
    }

    void pressReadNetwork() {
        if (!readNetwork()) {
            error("Failed to read Network Infomation data.");
            return;
        }
        fillNetwork();
        information("Successful read body data.");
    }

    /** @param texts  SSID, key and the four addresses with dots */
    void typeNetwork(const QStringList& texts) { setTexts(network, texts); }

    void pressWriteNetwork() {
        std::uint8_t* const addresses[] = {m_network.IPAddress, m_network.SubnetMask,
                                           m_network.DefaultGateway, m_network.DNS};
        const bool isDhcp = m_checked.contains(groups[1][0]);
        for (int address = 0; address < 4; ++address) {
            const QStringList octets = m_texts[network + 2 + address].split('.');
            for (int octet = 0; octet < 4; ++octet)
                addresses[address][octet] =
                    isDhcp ? std::uint8_t(0) : static_cast<std::uint8_t>(octets[octet].toInt());
        }
        if (m_checked.contains(groups[0][0]) || m_checked.contains(groups[0][1]))
            m_network.APConnectUse = m_checked.contains(groups[0][0]) ? 1 : 0;
        if (isDhcp || m_checked.contains(groups[1][1]))
            m_network.DHCPUse = isDhcp ? 1 : 0;
        copyText(m_network.SSID, m_texts[network]);
        copyText(m_network.EncryptKey, m_texts[network + 1]);
        if (m_library.setNetwork(m_network))
            information(
                "Write successful. To reflect, after [Disconnect], turn the power supply of "
                "the measuring instrument OFF -> ON.");
        else
            error("Failed to write Network Infomation data.");
    }

    void pressReadPowerOff() {
        const std::optional<std::uint8_t> mode = m_library.powerOffMode();
        if (!mode) {
            error("Failed to read automatic shutdown time.");
            return;
        }
        fillPowerOff(*mode);
        information("Successful read body data.");
    }

    void choosePowerOff(int mode) { check(modeButtons[mode]); }

    void pressWritePowerOff() {
        for (int mode = 0; mode < modeButtons.size(); ++mode) {
            if (!m_checked.contains(modeButtons[mode]))
                continue;
            if (m_library.setPowerOffMode(static_cast<std::uint8_t>(mode)))
                information("Successful device writing.");
            else
                error("Failed to write automatic shutdown time.");
            return;
        }
        error("Failed to write automatic shutdown time.");
    }

    void chooseFile(Accessory accessory) {
        m_hasFile[accessory] = true;
        m_texts[calibration + 3 * accessory + 1] = m_files[accessory].baseName;
        m_texts[calibration + 3 * accessory + 2] = m_files[accessory].serialNo;
        setEnabled({registerButtons[accessory]}, true);
        information("Successful read file data.");
    }

    void pressRegister(Accessory accessory) {
        const bool isWhite = accessory == WhitePlate;
        if (!m_hasFile[accessory]) {
            error(isWhite ? "Failed to write WhiteCalibPlate file."
                          : "Failed to write AmbientLightAdapter file.");
        } else if (registerFile(accessory)) {
            information("Successful device writing.");
            const std::optional<KVA_JIG_CALREFDATA> record = m_library.calibration();
            m_texts[calibration + 3 * accessory] =
                !record ? QString()
                        : serialText(isWhite ? record->whiteSerialNo : record->ambAdpSerialNo);
        } else {
            error(isWhite ? "Failed to write WhiteCalibPlate data."
                          : "Failed to write AmbientLightAdapter data.");
        }
        setEnabled({registerButtons[accessory]}, true);
    }

    void pressDisconnect() {
        if (!m_isControllerConnected || !m_library.disconnect()) {
            error("Failed to device disconnect.");
            return;
        }
        m_isControllerConnected = false;
        reset();
    }

    /** One tick of the disconnect watch. */
    void tick() {
        if (!m_library.disconnectReported)
            return;
        m_library.disconnectReported = false;
        reset();
        error("The connection with the measuring instrument was disconnected.");
    }

    bool isWatching() const { return m_isConnected; }
    /** Whether a loss is still to be noticed by the watch. */
    bool isLossPending() const { return m_library.disconnectReported; }
    bool canPress(const QString& button) const {
        return !m_disabled.contains(button) && !m_disabled.contains(pages.value(button));
    }

    /** Everything to be seen, and the boxes since the last call. */
    QStringList takeView() {
        const QStringList boxes = m_boxes;
        m_boxes.clear();
        return view(boxes, m_disabled.values(), m_checked.values(), m_texts);
    }

    static QStringList view(QStringList boxes, QStringList disabled, QStringList checked,
                            const QStringList& texts) {
        disabled.sort();
        checked.sort();
        const QString bar = " | ";
        boxes.append("disabled: " + disabled.join(bar));
        boxes.append("checked: " + checked.join(bar));
        boxes.append("texts: " + texts.mid(0, noTexts.size()).join(bar));
        return boxes;
    }

private:
    static inline const QStringList tabs =
        words("networkSetTab autoPowerOfftab wCalibPlateTab ambLightAdpTab");
    static inline const QStringList registerButtons =
        words("setWCPValPushBtn setAmbAdpBodyPushBtn");
    static inline const QStringList modeButtons =
        words("invalidradioBtn fifteenRadioBtn thirtyRadioBtn sixtyRadioBtn");

    /** The radio buttons of which one at most is checked. */
    static inline const QVector<QStringList> groups = {
        {"enableRadioBtn", "disableRadioBtn"},
        {"dhcpOnRadioBtn", "dhcpOffRadioBtn"},
        modeButtons,
    };

    /** The page of each button that lies on one. */
    static inline const QMap<QString, QString> pages = {
        {"readBodyPushBtn", "networkSetTab"},
        {"writeBodyPushBtn", "networkSetTab"},
        {"getAutoPWOffPushBtn", "autoPowerOfftab"},
        {"setAutoPWOffPushBtn", "autoPowerOfftab"},
        {"selWCPFilePushBtn", "wCalibPlateTab"},
        {"setWCPValPushBtn", "wCalibPlateTab"},
        {"selAmbLightAdpFilePushBtn", "ambLightAdpTab"},
        {"setAmbAdpBodyPushBtn", "ambLightAdpTab"},
    };

    /** Identity, network and calibration texts, as the fixture's `texts` begin. */
    static inline const QStringList noTexts = SettingsFixture::noTexts.mid(0, 15);
    static constexpr int network = 3; ///< the first of those
    static constexpr int calibration = 9;

    static QString octetsText(const std::uint8_t (&octets)[4]) {
        return QString("%1.%2.%3.%4").arg(octets[0]).arg(octets[1]).arg(octets[2]).arg(octets[3]);
    }

    static QString serialText(const std::uint8_t (&digits)[4]) {
        unsigned int value = 0;
        for (const std::uint8_t byte : digits)
            value = value * 100 + (byte >> 4U) * 10U + (byte & 0xFU);
        return QString::number(value).rightJustified(8, '0');
    }

    template <std::size_t Size>
    static void copyText(char (&field)[Size], const QString& text) {
        const QByteArray bytes = text.toLocal8Bit().left(static_cast<int>(Size) - 1);
        std::memset(field, 0, Size);
        std::memcpy(field, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }

    void error(const QString& text) { m_boxes.append("error: " + text); }

    void information(const QString& text) { m_boxes.append("information: " + text); }

    void connectDevice(const KVA_PORTINFO* port) {
        if (port == nullptr) {
            setEnabled(tabs + QStringList{"disConnectPushBtn"}, false);
        } else if (!m_library.connect(*port)) {
            error("Failed to connect device.");
        } else {
            m_isControllerConnected = true;
            setEnabled(tabs, true);
            fill();
            setEnabled({"ConnectPushBtn", "ClosePushBtn"}, false);
            setEnabled({"disConnectPushBtn"}, true);
            m_isConnected = true;
        }
        setEnabled(registerButtons, false);
    }

    void fill() {
        const std::optional<KVA_DEVICEINFO> device = m_library.deviceInfo();
        if (!device) {
            setTexts(0, noTexts.mid(0, network));
            error("Failed to read device data.");
            return;
        }
        m_texts[0] = QString::asprintf("%08d", static_cast<int>(device->serialNumber));
        m_texts[1] = QString::asprintf("%u.%02d.%04d", device->firmVersionMajor,
                                       device->firmVersionMinor, device->firmVersionBuild);
        const QByteArray mac(reinterpret_cast<const char*>(device->macAddress), 6);
        m_texts[2] = QString::fromLatin1(mac.toHex(':').toUpper());

        const std::optional<KVA_JIG_ACTIONOPTIONFACTORYDATA> options = m_library.options();
        if (!options || options->wifiModuleEnable == 0) {
            setEnabled({tabs[0]}, false);
            information("Wireless LAN is invalid.");
        } else if (readNetwork()) {
            fillNetwork();
        }

        const std::optional<KVA_JIG_CALREFDATA> record = m_library.calibration();
        m_texts[calibration] = record ? serialText(record->whiteSerialNo) : QString();
        m_texts[calibration + 3] = record ? serialText(record->ambAdpSerialNo) : QString();
        if (!record) {
            error("Failed to device WhiteCalibPlateSerialNo.");
            error("Failed to device AmbientLightAdapterSerialNo.");
        }

        const std::optional<std::uint8_t> mode = m_library.powerOffMode();
        if (mode)
            fillPowerOff(*mode);
        else
            error("Failed to read automatic shutdown time.");
    }

    void fillNetwork() {
        check(groups[0][m_network.APConnectUse != 0 ? 0 : 1]);
        check(groups[1][m_network.DHCPUse != 0 ? 0 : 1]);
        setTexts(network,
                 {QString::fromUtf8(m_network.SSID), QString::fromUtf8(m_network.EncryptKey),
                  octetsText(m_network.IPAddress), octetsText(m_network.SubnetMask),
                  octetsText(m_network.DefaultGateway), octetsText(m_network.DNS)});
    }

    void fillPowerOff(std::uint8_t mode) {
        if (mode < modeButtons.size())
            check(modeButtons[mode]);
    }

    bool readNetwork() {
        const std::optional<KVA_NETWORKINFO> read = m_library.network();
        m_network = read.value_or(KVA_NETWORKINFO{});
        return read.has_value();
    }

    void reset() {
        setEnabled({"ConnectPushBtn", "ClosePushBtn"}, true);
        setEnabled(tabs + QStringList{"disConnectPushBtn"}, false);
        m_texts = noTexts;
        m_hasFile[WhitePlate] = m_hasFile[AmbientAdapter] = false;
        m_checked.clear();
        m_isConnected = false;
    }

    bool registerFile(Accessory accessory) {
        std::optional<KVA_JIG_CALREFDATA> record = m_library.calibration();
        if (!record)
            return false;
        const KVA_JIG_CALREFDATA& file = m_files[accessory].record;
        if (accessory == WhitePlate) {
            std::memcpy(record->whiteSerialNo, file.whiteSerialNo, sizeof file.whiteSerialNo);
            record->rfWhite = file.rfWhite;
        } else {
            std::memcpy(record->ambAdpSerialNo, file.ambAdpSerialNo, sizeof file.ambAdpSerialNo);
            record->ambAdp = file.ambAdp;
        }
        if (!m_library.setCalibration(*record) || !m_library.writeSector())
            return false;
        const std::optional<KVA_JIG_CALREFDATA> readBack = m_library.calibration();
        return readBack && std::memcmp(&*readBack, &*record, sizeof *record) == 0;
    }

    void setTexts(int first, const QStringList& texts) {
        for (int i = 0; i < texts.size(); ++i)
            m_texts[first + i] = texts[i];
    }

    void setEnabled(const QStringList& names, bool enabled) {
        for (const QString& name : names) {
            if (enabled)
                m_disabled.remove(name);
            else
                m_disabled.insert(name);
        }
    }

    void check(const QString& button) {
        for (const QStringList& group : groups) {
            if (!group.contains(button))
                continue;
            for (const QString& other : group)
                m_checked.remove(other);
        }
        m_checked.insert(button);
    }

    LibraryModel& m_library;
    QVector<ValueFile> m_files;
    bool m_isConnected = false;
    bool m_isControllerConnected = false;
    KVA_NETWORKINFO m_network = {}; ///< the working copy
    QStringList m_boxes;
    QSet<QString> m_disabled;
    QSet<QString> m_checked;
    QStringList m_texts = noTexts;
    bool m_hasFile[2] = {};
};

#endif
