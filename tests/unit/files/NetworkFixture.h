#ifndef TESTS_UNIT_FILES_NETWORKFIXTURE_H
#define TESTS_UNIT_FILES_NETWORKFIXTURE_H

#include "files/CFileIO.h"
#include "tests/unit/files/FileFixture.h"

#include <QByteArrayList>

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
