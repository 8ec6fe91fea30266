#ifndef TESTS_DIALOGS_FORM_TRANSLATIONS_H
#define TESTS_DIALOGS_FORM_TRANSLATIONS_H

#include <QTest>
#include <QTranslator>

/** An entry of a translation source file. */
struct TranslationEntry {
    QString context;
    QString source;
    QString comment; ///< disambiguation
    QString translation;
    QString type; ///< of the translation: "unfinished", "vanished", "obsolete"; empty: finished
};

/** Whether it is a sentence: what message boxes say, and nothing else. */
bool isMessage(const TranslationEntry& entry);

/** A test row: a language of the tool, by the base name of its files. */
struct LanguageRow {
    const char* name;
};

inline const QVector<LanguageRow> languages = {{"en"}, {"jp"}};

/** The entries of a translation source file; empty when it cannot be read or parsed. */
QVector<TranslationEntry> readTranslationSource(const QString& path);

/** The entries of a language's source file. The test fails when there are none. */
QVector<TranslationEntry> entriesOf(const QString& language);

/** The translation that a language's source file gives; null when there is none. */
QString translationOf(const QString& language, const QString& context, const QString& source);

/** Installs a language's compiled file from the Resources folder, while it exists. The test
    fails when the file cannot be loaded. */
class InstalledTranslation : public QTranslator {
public:
    explicit InstalledTranslation(const QString& language) {
        const QString folder = QCoreApplication::applicationDirPath() + "/../Resources/";
        QVERIFY2(load(folder + language + ".qm"), qPrintable(language));
        QCoreApplication::installTranslator(this);
    }
    ~InstalledTranslation() override { QCoreApplication::removeTranslator(this); }
};

/** Marks each text that is looked up, so that what was looked up, and in which context, can be
    seen: "[context|source]". Installed while it exists. */
class MarkingTranslator : public QTranslator {
public:
    MarkingTranslator() { QCoreApplication::installTranslator(this); }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char* /*disambiguation*/,
                      int /*n*/) const override {
        return marked(context, sourceText);
    }

    static QString marked(const char* context, const char* source) {
        return QString("[%1|%2]").arg(context, source);
    }
};

#endif
