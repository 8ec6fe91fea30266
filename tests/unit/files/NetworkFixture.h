#ifndef TESTS_UNIT_FILES_NETWORKFIXTURE_H
#define TESTS_UNIT_FILES_NETWORKFIXTURE_H

#include "files/CFileIO.h"
#include "tests/unit/files/FileFixture.h"

/** The bytes of a network settings record, put together field by field at the places that the
    library's interface gives them. */
class NetworkBytes {
public:
    NetworkBytes() : m_bytes(124, '\0') {}
    explicit NetworkBytes(const KVA_NETWORKINFO& record) : m_bytes(bytesOf(record)) {}

    NetworkBytes& apConnectUse(const char* hex) { return put(0, QByteArray::fromHex(hex)); }
    NetworkBytes& dhcpUse(const char* hex) { return put(4, QByteArray::fromHex(hex)); }
    NetworkBytes& ipAddress(const char* hex) { return put(8, QByteArray::fromHex(hex)); }
    NetworkBytes& subnetMask(const char* hex) { return put(12, QByteArray::fromHex(hex)); }
    NetworkBytes& defaultGateway(const char* hex) { return put(16, QByteArray::fromHex(hex)); }
    NetworkBytes& dns(const char* hex) { return put(20, QByteArray::fromHex(hex)); }
    NetworkBytes& ssid(const QByteArray& text) { return put(24, text); }
    NetworkBytes& encryptKey(const QByteArray& text) { return put(57, text); }

    QByteArray bytes() const { return m_bytes; }
    KVA_NETWORKINFO record() const {
        KVA_NETWORKINFO info = {};
        std::memcpy(&info, m_bytes.constData(), sizeof(info));
        return info;
    }

private:
    NetworkBytes& put(int offset, const QByteArray& part) {
        m_bytes = overlaid(m_bytes, offset, part);
        return *this;
    }

    QByteArray m_bytes;
};

/** Settings in which no field is like another. */
inline NetworkBytes sampleNetwork() {
    return NetworkBytes()
        .apConnectUse("01000000")
        .dhcpUse("00000000")
        .ipAddress("c0a8000a")
        .subnetMask("ffffff00")
        .defaultGateway("c0a80001")
        .dns("08080404")
        .ssid("Lab 5")
        .encryptKey("pass word=1");
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

#endif
