#ifndef TESTS_UNIT_FILES_FILEFIXTURE_H
#define TESTS_UNIT_FILES_FILEFIXTURE_H

#include "files/CFileIO.h"
#include "tests/support/DebugLog.h"
#include "tests/support/StandardOutput.h"
#include "tests/support/TestBench.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestMain.h"

#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

using TestBench::bytesOf;

/** Lets files have no more than so many bytes while it exists; they can still be created and
    emptied. */
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit limit = m_limit;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY(FileSizeLimit)

private:
    void (*m_handler)(int);
    rlimit m_limit = {};
};

/** Gives up the superuser's right to everything while it exists. */
class WithoutPrivileges {
public:
    WithoutPrivileges() : m_user(::geteuid()) {
        if (m_user == 0 && ::seteuid(65534) != 0)
            giveUp("the superuser cannot become another user");
    }
    ~WithoutPrivileges() {
        if (m_user != 0)
            return;
        if (::seteuid(m_user) != 0)
            giveUp("the superuser's rights are lost");
#ifdef __linux__
        ::prctl(PR_SET_DUMPABLE, 1); // a change of user takes it away, leak checkers need it
#endif
    }
    Q_DISABLE_COPY(WithoutPrivileges)

private:
    uid_t m_user;
};

/** The most bytes that the process has had in memory at once. */
inline qint64 peakMemory() {
    rusage use = {};
    ::getrusage(RUSAGE_SELF, &use);
#ifdef __APPLE__
    return use.ru_maxrss;
#else
    return use.ru_maxrss * 1024;
#endif
}

/** What an action writes to the standard output. To be compared afterwards: a failure reported
    meanwhile would go astray. */
template <typename Action>
QByteArray printedDuring(const Action& action) {
    StandardOutput output;
    action();
    return output.take();
}

/** The same, and then, each behind "log: ", what goes to Qt's log. */
template <typename Action>
QByteArray saidDuring(const Action& action) {
    const DebugLog log;
    QByteArray said = printedDuring(action);
    for (const QString& line : log.lines() + log.others())
        said += "log: " + line.toUtf8() + '\n';
    return said;
}

/** The result of a reader, what it said, and the record afterwards, to be compared as one text. */
inline QByteArray outcome(bool accepted, const QByteArray& record, const QByteArray& said = {}) {
    return (accepted ? "accepted: " : "refused: ") + said + record.toHex();
}

/** A record whose bytes are all different from their neighbours and from zero, so that a byte that
    is written, moved or cleared shows. */
template <class Record>
Record patternedRecord() {
    unsigned char bytes[sizeof(Record)];
    for (std::size_t i = 0; i < sizeof(Record); ++i)
        bytes[i] = static_cast<unsigned char>(0x81U + i % 113U);
    Record record;
    std::memcpy(&record, bytes, sizeof(Record));
    return record;
}

/** @p bytes with the part at @p offset replaced by one of the same length. */
inline QByteArray overlaid(QByteArray bytes, int offset, const QByteArray& part) {
    return bytes.replace(offset, part.size(), part);
}

/** A text of single bytes in UTF-16, without a mark. */
inline QByteArray utf16(const QByteArray& text, bool lowByteFirst) {
    QByteArray converted;
    for (const char c : text) {
        converted.append(lowByteFirst ? c : '\0');
        converted.append(lowByteFirst ? '\0' : c);
    }
    return converted;
}

// ---- Calibration files

/** One of the two readers of calibration files, and where in the record its fields are. */
struct CalRefReader {
    bool (CFileIO::*read)(const char* path, KVA_JIG_CALREFDATA* record);
    int serialNoOffset;
    int valuesOffset;
    int valueCount;
};

inline CalRefReader calRefReader(bool adapter) {
    if (adapter)
        return {&CFileIO::GetAmbAdpCalRefDataFromFile, 156, 160, 75};
    return {&CFileIO::GetCalRefDataFromFile, 0, 4, 38};
}

/** Adds the column "adapter" and a row for each reader. */
inline void addReaders() {
    QTest::addColumn<bool>("adapter");
    QTest::newRow("white plate") << false;
    QTest::newRow("adapter") << true;
}

/** The `outcome` of a read into a patterned record. */
inline QByteArray readCalRef(bool adapter, const char* path) {
    auto record = patternedRecord<KVA_JIG_CALREFDATA>();
    bool accepted = false;
    const QByteArray said =
        saidDuring([&] { accepted = (CFileIO().*calRefReader(adapter).read)(path, &record); });
    return outcome(accepted, bytesOf(record), said);
}

/** A record with these fields changed; an empty one stays as it was. */
inline QByteArray
calRefRecord(bool adapter, const QByteArray& serialNo, const QVector<float>& values,
             const QByteArray& before = bytesOf(patternedRecord<KVA_JIG_CALREFDATA>())) {
    const QByteArray floats(reinterpret_cast<const char*>(values.constData()),
                            values.size() * static_cast<int>(sizeof(float)));
    const CalRefReader reader = calRefReader(adapter);
    return overlaid(overlaid(before, reader.serialNoOffset, serialNo), reader.valuesOffset, floats);
}

/** What a read that takes nothing comes to. */
inline QByteArray refusedCalRef(bool adapter) {
    return outcome(false, calRefRecord(adapter, {}, {}));
}

/** The values 0.25, 1.25, 2.25 and so on, which are exact in binary. */
inline QVector<float> sampleValues(int count) {
    QVector<float> values;
    for (int i = 0; i < count; ++i)
        values.append(static_cast<float>(i) + 0.25F);
    return values;
}

/** The same values as a line of a file, without its end. */
inline QByteArray sampleLine(int count) {
    QByteArrayList cells;
    for (int i = 0; i < count; ++i)
        cells.append(QByteArray::number(i) + ".25");
    return cells.join(',');
}

/** A right file, but for what is given. */
inline QByteArray calRefFile(bool adapter, const QByteArray& serialLine = "12345678") {
    return "heading\nheading\n" + serialLine + '\n' + sampleLine(calRefReader(adapter).valueCount) +
           '\n';
}

// ---- Network settings files

/** The fields in the order in which they are read, at the places in the record that the library's
    interface gives them. */
struct NetworkField {
    const char* key;
    int offset;
    int size;
};
constexpr NetworkField networkFields[] = {
    {"DHCPUse", 4, 4}, {"IPAddress", 8, 4},    {"SubnetMask", 12, 4}, {"DefaultGateway", 16, 4},
    {"SSID", 24, 33},  {"EncryptKey", 57, 65}, {"DNS", 20, 4},        {"APConnectUse", 0, 4}};

/** The bytes of a network settings record, put together field by field. */
class NetworkBytes {
public:
    NetworkBytes() : m_bytes(124, '\0') {}
    explicit NetworkBytes(const KVA_NETWORKINFO& record) : m_bytes(bytesOf(record)) {}

    /** Puts these bytes at the beginning of a field. */
    NetworkBytes& set(const QByteArray& key, const QByteArray& bytes) {
        for (const NetworkField& field : networkFields) {
            if (field.key == key)
                m_bytes = overlaid(m_bytes, field.offset, bytes);
        }
        return *this;
    }
    /** Fills the fields from that one on with zeros. */
    NetworkBytes& clearFrom(const QByteArray& key) {
        bool reached = false;
        for (const NetworkField& field : networkFields) {
            reached = reached || field.key == key;
            if (reached)
                set(field.key, QByteArray(field.size, '\0'));
        }
        return *this;
    }
    NetworkBytes& setHex(const QByteArray& key, const char* hex) {
        return set(key, QByteArray::fromHex(hex));
    }
    NetworkBytes& dhcpUse(const char* hex) { return setHex("DHCPUse", hex); }
    NetworkBytes& ipAddress(const char* hex) { return setHex("IPAddress", hex); }
    NetworkBytes& ssid(const QByteArray& text) { return set("SSID", text); }
    NetworkBytes& encryptKey(const QByteArray& text) { return set("EncryptKey", text); }
    /** Settings in which no field is like another. */
    NetworkBytes& sample() {
        return setHex("APConnectUse", "01000000")
            .setHex("DHCPUse", "00000000")
            .setHex("IPAddress", "c0a8000a")
            .setHex("SubnetMask", "ffffff00")
            .setHex("DefaultGateway", "c0a80001")
            .setHex("DNS", "08080404")
            .ssid("Lab 5")
            .encryptKey("pass word=1");
    }

    QByteArray bytes() const { return m_bytes; }
    KVA_NETWORKINFO record() const {
        KVA_NETWORKINFO info = {};
        std::memcpy(&info, m_bytes.constData(), sizeof(info));
        return info;
    }

private:
    QByteArray m_bytes;
};

inline NetworkBytes sampleNetwork() {
    return NetworkBytes().sample();
}

/** The same settings as a file. */
inline QByteArray sampleNetworkIni() {
    return "[Network]\n"
           "; 0:eDHCP_OFF, 1:eDHCP_ON\n"
           "DHCPUse=0\n"
           "IPAddress=192.168.0.10\n"
           "SubnetMask=255.255.255.0\n"
           "DefaultGateway=192.168.0.1\n"
           "SSID=Lab 5\n"
           "EncryptKey=pass word=1\n"
           "DNS=8.8.4.4\n"
           "; 0:eAPConnect_OFF, 1:eAPConnect_ON\n"
           "APConnectUse=1\n";
}

/** The same with this instead of that. */
inline QByteArray iniWith(const char* before, const QByteArray& after) {
    return sampleNetworkIni().replace(before, after);
}

/** The same with the line of @p key setting @p value. */
inline QByteArray iniSetting(const QByteArray& key, const QByteArray& value) {
    QByteArrayList lines = sampleNetworkIni().split('\n');
    for (QByteArray& line : lines) {
        if (line.startsWith(key + '='))
            line = key + '=' + value;
    }
    return lines.join('\n');
}

/** The settings of the instrument of `TestBench` as a file. */
inline QByteArray benchNetworkIni() {
    return iniWith("Lab 5", "press-hall")
        .replace("pass word=1", "spectral-key")
        .replace("8.8.4.4", "8.8.4.0");
}

/** The `outcome` of a read into this record. */
inline QByteArray readNetwork(const char* path, const NetworkBytes& before = {}) {
    KVA_NETWORKINFO info = before.record();
    bool accepted = false;
    const QByteArray said = saidDuring([&] { accepted = CFileIO().ReadNetworkIni(path, &info); });
    return outcome(accepted, bytesOf(info), said);
}

/** Settings whose bytes are those of `patternedRecord`. */
inline NetworkBytes patternedNetwork() {
    return NetworkBytes(patternedRecord<KVA_NETWORKINFO>());
}

#endif
