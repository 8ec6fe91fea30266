#include "files/NumberText.h"

#include "tests/support/TestMain.h"
#include <QByteArray>
#include <QRandomGenerator>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>

class TestNumberText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void integer_data();
    void integer();
    void real_data();
    void real();
    void notANumber();
    void readsAsTheCLibraryDoes();
};

void TestNumberText::integer_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("value");
    const auto row = [](const char* name, const char* text, std::uint32_t bits) {
        QTest::newRow(name) << QByteArray(text) << static_cast<int>(bits);
    };
    row("zero", "0", 0);
    row("digits", "1234567890", 1234567890);
    row("leading zeros are decimal", "0010", 10);
    row("plus", "+7", 7);
    row("minus one", "-1", 0xFFFFFFFF);
    row("text behind", "12abc", 12);
    row("decimal point behind", "3.9", 3);
    row("blanks before", " \t\n\v\f\r42", 42);
    row("blank inside", "4 2", 4);
    row("empty", "", 0);
    row("blanks only", "   ", 0);
    row("no digits", "abc", 0);
    row("hexadecimal", "0x10", 0);
    row("sign alone", "-", 0);
    row("sign, blank, digit", "- 5", 0);
    row("two signs", "+-5", 0);
    row("next byte is no blank",
        "\xC2\xA0"
        "5",
        0);
    row("highest 32-bit", "2147483647", 0x7FFFFFFF);
    row("above it", "2147483648", 0x80000000);
    row("lowest 32-bit", "-2147483648", 0x80000000);
    row("below it", "-2147483649", 0x7FFFFFFF);
    row("32 bits", "4294967295", 0xFFFFFFFF);
    row("33 bits", "4294967296", 0);
    row("33 bits and one", "4294967297", 1);
    row("below the highest", "9223372036854775806", 0xFFFFFFFE);
    row("the highest", "9223372036854775807", 0xFFFFFFFF);
    row("saturates above", "9223372036854775808", 0xFFFFFFFF);
    row("saturates by a digit", "92233720368547758070", 0xFFFFFFFF);
    row("saturates far above", "99999999999999999999", 0xFFFFFFFF);
    row("above the lowest", "-9223372036854775807", 1);
    row("the lowest", "-9223372036854775808", 0);
    row("saturates below", "-9223372036854775809", 0);
    row("saturates far below", "-99999999999999999999", 0);
    row("many zeros first", "000000000000000000000000000000000005", 5);
}

void TestNumberText::integer() {
    QFETCH(QByteArray, text);
    QFETCH(int, value);
    QCOMPARE(static_cast<int>(NumberText::toInt32(text.constData())), value);
}

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float largest = std::numeric_limits<float>::max();

void TestNumberText::real_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<float>("value");
    const auto row = [](const char* name, const char* text, float value) {
        QTest::newRow(name) << QByteArray(text) << value;
    };
    row("integer", "12", 12.0F);
    row("a half", "0.5", 0.5F);
    row("no digit before the point", ".25", 0.25F);
    row("no digit behind the point", "3.", 3.0F);
    row("minus", "-1.5", -1.5F);
    row("minus zero", "-0.0", -0.0F);
    row("plus", "+1.5", 1.5F);
    row("exponent", "1.5e3", 1500.0F);
    row("negative exponent", "25E-2", 0.25F);
    row("exponent without digits", "2e", 2.0F);
    row("blanks before", " \t\n\v\f\r0.5", 0.5F);
    row("blank behind", "0.5 ", 0.5F);
    row("text behind", "0.5abc", 0.5F);
    row("decimal comma ends it", "1,5", 1.0F);
    row("no thousands", "1 000", 1.0F);
    row("hexadecimal", "0x10", 16.0F);
    row("infinity", "inf", infinity);
    row("minus infinity", "-inf", -infinity);
    row("empty", "", 0.0F);
    row("blanks only", "  ", 0.0F);
    row("no number", "abc", 0.0F);
    row("point alone", ".", 0.0F);
    row("nearest single", "0.1", 0.1F);
    // To double first, which lands on the middle between two singles, then to the even one.
    row("rounded twice", "1.000000059604644775390625000000000001", 1.0F);
    row("largest", "3.4028234663852886e38", largest);
    row("rounds to the largest", "3.40282356e38", largest);
    row("rounds beyond", "3.4028235677973366e38", infinity);
    row("beyond single", "1e39", infinity);
    row("below single", "-1e39", -infinity);
    row("beyond double", "1e400", infinity);
    row("below double", "-1e400", -infinity);
    row("smallest single", "1.401298464324817e-45", std::numeric_limits<float>::denorm_min());
    row("underflows single", "1e-50", 0.0F);
    row("underflows double", "1e-400", 0.0F);
}

void TestNumberText::real() {
    QFETCH(QByteArray, text);
    QFETCH(float, value);
    const float actual = NumberText::toFloat(text.constData());
    // Not QCOMPARE, which takes neighbouring singles for equal.
    QVERIFY2(std::equal_to<float>()(actual, value),
             QByteArray::number(static_cast<double>(actual), 'g', 12).constData());
    QCOMPARE(std::signbit(actual), std::signbit(value));
}

void TestNumberText::notANumber() {
    QVERIFY(std::isnan(NumberText::toFloat("nan")));
    QVERIFY(std::isnan(NumberText::toFloat("-nan")));
}

/** Bit for bit, for numbers as they stand in files: every count of digits before and behind the
    point, signs, blanks, exponents, and what may follow. */
void TestNumberText::readsAsTheCLibraryDoes() {
    QRandomGenerator random(20261120);
    const QByteArray starts[] = {"", "-", "+", " ", "\t-"};
    const QByteArray ends[] = {"", ",", " ", "e3", "E-7", "x", "e", ".5", "f"};
    for (int i = 0; i < 400000; ++i) {
        QByteArray text = starts[random.bounded(5)];
        for (int digits = random.bounded(19); digits > 0; --digits)
            text += static_cast<char>('0' + random.bounded(10));
        if (random.bounded(4) != 0)
            text += '.';
        for (int digits = random.bounded(19); digits > 0; --digits)
            text += static_cast<char>('0' + random.bounded(10));
        text += ends[random.bounded(9)];
        const float expected = static_cast<float>(std::strtod(text.constData(), nullptr));
        const float actual = NumberText::toFloat(text.constData());
        QVERIFY2(std::memcmp(&actual, &expected, sizeof actual) == 0, text.constData());
    }
}

TEST_CLASS(TestNumberText)

#include "tst_number_text.moc"
