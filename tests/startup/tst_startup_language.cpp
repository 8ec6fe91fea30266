#include "tests/startup/ProgramRun.h"

using namespace Steps;

namespace {

const QString selectEnglish = "select English:1";
const QString selectJapanese = "select japanese:2";

/** The language that a locale stands for. */
struct LocaleRow {
    const char* name;
    const char* variable;
    QString locale;
    QString file;
    QString button; ///< checked in the dialog
};

const LocaleRow locales[] = {
    {"Japan", "LC_ALL", japan, japanese, "jpnRadioBtn"},
    {"Japan, by LANG", "LANG", japan, japanese, "jpnRadioBtn"},
    {"Japanese, no country", "LC_ALL", "ja", japanese, "jpnRadioBtn"},
    {"United States", "LC_ALL", unitedStates, english, "engRadioBtn"},
    {"United States, by LANG", "LANG", unitedStates, english, "engRadioBtn"},
    {"Germany", "LC_ALL", "de_DE.UTF-8", english, "engRadioBtn"},
    {"China", "LC_ALL", "zh_CN.UTF-8", english, "engRadioBtn"},
    {"no locale", "LC_ALL", "C", english, "engRadioBtn"},
};

/** What a user clicks in the language dialog before its OK. */
struct ChoiceRow {
    QByteArray name;
    QString locale;
    QJsonArray clicks;
    QString defaultFile;
    QString chosenFile;
};

QVector<ChoiceRow> choices() {
    QVector<ChoiceRow> rows;
    for (const QByteArray locale : {"ja_JP", "en_US", "de_DE", "zh_CN"}) {
        const QString file = locale == "ja_JP" ? japanese : english;
        const auto add = [&](const char* how, const QJsonArray& clicks, const QString& chosen) {
            rows.append({locale + how, locale + ".UTF-8", clicks, file, chosen});
        };
        add(", English", {chooseEnglish}, english);
        add(", Japanese", {chooseJapanese}, japanese);
        add(", not touched", {}, file);
        if (locale == "en_US") {
            add(", Japanese last", {chooseEnglish, chooseJapanese}, japanese);
            add(", English last", {chooseJapanese, chooseEnglish}, english);
            add(", English twice", {chooseEnglish, chooseEnglish}, english);
        }
    }
    return rows;
}

/** A dialog that is closed instead. */
struct ClosedRow {
    const char* name;
    QString locale;
    QJsonArray steps;
};

const ClosedRow closed[] = {
    {"Japanese", japan, {closeWindow(languageDialog)}},
    {"English", unitedStates, {closeWindow(languageDialog)}},
    {"after a click", unitedStates, {chooseJapanese, closeWindow(languageDialog)}},
    {"language rejected", unitedStates, {step(languageDialog, "reject")}},
    {"language hidden", unitedStates, {step(languageDialog, "hide")}},
};

/** Whether a text of a window is the translation of @p source in a file. */
void compareText(const QJsonObject& state, const char* objectName, const QString& file,
                 const char* source) {
    const QByteArray context = state["class"].toString().toLatin1();
    const QString shown =
        objectName == nullptr ? state["title"].toString() : textIn(state, objectName);
    QCOMPARE(shown, translated(file, context, source));
}

} // namespace

class TestStartupLanguage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    /** What the other tests stand on. */
    void translationsDiffer() {
        const char* const text = "LanguageType";
        QCOMPARE(translated(english, "LangSelectDialog", text), text);
        QVERIFY(translated(japanese, "LangSelectDialog", text) != text);
        QVERIFY(translated(japanese, "InitSettingDialog", "Connect") != "Connect");
    }

    void defaultLanguage_data() { addRows(locales); }
    void defaultLanguage() {
        const auto row = rowOf<LocaleRow>();
        ProgramRun run({closeWindow(languageDialog)});
        run.locale.clear();
        run.environment.insert(row.variable, row.locale);

        QVERIFY2(run.run(), run.problem());

        const QJsonObject state = run.state(languageDialog);
        QCOMPARE(namesIn(state, "checked"), QStringList(row.button));
        compareText(state, nullptr, row.file, "Select Language");
        compareText(state, "langselgrpBox", row.file, "LanguageType");
        compareText(state, "engRadioBtn", row.file, "English");
        compareText(state, "jpnRadioBtn", row.file, "Japanese");
        compareText(state, "pushButton", row.file, "OK");
    }

    /** The last click counts. */
    void chosenLanguage_data() { addRows(choices()); }
    void chosenLanguage() {
        const auto row = rowOf<ChoiceRow>();
        ProgramRun run(row.clicks);
        run.locale = row.locale;
        for (const QJsonObject& step :
             {confirmLanguage, confirmInstrument, disconnectInstrument, pressClose})
            run.steps.append(step);

        QVERIFY2(run.run(), run.problem());

        const QString line = row.chosenFile == english ? selectEnglish : selectJapanese;
        QCOMPARE(run.debugLines().filter("select japanese") +
                     run.debugLines().filter("select English"),
                 QStringList(line));
        QCOMPARE(run.debugLines().value(0), line);
        compareText(run.state(languageDialog), "langselgrpBox", row.defaultFile, "LanguageType");
        compareText(run.state(instrumentDialog), nullptr, row.chosenFile, "Select Device");
        const QJsonObject settings = run.state(settingsDialog);
        compareText(settings, nullptr, row.chosenFile,
                    "Spectrophotometer Configuration Tool VQ-TL4");
        compareText(settings, "ConnectPushBtn", row.chosenFile, "Connect");
        compareText(settings, "disConnectPushBtn", row.chosenFile, "Disconnect");
        compareText(settings, "ClosePushBtn", row.chosenFile, "Close");
        compareText(settings, "writeBodyPushBtn", row.chosenFile, "Write To Body");
        QCOMPARE(run.boxTexts(), QStringList());
    }

    void closedWithoutAChoice_data() { addRows(closed); }
    void closedWithoutAChoice() {
        const auto row = rowOf<ClosedRow>();
        ProgramRun run(row.steps);
        run.locale = row.locale;

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.story(),
                 QStringList({"KVA_RegisterDeviceEventHandler", "shown LangSelectDialog",
                              "hidden LangSelectDialog", "destroyed LangSelectDialog",
                              "KVA_RegisterDeviceEventHandler", "application ends"}));
        QCOMPARE(run.argumentsOf(registration, "handler"), QJsonArray({true, false}));
    }

    void choiceIsNotRemembered() {
        ProgramRun run({chooseJapanese, confirmLanguage, closeWindow(settingsDialog)}, benchOf(1));
        QVERIFY2(run.run(), run.problem());
        QCOMPARE(run.debugLines().value(0), selectJapanese);

        run.steps = {confirmLanguage, closeWindow(settingsDialog)};
        QVERIFY2(run.run(), run.problem());

        QCOMPARE(namesIn(run.state(languageDialog), "checked"), QStringList("engRadioBtn"));
        QCOMPARE(run.debugLines().value(0), selectEnglish);
    }
};

TEST_CLASS(TestStartupLanguage)
#include "tst_startup_language.moc"
