/**
 * What the tests of the command and of the socket share: a bench of its own for each test, in use
 * by this process; the command as a process; the socket as a hostile client sees it.
 */
#ifndef TESTS_UNIT_KVASIM_KVASIMTEST_H
#define TESTS_UNIT_KVASIM_KVASIMTEST_H

#include "instrument/KvaSdk.h"
#include "tests/support/KvaSimHelpers.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>
#include <memory>
#include <mutex>
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

    QString path() const { return folder.filePath("bench.json"); }

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
    process.start(KVASIM, arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

inline QStringList wordsOf(const char* arguments) {
    return QString(arguments).split(' ', Qt::SkipEmptyParts);
}

inline Outcome kvasim(const char* arguments) {
    return kvasim(wordsOf(arguments));
}

/** Another program that uses a bench and is connected to its first instrument. */
class BenchHolder {
public:
    explicit BenchHolder(const QString& bench) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KVASIM_BENCH", bench);
        m_process.setProcessEnvironment(environment);
        m_process.start(BENCH_HOLDER, QStringList());
    }
    ~BenchHolder() { end(true); }
    BenchHolder(const BenchHolder&) = delete;
    BenchHolder& operator=(const BenchHolder&) = delete;

    /** The next line: first the number of instruments, or why the library refuses. */
    QByteArray answer() {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(20000)) {
        }
        return m_process.readLine();
    }

    /** What its next call for the connected instrument answers. */
    QByteArray ask() {
        m_process.write("\n");
        return answer();
    }

    void end(bool isKilled) {
        if (isKilled)
            m_process.kill();
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    QByteArray errors() { return m_process.readAllStandardError(); }

private:
    QProcess m_process;
};

} // namespace kvasimtest

#endif
