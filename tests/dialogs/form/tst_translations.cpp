#include "tests/dialogs/form/Translations.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestMain.h"

#include <algorithm>

namespace {

/** What identifies an entry: context, source text and disambiguation. */
QStringList keysOf(const QVector<TranslationEntry>& entries) {
    QStringList keys;
    for (const TranslationEntry& entry : entries)
        keys.append(entry.context + " | " + entry.source + " | " + entry.comment);
    keys.sort();
    return keys;
}

/** Runs lupdate over the program's sources into a new file; its entries, none when it failed. */
QVector<TranslationEntry> freshEntries() {
    const TestFolder folder;
    QProcess lupdate;
    lupdate.start(LUPDATE_PROGRAM, {"-locations", "none", PROJECT_SOURCES "/app",
                                    PROJECT_SOURCES "/dialogs", "-ts", folder.path("fresh.ts")});
    const bool isDone = lupdate.waitForFinished() && lupdate.exitStatus() == QProcess::NormalExit &&
                        lupdate.exitCode() == 0;
    return isDone ? readTranslationSource(folder.path("fresh.ts")) : QVector<TranslationEntry>();
}

bool hasJapanese(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        const QChar::Script script = character.script();
        return script == QChar::Script_Han || script == QChar::Script_Hiragana ||
               script == QChar::Script_Katakana;
    });
}

/** A text in Japanese has a part. */
struct PartRow {
    const char* name; ///< the source text
    const char* context;
    const char* part;
};

} // namespace

/** The translation files against the program's sources, and the compiled files against both. */
class TestTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /** Every text that the program looks up has its entry, and no other; all are finished. */
    void complete_data() { addRows(languages); }
    void complete() {
        const auto row = rowOf<LanguageRow>();
        const QStringList used = keysOf(freshEntries());
        QVERIFY(used.size() > 80);
        QCOMPARE(keysOf(entriesOf(row.name)).join('\n'), used.join('\n'));
        for (const TranslationEntry& entry : entriesOf(row.name)) {
            QVERIFY2(entry.type.isEmpty(), qUtf8Printable(entry.source));
            QVERIFY2(!entry.source.isEmpty(), qUtf8Printable(entry.context));
            QVERIFY2(!entry.translation.isEmpty(), qUtf8Printable(entry.source));
            QCOMPARE(entry.translation.trimmed(), entry.translation);
        }
    }

    /** The compiled file holds the entries of its source, and nothing else. */
    void compiled_data() { addRows(languages); }
    void compiled() {
        const auto row = rowOf<LanguageRow>();
        const InstalledTranslation translation(row.name);
        for (const TranslationEntry& entry : entriesOf(row.name))
            QCOMPARE(QCoreApplication::translate(qUtf8Printable(entry.context),
                                                 qUtf8Printable(entry.source)),
                     entry.translation);
        for (const char* context : {"InitSettingDialog", "LangSelectDialog", "QObject"}) {
            QCOMPARE(QCoreApplication::translate(context, ""), QString());
            QCOMPARE(QCoreApplication::translate(context, "no such text"), QString("no such text"));
        }
        QCOMPARE(QCoreApplication::translate("NoSuchContext", "Enable"), QString("Enable"));
    }

    void englishIsTheSource() {
        for (const TranslationEntry& entry : entriesOf("en"))
            QCOMPARE(entry.translation, entry.source);
    }

    /** All but names, signs and file filters is in Japanese. */
    void japaneseDiffers() {
        QStringList same;
        for (const TranslationEntry& entry : entriesOf("jp")) {
            if (entry.translation == entry.source)
                same.append(entry.source);
            else
                QVERIFY2(hasJapanese(entry.translation), qUtf8Printable(entry.source));
        }
        same.removeDuplicates();
        same.sort();
        QCOMPARE(same, QStringList({"*(*.*)", ".", "DHCP:", "English", "OFF", "OK", "ON", "SSID",
                                    "SSID:", "TCP/IP", "csv(*.csv)", "ini(*.ini)"}));
    }

    /** A translation ends as its source does: colon, dots, full stop; names and extensions stay. */
    void japaneseKeepsTheForm() {
        for (const TranslationEntry& entry : entriesOf("jp")) {
            const QByteArray source = entry.source.toUtf8();
            const auto sameEnd = [&](const char* end, const char* japaneseEnd) {
                return entry.source.endsWith(end) == entry.translation.endsWith(japaneseEnd);
            };
            QVERIFY2(sameEnd(":", ":"), source.constData());
            QVERIFY2(sameEnd("...", "..."), source.constData());
            QVERIFY2(isMessage(entry) == entry.translation.endsWith("。"), source.constData());
            for (const char* name :
                 {"VQ-TL4", "(.csv)", "Ver.1.10.0008", "LAN", "MAC", "DNS", "->"})
                QVERIFY2(!entry.source.contains(name) || entry.translation.contains(name),
                         source.constData());
        }
    }

    void japaneseSays_data() {
        addRows(QVector<PartRow>{
            {"English", "LangSelectDialog", "English"},
            {"Japanese", "LangSelectDialog", "日本語"},
            {"Wireless LAN is invalid.", "InitSettingDialog", "モジュールがありません"},
            {"Failed to write WhiteCalibPlate file.", "InitSettingDialog", "選択されていません"},
            {"Failed to write AmbientLightAdapter file.", "InitSettingDialog",
             "選択されていません"},
            {"Failed to disconnect device.", "InitSettingDialog", "終了時"},
        });
    }

    /** Where the source text leaves open what is meant, or means something else than it says. */
    void japaneseSays() {
        const auto row = rowOf<PartRow>();
        const QString text = translationOf("jp", row.context, row.name);
        QVERIFY2(text.contains(row.part), qUtf8Printable(text));
    }

    /** Two sentences of a window stay two. */
    void japaneseSentencesDiffer() {
        QMap<QString, QString> sources;
        for (const TranslationEntry& entry : entriesOf("jp")) {
            if (!entry.translation.endsWith("。"))
                continue;
            const QString key = entry.context + " | " + entry.translation;
            QVERIFY2(!sources.contains(key),
                     qUtf8Printable(entry.source + ", " + sources.value(key)));
            sources.insert(key, entry.source);
        }
        QVERIFY(sources.size() > 20);
    }

    /** One term for one thing: these have another. */
    void japaneseTerms() {
        for (const TranslationEntry& entry : entriesOf("jp")) {
            for (const char* other : {"本体", "装置", "機器", "計測器", "デバイス",
                                      "ネットワーク情報", "パワーオフの時間"})
                QVERIFY2(!entry.translation.contains(other), qUtf8Printable(entry.translation));
        }
    }

    /** What the start of the program shows is looked up in a context of its own. */
    void startUpMessages() {
        for (const char* source :
             {"Spectrophotometer Configuration Tool VQ-TL4", "Failed to set default language.",
              "Failed to set select(japanese) language.", "Failed to set select(English) language.",
              "The measuring instruments is not connected."}) {
            const InstalledTranslation english("en");
            QCOMPARE(QObject::tr(source), QString(source));
            const InstalledTranslation japanese("jp");
            QVERIFY2(hasJapanese(QObject::tr(source)), source);
        }
    }
};

TEST_CLASS(TestTranslations)
#include "tst_translations.moc"
