#include "files/CHexToBin.h"
#include "files/NumberText.h"
#include "tests/support/MadeLocale.h"
#include "tests/unit/files/FileFixture.h"

#include <clocale>
#include <cstdlib>
#include <locale.h>
#include <locale>
#ifdef __APPLE__
#include <xlocale.h>
#endif

// The C library loses a list of folders whenever newlocale reads LOCPATH; leak checkers ask here.
extern "C" const char* __lsan_default_suppressions() { // NOLINT
    return "leak:argz_add_sep";
}

/** Everything that is read and written under a locale with a decimal comma and a thousands point.
 */
class TestFilesLocale : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
#ifndef __APPLE__ // which has the locale, but not the variable that says where to look for it
        const QByteArray problem = makeLocale(m_folder.path(), m_name);
        QVERIFY2(problem.isEmpty(), problem.constData());
        QVERIFY(qputenv("LOCPATH", m_folder.localPath("")));
#endif
    }
    void cleanupTestCase() {
        qunsetenv("LOCPATH");
    }

    void init() {
        QVERIFY2(std::setlocale(LC_ALL, m_name), "the locale cannot be used");
        m_before = std::locale::global(std::locale(m_name)); // what streams use
        QCOMPARE(std::localeconv()->decimal_point, ",");
        QCOMPARE(std::localeconv()->thousands_sep, ".");
        // What would go wrong: the C library's own conversion stops at the point.
        QCOMPARE(std::strtod("0.5", nullptr), 0.0);
        QCOMPARE(std::strtod("0,5", nullptr), 0.5);
    }
    void cleanup() {
        std::locale::global(m_before);
        std::setlocale(LC_ALL, "C");
    }

    void numbers() {
        QCOMPARE(NumberText::toFloat("0.5"), 0.5F);
        QCOMPARE(NumberText::toFloat("0,5"), 0.0F);
        QCOMPARE(NumberText::toFloat("-1234.25e1"), -12342.5F);
        QCOMPARE(NumberText::toFloat("1.234,5"), 1.234F);
        QCOMPARE(NumberText::toInt32("1.234"), 1);
        QCOMPARE(NumberText::toInt32("-1234567"), -1234567);
    }

    /** A locale of the thread's own goes before that of the process. */
    void numbersUnderAThreadLocale() {
        QVERIFY(std::setlocale(LC_ALL, "C"));
        const locale_t comma = ::newlocale(LC_ALL_MASK, m_name, nullptr);
        QVERIFY(comma);
        const locale_t before = ::uselocale(comma);
        const QByteArray decimalPoint(std::localeconv()->decimal_point);
        const float half = NumberText::toFloat("0.5");
        const locale_t during = ::uselocale(before);
        ::freelocale(comma);
        QCOMPARE(decimalPoint, QByteArray(","));
        QCOMPARE(half, 0.5F);
        QVERIFY(during == comma);
    }

    void calibrationValues_data() {
        addReaders();
    }
    void calibrationValues() {
        QFETCH(bool, adapter);
        const TestFolder folder;
        folder.write("values.csv", calRefFile(adapter));
        const QVector<float> values = sampleValues(calRefReader(adapter).valueCount);
        QCOMPARE(readCalRef(adapter, "values.csv"),
                 outcome(true, calRefRecord(adapter, "\x12\x34\x56\x78", values)));
    }

    void networkSettings() {
        const TestFolder folder;
        const NetworkBytes network = sampleNetwork().dhcpUse("c0bdf0ff");
        const KVA_NETWORKINFO written = network.record();
        QVERIFY(CFileIO().WriteNetworkIni("net.ini", &written));
        QCOMPARE(folder.read("net.ini"), iniWith("DHCPUse=0", "DHCPUse=-1000000"));
        QCOMPARE(readNetwork("net.ini"), outcome(true, network.bytes()));
    }

    void hexadecimal() {
        QCOMPARE(CHexToBin::hexPairToByte("7f"), 127);
        QCOMPARE(CHexToBin::hexPairToByte("\xE4\x30"), -1);
    }

private:
    const char* const m_name = "de_DE.UTF-8";
    const TestFolder m_folder;
    std::locale m_before;
};

TEST_CLASS(TestFilesLocale)

#include "tst_files_locale.moc"
