/**
 * What the tests of the command and of the socket share: a bench of its own for each test, in use
 * by this process; the command as a process; the socket as a hostile client sees it.
 */
#ifndef TESTS_UNIT_KVASIM_KVASIMTEST_H
#define TESTS_UNIT_KVASIM_KVASIMTEST_H

#include "instrument/KvaSdk.h"
#include "simulator/KvaSimHelpers.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>
#include <memory>
#include <thread>


namespace kvasimtest {

using namespace kvasim_test;
using nlohmann::json;

constexpr std::int32_t usbSerial = 1000001;
constexpr std::int32_t networkSerial = 1000002;
constexpr const char* secret = "open-sesame-0815";

struct Outcome {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

inline QByteArray benchText() {
    return QByteArray(R"({"version": 1, "instruments": [
        {"serialNumber": 1000001, "startUpMs": 200,
         "network": {"active": {"EncryptKey": ")") +
           secret + R"("}}},
        {"serialNumber": 1000002, "port": {"type": 2, "name": "192.168.0.20"}}]})";
}

/** A folder with a bench file, and an environment in which no other program is seen. */
class Bench {
public:
    Bench() {
        write(path(), benchText());
        qunsetenv("KVASIM_TRACE");
        qputenv("KVASIM_BENCH", path().toLocal8Bit());
        KvaSim_Reset();
    }
    ~Bench() { KvaSim_Reset(); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    QString path() const { return folder.filePath(QStringLiteral("bench.json")); }

    static void write(const QString& path, const QByteArray& text) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }

    /** Uses the bench in this process. */
    static void use() {
        std::int32_t count = 0;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
    }

    QTemporaryDir folder;
};

inline KVA_RESULT connectTo(std::int32_t serialNumber) {
    KVA_PORTINFO list[10] = {};
    std::int32_t count = 0;
    KVA_GetDevicePortList(list, &count, 10);
    for (int index = 0; index < count; ++index) {
        if (list[index].serialNumber == serialNumber)
            return KVA_Connect(&list[index], 10);
    }
    return KVA_ERROR;
}

/** Runs the command to its end. */
inline Outcome kvasim(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral(KVASIM), arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

inline Outcome kvasim(const char* arguments) {
    return kvasim(QString::fromLatin1(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

} // namespace kvasimtest

#endif
