#include "tests/startup/ProgramRun.h"

#include <QMessageBox>

using namespace Steps;

namespace {

/** The texts of a file are marked with its language; without a mark they are the source texts. */
using Mark = QString;
const Mark none;
const Mark en = "en: ";
const Mark jp = "jp: ";

const QString defaultFailed = "Failed to set default language.";
const QString englishFailed = "Failed to set select(English) language.";
const QString japaneseFailed = "Failed to set select(japanese) language.";

/** A start with changed files of translations. */
struct TranslationRow {
    QByteArray name;
    QString locale;
    QStringList missing;  ///< files
    QJsonObject choice;   ///< of the language
    QString written = {}; ///< a file that is written in addition
    QByteArray content = {};
    QString lost = {};    ///< a file that is removed while the language dialog is open
    bool isListed = true; ///< the instruments; else a box tells that there is none
};

QByteArray contentOf(const char* path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        giveUp(file.fileName() + " cannot be read");
    return file.readAll();
}

const QByteArray markedEnglish = contentOf(MARKED_TRANSLATIONS "/marked_en.qm");
const QByteArray markedJapanese = contentOf(MARKED_TRANSLATIONS "/marked_jp.qm");

QVector<TranslationRow> starts() {
    const QStringList noJp = {japanese};
    const QStringList neither = {english, japanese};
    const std::pair<QByteArray, QStringList> missing[] = {
        {"all", {}}, {"no en", {english}}, {"no jp", noJp}, {"none", neither}};
    QVector<TranslationRow> rows;
    for (const auto& [files, names] : missing) {
        for (const QString& locale : {unitedStates, japan}) {
            const QByteArray start = locale.left(2).toLatin1() + ", " + files;
            rows.append({start + ", en", locale, names, chooseEnglish});
            rows.append({start + ", jp", locale, names, chooseJapanese});
        }
    }
    const QVector<TranslationRow> others = {
        {"empty", japan, noJp, chooseJapanese, japanese, ""},
        {"text", japan, noJp, chooseJapanese, japanese, "not a translation\n"},
        {"zeros", japan, noJp, chooseJapanese, japanese, QByteArray(4096, '\0')},
        // A file of a similar name never serves instead.
        {"without its ending", japan, noJp, chooseJapanese, "jp", markedJapanese},
        {"with one ending more", japan, noJp, chooseJapanese, "jp.qm.qm", markedJapanese},
        // The chosen file is read even when it is the default one, which stays in use when
        // it fails.
        {"English, lost meanwhile", unitedStates, {}, chooseEnglish, "", "", english},
        {"Japanese, lost meanwhile", japan, {}, chooseJapanese, "", "", japanese},
        {"no enumeration, in English", japan, {}, chooseEnglish, "", "", "", false},
        {"no enumeration, in Japanese", unitedStates, {}, chooseJapanese, "", "", "", false},
        {"no enumeration, untranslated", unitedStates, neither, chooseEnglish, "", "", "", false},
    };
    return rows + others;
}

} // namespace

/** The start with files of translations that are missing, damaged or lost, and the entry point's
    messages. */
class TestStartupTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void start_data() { addRows(starts()); }
    void start() {
        const auto row = rowOf<TranslationRow>();
        const ProgramTree tree;
        tree.writeResource(english, markedEnglish);
        tree.writeResource(japanese, markedJapanese);
        for (const QString& name : row.missing)
            tree.removeResource(name);
        if (!row.written.isEmpty())
            tree.writeResource(row.written, row.content);
        const QJsonArray faults = {fault(enumeration, 0)};
        ProgramRun run({}, benchOf(1, row.isListed ? QJsonArray() : faults));
        run.program = tree.program();
        run.locale = row.locale;
        QStringList missing = row.missing;
        QStringList windows;
        QStringList titles; // of the message boxes
        Mark mark;          // of what is shown
        const auto expectBox = [&](const QString& text) {
            windows.append(boxNamed(mark + text));
            titles.append(mark + "Spectrophotometer Configuration Tool VQ-TL4");
            run.steps.append(dismissBox);
        };
        // What cannot be loaded leaves the language as it is.
        const auto load = [&](bool isEnglish, const QString& failure) {
            const QString file = isEnglish ? english : japanese;
            if (missing.contains(file))
                expectBox(failure);
            else
                mark = isEnglish ? en : jp;
        };
        load(row.locale == unitedStates, defaultFailed);
        const Mark before = mark; // of the language dialog
        windows.append(languageDialog);
        if (!row.lost.isEmpty()) {
            run.steps.append(step(languageDialog, "removeFile", tree.resource(row.lost)));
            missing.append(row.lost);
        }
        run.steps.append(row.choice);
        run.steps.append(confirmLanguage);
        const bool isEnglish = row.choice == chooseEnglish;
        load(isEnglish, isEnglish ? englishFailed : japaneseFailed);
        if (row.isListed)
            run.steps.append(disconnectInstrument);
        else
            expectBox(notConnected);
        windows.append(settingsDialog);
        run.steps.append(pressClose);

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.shownWindows(), windows);
        QCOMPARE(run.debugLines().value(0), isEnglish ? "select English:1" : "select japanese:2");
        QCOMPARE(textIn(run.state(languageDialog), "langselgrpBox"), before + "LanguageType");
        const QJsonObject settings = run.state(settingsDialog);
        QCOMPARE(textIn(settings, "ConnectPushBtn"), mark + "Connect");
        // Each of these is in one of the two files only.
        QCOMPARE(textIn(settings, "ClosePushBtn"), (mark == en ? en : none) + "Close");
        QCOMPARE(textIn(settings, "disConnectPushBtn"), (mark == jp ? jp : none) + "Disconnect");
        QCOMPARE(run.states(messageBox).size(), titles.size());
        for (const QJsonObject& box : run.states(messageBox)) {
            QCOMPARE(box["title"].toString(), titles.takeFirst());
            QCOMPARE(box["icon"].toInt(), int{QMessageBox::Information});
            QCOMPARE(box["buttons"].toInt(), int{QMessageBox::Ok});
            QCOMPARE(box["flags"].toInt(), titledFlags | Qt::WindowCloseButtonHint);
            QCOMPARE(box["isModal"], QJsonValue(true));
            QCOMPARE(box["hasParent"], QJsonValue(false));
            QCOMPARE(box["ownIcon"], QJsonValue(true));
            QCOMPARE(box["iconWidths"].toArray(), QJsonArray({16, 32, 48, 64, 128, 256}));
        }
    }

    void missingIcon() {
        const ProgramTree tree;
        tree.removeResource("VQ_TL4.ico");
        ProgramRun run({confirmLanguage, disconnectInstrument, pressClose}, benchOf(1));
        run.program = tree.program();

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.shownWindows(), QStringList({languageDialog, settingsDialog}));
        for (const QString& window : {languageDialog, settingsDialog})
            QCOMPARE(run.state(window)["iconWidths"].toArray(), QJsonArray());
    }

    /** As good as Ok. */
    void closedByItsCloseControl() {
        const ProgramTree tree;
        tree.removeResource(japanese);
        ProgramRun run({closeWindow(messageBox), confirmLanguage, closeWindow(messageBox),
                        closeWindow(messageBox), closeWindow(settingsDialog)},
                       benchOf(1, {fault(enumeration, 0)}));
        run.program = tree.program();
        run.locale = japan;

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.boxTexts(), QStringList({defaultFailed, japaneseFailed, notConnected}));
    }
};

TEST_CLASS(TestStartupTranslations)
#include "tst_startup_translations.moc"
