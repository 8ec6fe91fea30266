#include "files/NumberText.h"
#include "tests/unit/files/FileFixture.h"

#include <QRandomGenerator>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float largest = std::numeric_limits<float>::max();

} // namespace

using IntegerCase = Case<const char*, std::uint32_t>;
using RealCase = Case<const char*, float>;

class TestNumberText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void integer_data() {
        addRows(QVector<IntegerCase>{
            {"zero", "0", 0},
            {"digits", "1234567890", 1234567890},
            {"leading zeros are decimal", "0010", 10},
            {"plus", "+7", 7},
            {"minus one", "-1", 0xFFFFFFFF},
            {"text behind", "12abc", 12},
            {"decimal point behind", "3.9", 3},
            {"blanks before", " \t\n\v\f\r42", 42},
            {"blank inside", "4 2", 4},
            {"empty", "", 0},
            {"blanks only", "   ", 0},
            {"no digits", "abc", 0},
            {"hexadecimal", "0x10", 0},
            {"sign alone", "-", 0},
            {"sign, blank, digit", "- 5", 0},
            {"two signs", "+-5", 0},
            {"next byte is no blank", "\xC2\xA0\x35", 0},
            {"highest 32-bit", "2147483647", 0x7FFFFFFF},
            {"above it", "2147483648", 0x80000000},
            {"lowest 32-bit", "-2147483648", 0x80000000},
            {"below it", "-2147483649", 0x7FFFFFFF},
            {"32 bits", "4294967295", 0xFFFFFFFF},
            {"33 bits", "4294967296", 0},
            {"33 bits and one", "4294967297", 1},
            {"below the highest", "9223372036854775806", 0xFFFFFFFE},
            {"the highest", "9223372036854775807", 0xFFFFFFFF},
            {"saturates above", "9223372036854775808", 0xFFFFFFFF},
            {"saturates by a digit", "92233720368547758070", 0xFFFFFFFF},
            {"saturates far above", "99999999999999999999", 0xFFFFFFFF},
            {"above the lowest", "-9223372036854775807", 1},
            {"the lowest", "-9223372036854775808", 0},
            {"saturates below", "-9223372036854775809", 0},
            {"saturates far below", "-99999999999999999999", 0},
            {"many zeros first", "000000000000000000000000000000000005", 5},
        });
    }
    void integer() {
        const auto row = rowOf<IntegerCase>();
        QCOMPARE(NumberText::toInt32(row.given), static_cast<std::int32_t>(row.expected));
    }

    void real_data() {
        addRows(QVector<RealCase>{
            {"integer", "12", 12.0F},
            {"a half", "0.5", 0.5F},
            {"no digit before the point", ".25", 0.25F},
            {"no digit behind the point", "3.", 3.0F},
            {"minus", "-1.5", -1.5F},
            {"minus zero", "-0.0", -0.0F},
            {"plus", "+1.5", 1.5F},
            {"exponent", "1.5e3", 1500.0F},
            {"negative exponent", "25E-2", 0.25F},
            {"exponent without digits", "2e", 2.0F},
            {"blanks before", " \t\n\v\f\r0.5", 0.5F},
            {"blank behind", "0.5 ", 0.5F},
            {"text behind", "0.5abc", 0.5F},
            {"decimal comma ends it", "1,5", 1.0F},
            {"no thousands", "1 000", 1.0F},
            {"hexadecimal", "0x10", 16.0F},
            {"infinity", "inf", infinity},
            {"minus infinity", "-inf", -infinity},
            {"empty", "", 0.0F},
            {"blanks only", "  ", 0.0F},
            {"no number", "abc", 0.0F},
            {"point alone", ".", 0.0F},
            {"nearest single", "0.1", 0.1F},
            // To double first, which lands on the middle between two singles, then to the even one.
            {"rounded twice", "1.000000059604644775390625000000000001", 1.0F},
            {"largest", "3.4028234663852886e38", largest},
            {"rounds to the largest", "3.40282356e38", largest},
            {"rounds beyond", "3.4028235677973366e38", infinity},
            {"beyond single", "1e39", infinity},
            {"below single", "-1e39", -infinity},
            {"beyond double", "1e400", infinity},
            {"below double", "-1e400", -infinity},
            {"smallest single", "1.401298464324817e-45", std::numeric_limits<float>::denorm_min()},
            {"underflows single", "1e-50", 0.0F},
            {"underflows double", "1e-400", 0.0F},
        });
    }
    void real() {
        const auto row = rowOf<RealCase>();
        const float actual = NumberText::toFloat(row.given);
        // Not QCOMPARE, which takes neighbouring singles for equal.
        QVERIFY2(std::equal_to<float>()(actual, row.expected),
                 QByteArray::number(static_cast<double>(actual), 'g', 12).constData());
        QCOMPARE(std::signbit(actual), std::signbit(row.expected));
    }

    /** No byte behind the text is read: none can be. */
    void endsWithTheText() {
        const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
        void* const pages =
            ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANON, -1, 0);
        QVERIFY(pages != MAP_FAILED);
        char* const end = static_cast<char*>(pages) + page;
        QCOMPARE(::mprotect(end, page, PROT_NONE), 0);
        for (const QByteArray text : {"", "-", "1", "1.", "1.5", "1.5e", "0x"}) {
            char* const start = end - text.size() - 1;
            std::memcpy(start, text.constData(), static_cast<std::size_t>(text.size()) + 1);
            QCOMPARE(NumberText::toFloat(start), std::strtof(text.constData(), nullptr));
            QCOMPARE(NumberText::toInt32(start),
                     static_cast<std::int32_t>(std::strtol(text.constData(), nullptr, 10)));
        }
        QCOMPARE(::munmap(pages, 2 * page), 0);
    }

    void notANumber() {
        QVERIFY(std::isnan(NumberText::toFloat("nan")));
        QVERIFY(std::isnan(NumberText::toFloat("-nan")));
    }

    /** Bit for bit, for numbers as they stand in files: every count of digits before and behind the
        point, signs, blanks, exponents, and what may follow. */
    void readsAsTheCLibraryDoes() {
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
            QVERIFY2(bytesOf(actual) == bytesOf(expected), text.constData());
        }
    }
};

TEST_CLASS(TestNumberText)

#include "tst_number_text.moc"
