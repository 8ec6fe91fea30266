#ifndef TESTS_UNIT_KVASIM_KVASIMTEST_H
#define TESTS_UNIT_KVASIM_KVASIMTEST_H

#include "tests/unit/simulator/SimulatorTest.h"

#include <optional>

namespace simtest {

constexpr const char* secret = "open-sesame-0815";

/** A bench file in a folder of its own, the current one; it is in use by this process. */
struct Bench : TestFolder {
    Bench() {
        startClean(*this);
        write("bench.json", text());
        qputenv("KVASIM_BENCH", localPath("bench.json"));
        portCount();
    }
    ~Bench() {
        KVA_RegisterDeviceEventHandler(nullptr);
        KvaSim_Reset();
    }

    static QByteArray text() {
        return QByteArray(R"({"version": 1, "instruments": [
            {"serialNumber": 1000001, "startUpMs": 200,
             "network": {"active": {"EncryptKey": ")") +
               secret + R"("}}},
            {"serialNumber": 1000002, "port": {"type": 2, "name": "192.168.0.20"}}]})";
    }
};

inline QStringList wordsOf(const char* arguments) {
    return QString(arguments).split(' ', Qt::SkipEmptyParts);
}

inline Outcome kvasim(const QStringList& arguments) {
    return run(KVASIM, arguments);
}

inline Outcome kvasim(const char* arguments) {
    return kvasim(wordsOf(arguments));
}

} // namespace simtest

#endif
