#include "files/CHexToBin.h"
#include "files/NumberText.h"
#include "tests/support/MadeLocale.h"
#include "tests/unit/files/CalRefFixture.h"
#include "tests/unit/files/NetworkFixture.h"

#include <clocale>
#include <cstdlib>
#include <locale.h>
#include <locale>
#ifdef __APPLE__
#include <xlocale.h>
#endif

// The C library loses a list of folders whenever newlocale reads LOCPATH; leak checkers ask here.
extern "C" const char* __lsan_default_suppressions() { // NOLINT
    return "leak:__argz_add_sep";
}

/**
 * Everything that is read and written under a locale with a decimal comma and a thousands point.
 */
class TestFilesLocale : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void numbers();
    void numbersUnderAThreadLocale();
    void calibrationValues_data();
    void calibrationValues();
    void networkSettings();
    void hexadecimal();

private:
    const char* const m_name = "de_DE.UTF-8";
    QTemporaryDir m_folder;
    std::locale m_before;
};

void TestFilesLocale::initTestCase() {
#ifndef __APPLE__ // which has the locale, but not the variable that says where to look for it
    const QByteArray problem = makeLocale(m_folder.path(), QString::fromLatin1(m_name));
    QVERIFY2(problem.isEmpty(), problem.constData());
    QVERIFY(qputenv("LOCPATH", QFile::encodeName(m_folder.path())));
#endif
}

void TestFilesLocale::cleanupTestCase() {
    qunsetenv("LOCPATH");
}

void TestFilesLocale::init() {
    QVERIFY2(std::setlocale(LC_ALL, m_name), "the locale cannot be used");
    m_before = std::locale::global(std::locale(m_name)); // what streams use
    QCOMPARE(std::localeconv()->decimal_point, ",");
    QCOMPARE(std::localeconv()->thousands_sep, ".");
    // What would go wrong: the C library's own conversion stops at the point.
    QCOMPARE(std::strtod("0.5", nullptr), 0.0);
    QCOMPARE(std::strtod("0,5", nullptr), 0.5);
}

void TestFilesLocale::cleanup() {
    std::locale::global(m_before);
    std::setlocale(LC_ALL, "C");
}

void TestFilesLocale::numbers() {
    QCOMPARE(NumberText::toFloat("0.5"), 0.5F);
    QCOMPARE(NumberText::toFloat("0,5"), 0.0F);
    QCOMPARE(NumberText::toFloat("-1234.25e1"), -12342.5F);
    QCOMPARE(NumberText::toFloat("1.234,5"), 1.234F);
    QCOMPARE(NumberText::toInt32("1.234"), 1);
    QCOMPARE(NumberText::toInt32("-1234567"), -1234567);
}

/** A locale of the thread's own goes before that of the process. */
void TestFilesLocale::numbersUnderAThreadLocale() {
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

void TestFilesLocale::calibrationValues_data() {
    addReaderRows();
}

void TestFilesLocale::calibrationValues() {
    QFETCH(bool, adapter);
    const CalRefReader reader = calRefReader(adapter);
    const TestFolder folder;
    const QByteArray path =
        folder.write("values.csv", "\n\n12345678\n" + sampleLine(reader.valueCount) + '\n');
    const CalRefRead read(reader, path.constData());
    QVERIFY(read.result);
    QCOMPARE(read.bytes.toHex(), expectedRecord(reader, QByteArray::fromHex("12345678"),
                                                bytesOfFloats(sampleValues(reader.valueCount)))
                                     .toHex());
}

void TestFilesLocale::networkSettings() {
    const TestFolder folder;
    const QByteArray path = folder.path("net.ini");
    const QByteArray bytes = sampleNetwork().dhcpUse("c0bdf0ff").bytes();
    const KVA_NETWORKINFO written = sampleNetwork().dhcpUse("c0bdf0ff").record();
    QVERIFY(CFileIO().WriteNetworkIni(path.constData(), &written));
    QCOMPARE(folder.read("net.ini"), sampleNetworkIni().replace("DHCPUse=0", "DHCPUse=-1000000"));
    KVA_NETWORKINFO info = {};
    QVERIFY(CFileIO().ReadNetworkIni(path.constData(), &info));
    QCOMPARE(bytesOf(info).toHex(), bytes.toHex());
}

void TestFilesLocale::hexadecimal() {
    QCOMPARE(CHexToBin::hexPairToByte("7f"), 127);
    QCOMPARE(CHexToBin::hexPairToByte("\xE4"
                                      "0"),
             -1);
}

QTEST_GUILESS_MAIN(TestFilesLocale)

#include "tst_files_locale.moc"
