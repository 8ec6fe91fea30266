#include "files/CFileIO.h"
#include "tests/unit/files/FileFixture.h"

#include "tests/support/TestMain.h"

#include <memory>

class TestSplitString : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pieces_data();
    void pieces();
    void manyPieces();
    void binaryCodedDecimal_data();
    void binaryCodedDecimal();
    void everyByte();
    void hasNoMembers();
    void onlyTheDestructorIsVirtual();
};

void TestSplitString::pieces_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<char>("delimiter");
    QTest::addColumn<QList<QByteArray>>("pieces");
    const auto row = [](const char* name, const QByteArray& text, char delimiter,
                        const QList<QByteArray>& pieces) {
        QTest::newRow(name) << text << delimiter << pieces;
    };
    row("an empty cell", "1,,2,3", ',', {"1", "2", "3"});
    row("empty text", "", ',', {});
    row("one piece", "abc", ',', {"abc"});
    row("two pieces", "a,b", ',', {"a", "b"});
    row("leading delimiter", ",a,b", ',', {"a", "b"});
    row("trailing delimiter", "a,b,", ',', {"a", "b"});
    row("delimiter alone", ",", ',', {});
    row("delimiters alone", ",,,,", ',', {});
    row("many in a row", "a,,,,b", ',', {"a", "b"});
    row("blanks are kept", " a , ,b\t", ',', {" a ", " ", "b\t"});
    row("carriage return is kept", "a,\r", ',', {"a", "\r"});
    row("other delimiter", "192.168.0.10", '.', {"192", "168", "0", "10"});
    row("another one is text", "1,2.3,4", '.', {"1,2", "3,4"});
    row("NUL byte is text", QByteArray("a\0b,c", 5), ',', {QByteArray("a\0b", 3), "c"});
    row("high byte as delimiter",
        "a\xFF"
        "b",
        '\xFF', {"a", "b"});
}

void TestSplitString::pieces() {
    QFETCH(QByteArray, text);
    QFETCH(char, delimiter);
    QFETCH(QList<QByteArray>, pieces);
    QList<QByteArray> actual;
    for (const std::string& piece : CFileIO::SplitString(text.toStdString(), delimiter))
        actual.append(QByteArray::fromStdString(piece));
    QCOMPARE(actual, pieces);
}

void TestSplitString::manyPieces() {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += std::to_string(i) + ',';
    const std::vector<std::string> pieces = CFileIO::SplitString(text, ',');
    QCOMPARE(pieces.size(), std::size_t{100000});
    QCOMPARE(pieces.back(), std::string("99999"));
}

void TestSplitString::binaryCodedDecimal_data() {
    QTest::addColumn<int>("byte");
    QTest::addColumn<unsigned int>("value");
    QTest::newRow("00") << 0x00 << 0U;
    QTest::newRow("09") << 0x09 << 9U;
    QTest::newRow("10") << 0x10 << 10U;
    QTest::newRow("78") << 0x78 << 78U;
    QTest::newRow("99") << 0x99 << 99U;
    QTest::newRow("low digit above 9") << 0x0F << 15U;
    QTest::newRow("high digit above 9") << 0xA0 << 100U;
    QTest::newRow("both above 9") << 0xFF << 165U;
}

void TestSplitString::binaryCodedDecimal() {
    QFETCH(int, byte);
    QFETCH(unsigned int, value);
    QCOMPARE(CFileIO::BcdToDec(static_cast<unsigned char>(byte)), value);
}

void TestSplitString::everyByte() {
    for (unsigned int byte = 0; byte < 256; ++byte)
        QCOMPARE(CFileIO::BcdToDec(static_cast<unsigned char>(byte)), byte / 16 * 10 + byte % 16);
}

void TestSplitString::hasNoMembers() {
    QVERIFY(std::has_virtual_destructor<CFileIO>::value);
    QCOMPARE(sizeof(CFileIO), sizeof(void*));
}

struct Derived : CFileIO {
    explicit Derived(bool& isDestroyed) : destroyed(isDestroyed) {}
    Derived(const Derived&) = delete;
    Derived& operator=(const Derived&) = delete;
    ~Derived() override { destroyed = true; }
    bool WriteNetworkIni(const char*, const KVA_NETWORKINFO*) { return true; }
    bool ReadNetworkIni(const char*, KVA_NETWORKINFO*) { return true; }
    bool GetCalRefDataFromFile(const char*, KVA_JIG_CALREFDATA*) { return true; }
    bool GetAmbAdpCalRefDataFromFile(const char*, KVA_JIG_CALREFDATA*) { return true; }
    bool& destroyed;
};

void TestSplitString::onlyTheDestructorIsVirtual() {
    const TestFolder folder;
    const QByteArray missing = folder.path("no folder/no file");
    KVA_NETWORKINFO network = {};
    KVA_JIG_CALREFDATA calibration = {};
    bool destroyed = false;
    std::unique_ptr<CFileIO> object = std::make_unique<Derived>(destroyed);
    QVERIFY(!object->WriteNetworkIni(missing.constData(), &network));
    QVERIFY(!object->ReadNetworkIni(missing.constData(), &network));
    QVERIFY(!object->GetCalRefDataFromFile(missing.constData(), &calibration));
    QVERIFY(!object->GetAmbAdpCalRefDataFromFile(missing.constData(), &calibration));
    object.reset();
    QVERIFY(destroyed);
}

TEST_CLASS(TestSplitString)

#include "tst_split_string.moc"
