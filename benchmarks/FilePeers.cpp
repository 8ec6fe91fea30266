#include "benchmarks/FilePeers.h"

#include <QFile>
#include <QSettings>
#include <QStringList>
#include <QTextStream>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

FilePeers::NetworkSettings FilePeers::readWithQSettings(const QString& path) {
    QSettings file(path, QSettings::IniFormat);
    file.beginGroup(QStringLiteral("Network"));
    NetworkSettings settings;
    settings.dhcpUse = file.value(QStringLiteral("DHCPUse")).toInt();
    settings.ipAddress = file.value(QStringLiteral("IPAddress")).toString();
    settings.subnetMask = file.value(QStringLiteral("SubnetMask")).toString();
    settings.defaultGateway = file.value(QStringLiteral("DefaultGateway")).toString();
    settings.ssid = file.value(QStringLiteral("SSID")).toString();
    settings.encryptKey = file.value(QStringLiteral("EncryptKey")).toString();
    settings.dns = file.value(QStringLiteral("DNS")).toString();
    settings.apConnectUse = file.value(QStringLiteral("APConnectUse")).toInt();
    return settings;
}

bool FilePeers::writeWithQSettings(const QString& path, const NetworkSettings& settings) {
    QSettings file(path, QSettings::IniFormat);
    file.beginGroup(QStringLiteral("Network"));
    file.setValue(QStringLiteral("DHCPUse"), settings.dhcpUse);
    file.setValue(QStringLiteral("IPAddress"), settings.ipAddress);
    file.setValue(QStringLiteral("SubnetMask"), settings.subnetMask);
    file.setValue(QStringLiteral("DefaultGateway"), settings.defaultGateway);
    file.setValue(QStringLiteral("SSID"), settings.ssid);
    file.setValue(QStringLiteral("EncryptKey"), settings.encryptKey);
    file.setValue(QStringLiteral("DNS"), settings.dns);
    file.setValue(QStringLiteral("APConnectUse"), settings.apConnectUse);
    file.sync();
    return file.status() == QSettings::NoError;
}

int FilePeers::readWithQTextStream(const QString& path, float* values, int maxCount) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    QTextStream stream(&file);
    int count = 0;
    QString line;
    for (int index = 0; stream.readLineInto(&line); ++index) {
        if (index != 3)
            continue;
        const QStringList pieces = line.split(QLatin1Char(','));
        count = std::min(static_cast<int>(pieces.size()), maxCount);
        for (int i = 0; i < count; ++i)
            values[i] = pieces[i].toFloat();
    }
    return count;
}

int FilePeers::readWithStrtof(const std::string& path, float* values, int maxCount) {
    static char text[64 * 1024];
    const int file = ::open(path.c_str(), O_RDONLY);
    if (file < 0)
        return 0;
    const ssize_t size = ::read(file, text, sizeof text - 1);
    ::close(file);
    if (size < 0)
        return 0;
    text[size] = '\0';

    const char* position = text;
    for (int line = 0; line < 3; ++line) {
        position = std::strchr(position, '\n');
        if (!position)
            return 0;
        ++position;
    }
    int count = 0;
    while (count < maxCount) {
        char* end = nullptr;
        const float value = std::strtof(position, &end);
        if (end == position)
            break;
        values[count++] = value;
        if (*end != ',')
            break;
        position = end + 1;
    }
    return count;
}
