#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"
#include "tests/support/TestMain.h"

#include <QMessageBox>

using namespace Steps;

namespace {

const QString enumeration = "KVA_GetDevicePortList";

constexpr const char* defaultFailed = "Failed to set default language.";
constexpr const char* englishFailed = "Failed to set select(English) language.";
constexpr const char* japaneseFailed = "Failed to set select(japanese) language.";
constexpr const char* notConnected = "The measuring instruments is not connected.";

/** One of the four messages of the start-up, in a language that it can come in. */
struct MessageRow {
    const char* name;
    const char* text;
    QString locale;
    QStringList missing; ///< files of translations
    QJsonArray steps;
    int box;      ///< which one it is
    QString file; ///< that it is translated by; empty: by none
};

const QStringList noEn = {english};
const QStringList noJp = {japanese};
const QStringList both = {english, japanese};

QVector<MessageRow> messages() {
    const QJsonObject eng = chooseEnglish;
    const QJsonObject jpn = chooseJapanese;
    const QJsonObject ok = confirmLanguage;
    const QJsonObject box = dismissBox;
    QVector<MessageRow> rows;
    const auto add = [&](const char* name, const char* text, const QString& locale,
                         const QStringList& missing, const QJsonArray& steps, int index,
                         const QString& file) {
        rows.append({name, text, locale, missing, steps, index, file});
    };
    add("default, United States", defaultFailed, unitedStates, noEn, {box, jpn, ok}, 0, "");
    add("default, Japan", defaultFailed, japan, noJp, {box, eng, ok}, 0, "");
    add("English, in Japanese", englishFailed, japan, noEn, {eng, ok, box}, 0, japanese);
    add("English, untranslated", englishFailed, unitedStates, noEn, {box, eng, ok, box}, 1, "");
    add("Japanese, in English", japaneseFailed, unitedStates, noJp, {jpn, ok, box}, 0, english);
    add("Japanese, untranslated", japaneseFailed, japan, noJp, {box, jpn, ok, box}, 1, "");
    add("no enumeration, in English", notConnected, japan, {}, {eng, ok, box}, 0, english);
    add("no enumeration, in Japanese", notConnected, unitedStates, {}, {jpn, ok, box}, 0, japanese);
    add("no enumeration, untranslated", notConnected, unitedStates, both, {box, eng, ok, box, box},
        2, "");
    return rows;
}

/** A text of the entry point by a file of translations; none: the source text. */
QString inLanguage(const QString& file, const char* text) {
    return file.isEmpty() ? text : translated(file, "QObject", text);
}

} // namespace
Q_DECLARE_METATYPE(MessageRow)

class TestStartupMessages : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void message_data() { addRows(messages()); }
    void message() {
        QFETCH(const MessageRow, row);
        const ProgramTree tree;
        for (const QString& name : row.missing)
            tree.removeResource(name);
        const bool isListed = qstrcmp(row.text, notConnected) != 0;
        ProgramRun run(row.steps,
                       benchOf(1, isListed ? QJsonArray() : QJsonArray{fault(enumeration, 0)}));
        run.program = tree.program();
        run.locale = row.locale;
        run.steps.append(closeWindow(settingsDialog));

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.states(messageBox).size(), row.box + 1);
        const QJsonObject box = run.states(messageBox).at(row.box);
        const char* const title = "Spectrophotometer Configuration Tool VQ-TL4";
        QCOMPARE(box["title"].toString(), inLanguage(row.file, title));
        QCOMPARE(box["text"].toString(), inLanguage(row.file, row.text));
        QCOMPARE(box["icon"].toInt(), int{QMessageBox::Information});
        QCOMPARE(box["buttons"].toInt(), int{QMessageBox::Ok});
        // Qt::Window and the system menu are what Qt adds to the flags of a window without parent.
        const Qt::WindowFlags flags =
            Qt::Window | Qt::WindowSystemMenuHint | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
            Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint;
        QCOMPARE(box["flags"].toInt(), static_cast<int>(flags));
        QCOMPARE(box["isModal"], QJsonValue(true));
        QCOMPARE(box["hasParent"], QJsonValue(false));
        QCOMPARE(box["ownIcon"], QJsonValue(true));
        QCOMPARE(box["iconWidths"].toArray(), QJsonArray({16, 32, 48, 64, 128, 256}));
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

TEST_CLASS(TestStartupMessages)
#include "tst_startup_messages.moc"
