#ifndef TESTS_UNIT_INSTRUMENT_CONTROLLERFIXTURE_H
#define TESTS_UNIT_INSTRUMENT_CONTROLLERFIXTURE_H

#include "instrument/CKvaSdk_Ctrl.h"
#include "simulator/KvaSim.h"
#include "tests/unit/files/FileFixture.h"

/** A controller, and what its operations leave behind. */
class LoggedController : public CKvaSdk_Ctrl {
public:
    /** The last result is one that no operation gives, and the call log is empty. */
    LoggedController() { forget(); }

    /** Since it was made, or since the last `forget`: the last result (4: untouched), the debug
        lines, the calls. */
    QStringList left() const {
        return QStringList(QString::number(m_lastResult)) + log.lines() +
               TestBench::detailedCalls();
    }
    void forget() {
        m_lastResult = 4;
        log.clear();
        TestBench::clearCalls();
    }

    DebugLog log;
};

/** One that is connected to the first instrument of the bench. The test fails when there is no
    connection. */
class ConnectedController : public LoggedController {
public:
    ConnectedController() { connect(); }

    /** Loses what the instrument has not committed, connects to it again and forgets the rest. */
    void powerCycle() {
        TestBench::powerCycle();
        connect();
    }

private:
    void connect() {
        if (!GetDevicePortList() || !Connect(0, 10))
            QTest::qFail("The controller does not connect.", __FILE__, __LINE__);
        forget();
    }
};

using NumberRow = NamedValue<qint64>;

/** Writes a file, unless @p content is null. @return its path in the local 8-bit encoding */
inline QByteArray localFile(const TestFolder& folder, const QByteArray& content) {
    const QString name = content.isNull() ? "none" : "file";
    if (!content.isNull())
        folder.write(name, content);
    return folder.localPath(name);
}

/** Whether the network settings are as a failed read leaves them. */
inline bool hasNoNetwork(const CKvaSdk_Ctrl& controller) {
    return !controller.m_apConnectUse && !controller.m_dhcpUse && controller.m_ssid.isEmpty() &&
           controller.m_encryptKey.isEmpty() && controller.m_ipAddress.isEmpty() &&
           controller.m_subnetMask.isEmpty() && controller.m_defaultGateway.isEmpty() &&
           controller.m_dns.isEmpty();
}

/** The addresses with bars: IP address, subnet mask, gateway, DNS. */
inline QStringList addresses(const CKvaSdk_Ctrl& controller) {
    return {controller.m_ipAddress.join('|'), controller.m_subnetMask.join('|'),
            controller.m_defaultGateway.join('|'), controller.m_dns.join('|')};
}

/** The texts of serial numbers: the instrument's two, then those of files. */
inline QStringList serialNumbers(const CKvaSdk_Ctrl& controller) {
    return {controller.m_curWCPSerialNo, controller.m_curAmbAdpSerialNo,
            controller.m_fileWCPSerialNo, controller.m_fileAmbAdpSerialNo};
}

/** What the connected instrument answers to a request for its calibration record. */
inline QByteArray calibrationRecord() {
    return TestBench::bytesOf(TestBench::held(KVA_JIG_GetFactoryCalib_CALREFDATA));
}

/** A calibration accessory: how the controller handles its value file. */
struct Accessory {
    const char* name;
    bool isAdapter;
    int valueCount;
    const char* serialNo; ///< valid in a file
    bool (CKvaSdk_Ctrl::*read)(const char* path);
    bool (CKvaSdk_Ctrl::*write)(const char* path);
    QString CKvaSdk_Ctrl::*fileSerialNo;

    QByteArray file() const { return TestBench::valueFile(serialNo, valueCount); }

    /** The record with a file's serial number in its place, binary-coded decimal. */
    QByteArray numberedIn(const QByteArray& record, const QByteArray& number) const {
        return calRefRecord(isAdapter, QByteArray::fromHex(number), {}, record);
    }
    /** The record with the values of a `TestBench::valueFile` in their place. */
    QByteArray valuesIn(const QByteArray& record) const {
        return calRefRecord(isAdapter, {}, sampleValues(valueCount), record);
    }
    /** The record with all of `file` in its place. */
    QByteArray registeredIn(const QByteArray& record) const {
        return valuesIn(numberedIn(record, serialNo));
    }
};

using C = CKvaSdk_Ctrl;
constexpr Accessory accessories[] = {
    {"white plate", false, 38, "23456789", &C::ReadWCPFile, &C::WriteWCPData,
     &C::m_fileWCPSerialNo},
    {"adapter", true, 75, "00054321", &C::ReadAmbAdpFile, &C::WriteAmbAdpData,
     &C::m_fileAmbAdpSerialNo},
};
constexpr Accessory whitePlate = accessories[0];
constexpr Accessory adapter = accessories[1];

#endif
