#include "tests/startup/ProgramRun.h"

#include <QMessageBox>

using namespace Steps;

namespace {

/** The texts of a file are marked with its language, here "en: " or "jp: "; nothing: the source
    text, untranslated. */
using Mark = QString;
const Mark none;
const Mark en = "en: ";
const Mark jp = "jp: ";

const QString defaultFailed = "Failed to set default language.";
const QString englishFailed = "Failed to set select(English) language.";
const QString japaneseFailed = "Failed to set select(japanese) language.";

const QStringList complete;
const QStringList noEn = {english};
const QStringList noJp = {japanese};
const QStringList neither = {english, japanese};

/** A start with changed files of translations. */
struct TranslationRow {
    QByteArray name;
    QString locale;
    QStringList missing; ///< files
    QJsonObject choice;  ///< of the language
    QString boxBefore;   ///< text of the box before the language dialog; empty: none comes
    Mark before;         ///< of that dialog
    QString boxAfter;
    Mark after;           ///< of the settings dialog
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
    QVector<TranslationRow> rows = {
        // The chosen translation takes the place of the default one.
        {"English to English", unitedStates, complete, chooseEnglish, "", en, "", en},
        {"English to Japanese", unitedStates, complete, chooseJapanese, "", en, "", jp},
        {"Japanese to Japanese", japan, complete, chooseJapanese, "", jp, "", jp},
        {"Japanese to English", japan, complete, chooseEnglish, "", jp, "", en},
        {"ja, no jp, jp", japan, noJp, chooseJapanese, defaultFailed, none, japaneseFailed, none},
        {"ja, no jp, en", japan, noJp, chooseEnglish, defaultFailed, none, "", en},
        {"ja, no en, jp", japan, noEn, chooseJapanese, "", jp, "", jp},
        {"ja, no en, en", japan, noEn, chooseEnglish, "", jp, jp + englishFailed, jp},
        {"en, no en, en", unitedStates, noEn, chooseEnglish, defaultFailed, none, englishFailed,
         none},
        {"en, no en, jp", unitedStates, noEn, chooseJapanese, defaultFailed, none, "", jp},
        {"en, no jp, en", unitedStates, noJp, chooseEnglish, "", en, "", en},
        {"en, no jp, jp", unitedStates, noJp, chooseJapanese, "", en, en + japaneseFailed, en},
        {"ja, none, jp", japan, neither, chooseJapanese, defaultFailed, none, japaneseFailed, none},
        {"ja, none, en", japan, neither, chooseEnglish, defaultFailed, none, englishFailed, none},
        {"en, none, jp", unitedStates, neither, chooseJapanese, defaultFailed, none, japaneseFailed,
         none},
        {"en, none, en", unitedStates, neither, chooseEnglish, defaultFailed, none, englishFailed,
         none},
    };
    // Files that are damaged, have a similar name, or go while the program runs.
    const auto withoutJapanese = [&](const char* name, const QString& file,
                                     const QByteArray& content) {
        rows.append({name, japan, noJp, chooseJapanese, defaultFailed, none, japaneseFailed, none,
                     file, content});
    };
    withoutJapanese("empty", japanese, "");
    withoutJapanese("text", japanese, "not a translation\n");
    withoutJapanese("zeros", japanese, QByteArray(4096, '\0'));
    // A file of a similar name never serves instead.
    withoutJapanese("without its ending", "jp", markedJapanese);
    withoutJapanese("with one ending more", "jp.qm.qm", markedJapanese);
    // The chosen file is read even when it is the default one, which stays in use when it fails.
    rows.append({"English, lost meanwhile", unitedStates, complete, chooseEnglish, "", en,
                 en + englishFailed, en, "", "", english});
    rows.append({"Japanese, lost meanwhile", japan, complete, chooseJapanese, "", jp,
                 jp + japaneseFailed, jp, "", "", japanese});
    // Instruments that cannot be listed.
    const auto unlisted = [&](const char* name, const QString& locale, const QStringList& missing,
                              const QJsonObject& choice, const QString& boxBefore,
                              const Mark& before, const QString& boxAfter, const Mark& after) {
        rows.append(
            {name, locale, missing, choice, boxBefore, before, boxAfter, after, "", "", "", false});
    };
    unlisted("no enumeration, in English", japan, complete, chooseEnglish, "", jp, "", en);
    unlisted("no enumeration, in Japanese", unitedStates, complete, chooseJapanese, "", en, "", jp);
    unlisted("no enumeration, untranslated", unitedStates, neither, chooseEnglish, defaultFailed,
             none, englishFailed, none);
    return rows;
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
        QStringList windows;
        QStringList titles; // of the message boxes
        const auto expectBox = [&](const Mark& mark, const QString& text) {
            windows.append(boxNamed(text));
            titles.append(mark + "Spectrophotometer Configuration Tool VQ-TL4");
            run.steps.append(dismissBox);
        };
        if (!row.boxBefore.isEmpty())
            expectBox(none, row.boxBefore);
        windows.append(languageDialog);
        if (!row.lost.isEmpty())
            run.steps.append(step(languageDialog, "removeFile", tree.resource(row.lost)));
        run.steps.append(row.choice);
        run.steps.append(confirmLanguage);
        if (!row.boxAfter.isEmpty())
            expectBox(row.before, row.boxAfter);
        if (row.isListed)
            run.steps.append(disconnectInstrument);
        else
            expectBox(row.after, row.after + notConnected);
        windows.append(settingsDialog);
        run.steps.append(pressClose);

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.shownWindows(), windows);
        QCOMPARE(run.debugLines().value(0),
                 row.choice == chooseEnglish ? "select English:1" : "select japanese:2");
        QCOMPARE(textIn(run.state(languageDialog), "langselgrpBox"), row.before + "LanguageType");
        const QJsonObject settings = run.state(settingsDialog);
        QCOMPARE(textIn(settings, "ConnectPushBtn"), row.after + "Connect");
        // Each of these is in one of the two files only.
        QCOMPARE(textIn(settings, "ClosePushBtn"), (row.after == en ? en : none) + "Close");
        QCOMPARE(textIn(settings, "disConnectPushBtn"),
                 (row.after == jp ? jp : none) + "Disconnect");
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
