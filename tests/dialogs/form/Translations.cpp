#include "tests/dialogs/form/Translations.h"

#include <QtTest>

namespace {

TranslationEntry readEntry(QXmlStreamReader& xml, const QString& context) {
    TranslationEntry entry;
    entry.context = context;
    while (xml.readNextStartElement()) {
        if (xml.name() == "source") {
            entry.source = xml.readElementText();
        } else if (xml.name() == "comment") {
            entry.comment = xml.readElementText();
        } else if (xml.name() == "translation") {
            entry.type = xml.attributes().value("type").toString();
            entry.translation = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        } else {
            xml.skipCurrentElement();
        }
    }
    return entry;
}

} // namespace

bool isMessage(const TranslationEntry& entry) {
    return entry.source.contains(' ') && entry.source.endsWith('.') &&
           !entry.source.endsWith("...");
}

QString translationSourcePath(const QString& language) {
    return TRANSLATION_SOURCES "/" + language + ".ts";
}

QVector<TranslationEntry> readTranslationSource(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QVector<TranslationEntry> entries;
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == "name")
            context = xml.readElementText();
        else if (xml.name() == "message")
            entries.append(readEntry(xml, context));
    }
    return xml.hasError() ? QVector<TranslationEntry>() : entries;
}

QVector<TranslationEntry> entriesOf(const QString& language) {
    const auto entries = readTranslationSource(translationSourcePath(language));
    if (entries.isEmpty())
        QTest::qFail(qPrintable("no translations: " + language), __FILE__, __LINE__);
    return entries;
}

QString translationOf(const QString& language, const QString& context, const QString& source) {
    for (const TranslationEntry& entry : entriesOf(language)) {
        if (entry.context == context && entry.source == source)
            return entry.translation;
    }
    return {};
}

InstalledTranslation::InstalledTranslation(const QString& language) {
    const QString folder = QCoreApplication::applicationDirPath() + "/../Resources/";
    QVERIFY2(load(folder + language + ".qm"), qPrintable(language));
    QCoreApplication::installTranslator(this);
}

InstalledTranslation::~InstalledTranslation() {
    QCoreApplication::removeTranslator(this);
}

MarkingTranslator::MarkingTranslator() {
    QCoreApplication::installTranslator(this);
}

MarkingTranslator::~MarkingTranslator() {
    QCoreApplication::removeTranslator(this);
}

QString MarkingTranslator::translate(const char* context, const char* sourceText,
                                     const char* /*disambiguation*/, int /*n*/) const {
    return marked(context, sourceText);
}

QString MarkingTranslator::marked(const char* context, const char* source) {
    return QString("[%1|%2]").arg(context, source);
}
