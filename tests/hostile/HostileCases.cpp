#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/hostile/HostileFile.h"

#include <cmath>
#include <limits>

namespace {

using SettingsCases = QVector<SettingsCase>;

QByteArray sized(const char* what, int length) {
    return "511 to 513 bytes: " + QByteArray(what) + ' ' + QByteArray::number(length);
}

SettingsCase loaded(const QByteArray& name, const QByteArray& content,
                    const NetworkBytes& record = sampleNetwork()) {
    return {{name, content, HostileCase::None, "files", "hostile.ini"}, true, record};
}

/** Refused at its first key, or for want of it. */
SettingsCase refused(const QByteArray& name, const QByteArray& content,
                     const NetworkBytes& record = {}) {
    return {{name, content, HostileCase::None, "files", "hostile.ini"}, false, record};
}

SettingsCase trick(const QByteArray& name, HostileCase::Trick trick) {
    SettingsCase c = refused(name, sampleNetworkIni());
    c.trick = trick;
    return c;
}

/** What is read before that key. */
NetworkBytes upTo(const char* key) {
    return sampleNetwork().clearFrom(key);
}

void addTricks(SettingsCases& cases) {
    cases += {trick("directory", HostileCase::Folder), trick("unreadable", HostileCase::Unreadable),
              trick("disappears", HostileCase::Gone), trick("2 GiB of zeros", HostileCase::Zeros)};
    for (const HostileCase& odd : oddPlaces(".ini")) {
        cases += loaded(odd.name, sampleNetworkIni());
        cases.last().folder = odd.folder;
        cases.last().file = odd.file;
    }
}

void addContents(SettingsCases& cases) {
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
        refused("carriage returns alone", iniWith("\n", "\r")),
    };
}

// A NUL ends the value that it stands in; anywhere else it is a byte like others.
void addNulBytes(SettingsCases& cases) {
    const auto nul = [](const char* text) { return QByteArray(text).replace('@', '\0'); };
    cases += {
        refused("NUL bytes: behind the header", iniWith("[Network]", nul("[Network]@"))),
        refused("NUL bytes: before the header", iniWith("[Network]", nul("@[Network]"))),
        refused("NUL bytes: in a key", iniWith("DHCPUse", nul("DHCP@Use"))),
        refused("NUL bytes: nothing but one as value", iniWith("Lab 5", nul("@")), upTo("SSID")),
        loaded("NUL bytes: in the SSID", iniWith("Lab 5", nul("La@b 5")),
               sampleNetwork().ssid(QByteArray("La\0\0\0", 5))),
        loaded("NUL bytes: in a number", iniWith("IPAddress=192", nul("IPAddress=19@2")),
               sampleNetwork().ipAddress("13000000")),
        loaded("NUL bytes: between the lines", iniWith("SSID=", nul("@@@\nSSID="))),
        loaded("NUL bytes: in a comment", iniWith("; 0:", nul(";@0:"))),
    };
}

// The bytes go into the record as they are. Second bytes of Shift-JIS may be '\' or '['.
void addShiftJis(SettingsCases& cases) {
    const QByteArray room("\x91\xAA\x92\xE8\x8E\xBA");  // 測定室
    const QByteArray traps("\x83\x5C\x95\x5C\x81\x5B"); // ソ表ー
    cases += {
        loaded("Shift-JIS: SSID", iniWith("Lab 5", room), sampleNetwork().ssid(room)),
        loaded("Shift-JIS: SSID with second bytes of ASCII", iniWith("Lab 5", traps),
               sampleNetwork().ssid(traps)),
        loaded("Shift-JIS: comment", iniWith("; 0:eDHCP_OFF", "; " + traps)),
        refused("Shift-JIS: header", iniWith("[Network]", "[" + room + "]")),
        loaded("Shift-JIS: digits of full width", iniWith("IPAddress=192", "IPAddress=\x82\x50"),
               sampleNetwork().ipAddress("00a8000a")),
    };
}

// 511 bytes fill the buffer that a value is read into, so it may have been cut: it is refused.
void addLongValues(SettingsCases& cases) {
    for (const int length : {511, 512, 513}) {
        const QByteArray address = "192.168.0.10";
        const QByteArray zeros(length - address.size(), '0');
        cases += {
            refused(sized("SSID of", length), iniWith("Lab 5", QByteArray(length, 's')),
                    upTo("SSID")),
            refused(sized("key of", length), iniWith("pass word=1", QByteArray(length, 'k')),
                    upTo("EncryptKey")),
            refused(sized("address of", length), iniWith("192.168.0.10", zeros + address),
                    upTo("IPAddress")),
            loaded(sized("unknown key of", length),
                   iniWith("SSID=", "Other=" + QByteArray(length, 'o') + "\nSSID=")),
            loaded(sized("comment of", length), iniWith("; 0:eDHCP_OFF", QByteArray(length, ';'))),
        };
    }
    const QByteArray ssid(32, 's');
    const QByteArray key(64, 'k');
    cases += {
        loaded("field limits: SSID of 32", iniWith("Lab 5", ssid), sampleNetwork().ssid(ssid)),
        refused("field limits: SSID of 33", iniWith("Lab 5", ssid + 's'), upTo("SSID")),
        loaded("field limits: key of 64", iniWith("pass word=1", key),
               sampleNetwork().encryptKey(key)),
        refused("field limits: key of 65", iniWith("pass word=1", key + 'k'), upTo("EncryptKey")),
    };
}

// Numbers are whole ones: leading digits count, text without any is 0.
void addNumbers(SettingsCases& cases) {
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
        cases +=
            loaded(row + " as switch", iniWith("DHCPUse=0", "DHCPUse=" + QByteArray(number.text)),
                   sampleNetwork().dhcpUse(number.isOn ? "01000000" : "00000000"));
        cases += loaded(row + " as octet",
                        iniWith("=192.168.0.10", '=' + QByteArray(number.text) + ".168.0.10"),
                        sampleNetwork().ipAddress(QByteArray(number.octet) + "a8000a"));
    }
    const QByteArray digits(100000, '1');
    cases += {
        refused("100000 digits: switch", iniWith("DHCPUse=0", "DHCPUse=" + digits), NetworkBytes()),
        refused("100000 digits: octet", iniWith("=192.168.0.10", '=' + digits + ".168.0.10"),
                upTo("IPAddress")),
        refused("100000 digits: SSID", iniWith("Lab 5", digits), upTo("SSID")),
        refused("100000 digits: key", iniWith("pass word=1", digits), upTo("EncryptKey")),
    };
}

using CalibrationCases = QVector<CalibrationCase>;

/** Makes the cases of one accessory. */
class CaseMaker {
public:
    explicit CaseMaker(bool adapter)
        : m_adapter(adapter), m_valueCount(calRefReader(adapter).valueCount),
          m_serialLine(calibrationTab(adapter).serialLine) {}

    CalibrationCases all() {
        addTricks();
        addContents();
        addNulBytes();
        addLongTexts();
        addNumbers();
        return m_cases;
    }

private:
    QByteArray values() const { return sampleLine(m_valueCount); }
    QByteArray file(const QByteArray& serialLine, const QByteArray& values) const {
        return "heading\nheading\n" + serialLine + '\n' + values + '\n';
    }
    QByteArray file() const { return calRefFile(m_adapter, m_serialLine); }

    /** With nothing stored. */
    CalibrationCase make(const QByteArray& name, const QByteArray& content) const {
        CalibrationCase c;
        c.name = name + (m_adapter ? ", adapter" : ", white plate");
        c.adapter = m_adapter;
        c.content = content;
        return c;
    }

    /** Serial number and values of a good file come out of it. */
    void addGood(const QByteArray& name, const QByteArray& content) {
        CalibrationCase c = make(name, content);
        c.serialNo = QByteArray::fromHex(m_serialLine);
        c.serialNumber = m_serialLine.toInt();
        c.values = sampleValues(m_valueCount);
        m_cases += c;
    }

    /** A good file but for its first value. */
    void addValue(const QByteArray& name, const QByteArray& text, float value) {
        addGood(name, file(m_serialLine, text + values().mid(4))); // behind "0.25"
        m_cases.last().values[0] = value;
    }

    /** Without a third and a fourth line: no error of the reader's, but no serial number either. */
    void addWithoutLines(const QByteArray& name, const QByteArray& content) {
        CalibrationCase c = make(name, content);
        c.isAccepted = false;
        m_cases += c;
    }

    /** The adapter's reader goes on without a number, that of the white plate fails. */
    void addWrongSerialLine(const QByteArray& name, const QByteArray& line,
                            const QByteArray& printed) {
        CalibrationCase c = make(name, file(line, values()));
        c.isRead = m_adapter;
        c.isAccepted = false;
        c.printed = "incorrect data. " + printed + '\n';
        c.values = sampleValues(m_valueCount);
        m_cases += c;
    }

    /** A serial line that is too long and begins with NUL; as many values, each of which begins
       with NUL and so is 0. */
    void addUtf16(const QByteArray& name, const QByteArray& content) {
        addWrongSerialLine(name, "", "");
        m_cases.last().content = content;
        m_cases.last().values.fill(0.0F);
    }

    void addTrick(const QByteArray& name, HostileCase::Trick trick) {
        CalibrationCase c = make(name, file());
        c.trick = trick;
        c.isRead = false;
        c.isAccepted = false;
        m_cases += c;
    }

    void addTricks() {
        addTrick("directory", HostileCase::Folder);
        addTrick("unreadable", HostileCase::Unreadable);
        addTrick("disappears", HostileCase::Gone);
        addWithoutLines("2 GiB of zeros", "");
        m_cases.last().trick = HostileCase::Zeros;
        for (const HostileCase& odd : oddPlaces(".csv")) {
            addGood(odd.name, file());
            m_cases.last().folder = odd.folder;
            m_cases.last().file = odd.file;
        }
    }

    void addContents() {
        const QByteArray name("\x8D\x5A\x90\xB3\x94\x5C,\x83\x5C"); // 校正能,ソ
        addWithoutLines("empty", "");
        addWithoutLines("one byte: digit", "1");
        addWithoutLines("one byte: line end", "\n");
        addUtf16("UTF-16: low byte first", "\xFF\xFE" + utf16(file(), true));
        addUtf16("UTF-16: high byte first", "\xFE\xFF" + utf16(file(), false));
        addGood("byte-order mark", "\xEF\xBB\xBF" + file());
        addWithoutLines("carriage returns alone", file().replace('\n', '\r'));
        addGood("Shift-JIS: headings", file().replace("heading", name));
        addWrongSerialLine("Shift-JIS: serial line", m_serialLine + "\x94\xD4", // 番
                           m_serialLine + "\x94\xD4");
        addValue("Shift-JIS: value", "\x82\x50", 0.0F);             // １, which is no digit
        addValue("Shift-JIS: behind a value", "0.5\x96\x87", 0.5F); // 枚
    }

    void addNulBytes() {
        const QByteArray nul(1, '\0');
        const QByteArray inside = m_serialLine.left(4) + nul + m_serialLine.mid(5);
        addGood("NUL bytes: headings", file().replace("heading", nul + nul));
        addGood("NUL bytes: line behind", file() + nul + '\n' + nul);
        addValue("NUL bytes: value", nul, 0.0F);
        addValue("NUL bytes: behind a value", "0.5" + nul + "9", 0.5F);
        addWrongSerialLine("NUL bytes: too long a serial line", m_serialLine + nul, m_serialLine);
        // A pair that is not hexadecimal is 0xFF, which counts as 165.
        addGood("NUL bytes: serial number", file(inside, values()));
        m_cases.last().serialNo[2] = '\xFF';
        const int lastTwo = m_serialLine.right(2).toInt();
        m_cases.last().serialNumber = m_serialLine.left(4).toInt() * 10000 + 16500 + lastTwo;
    }

    void addLongTexts() {
        for (const int length : {511, 512, 513}) {
            const QByteArray serialLine(length, '1');
            addGood(sized("headings of", length),
                    file().replace("heading", QByteArray(length, 'h')));
            addWrongSerialLine(sized("serial line of", length), serialLine, serialLine);
            addValue(sized("value of", length), QByteArray(length - 3, '0') + "0.5", 0.5F);
        }
        addWrongSerialLine("field limits: serial line of 9", '0' + m_serialLine,
                           '0' + m_serialLine);
        for (const int count : {m_valueCount - 1, m_valueCount + 1}) {
            addGood("field limits: values, " + QByteArray::number(count),
                    file(m_serialLine, sampleLine(count)));
            m_cases.last().isRead = false;
            m_cases.last().isAccepted = false;
            m_cases.last().values.clear();
        }
    }

    void addNumbers() {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        addValue("numbers: 1e400", "1e400", infinity);
        addValue("numbers: -1e400", "-1e400", -infinity);
        addValue("numbers: 1e39", "1e39", infinity);
        addValue("numbers: 1e-400", "1e-400", 0.0F);
        addValue("numbers: nan", "nan", std::nanf(""));
        addValue("numbers: inf", "inf", infinity);
        addValue("numbers: 0x10", "0x10", 16.0F);
        addValue("numbers: -0", "-0", -0.0F);
        addValue("100000 digits: whole", QByteArray(100000, '1'), infinity);
        addValue("100000 digits: leading zeros", QByteArray(99999, '0') + '7', 7.0F);
        addValue("100000 digits: fraction", "0." + QByteArray(100000, '3'), 1.0F / 3.0F);
    }

    bool m_adapter;
    int m_valueCount;
    QByteArray m_serialLine;
    CalibrationCases m_cases;
};

} // namespace

SettingsCases settingsCases() {
    SettingsCases cases;
    addTricks(cases);
    addContents(cases);
    addNulBytes(cases);
    addShiftJis(cases);
    addLongValues(cases);
    addNumbers(cases);
    return cases;
}

CalibrationCases calibrationCases() {
    return CaseMaker(false).all() + CaseMaker(true).all();
}
