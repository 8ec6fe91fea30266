#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"

#include <QtTest>

using namespace Steps;

namespace {

const QString english = QStringLiteral("en.qm");
const QString japanese = QStringLiteral("jp.qm");
const QString markedEnglish = QStringLiteral(MARKED_TRANSLATIONS "/marked_en.qm");
const QString markedJapanese = QStringLiteral(MARKED_TRANSLATIONS "/marked_jp.qm");

/** The texts of a file are marked with its language, here "en: " or "jp: "; nothing: the source
    text, untranslated. */
using Mark = QString;
const Mark none;
const Mark en = QStringLiteral("en: ");
const Mark jp = QStringLiteral("jp: ");

const QString defaultFailed = QStringLiteral("Failed to set default language.");
const QString englishFailed = QStringLiteral("Failed to set select(English) language.");
const QString japaneseFailed = QStringLiteral("Failed to set select(japanese) language.");

bool mark(ProgramTree& tree) {
    return tree.isComplete() && tree.replaceResource(english, markedEnglish) &&
           tree.replaceResource(japanese, markedJapanese);
}

/** A run over @p tree with one instrument: language, settings, end. Each box in its place. */
void prepare(ProgramRun& run, const ProgramTree& tree, const QString& locale, int boxesBefore,
             const QJsonObject& choice, int boxesAfter) {
    run.program = tree.program();
    run.locale = locale;
    run.bench = benchOf(1);
    for (int i = 0; i < boxesBefore; ++i)
        run.steps.append(dismissBox());
    run.steps.append(choice);
    run.steps.append(confirmLanguage());
    for (int i = 0; i < boxesAfter; ++i)
        run.steps.append(dismissBox());
    run.steps.append(disconnectInstrument());
    run.steps.append(pressClose());
}

/** The settings dialog shows the texts of one file and none of the other. */
void compareSettings(const ProgramRun& run, const Mark& installed) {
    const QJsonObject state = run.state(settingsDialog);
    QCOMPARE(textIn(state, "ConnectPushBtn"), installed + QStringLiteral("Connect"));
    // Each of these is in one of the two files only.
    QCOMPARE(textIn(state, "ClosePushBtn"),
             (installed == en ? en : none) + QStringLiteral("Close"));
    QCOMPARE(textIn(state, "disConnectPushBtn"),
             (installed == jp ? jp : none) + QStringLiteral("Disconnect"));
}

} // namespace

class TestStartupTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingMissing_data();
    void nothingMissing();
    void missingFile_data();
    void missingFile();
    void damagedFile_data();
    void damagedFile();
    void fileLostMeanwhile_data();
    void fileLostMeanwhile();
    void exactlyThatFile_data();
    void exactlyThatFile();
    void missingIcon();

private:
    static void expectNoJapanese(const ProgramTree& tree);
};

void TestStartupTranslations::nothingMissing_data() {
    QTest::addColumn<QString>("locale");
    QTest::addColumn<Mark>("before");
    QTest::addColumn<QJsonObject>("choice");
    QTest::addColumn<Mark>("after");

    const QString us = QStringLiteral("en_US.UTF-8");
    const QString japan = QStringLiteral("ja_JP.UTF-8");
    QTest::newRow("English to English") << us << en << chooseEnglish() << en;
    QTest::newRow("English to Japanese") << us << en << chooseJapanese() << jp;
    QTest::newRow("Japanese to Japanese") << japan << jp << chooseJapanese() << jp;
    QTest::newRow("Japanese to English") << japan << jp << chooseEnglish() << en;
}

/** The chosen translation takes the place of the default one. */
void TestStartupTranslations::nothingMissing() {
    QFETCH(QString, locale);
    QFETCH(Mark, before);
    QFETCH(QJsonObject, choice);
    QFETCH(Mark, after);
    ProgramTree tree;
    QVERIFY(mark(tree));
    ProgramRun run;
    prepare(run, tree, locale, 0, choice, 0);

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(textIn(run.state(languageDialog), "langselgrpBox"),
             before + QStringLiteral("LanguageType"));
    compareSettings(run, after);
    QCOMPARE(run.boxTexts(), QStringList());
}

void TestStartupTranslations::missingFile_data() {
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QStringList>("missing");
    QTest::addColumn<QJsonObject>("choice");
    QTest::addColumn<QStringList>("boxesBefore");
    QTest::addColumn<Mark>("before");
    QTest::addColumn<QStringList>("boxesAfter");
    QTest::addColumn<Mark>("after");

    const QString us = QStringLiteral("en_US.UTF-8");
    const QString japan = QStringLiteral("ja_JP.UTF-8");
    const QStringList both = {english, japanese};
    const QStringList noEn = {english};
    const QStringList noJp = {japanese};
    const QStringList no;
    const QStringList df = {defaultFailed};
    const QStringList ef = {englishFailed};
    const QStringList jf = {japaneseFailed};
    const QJsonObject chooseEn = chooseEnglish();
    const QJsonObject chooseJp = chooseJapanese();
    QTest::newRow("ja, no jp, jp") << japan << noJp << chooseJp << df << none << jf << none;
    QTest::newRow("ja, no jp, en") << japan << noJp << chooseEn << df << none << no << en;
    QTest::newRow("ja, no en, jp") << japan << noEn << chooseJp << no << jp << no << jp;
    QTest::newRow("ja, no en, en")
        << japan << noEn << chooseEn << no << jp << QStringList(jp + englishFailed) << jp;
    QTest::newRow("en, no en, en") << us << noEn << chooseEn << df << none << ef << none;
    QTest::newRow("en, no en, jp") << us << noEn << chooseJp << df << none << no << jp;
    QTest::newRow("en, no jp, en") << us << noJp << chooseEn << no << en << no << en;
    QTest::newRow("en, no jp, jp")
        << us << noJp << chooseJp << no << en << QStringList(en + japaneseFailed) << en;
    QTest::newRow("ja, none, jp") << japan << both << chooseJp << df << none << jf << none;
    QTest::newRow("ja, none, en") << japan << both << chooseEn << df << none << ef << none;
    QTest::newRow("en, none, jp") << us << both << chooseJp << df << none << jf << none;
    QTest::newRow("en, none, en") << us << both << chooseEn << df << none << ef << none;
}

void TestStartupTranslations::missingFile() {
    QFETCH(QString, locale);
    QFETCH(QStringList, missing);
    QFETCH(QJsonObject, choice);
    QFETCH(QStringList, boxesBefore);
    QFETCH(Mark, before);
    QFETCH(QStringList, boxesAfter);
    QFETCH(Mark, after);
    ProgramTree tree;
    QVERIFY(mark(tree));
    for (const QString& name : qAsConst(missing))
        QVERIFY(tree.removeResource(name));
    ProgramRun run;
    prepare(run, tree, locale, boxesBefore.size(), choice, boxesAfter.size());

    QVERIFY2(run.run(), run.problem());

    QStringList windows;
    for (const QString& text : qAsConst(boxesBefore))
        windows.append(QStringLiteral("QMessageBox \"%1\"").arg(text));
    windows.append(languageDialog);
    for (const QString& text : qAsConst(boxesAfter))
        windows.append(QStringLiteral("QMessageBox \"%1\"").arg(text));
    windows.append(settingsDialog);
    QCOMPARE(run.shownWindows(), windows);
    QCOMPARE(textIn(run.state(languageDialog), "langselgrpBox"),
             before + QStringLiteral("LanguageType"));
    compareSettings(run, after);
}

void TestStartupTranslations::damagedFile_data() {
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("not a translation\n");
    QTest::newRow("zeros") << QByteArray(4096, '\0');
}

void TestStartupTranslations::damagedFile() {
    QFETCH(QByteArray, content);
    ProgramTree tree;
    QVERIFY(mark(tree));
    QVERIFY(tree.damageResource(japanese, content));

    expectNoJapanese(tree);
}

/** Japanese is neither the default nor to be had when it is chosen, and both is said. */
void TestStartupTranslations::expectNoJapanese(const ProgramTree& tree) {
    ProgramRun run;
    prepare(run, tree, QStringLiteral("ja_JP.UTF-8"), 1, chooseJapanese(), 1);

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(), QStringList({defaultFailed, japaneseFailed}));
    QCOMPARE(run.debugLines().value(0), QStringLiteral("select japanese:2"));
    compareSettings(run, none);
}

void TestStartupTranslations::fileLostMeanwhile_data() {
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("lost");
    QTest::addColumn<QJsonObject>("choice");
    QTest::addColumn<QString>("box");
    QTest::addColumn<Mark>("after");

    QTest::newRow("English") << QStringLiteral("en_US.UTF-8") << english << chooseEnglish()
                             << en + englishFailed << en;
    QTest::newRow("Japanese") << QStringLiteral("ja_JP.UTF-8") << japanese << chooseJapanese()
                              << jp + japaneseFailed << jp;
}

/** The chosen file is read even when it is the default one, which stays in use when it fails. */
void TestStartupTranslations::fileLostMeanwhile() {
    QFETCH(QString, locale);
    QFETCH(QString, lost);
    QFETCH(QJsonObject, choice);
    QFETCH(QString, box);
    QFETCH(Mark, after);
    ProgramTree tree;
    QVERIFY(mark(tree));
    ProgramRun run;
    prepare(run, tree, locale, 0, choice, 1);
    run.steps.prepend(removeFile(tree.resource(lost)));

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(), QStringList(box));
    compareSettings(run, after);
}

void TestStartupTranslations::exactlyThatFile_data() {
    QTest::addColumn<QString>("other");

    QTest::newRow("without its ending") << QStringLiteral("jp");
    QTest::newRow("with one ending more") << QStringLiteral("jp.qm.qm");
}

/** A file of a similar name never serves instead. */
void TestStartupTranslations::exactlyThatFile() {
    QFETCH(QString, other);
    ProgramTree tree;
    QVERIFY(mark(tree));
    QVERIFY(tree.removeResource(japanese));
    QVERIFY(tree.replaceResource(other, markedJapanese));

    expectNoJapanese(tree);
}

void TestStartupTranslations::missingIcon() {
    ProgramTree tree;
    QVERIFY(mark(tree));
    QVERIFY(tree.removeResource(QStringLiteral("VQ_TL4.ico")));
    ProgramRun run;
    prepare(run, tree, QStringLiteral("en_US.UTF-8"), 0, chooseEnglish(), 0);

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.shownWindows(), QStringList({languageDialog, settingsDialog}));
    for (const QString& window : {languageDialog, settingsDialog})
        QCOMPARE(run.state(window).value(QLatin1String("iconWidths")).toArray(), QJsonArray());
}

QTEST_GUILESS_MAIN(TestStartupTranslations)
#include "tst_startup_translations.moc"
