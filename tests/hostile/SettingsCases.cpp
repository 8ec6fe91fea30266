#include "tests/hostile/SettingsCases.h"

namespace {

using Cases = QVector<SettingsCase>;

/** The sample file with this instead of that. */
QByteArray with(const char* before, const QByteArray& after) {
    return sampleNetworkIni().replace(before, after);
}

SettingsCase loaded(const QByteArray& row, const QByteArray& content,
                    const NetworkBytes& record = sampleNetwork()) {
    return {row, content, SettingsCase::Loaded, record};
}

/** Refused at its first key, or for want of it. */
SettingsCase refused(const QByteArray& row, const QByteArray& content,
                     const NetworkBytes& record = {}) {
    return {row, content, SettingsCase::Refused, record};
}

SettingsCase trick(const QByteArray& row, HostileFile::Trick trick) {
    SettingsCase c = refused(row, sampleNetworkIni());
    c.trick = trick;
    return c;
}

/** What is read before the first address: the switch, which is off. */
NetworkBytes upToTheAddress() {
    return {};
}

/** What is read before the SSID. */
NetworkBytes upToTheSsid() {
    return NetworkBytes().ipAddress("c0a8000a").subnetMask("ffffff00").defaultGateway("c0a80001");
}

/** What is read before the security key. */
NetworkBytes upToTheKey() {
    return upToTheSsid().ssid("Lab 5");
}

QByteArray utf16(const QByteArray& text, bool lowByteFirst) {
    QByteArray converted;
    for (const char c : text) {
        converted.append(lowByteFirst ? c : '\0');
        converted.append(lowByteFirst ? '\0' : c);
    }
    return converted;
}

void addTricks(Cases& cases) {
    cases += {trick("directory", HostileFile::Folder), trick("unreadable", HostileFile::Unreadable),
              trick("disappears", HostileFile::Gone), trick("2 GiB of zeros", HostileFile::Zeros)};
    for (const auto& odd : oddPlaces(QStringLiteral(".ini"))) {
        cases += loaded(odd.first, sampleNetworkIni());
        cases.last().place = odd.second;
    }
}

void addContents(Cases& cases) {
    const QByteArray file = sampleNetworkIni();
    cases += {
        refused("empty", ""),
        refused("one byte: bracket", "["),
        refused("one byte: line end", "\n"),
        refused("one byte: NUL", QByteArray(1, '\0')),
        refused("UTF-16: low byte first", "\xFF\xFE" + utf16(file, true)),
        refused("UTF-16: low byte first, no mark", utf16(file, true)),
        refused("UTF-16: high byte first", "\xFE\xFF" + utf16(file, false)),
        refused("byte-order mark", "\xEF\xBB\xBF" + file),
        loaded("byte-order mark: alone on the first line", "\xEF\xBB\xBF\n" + file),
        refused("carriage returns alone", with("\n", "\r")),
    };
}

// A NUL ends the value that it stands in; anywhere else it is a byte like others.
void addNulBytes(Cases& cases) {
    const auto nul = [](const char* text) { return QByteArray(text).replace('@', '\0'); };
    cases += {
        refused("NUL bytes: behind the header", with("[Network]", nul("[Network]@"))),
        refused("NUL bytes: before the header", with("[Network]", nul("@[Network]"))),
        refused("NUL bytes: in a key", with("DHCPUse", nul("DHCP@Use"))),
        refused("NUL bytes: nothing but one as value", with("Lab 5", nul("@")), upToTheSsid()),
        loaded("NUL bytes: in the SSID", with("Lab 5", nul("La@b 5")),
               sampleNetwork().ssid(QByteArray("La\0\0\0", 5))),
        loaded("NUL bytes: in a number", with("IPAddress=192", nul("IPAddress=19@2")),
               sampleNetwork().ipAddress("13000000")),
        loaded("NUL bytes: between the lines", with("SSID=", nul("@@@\nSSID="))),
        loaded("NUL bytes: in a comment", with("; 0:", nul(";@0:"))),
    };
}

// The bytes go into the record as they are. Second bytes of Shift-JIS may be '\' or '['.
void addShiftJis(Cases& cases) {
    const QByteArray room("\x91\xAA\x92\xE8\x8E\xBA");  // 測定室
    const QByteArray traps("\x83\x5C\x95\x5C\x81\x5B"); // ソ表ー
    cases += {
        loaded("Shift-JIS: SSID", with("Lab 5", room), sampleNetwork().ssid(room)),
        loaded("Shift-JIS: SSID with second bytes of ASCII", with("Lab 5", traps),
               sampleNetwork().ssid(traps)),
        loaded("Shift-JIS: comment", with("; 0:eDHCP_OFF", "; " + traps)),
        refused("Shift-JIS: header", with("[Network]", "[" + room + "]")),
        loaded("Shift-JIS: digits of full width", with("IPAddress=192", "IPAddress=\x82\x50"),
               sampleNetwork().ipAddress("00a8000a")),
    };
}

// 511 bytes fill the buffer that a value is read into, so it may have been cut: it is refused.
void addLongValues(Cases& cases) {
    for (const int length : {511, 512, 513}) {
        const auto row = [length](const char* what) {
            return "511 to 513 bytes: " + QByteArray(what) + ' ' + QByteArray::number(length);
        };
        const QByteArray address = "192.168.0.10";
        const QByteArray zeros(length - address.size(), '0');
        cases += {
            refused(row("SSID of"), with("Lab 5", QByteArray(length, 's')), upToTheSsid()),
            refused(row("key of"), with("pass word=1", QByteArray(length, 'k')), upToTheKey()),
            refused(row("address of"), with("192.168.0.10", zeros + address), upToTheAddress()),
            loaded(row("unknown key of"),
                   with("SSID=", "Other=" + QByteArray(length, 'o') + "\nSSID=")),
            loaded(row("comment of"), with("; 0:eDHCP_OFF", QByteArray(length, ';'))),
        };
    }
    const QByteArray ssid(32, 's');
    const QByteArray key(64, 'k');
    cases += {
        loaded("field limits: SSID of 32", with("Lab 5", ssid), sampleNetwork().ssid(ssid)),
        refused("field limits: SSID of 33", with("Lab 5", ssid + 's'), upToTheSsid()),
        loaded("field limits: key of 64", with("pass word=1", key),
               sampleNetwork().encryptKey(key)),
        refused("field limits: key of 65", with("pass word=1", key + 'k'), upToTheKey()),
    };
}

// Numbers are whole ones: leading digits count, text without any is 0.
void addNumbers(Cases& cases) {
    const struct {
        const char* text;
        const char* octet;
        bool isOn;
    } numbers[] = {{"1e400", "01", true},
                   {"nan", "00", false},
                   {"inf", "00", false},
                   {"0x10", "00", false},
                   {"-0", "00", false}};
    for (const auto& number : numbers) {
        const QByteArray row = "numbers: " + QByteArray(number.text);
        cases += loaded(row + " as switch", with("DHCPUse=0", "DHCPUse=" + QByteArray(number.text)),
                        sampleNetwork().dhcpUse(number.isOn ? "01000000" : "00000000"));
        cases += loaded(row + " as octet",
                        with("=192.168.0.10", '=' + QByteArray(number.text) + ".168.0.10"),
                        sampleNetwork().ipAddress(QByteArray(number.octet) + "a8000a"));
    }
    const QByteArray digits(100000, '1');
    cases += {
        refused("100000 digits: switch", with("DHCPUse=0", "DHCPUse=" + digits), NetworkBytes()),
        refused("100000 digits: octet", with("=192.168.0.10", '=' + digits + ".168.0.10"),
                upToTheAddress()),
        refused("100000 digits: SSID", with("Lab 5", digits), upToTheSsid()),
        refused("100000 digits: key", with("pass word=1", digits), upToTheKey()),
    };
}

Cases allCases() {
    Cases cases;
    addTricks(cases);
    addContents(cases);
    addNulBytes(cases);
    addShiftJis(cases);
    addLongValues(cases);
    addNumbers(cases);
    return cases;
}

} // namespace

const QVector<SettingsCase>& settingsCases() {
    static const Cases cases = allCases();
    return cases;
}
