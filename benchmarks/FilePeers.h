#ifndef BENCHMARKS_FILEPEERS_H
#define BENCHMARKS_FILEPEERS_H

#include <QString>

#include <string>

/** The same files, read and written by other means: what the tool's own code is compared with. */
namespace FilePeers {

struct NetworkSettings {
    int apConnectUse = 0;
    int dhcpUse = 0;
    QString ipAddress;
    QString subnetMask;
    QString defaultGateway;
    QString dns;
    QString ssid;
    QString encryptKey;
};

/** Reads the eight settings with QSettings. */
NetworkSettings readWithQSettings(const QString& path);

/** Writes them with QSettings and syncs. False when it reports an error. */
bool writeWithQSettings(const QString& path, const NetworkSettings& settings);

/** Reads the numbers of the fourth line with QTextStream, `split` and `toFloat`, and the lines
    behind it. @return how many there are, at most @p maxCount */
int readWithQTextStream(const QString& path, float* values, int maxCount);

/** The least that could be done: `read` of the whole file, at most 64 KiB, and `strtof` over the
    numbers of the fourth line. @return how many there are, at most @p maxCount */
int readWithStrtof(const std::string& path, float* values, int maxCount);

} // namespace FilePeers

#endif
