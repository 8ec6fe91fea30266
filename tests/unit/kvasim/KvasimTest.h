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

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

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
        qputenv("KVASIM_RUNTIME_DIR", folder.filePath(QStringLiteral("run")).toLocal8Bit());
        qunsetenv("KVASIM_TRACE");
        qputenv("KVASIM_BENCH", path().toLocal8Bit());
        KvaSim_Reset();
    }
    ~Bench() { KvaSim_Reset(); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    QString path() const { return folder.filePath(QStringLiteral("bench.json")); }
    QString socketPath() const { return path() + QStringLiteral(".control/socket"); }

    static void write(const QString& path, const QByteArray& text) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }

    /** Uses the bench in this process and waits until it can be handled. */
    void use() const {
        std::int32_t count = 0;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
        QTRY_VERIFY(QFile::exists(socketPath()) && !QDir(folder.filePath(QStringLiteral("run")))
                                                        .entryList({QStringLiteral("*.json")})
                                                        .isEmpty());
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

/** One end of the control socket. */
class Connection {
public:
    explicit Connection(const QString& path) : m_socket(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        const QByteArray name = path.toLocal8Bit();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.constData(),
                    std::min<std::size_t>(sizeof address.sun_path - 1,
                                          static_cast<std::size_t>(name.size())));
        connected =
            ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~Connection() { ::close(m_socket); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /** Sends what the other end takes within @p timeout ms. @return the number of bytes, -1 when
        the connection is broken */
    qint64 send(const QByteArray& bytes, int timeout = 5000) {
        qint64 sent = 0;
        while (sent < bytes.size()) {
            pollfd ready{m_socket, POLLOUT, 0};
            if (::poll(&ready, 1, timeout) <= 0)
                return sent;
            const auto count =
                ::send(m_socket, bytes.constData() + sent,
                       static_cast<std::size_t>(bytes.size() - sent), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count < 0 && errno != EAGAIN)
                return -1;
            sent += std::max<qint64>(count, 0);
        }
        return sent;
    }

    /** The next line; empty at the end of the connection or after @p timeout ms without a byte. */
    QByteArray line(int timeout = 5000) {
        for (;;) {
            const int end = m_received.indexOf('\n');
            if (end >= 0) {
                const QByteArray first = m_received.left(end);
                m_received.remove(0, end + 1);
                return first;
            }
            pollfd ready{m_socket, POLLIN, 0};
            char bytes[4096];
            if (::poll(&ready, 1, timeout) <= 0)
                return {};
            const auto count = ::recv(m_socket, bytes, sizeof bytes, 0);
            if (count <= 0)
                return {};
            m_received.append(bytes, static_cast<int>(count));
        }
    }

    json ask(const QByteArray& request) {
        send(request + '\n');
        const QByteArray answer = line();
        return answer.isEmpty() ? json() : json::parse(answer.toStdString());
    }

    /** Whether the other end closes within @p timeout ms. */
    bool isClosed(int timeout) {
        pollfd ready{m_socket, POLLIN, 0};
        char bytes[4096];
        while (::poll(&ready, 1, timeout) > 0) {
            if (::recv(m_socket, bytes, sizeof bytes, 0) <= 0)
                return true;
        }
        return false;
    }

    bool connected = false;

private:
    int m_socket;
    QByteArray m_received;
};

} // namespace kvasimtest

#endif
