#include "tests/dialogs/form/Translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

/** What identifies an entry: context, source text and disambiguation. */
QStringList keysOf(const QVector<TranslationEntry>& entries) {
    QStringList keys;
    for (const TranslationEntry& entry : entries)
        keys.append(entry.context + QStringLiteral(" | ") + entry.source + QStringLiteral(" | ") +
                    entry.comment);
    keys.sort();
    return keys;
}

/** Runs lupdate over the program's sources into a new file; its path, or empty when it failed. */
QString freshSource(const QTemporaryDir& folder) {
    const QString path = folder.filePath(QStringLiteral("fresh.ts"));
    QProcess lupdate;
    lupdate.setWorkingDirectory(folder.path());
    lupdate.start(QStringLiteral(LUPDATE_PROGRAM),
                  {QStringLiteral("-locations"), QStringLiteral("none"),
                   QStringLiteral(PROJECT_SOURCES "/app"),
                   QStringLiteral(PROJECT_SOURCES "/dialogs"), QStringLiteral("-ts"), path});
    const bool isDone = lupdate.waitForFinished() && lupdate.exitStatus() == QProcess::NormalExit &&
                        lupdate.exitCode() == 0;
    return isDone ? path : QString();
}

bool isJapanese(QChar character) {
    switch (character.script()) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
        return true;
    default:
        return false;
    }
}

bool hasJapanese(const QString& text) {
    return std::any_of(text.begin(), text.end(), isJapanese);
}

} // namespace

/** The translation files against the sources of the program, and the compiled files against both.
 */
class TestTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void complete_data();
    void complete();
    void entriesAreFinished_data() { complete_data(); }
    void entriesAreFinished();
    void compiled_data() { complete_data(); }
    void compiled();
    void compiledHoldsNothingElse_data() { complete_data(); }
    void compiledHoldsNothingElse();
    void englishIsTheSource();
    void japaneseDiffers();
    void japaneseKeepsTheForm();
    void japaneseSays_data();
    void japaneseSays();
    void japaneseSentencesDiffer();
    void japaneseTerms();
    void startUpMessages_data();
    void startUpMessages();
};

void TestTranslations::complete_data() {
    QTest::addColumn<QString>("language");
    for (const char* language : languages)
        QTest::newRow(language) << QString::fromLatin1(language);
}

void TestTranslations::complete() {
    QFETCH(QString, language);
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString fresh = freshSource(folder);
    QVERIFY(!fresh.isEmpty());
    const QStringList used = keysOf(readTranslationSource(fresh));
    QVERIFY(used.size() > 80);
    const QStringList present = keysOf(readTranslationSource(translationSourcePath(language)));
    QStringList missing = used;
    QStringList obsolete = present;
    for (const QString& key : present)
        missing.removeAll(key);
    for (const QString& key : used)
        obsolete.removeAll(key);
    QCOMPARE(missing.join(QLatin1Char('\n')), QString());
    QCOMPARE(obsolete.join(QLatin1Char('\n')), QString());
    QCOMPARE(present.size(), used.size());
}

void TestTranslations::entriesAreFinished() {
    QFETCH(QString, language);
    const auto entries = readTranslationSource(translationSourcePath(language));
    QVERIFY(!entries.isEmpty());
    for (const TranslationEntry& entry : entries) {
        QVERIFY2(entry.type.isEmpty(), qUtf8Printable(entry.source));
        QVERIFY2(!entry.source.isEmpty(), qUtf8Printable(entry.context));
        QVERIFY2(!entry.translation.isEmpty(), qUtf8Printable(entry.source));
        QCOMPARE(entry.translation.trimmed(), entry.translation);
    }
}

void TestTranslations::compiled() {
    QFETCH(QString, language);
    const InstalledTranslation translation(language);
    QVERIFY(translation.isLoaded());
    const auto entries = readTranslationSource(translationSourcePath(language));
    QVERIFY(!entries.isEmpty());
    for (const TranslationEntry& entry : entries) {
        QCOMPARE(QCoreApplication::translate(entry.context.toUtf8().constData(),
                                             entry.source.toUtf8().constData()),
                 entry.translation);
    }
}

void TestTranslations::compiledHoldsNothingElse() {
    QFETCH(QString, language);
    const InstalledTranslation translation(language);
    QVERIFY(translation.isLoaded());
    for (const char* context : {"InitSettingDialog", "LangSelectDialog", "QObject"}) {
        QCOMPARE(QCoreApplication::translate(context, ""), QString());
        QCOMPARE(QCoreApplication::translate(context, "no such text"),
                 QStringLiteral("no such text"));
    }
    QCOMPARE(QCoreApplication::translate("NoSuchContext", "Enable"), QStringLiteral("Enable"));
}

void TestTranslations::englishIsTheSource() {
    const auto entries = readTranslationSource(translationSourcePath(QStringLiteral("en")));
    QVERIFY(!entries.isEmpty());
    for (const TranslationEntry& entry : entries)
        QCOMPARE(entry.translation, entry.source);
}

/** All but names, signs and file filters is in Japanese. */
void TestTranslations::japaneseDiffers() {
    const QStringList kept = {
        QStringLiteral("*(*.*)"),  QStringLiteral("."),          QStringLiteral("DHCP:"),
        QStringLiteral("English"), QStringLiteral("OFF"),        QStringLiteral("OK"),
        QStringLiteral("ON"),      QStringLiteral("SSID"),       QStringLiteral("SSID:"),
        QStringLiteral("TCP/IP"),  QStringLiteral("csv(*.csv)"), QStringLiteral("ini(*.ini)")};
    const auto entries = readTranslationSource(translationSourcePath(QStringLiteral("jp")));
    QVERIFY(!entries.isEmpty());
    QSet<QString> same;
    for (const TranslationEntry& entry : entries) {
        if (entry.translation == entry.source)
            same.insert(entry.source);
        else
            QVERIFY2(hasJapanese(entry.translation), qUtf8Printable(entry.source));
    }
    QStringList found = same.values();
    found.sort();
    QCOMPARE(found, kept);
}

/** A translation ends as its source does: colon, dots, full stop; names and extensions stay. */
void TestTranslations::japaneseKeepsTheForm() {
    const auto entries = readTranslationSource(translationSourcePath(QStringLiteral("jp")));
    QVERIFY(!entries.isEmpty());
    for (const TranslationEntry& entry : entries) {
        const auto sameEnd = [&](const char* end, const char* japaneseEnd) {
            return entry.source.endsWith(QLatin1String(end)) ==
                   entry.translation.endsWith(QString::fromUtf8(japaneseEnd));
        };
        const bool isMessage = entry.source.contains(QLatin1Char(' ')) &&
                               entry.source.endsWith(QLatin1Char('.')) &&
                               !entry.source.endsWith(QLatin1String("..."));
        QVERIFY2(sameEnd(":", ":"), qUtf8Printable(entry.source));
        QVERIFY2(sameEnd("...", "..."), qUtf8Printable(entry.source));
        QVERIFY2(isMessage == entry.translation.endsWith(QStringLiteral("。")),
                 qUtf8Printable(entry.source));
        for (const char* name : {"VQ-TL4", "(.csv)", "Ver.1.10.0008", "LAN", "MAC", "DNS", "->"}) {
            if (entry.source.contains(QLatin1String(name)))
                QVERIFY2(entry.translation.contains(QLatin1String(name)),
                         qUtf8Printable(entry.source));
        }
    }
}

void TestTranslations::japaneseSays_data() {
    QTest::addColumn<QString>("context");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("part");
    const auto row = [](const char* context, const char* source, const char* part) {
        QTest::newRow(source) << QString::fromLatin1(context) << QString::fromLatin1(source)
                              << QString::fromUtf8(part);
    };
    row("LangSelectDialog", "English", "English");
    row("LangSelectDialog", "Japanese", "日本語");
    row("InitSettingDialog", "Wireless LAN is invalid.", "モジュールがありません");
    row("InitSettingDialog", "Failed to write WhiteCalibPlate file.", "選択されていません");
    row("InitSettingDialog", "Failed to write AmbientLightAdapter file.", "選択されていません");
    row("InitSettingDialog", "Failed to disconnect device.", "終了時");
}

/** Where the source text leaves open what is meant, or means something else than it says. */
void TestTranslations::japaneseSays() {
    QFETCH(QString, context);
    QFETCH(QString, source);
    QFETCH(QString, part);
    const QString text = translationOf(QStringLiteral("jp"), context, source);
    QVERIFY2(text.contains(part), qUtf8Printable(text));
}

/** Two sentences of a window stay two. */
void TestTranslations::japaneseSentencesDiffer() {
    QMap<QString, QString> sources;
    for (const TranslationEntry& entry :
         readTranslationSource(translationSourcePath(QStringLiteral("jp")))) {
        if (!entry.translation.endsWith(QStringLiteral("。")))
            continue;
        const QString key = entry.context + QStringLiteral(" | ") + entry.translation;
        QVERIFY2(!sources.contains(key),
                 qUtf8Printable(entry.source + QStringLiteral(", ") + sources.value(key)));
        sources.insert(key, entry.source);
    }
    QVERIFY(sources.size() > 20);
}

/** One term for one thing: these have another. */
void TestTranslations::japaneseTerms() {
    const QStringList others = {QStringLiteral("本体"),
                                QStringLiteral("装置"),
                                QStringLiteral("機器"),
                                QStringLiteral("計測器"),
                                QStringLiteral("デバイス"),
                                QStringLiteral("ネットワーク情報"),
                                QStringLiteral("パワーオフの時間")};
    const auto entries = readTranslationSource(translationSourcePath(QStringLiteral("jp")));
    QVERIFY(!entries.isEmpty());
    for (const TranslationEntry& entry : entries) {
        for (const QString& other : others)
            QVERIFY2(!entry.translation.contains(other), qUtf8Printable(entry.translation));
    }
}

void TestTranslations::startUpMessages_data() {
    QTest::addColumn<QByteArray>("source");
    for (const char* source :
         {"Spectrophotometer Configuration Tool VQ-TL4", "Failed to set default language.",
          "Failed to set select(japanese) language.", "Failed to set select(English) language.",
          "The measuring instruments is not connected."})
        QTest::newRow(source) << QByteArray(source);
}

/** What the start of the program shows is looked up in a context of its own. */
void TestTranslations::startUpMessages() {
    QFETCH(QByteArray, source);
    {
        const InstalledTranslation english(QStringLiteral("en"));
        QCOMPARE(QObject::tr(source.constData()), QString::fromUtf8(source));
    }
    const InstalledTranslation japanese(QStringLiteral("jp"));
    QVERIFY(hasJapanese(QObject::tr(source.constData())));
}

QTEST_GUILESS_MAIN(TestTranslations)

#include "tst_translations.moc"
