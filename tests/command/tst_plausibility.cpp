// Values that look wrong: which ones, why, and what was expected; and, in small, the figures that
// plausibility_figures prints.
#include "command/Plausibility.h"
#include "files/CFileIO.h"
#include "tests/command/PlausibilityFigures.h"
#include "tests/support/TestMain.h"

#include <cmath>
#include <limits>

namespace {

const CalibrationAccessory& plate = CalibrationAccessory::whitePlate;
const CalibrationAccessory& adapter = CalibrationAccessory::ambientAdapter;

using Values = std::vector<float>;

/** Reflectance in per cent: 90 at the first value, rising slowly. */
Values smooth(float unit = 100) {
    Values values;
    for (int i = 0; i < KVA_WHITE_PLATE_VALUES; ++i)
        values.push_back(unit * (0.9F + 0.001F * static_cast<float>(i)));
    return values;
}

Values with(std::size_t index, float value, Values values = smooth()) {
    values[index] = value;
    return values;
}

Values constant(float value) {
    return Values(KVA_WHITE_PLATE_VALUES, value);
}

/** "INDEX VALUE: why (expected)" of each. */
QByteArrayList shown(const std::vector<Implausible>& found) {
    QByteArrayList result;
    for (const Implausible& i : found)
        result += QStringLiteral("%1 %2: %3 (%4)")
                      .arg(QString::number(i.index), QString::number(static_cast<double>(i.value)),
                           i.why.english(), i.expected.english())
                      .toUtf8();
    return result;
}

const char digits[] = "It does not go with its neighbours: are digits exchanged, doubled or lost?";
const char scale[] = "The values are as a whole %1 times those that the instrument holds: "
                     "percentages in place of ratios, or the reverse?";
const char point[] = "It is %1 times what its neighbours suggest: is the decimal point missing or "
                     "misplaced, or is it a percentage among ratios?";

QByteArray put(const char* text, const char* number) {
    return QByteArray(text).replace("%1", number);
}

} // namespace

Q_DECLARE_METATYPE(Values)

class TestPlausibility : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_data();
    void rows();
    void samplesOfTheDocuments_data();
    void samplesOfTheDocuments();
    void aSensorThatEndsAtZero();
    void severalAtOnce();
    void expectationsAreNumbers();
    void figures_data();
    void figures();
};

void TestPlausibility::rows_data() {
    QTest::addColumn<Values>("values");
    QTest::addColumn<Values>("held"); // empty: none
    QTest::addColumn<QByteArrayList>("expected");
    const auto row = [](const char* name, const Values& values, const Values& held,
                        const QByteArrayList& expected = {}) {
        QTest::newRow(name) << values << held << expected;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    row("smooth", smooth(), {});
    Values narrow; // each value up to six times the one before
    for (int i = 0; i < KVA_WHITE_PLATE_VALUES; ++i)
        narrow.push_back(static_cast<float>(std::exp(-0.5 * std::pow((i - 19) / 2.5, 2))));
    row("a narrow bell", narrow, {});
    row("smooth, against its like", smooth(), smooth(99));
    row("against a plate of all zeros", smooth(), constant(0));
    row("against what is no number", smooth(), with(3, nan, smooth(1)));
    row("three times as large", smooth(), smooth(33));
    row("a third as large", smooth(33), smooth());
    row("a damaged value that the instrument holds", smooth(), with(5, 9.05F));

    row("a digit in the middle", with(10, 19), {},
        {"10 19: " + QByteArray(digits) + " (about 91)"});
    row("a digit at the beginning", with(0, 99), {},
        {"0 99: " + QByteArray(digits) + " (about 90)"});
    row("a digit at the end", with(37, 73.9F), {},
        {"37 73.9: " + QByteArray(digits) + " (about 93.7)"});
    row("2 % in the middle", with(20, 93.9F), smooth(),
        {"20 93.9: " + QByteArray(digits) + " (about 92; the instrument holds 92)"});
    row("1 % in the middle", with(20, 92.9F), {});
    row("a value of 0", with(20, 0), {}, {"20 0: " + QByteArray(digits) + " (about 92)"});
    row("sign", with(7, -90.7F), {},
        {"7 -90.7: Its sign is not that of its neighbours (about 90.7)"});
    row("point missing", with(7, 907), {}, {"7 907: " + put(point, "10") + " (about 90.7)"});
    row("point misplaced", with(7, 0.907F), {},
        {"7 0.907: " + put(point, "0.01") + " (about 90.7)"});
    row("huge", with(7, 3e38F), {}, {"7 3e+38: " + QByteArray(digits) + " (about 90.7)"});

    row("all equal", constant(92), {}, {"0 92: All values are equal (values that differ)"});
    row("all zero", constant(0), smooth(), {"0 0: All values are equal (values that differ)"});
    row("all negative", smooth(-100), {}, {"0 -90: Most values are negative (positive values)"});
    row("percentages for ratios", smooth(), smooth(1),
        {"0 90: " + put(scale, "100") +
         " (values near those of the instrument, which holds 0.9 here)"});
    row("ratios for percentages", smooth(1), smooth(),
        {"0 0.9: " + put(scale, "0.01") +
         " (values near those of the instrument, which holds 90 here)"});
    row("four times as large", smooth(), smooth(25),
        {"0 90: " + put(scale, "4") +
         " (values near those of the instrument, which holds 22.5 here)"});
}

void TestPlausibility::rows() {
    QFETCH(Values, values);
    QFETCH(Values, held);
    QFETCH(QByteArrayList, expected);
    QCOMPARE(shown(findImplausible(plate, values.data(), held.empty() ? nullptr : held.data())),
             expected);
}

void TestPlausibility::samplesOfTheDocuments_data() {
    QTest::addColumn<bool>("isPlate");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("white plate") << true << QByteArray("white-plate.csv");
    QTest::newRow("adapter") << false << QByteArray("ambient-adapter.csv");
}

void TestPlausibility::samplesOfTheDocuments() {
    QFETCH(bool, isPlate);
    QFETCH(QByteArray, name);
    const CalibrationAccessory& accessory = isPlate ? plate : adapter;
    KVA_JIG_CALREFDATA record = {};
    QVERIFY((CFileIO().*accessory.readFile)((VQTL4_SAMPLES "/" + name).constData(), &record));
    const float* values = accessory.values(record);
    QCOMPARE(shown(findImplausible(accessory, values, values)), QByteArrayList());
}

void TestPlausibility::aSensorThatEndsAtZero() {
    Values values;
    for (int i = 0; i < KVA_AMBIENT_ADAPTER_VALUES; ++i) {
        // Four decimals of a bell that is 0 at both ends, and noise around it.
        const double bell = std::exp(-0.5 * std::pow((i - 37) / 8.0, 2));
        values.push_back(static_cast<float>(std::round(bell * 1e4) / 1e4) -
                         (i % 7 == 0 ? 0.0001F : 0));
    }
    QVERIFY(values.front() < 0);
    QCOMPARE(shown(findImplausible(adapter, values.data(), nullptr)), QByteArrayList());
    values[40] *= 1.1F;
    const auto found = findImplausible(adapter, values.data(), nullptr);
    QCOMPARE(found.size(), std::size_t(1));
    QCOMPARE(found[0].index, std::size_t(40));
}

void TestPlausibility::severalAtOnce() {
    Values values = smooth();
    for (const std::size_t index : {1U, 12U, 25U, 36U})
        values[index] /= 100;
    QList<std::size_t> indices;
    for (const Implausible& found : findImplausible(plate, values.data(), nullptr))
        indices += found.index;
    QCOMPARE(indices, (QList<std::size_t>{1, 12, 25, 36}));
}

void TestPlausibility::expectationsAreNumbers() {
    // The parabola through these leads beyond any number at the first value.
    Values values = constant(1e-45F);
    values[1] = values[4] = 3e38F;
    values[3] = -3e38F;
    const QByteArrayList found = shown(findImplausible(plate, values.data(), nullptr));
    QVERIFY(found.size() > 1);
    for (const QByteArray& text : found)
        QVERIFY2(!text.contains("inf") && !text.contains("nan"), text);
}

void TestPlausibility::figures_data() {
    QTest::addColumn<bool>("isPlate");
    QTest::addColumn<int>("kind"); // -1: undamaged
    for (const bool isPlate : {true, false}) {
        const char* name = isPlate ? "white plate" : "adapter";
        QTest::addRow("%s, undamaged", name) << isPlate << -1;
        for (std::size_t i = 0; i < std::size(namedDamages); ++i)
            QTest::addRow("%s, %s", name, namedDamages[i].name) << isPlate << static_cast<int>(i);
    }
}

void TestPlausibility::figures() {
    QFETCH(bool, isPlate);
    QFETCH(int, kind);
    const CalibrationAccessory& accessory = isPlate ? plate : adapter;
    constexpr int samples = 500;
    if (kind < 0) {
        QCOMPARE(falseAlarms(accessory, false, samples).found, 0);
        QCOMPARE(falseAlarms(accessory, true, samples).found, 0);
        return;
    }
    const NamedDamage& damage = namedDamages[kind];
    const PlausibilityFigures figures = caught(accessory, true, damage.damage, samples);
    QVERIFY2(figures.share() >= leastCaught, qPrintable(QString::number(figures.share())));
    QVERIFY(figures.named >= figures.found * 99 / 100);
    if (damage.needsHeld)
        QVERIFY(caught(accessory, false, damage.damage, samples).found <= 1);
}

TEST_CLASS(TestPlausibility)
#include "tst_plausibility.moc"
