#include "tests/support/TestBench.h"

#include "instrument/CKvaSdk_Ctrl.h"
#include "simulator/KvaSim.h"
#include "tests/support/GiveUp.h"

#include <QJsonDocument>

namespace {

constexpr char instrumentJson[] = R"({
    "serialNumber": 1234567,
    "device": {"firmware": [1, 2, 3], "macAddress": "02:0a:bc:0d:ef:09"},
    "wirelessModule": true,
    "network": {"active": {"APConnectUse": 1, "DHCPUse": 0, "IPAddress": "192.168.0.10",
                           "SubnetMask": "255.255.255.0", "DefaultGateway": "192.168.0.1",
                           "DNS": "8.8.4.0", "SSID": "press-hall", "EncryptKey": "spectral-key"}},
    "powerOffMode": 2,
    "calibration": {"committed": {"white": {"serialNumber": "12345678"},
                                  "ambientAdapter": {"serialNumber": "00012345"},
                                  "reserved": {"seed": 7}}}
})";

void require(bool done) {
    if (!done)
        giveUp(QString("the simulated library refuses: ") + KvaSim_LastError());
}

QByteArray text(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonDocument taken(char* json) {
    QJsonDocument document = QJsonDocument::fromJson(json);
    KvaSim_Free(json);
    return document;
}

} // namespace

QJsonObject TestBench::instrument(int serial) {
    QJsonObject object = QJsonDocument::fromJson(instrumentJson).object();
    object["serialNumber"] = serial;
    return object;
}

void TestBench::load(const QJsonArray& instruments) {
    require(KvaSim_LoadJson(text({{"version", 1}, {"instruments", instruments}})));
    KvaSim_WaitForEvents();
    g_deviceDisconnected.store(false);
    clearCalls();
}

void TestBench::set(const QByteArray& patch, int serial) {
    require(KvaSim_Set(serial, patch));
}

void TestBench::answer(const QString& function, int result, int call) {
    QJsonObject rule = {{"function", function}, {"result", result}};
    if (call > 0)
        rule["call"] = call;
    addFault(rule);
}

void TestBench::addFault(const QJsonObject& rule) {
    require(KvaSim_AddFault(text(rule)));
}

QJsonObject TestBench::state(int serial) {
    const QJsonArray instruments = taken(KvaSim_State())["instruments"].toArray();
    for (const QJsonValue& candidate : instruments) {
        if (candidate["serialNumber"].toInt() == serial)
            return candidate.toObject();
    }
    return {};
}

QStringList TestBench::calls() {
    QStringList names;
    const QJsonArray entries = taken(KvaSim_CallLog()).array();
    for (const QJsonValue& entry : entries)
        names.append(entry["function"].toString());
    return names;
}

QStringList TestBench::detailedCalls() {
    QStringList lines;
    const QJsonArray entries = taken(KvaSim_CallLog()).array();
    for (const QJsonValue& entry : entries) {
        QJsonObject arguments = entry["arguments"].toObject();
        arguments.remove("serialNumber");
        lines.append(entry["function"].toString() + ' ' + text(arguments) + ' ' +
                     QString::number(entry["result"].toInt()));
    }
    return lines;
}

void TestBench::clearCalls() {
    KvaSim_ClearCallLog();
}

void TestBench::emitEvent(quint32 code) {
    KvaSim_EmitEvent(code, 0, 0);
    KvaSim_WaitForEvents();
}

void TestBench::unplug(int serial) {
    require(KvaSim_Unplug(serial));
    KvaSim_WaitForEvents();
}

void TestBench::plug(int serial) {
    require(KvaSim_Plug(serial));
    KvaSim_WaitForEvents();
}

void TestBench::powerCycle(int serial) {
    require(KvaSim_PowerCycle(serial));
    KvaSim_WaitForEvents();
}

float TestBench::fileValue(int index) {
    return static_cast<float>(index) + 0.25F;
}

QStringList TestBench::valueTexts(int count) {
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(QString("%1.250000").arg(i));
    return texts;
}

QStringList TestBench::checkLines(int serial, const QStringList& values) {
    QStringList lines(QString("SerialNo: %1 \n").arg(serial));
    for (int i = 0; i < values.size(); ++i)
        lines.append(QString("rfWhite.spcData[%1]: %2 \n").arg(QString::number(i), values[i]));
    return lines;
}

QByteArray TestBench::valueFile(const QByteArray& serialLine, int count) {
    QByteArray values;
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            values += ',';
        values += QByteArray::number(static_cast<double>(fileValue(i)));
    }
    return "Reference values\nSerial number and values\n" + serialLine + '\n' + values + '\n';
}
