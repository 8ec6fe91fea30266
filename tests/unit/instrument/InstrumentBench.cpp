#include "tests/unit/instrument/InstrumentBench.h"

#include "simulator/KvaSimHelpers.h"

#include <QFile>

namespace {

constexpr char instrument[] = R"({
    "serialNumber": 1234567,
    "port": {"type": 1, "name": "USB"},
    "device": {"serialNumber": 1234567, "firmware": [1, 2, 3], "macAddress": "02:0a:bc:0d:ef:09"},
    "wirelessModule": true,
    "network": {"active": {"APConnectUse": 1, "DHCPUse": 0, "IPAddress": "192.168.0.10",
                           "SubnetMask": "255.255.255.0", "DefaultGateway": "192.168.0.1",
                           "DNS": "8.8.4.0", "SSID": "press-hall", "EncryptKey": "spectral-key"}},
    "powerOffMode": 2,
    "calibration": {"committed": {"white": {"serialNumber": "12345678"},
                                  "ambientAdapter": {"serialNumber": "00012345"},
                                  "reserved": {"seed": 7}}}
})";

QString toQString(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

namespace InstrumentBench {

bool load() {
    return load(instrument);
}

bool load(const QByteArray& instruments) {
    const bool loaded =
        KvaSim_LoadJson(R"({"version": 1, "instruments": [)" + instruments + QByteArray("]}"));
    if (loaded)
        KvaSim_ClearCallLog();
    return loaded;
}

bool set(const QByteArray& patch) {
    return KvaSim_Set(serialNumber, patch.constData());
}

bool answer(const char* function, KVA_RESULT result, int call) {
    nlohmann::json rule = {{"function", function}, {"result", result}};
    if (call > 0)
        rule["call"] = call;
    return kvasim_test::addFault(rule);
}

bool connect(CKvaSdk_Ctrl& controller) {
    const bool connected = controller.GetDevicePortList() && controller.Connect(0, 10);
    KvaSim_ClearCallLog();
    return connected;
}

bool powerCycle(CKvaSdk_Ctrl& controller) {
    if (!KvaSim_PowerCycle(serialNumber))
        return false;
    KvaSim_WaitForEvents();
    return connect(controller);
}

QStringList calls() {
    QStringList names;
    for (const auto& call : kvasim_test::callLog())
        names.append(toQString(call.at("function").get<std::string>()));
    return names;
}

QStringList detailedCalls() {
    QStringList lines;
    for (const auto& call : kvasim_test::callLog()) {
        nlohmann::json arguments = call.at("arguments");
        arguments.erase("serialNumber");
        lines.append(QStringLiteral("%1 %2 %3")
                         .arg(toQString(call.at("function").get<std::string>()),
                              toQString(arguments.dump()),
                              QString::number(call.at("result").get<int>())));
    }
    return lines;
}

KVA_JIG_CALREFDATA calibrationRecord() {
    KVA_JIG_CALREFDATA record = {};
    KVA_JIG_GetFactoryCalib_CALREFDATA(&record);
    return record;
}

KVA_NETWORKINFO networkRecord() {
    KVA_NETWORKINFO record = {};
    KVA_GetNetworkInfo(&record);
    return record;
}

float fileValue(int index) {
    return static_cast<float>(index) + 0.25F;
}

QByteArray valueFile(const QByteArray& serialLine, int valueCount) {
    QByteArray values;
    for (int i = 0; i < valueCount; ++i) {
        if (i > 0)
            values += ',';
        values += QByteArray::number(static_cast<double>(fileValue(i)));
    }
    return "Reference values\nSerial number and values\n" + serialLine + '\n' + values + '\n';
}

QByteArray writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        return {};
    return QFile::encodeName(path);
}

} // namespace InstrumentBench
