#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"

#include <QMessageBox>
#include <QtTest>

using namespace Steps;

namespace {

const QString english = QStringLiteral("en.qm");
const QString japanese = QStringLiteral("jp.qm");
const QString us = QStringLiteral("en_US.UTF-8");
const QString japan = QStringLiteral("ja_JP.UTF-8");

constexpr const char* toolTitle = "Spectrophotometer Configuration Tool VQ-TL4";
constexpr const char* defaultFailed = "Failed to set default language.";
constexpr const char* englishFailed = "Failed to set select(English) language.";
constexpr const char* japaneseFailed = "Failed to set select(japanese) language.";
constexpr const char* notConnected = "The measuring instruments is not connected.";

// Qt::Window and the system menu are what Qt adds to the flags of a window without parent.
const Qt::WindowFlags boxFlags = Qt::Window | Qt::WindowSystemMenuHint | Qt::CustomizeWindowHint |
                                 Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                                 Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint;

/** A text of the entry point in a language; none: the source text. */
QString inLanguage(const QString& file, const QByteArray& text) {
    return file.isEmpty() ? QString::fromUtf8(text) : translated(file, "QObject", text.constData());
}

} // namespace

/** The four messages of the start-up, each in each language that it can come in. */
class TestStartupMessages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void message_data();
    void message();
    void closedByItsCloseControl();

private:
    static void addLanguageRows();
    static void addEnumerationRows();
    static void compareBox(const QJsonObject& box, const QString& file, const QByteArray& text);
};

void TestStartupMessages::message_data() {
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QStringList>("missing");
    QTest::addColumn<QJsonArray>("steps");
    QTest::addColumn<int>("box");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");

    addLanguageRows();
    addEnumerationRows();
}

void TestStartupMessages::addLanguageRows() {
    const QStringList noEn = {english};
    const QStringList noJp = {japanese};
    const QJsonObject eng = chooseEnglish();
    const QJsonObject jpn = chooseJapanese();
    const QJsonObject ok = confirmLanguage();
    const QJsonObject box = dismissBox();
    const QString source;
    QTest::newRow("default, United States")
        << us << noEn << QJsonArray{box, jpn, ok} << 0 << source << QByteArray(defaultFailed);
    QTest::newRow("default, Japan")
        << japan << noJp << QJsonArray{box, eng, ok} << 0 << source << QByteArray(defaultFailed);
    QTest::newRow("English, in Japanese")
        << japan << noEn << QJsonArray{eng, ok, box} << 0 << japanese << QByteArray(englishFailed);
    QTest::newRow("English, untranslated")
        << us << noEn << QJsonArray{box, eng, ok, box} << 1 << source << QByteArray(englishFailed);
    QTest::newRow("Japanese, in English")
        << us << noJp << QJsonArray{jpn, ok, box} << 0 << english << QByteArray(japaneseFailed);
    QTest::newRow("Japanese, untranslated") << japan << noJp << QJsonArray{box, jpn, ok, box} << 1
                                            << source << QByteArray(japaneseFailed);
}

void TestStartupMessages::addEnumerationRows() {
    const QStringList no;
    const QStringList both = {english, japanese};
    const QJsonObject eng = chooseEnglish();
    const QJsonObject jpn = chooseJapanese();
    const QJsonObject ok = confirmLanguage();
    const QJsonObject box = dismissBox();
    const QByteArray text(notConnected);
    QTest::newRow("no enumeration, in English")
        << japan << no << QJsonArray{eng, ok, box} << 0 << english << text;
    QTest::newRow("no enumeration, in Japanese")
        << us << no << QJsonArray{jpn, ok, box} << 0 << japanese << text;
    QTest::newRow("no enumeration, untranslated")
        << us << both << QJsonArray{box, eng, ok, box, box} << 2 << QString() << text;
}

void TestStartupMessages::message() {
    QFETCH(QString, locale);
    QFETCH(QStringList, missing);
    QFETCH(QJsonArray, steps);
    QFETCH(int, box);
    QFETCH(QString, file);
    QFETCH(QByteArray, text);
    ProgramTree tree;
    QVERIFY(tree.isComplete());
    for (const QString& name : qAsConst(missing))
        QVERIFY(tree.removeResource(name));
    ProgramRun run;
    run.program = tree.program();
    run.locale = locale;
    run.bench = benchOf(1);
    if (text == notConnected)
        run.bench = benchOf(
            1, {fault(QStringLiteral("KVA_GetDevicePortList"), 0, QStringLiteral("KVA_ERROR"))});
    run.steps = steps;
    run.steps.append(closeWindow(settingsDialog));

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.states(messageBox).size(), box + 1);
    compareBox(run.states(messageBox).value(box), file, text);
}

void TestStartupMessages::compareBox(const QJsonObject& box, const QString& file,
                                     const QByteArray& text) {
    const auto number = [&](const char* key) { return box.value(QLatin1String(key)).toInt(-1); };
    const auto isTrue = [&](const char* key) { return box.value(QLatin1String(key)).toBool(); };
    QCOMPARE(box.value(QLatin1String("title")).toString(), inLanguage(file, toolTitle));
    QCOMPARE(box.value(QLatin1String("text")).toString(), inLanguage(file, text));
    QCOMPARE(number("icon"), static_cast<int>(QMessageBox::Information));
    QCOMPARE(number("buttons"), static_cast<int>(QMessageBox::Ok));
    QCOMPARE(number("flags"), static_cast<int>(boxFlags));
    QCOMPARE(isTrue("isModal"), true);
    QCOMPARE(isTrue("hasParent"), false);
    QCOMPARE(isTrue("ownIcon"), true);
    QCOMPARE(box.value(QLatin1String("iconWidths")).toArray(),
             QJsonArray({16, 32, 48, 64, 128, 256}));
}

/** As good as Ok. */
void TestStartupMessages::closedByItsCloseControl() {
    ProgramTree tree;
    QVERIFY(tree.isComplete());
    QVERIFY(tree.removeResource(japanese));
    ProgramRun run;
    run.program = tree.program();
    run.locale = japan;
    run.bench = benchOf(
        1, {fault(QStringLiteral("KVA_GetDevicePortList"), 0, QStringLiteral("KVA_ERROR"))});
    run.steps = {closeWindow(messageBox), confirmLanguage(), closeWindow(messageBox),
                 closeWindow(messageBox), closeWindow(settingsDialog)};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(),
             QStringList({QLatin1String(defaultFailed), QLatin1String(japaneseFailed),
                          QLatin1String(notConnected)}));
}

QTEST_GUILESS_MAIN(TestStartupMessages)
#include "tst_startup_messages.moc"
