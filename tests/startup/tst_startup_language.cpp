#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"

#include <QtTest>

using namespace Steps;

namespace {

const QString english = QStringLiteral("en.qm");
const QString japanese = QStringLiteral("jp.qm");

/** Whether a text of a window is the translation of @p source in a file. */
void compareText(const QJsonObject& state, const char* objectName, const QString& file,
                 const char* source) {
    const QByteArray context = state.value(QLatin1String("class")).toString().toLatin1();
    QCOMPARE(textIn(state, objectName), translated(file, context.constData(), source));
}

} // namespace

class TestStartupLanguage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void translationsDiffer();
    void defaultLanguage_data();
    void defaultLanguage();
    void chosenLanguage_data();
    void chosenLanguage();
    void lastClickWins_data();
    void lastClickWins();
    void closedWithoutAChoice_data();
    void closedWithoutAChoice();
    void escapeIsIgnored();
    void choiceIsNotRemembered();
};

/** What the other tests stand on. */
void TestStartupLanguage::translationsDiffer() {
    QCOMPARE(translated(english, "LangSelectDialog", "LanguageType"),
             QStringLiteral("LanguageType"));
    QVERIFY(translated(japanese, "LangSelectDialog", "LanguageType") !=
            QLatin1String("LanguageType"));
    QVERIFY(translated(japanese, "InitSettingDialog", "Connect") != QLatin1String("Connect"));
}

void TestStartupLanguage::defaultLanguage_data() {
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("button");

    const QString all = QStringLiteral("LC_ALL");
    const QString lang = QStringLiteral("LANG");
    const QString jpn = QStringLiteral("jpnRadioBtn");
    const QString eng = QStringLiteral("engRadioBtn");
    QTest::newRow("Japan") << all << QStringLiteral("ja_JP.UTF-8") << japanese << jpn;
    QTest::newRow("Japan, by LANG") << lang << QStringLiteral("ja_JP.UTF-8") << japanese << jpn;
    QTest::newRow("Japanese, no country") << all << QStringLiteral("ja") << japanese << jpn;
    QTest::newRow("United States") << all << QStringLiteral("en_US.UTF-8") << english << eng;
    QTest::newRow("United States, by LANG")
        << lang << QStringLiteral("en_US.UTF-8") << english << eng;
    QTest::newRow("Germany") << all << QStringLiteral("de_DE.UTF-8") << english << eng;
    QTest::newRow("China") << all << QStringLiteral("zh_CN.UTF-8") << english << eng;
    QTest::newRow("no locale") << all << QStringLiteral("C") << english << eng;
}

void TestStartupLanguage::defaultLanguage() {
    QFETCH(QString, variable);
    QFETCH(QString, locale);
    QFETCH(QString, file);
    QFETCH(QString, button);
    ProgramRun run;
    run.locale.clear();
    run.environment.insert(variable, locale);
    run.steps = {closeWindow(languageDialog)};

    QVERIFY2(run.run(), run.problem());

    const QJsonObject state = run.state(languageDialog);
    QCOMPARE(namesIn(state, "checked"), QStringList(button));
    QCOMPARE(state.value(QLatin1String("title")).toString(),
             translated(file, "LangSelectDialog", "Select Language"));
    compareText(state, "langselgrpBox", file, "LanguageType");
    compareText(state, "engRadioBtn", file, "English");
    compareText(state, "jpnRadioBtn", file, "Japanese");
    compareText(state, "pushButton", file, "OK");
}

void TestStartupLanguage::chosenLanguage_data() {
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QJsonArray>("clicks");
    QTest::addColumn<QString>("defaultFile");
    QTest::addColumn<QString>("chosenFile");
    QTest::addColumn<QString>("line");

    const QString selectJapanese = QStringLiteral("select japanese:2");
    const QString selectEnglish = QStringLiteral("select English:1");
    const auto addRows = [&](const char* name, const QString& defaultFile) {
        const QString locale = QLatin1String(name) + QStringLiteral(".UTF-8");
        const bool isJapanese = defaultFile == japanese;
        QTest::addRow("%s, English", name)
            << locale << QJsonArray{chooseEnglish()} << defaultFile << english << selectEnglish;
        QTest::addRow("%s, Japanese", name)
            << locale << QJsonArray{chooseJapanese()} << defaultFile << japanese << selectJapanese;
        QTest::addRow("%s, not touched", name)
            << locale << QJsonArray() << defaultFile << defaultFile
            << (isJapanese ? selectJapanese : selectEnglish);
    };
    addRows("ja_JP", japanese);
    addRows("en_US", english);
    addRows("de_DE", english);
    addRows("zh_CN", english);
}

void TestStartupLanguage::chosenLanguage() {
    QFETCH(QString, locale);
    QFETCH(QJsonArray, clicks);
    QFETCH(QString, defaultFile);
    QFETCH(QString, chosenFile);
    QFETCH(QString, line);
    ProgramRun run;
    run.locale = locale;
    run.steps = clicks;
    for (const QJsonObject& step :
         {confirmLanguage(), confirmInstrument(), disconnectInstrument(), pressClose()})
        run.steps.append(step);

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.debugLines().filter(QStringLiteral("select japanese")) +
                 run.debugLines().filter(QStringLiteral("select English")),
             QStringList(line));
    compareText(run.state(languageDialog), "langselgrpBox", defaultFile, "LanguageType");
    const QJsonObject instruments = run.state(instrumentDialog);
    QCOMPARE(instruments.value(QLatin1String("title")).toString(),
             translated(chosenFile, "ConnectSelectDialog", "Select Device"));
    const QJsonObject settings = run.state(settingsDialog);
    QCOMPARE(
        settings.value(QLatin1String("title")).toString(),
        translated(chosenFile, "InitSettingDialog", "Spectrophotometer Configuration Tool VQ-TL4"));
    compareText(settings, "ConnectPushBtn", chosenFile, "Connect");
    compareText(settings, "disConnectPushBtn", chosenFile, "Disconnect");
    compareText(settings, "ClosePushBtn", chosenFile, "Close");
    compareText(settings, "writeBodyPushBtn", chosenFile, "Write To Body");
    QCOMPARE(run.boxTexts(), QStringList());
}

void TestStartupLanguage::lastClickWins_data() {
    QTest::addColumn<QJsonArray>("clicks");
    QTest::addColumn<QString>("line");

    QTest::newRow("Japanese last")
        << QJsonArray{chooseEnglish(), chooseJapanese()} << QStringLiteral("select japanese:2");
    QTest::newRow("English last") << QJsonArray{chooseJapanese(), chooseEnglish()}
                                  << QStringLiteral("select English:1");
    QTest::newRow("English twice")
        << QJsonArray{chooseEnglish(), chooseEnglish()} << QStringLiteral("select English:1");
}

void TestStartupLanguage::lastClickWins() {
    QFETCH(QJsonArray, clicks);
    QFETCH(QString, line);
    ProgramRun run;
    run.bench = benchOf(1);
    run.steps = clicks;
    run.steps.append(confirmLanguage());
    run.steps.append(closeWindow(settingsDialog));

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.debugLines().value(0), line);
}

void TestStartupLanguage::closedWithoutAChoice_data() {
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QJsonArray>("clicks");

    QTest::newRow("Japanese") << QStringLiteral("ja_JP.UTF-8") << QJsonArray();
    QTest::newRow("English") << QStringLiteral("en_US.UTF-8") << QJsonArray();
    QTest::newRow("after a click") << QStringLiteral("en_US.UTF-8") << QJsonArray{chooseJapanese()};
}

void TestStartupLanguage::closedWithoutAChoice() {
    QFETCH(QString, locale);
    QFETCH(QJsonArray, clicks);
    ProgramRun run;
    run.locale = locale;
    run.steps = clicks;
    run.steps.append(closeWindow(languageDialog));

    QVERIFY2(run.run(), run.problem());

    const QStringList expected = {
        QStringLiteral("KVA_RegisterDeviceEventHandler"),
        QStringLiteral("shown LangSelectDialog"),
        QStringLiteral("hidden LangSelectDialog"),
        QStringLiteral("destroyed LangSelectDialog"),
        QStringLiteral("KVA_RegisterDeviceEventHandler"),
        QStringLiteral("application ends"),
    };
    QCOMPARE(run.story(), expected);
}

void TestStartupLanguage::escapeIsIgnored() {
    ProgramRun run;
    run.bench = benchOf(1);
    run.steps = {strike(languageDialog, Qt::Key_Escape), confirmLanguage(),
                 strike(settingsDialog, Qt::Key_Escape), closeWindow(settingsDialog)};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.shownWindows(), QStringList({languageDialog, settingsDialog}));
}

void TestStartupLanguage::choiceIsNotRemembered() {
    ProgramRun run;
    run.bench = benchOf(1);
    run.steps = {chooseJapanese(), confirmLanguage(), closeWindow(settingsDialog)};
    QVERIFY2(run.run(), run.problem());
    QCOMPARE(run.debugLines().value(0), QStringLiteral("select japanese:2"));

    run.steps = {confirmLanguage(), closeWindow(settingsDialog)};
    QVERIFY2(run.run(), run.problem());

    QCOMPARE(namesIn(run.state(languageDialog), "checked"),
             QStringList(QStringLiteral("engRadioBtn")));
    QCOMPARE(run.debugLines().value(0), QStringLiteral("select English:1"));
}

QTEST_GUILESS_MAIN(TestStartupLanguage)
#include "tst_startup_language.moc"
