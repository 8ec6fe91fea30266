#include "files/CFileIO.h"
#include "tests/unit/files/FileFixture.h"

namespace {

struct PiecesRow {
    const char* name;
    QByteArray text;
    char delimiter;
    QByteArrayList pieces;
};

struct Derived : CFileIO {
    bool WriteNetworkIni(const char*, const KVA_NETWORKINFO*) { return true; }
    bool ReadNetworkIni(const char*, KVA_NETWORKINFO*) { return true; }
    bool GetCalRefDataFromFile(const char*, KVA_JIG_CALREFDATA*) { return true; }
    bool GetAmbAdpCalRefDataFromFile(const char*, KVA_JIG_CALREFDATA*) { return true; }
};

} // namespace

using DecimalCase = Case<unsigned char, unsigned int>;

class TestSplitString : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pieces_data() {
        addRows(QVector<PiecesRow>{
            {"an empty cell", "1,,2,3", ',', {"1", "2", "3"}},
            {"empty text", "", ',', {}},
            {"one piece", "abc", ',', {"abc"}},
            {"two pieces", "a,b", ',', {"a", "b"}},
            {"leading delimiter", ",a,b", ',', {"a", "b"}},
            {"trailing delimiter", "a,b,", ',', {"a", "b"}},
            {"delimiter alone", ",", ',', {}},
            {"delimiters alone", ",,,,", ',', {}},
            {"many in a row", "a,,,,b", ',', {"a", "b"}},
            {"blanks are kept", " a , ,b\t", ',', {" a ", " ", "b\t"}},
            {"carriage return is kept", "a,\r", ',', {"a", "\r"}},
            {"other delimiter", "192.168.0.10", '.', {"192", "168", "0", "10"}},
            {"another one is text", "1,2.3,4", '.', {"1,2", "3,4"}},
            {"NUL byte is text", QByteArray("a\0b,c", 5), ',', {QByteArray("a\0b", 3), "c"}},
            {"high byte as delimiter", "a\xFF\x62", '\xFF', {"a", "b"}},
        });
    }
    void pieces() {
        const auto row = rowOf<PiecesRow>();
        QByteArrayList actual;
        for (const std::string& piece : CFileIO::SplitString(row.text.toStdString(), row.delimiter))
            actual.append(QByteArray::fromStdString(piece));
        QCOMPARE(actual, row.pieces);
    }

    void manyPieces() {
        std::string text;
        for (int i = 0; i < 100000; ++i)
            text += std::to_string(i) + ',';
        const std::vector<std::string> pieces = CFileIO::SplitString(text, ',');
        QCOMPARE(pieces.size(), std::size_t{100000});
        QCOMPARE(pieces.back(), std::string("99999"));
    }

    void binaryCodedDecimal_data() {
        addRows(QVector<DecimalCase>{
            {"00", 0x00, 0},
            {"09", 0x09, 9},
            {"10", 0x10, 10},
            {"78", 0x78, 78},
            {"99", 0x99, 99},
            {"low digit above 9", 0x0F, 15},
            {"high digit above 9", 0xA0, 100},
            {"both above 9", 0xFF, 165},
        });
    }
    void binaryCodedDecimal() {
        const auto row = rowOf<DecimalCase>();
        QCOMPARE(CFileIO::BcdToDec(row.given), row.expected);
    }

    void everyByte() {
        for (unsigned int byte = 0; byte < 256; ++byte)
            QCOMPARE(CFileIO::BcdToDec(static_cast<unsigned char>(byte)),
                     byte / 16 * 10 + byte % 16);
    }

    void hasNoMembers() {
        QVERIFY(std::has_virtual_destructor<CFileIO>::value);
        QCOMPARE(sizeof(CFileIO), sizeof(void*));
    }

    void onlyTheDestructorIsVirtual() {
        const TestFolder folder;
        const char* missing = "no folder/no file";
        KVA_NETWORKINFO network = {};
        KVA_JIG_CALREFDATA calibration = {};
        Derived derived;
        CFileIO& object = derived;
        QVERIFY(!object.WriteNetworkIni(missing, &network));
        QVERIFY(!object.ReadNetworkIni(missing, &network));
        QVERIFY(!object.GetCalRefDataFromFile(missing, &calibration));
        QVERIFY(!object.GetAmbAdpCalRefDataFromFile(missing, &calibration));
    }
};

TEST_CLASS(TestSplitString)

#include "tst_split_string.moc"
