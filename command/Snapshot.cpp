#include "command/Snapshot.h"

#include "command/AccessoryTexts.h"
#include "command/DurableFile.h"
#include "command/FieldTexts.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstring>

namespace {

constexpr int currentVersion = 1;
const QLatin1String formatName("vq-tl4ctl snapshot");

const QLatin1String formatKey("format");
const QLatin1String versionKey("version");
const QLatin1String createdKey("created");
const QLatin1String recordsKey("records");
const QLatin1String hashKey("sha256");
const QLatin1String hasKeyKey("hasSecurityKey");

QJsonObject readableAccessory(const CalibrationAccessory& accessory,
                              const KVA_JIG_CALREFDATA& record) {
    QJsonArray values;
    for (std::size_t i = 0; i < accessory.valueCount; ++i)
        values.append(FieldTexts::jsonValue(accessory.values(record)[i]));
    QJsonObject object;
    object[QStringLiteral("serialNumber")] =
        FieldTexts::accessorySerial(record.*accessory.serialNo);
    object[QStringLiteral("values")] = values;
    return object;
}

QJsonValue readableNetwork(const std::optional<KVA_NETWORKINFO>& network, bool showKey) {
    if (!network)
        return QJsonValue::Null;
    QJsonObject object;
    object[QStringLiteral("wireless")] = FieldTexts::onOff(network->APConnectUse);
    object[QStringLiteral("dhcp")] = FieldTexts::onOff(network->DHCPUse);
    object[QStringLiteral("ipAddress")] = FieldTexts::address(network->IPAddress);
    object[QStringLiteral("subnetMask")] = FieldTexts::address(network->SubnetMask);
    object[QStringLiteral("defaultGateway")] = FieldTexts::address(network->DefaultGateway);
    object[QStringLiteral("dns")] = FieldTexts::address(network->DNS);
    object[QStringLiteral("ssid")] = FieldTexts::text(network->SSID, sizeof network->SSID);
    object[QStringLiteral("key")] = maskedKey(*network);
    if (showKey)
        object[QStringLiteral("key")] =
            FieldTexts::text(network->EncryptKey, sizeof network->EncryptKey);
    return object;
}

template <typename Record>
QString recordText(const Record& record) {
    return FieldTexts::hex(&record, sizeof record);
}

/** False if the text does not have exactly the bytes of the record. */
template <typename Record>
bool readRecord(const QJsonValue& text, Record& record) {
    const QByteArray bytes = QByteArray::fromHex(text.toString().toLatin1());
    if (bytes.size() != static_cast<int>(sizeof record))
        return false;
    std::memcpy(&record, bytes.constData(), sizeof record);
    return true;
}

QByteArray hashOf(QJsonObject content) {
    content.remove(hashKey);
    const QByteArray canonical = QJsonDocument(content).toJson(QJsonDocument::Compact);
    return QCryptographicHash::hash(canonical, QCryptographicHash::Sha256).toHex();
}

QJsonObject contentOf(const Snapshot& snapshot) {
    const InstrumentState& state = snapshot.state;
    QJsonObject content = readableState(state, snapshot.hasKey);
    content[formatKey] = formatName;
    content[versionKey] = currentVersion;
    content[createdKey] = snapshot.created.toString(Qt::ISODate);
    content[hasKeyKey] = snapshot.hasKey;
    QJsonObject records;
    records[QStringLiteral("device")] = recordText(state.device);
    records[QStringLiteral("wirelessModule")] = state.wirelessModule;
    records[QStringLiteral("powerOffMode")] = state.powerOffMode;
    records[QStringLiteral("calibration")] = recordText(state.calibration);
    if (state.network)
        records[QStringLiteral("network")] = recordText(*state.network);
    content[recordsKey] = records;
    content[hashKey] = QString::fromLatin1(hashOf(content));
    return content;
}

/** Nothing if a record is missing or incomplete. */
std::optional<Snapshot> snapshotFrom(const QJsonObject& content) {
    Snapshot snapshot;
    snapshot.created = QDateTime::fromString(content[createdKey].toString(), Qt::ISODate).toUTC();
    snapshot.hasKey = content[hasKeyKey].toBool();
    const QJsonObject records = content[recordsKey].toObject();
    InstrumentState& state = snapshot.state;
    state.wirelessModule =
        static_cast<std::uint8_t>(records[QStringLiteral("wirelessModule")].toInt() & 0xFF);
    state.powerOffMode =
        static_cast<std::uint8_t>(records[QStringLiteral("powerOffMode")].toInt() & 0xFF);
    const QJsonValue network = records[QStringLiteral("network")];
    const bool isNetworkRead =
        network.isUndefined() || readRecord(network, state.network.emplace());
    if (!isNetworkRead || !readRecord(records[QStringLiteral("device")], state.device) ||
        !readRecord(records[QStringLiteral("calibration")], state.calibration))
        return std::nullopt;
    return snapshot;
}

Text notJson(const QJsonParseError& error) {
    return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "This is not a snapshot: it is not JSON (%1)."),
                {error.errorString()});
}

/** Why the content cannot be used as a snapshot; empty if it can. */
Text problemOf(const QJsonObject& content) {
    if (content[formatKey].toString() != formatName)
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "This is not a snapshot of an instrument."));
    if (content[versionKey].toInt() > currentVersion)
        return Text(
            QT_TRANSLATE_NOOP("vq-tl4ctl", "The snapshot has version %1, and this program knows "
                                           "versions up to %2: it was made by a newer one."),
            {QString::number(content[versionKey].toInt()), QString::number(currentVersion)});
    if (content[hashKey].toString().toLatin1() != hashOf(content))
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                      "The snapshot is damaged or was edited: its content does "
                                      "not match its SHA-256."));
    return {};
}

} // namespace

QString maskedKey(const KVA_NETWORKINFO& info) {
    if (info.EncryptKey[0] == '\0')
        return {};
    return QStringLiteral("********");
}

QJsonObject readableState(const InstrumentState& state, bool showKey) {
    const KVA_DEVICEINFO& device = state.device;
    QJsonObject object;
    object[QStringLiteral("serialNumber")] =
        serialText(static_cast<std::int32_t>(device.serialNumber));
    object[QStringLiteral("firmware")] = FieldTexts::firmware(device);
    object[QStringLiteral("macAddress")] = FieldTexts::macAddress(device);
    object[QStringLiteral("wirelessModule")] = state.wirelessModule != 0;
    object[QStringLiteral("network")] = readableNetwork(state.network, showKey);
    object[QStringLiteral("powerOff")] = FieldTexts::powerOff(state.powerOffMode);
    for (const AccessoryTexts& texts : AccessoryTexts::all)
        object[QLatin1String(texts.field)] = readableAccessory(texts.accessory, state.calibration);
    return object;
}

Snapshot Snapshot::of(const InstrumentState& state) {
    // In whole seconds, as in the file.
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    return {QDateTime::fromSecsSinceEpoch(now, Qt::UTC), state, true};
}

void Snapshot::removeKey() {
    hasKey = false;
    if (state.network)
        std::memset(state.network->EncryptKey, 0, sizeof state.network->EncryptKey);
}

QByteArray Snapshot::toJson() const {
    return QJsonDocument(contentOf(*this)).toJson(QJsonDocument::Indented);
}

std::optional<Snapshot> Snapshot::check(const InputFile& file, Faults& faults) {
    QJsonParseError error = {};
    const QJsonObject content = QJsonDocument::fromJson(file.content, &error).object();
    Text problem = error.error != QJsonParseError::NoError ? notJson(error) : problemOf(content);
    if (problem.isEmpty()) {
        std::optional<Snapshot> snapshot = snapshotFrom(content);
        // Written again it must be the same, so that the fields for people agree with the records.
        if (snapshot && contentOf(*snapshot) == content)
            return snapshot;
        problem = Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                         "The snapshot is damaged: its fields and its records do "
                                         "not say the same."));
    }
    faults.push_back({file.path, 0, 0, problem});
    return std::nullopt;
}

Text Snapshot::writeTo(const QString& folder, QString& path) const {
    const QString name = folder + QLatin1Char('/') +
                         serialText(static_cast<std::int32_t>(state.device.serialNumber)) +
                         QLatin1Char('-') +
                         created.toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    const QByteArray content = toJson();
    bool isTaken = true;
    for (int counter = 1; isTaken; ++counter) {
        path = name;
        if (counter > 1)
            path += QStringLiteral("-%1").arg(counter);
        path += QStringLiteral(".json");
        Text problem = DurableFile::create(path, content, isTaken);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}
