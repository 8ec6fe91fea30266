#include "tests/dialogs/form/Translations.h"

#include <QXmlStreamReader>

namespace {

TranslationEntry readEntry(QXmlStreamReader& xml, const QString& context) {
    TranslationEntry entry;
    entry.context = context;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("source")) {
            entry.source = xml.readElementText();
        } else if (xml.name() == QLatin1String("comment")) {
            entry.comment = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
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
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("message"))
            entries.append(readEntry(xml, context));
    }
    return xml.hasError() ? QVector<TranslationEntry>() : entries;
}

QVector<TranslationEntry> entriesOf(const QString& language) {
    const auto entries = readTranslationSource(TRANSLATION_SOURCES "/" + language + ".ts");
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
