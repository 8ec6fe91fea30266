#include "tests/dialogs/form/Translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QXmlStreamReader>

namespace {

QString compiledTranslationPath(const QString& language) {
    QDir base(QCoreApplication::applicationDirPath());
    base.cdUp();
    return base.absoluteFilePath(QStringLiteral("Resources/%1.qm").arg(language));
}

TranslationEntry readEntry(QXmlStreamReader& xml, const QString& context) {
    TranslationEntry entry;
    entry.context = context;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("source")) {
            entry.source = xml.readElementText();
        } else if (xml.name() == QLatin1String("comment")) {
            entry.comment = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            entry.type = xml.attributes().value(QLatin1String("type")).toString();
            entry.translation = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        } else {
            xml.skipCurrentElement();
        }
    }
    return entry;
}

} // namespace

QString translationSourcePath(const QString& language) {
    return QStringLiteral(TRANSLATION_SOURCES "/%1.ts").arg(language);
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

QString translationOf(const QString& language, const QString& context, const QString& source) {
    for (const TranslationEntry& entry : readTranslationSource(translationSourcePath(language))) {
        if (entry.context == context && entry.source == source)
            return entry.translation;
    }
    return {};
}

InstalledTranslation::InstalledTranslation(const QString& language)
    : m_isLoaded(
          m_translator.load(compiledTranslationPath(language), QString(), QString(), QString())) {
    QCoreApplication::installTranslator(&m_translator);
}

InstalledTranslation::~InstalledTranslation() {
    QCoreApplication::removeTranslator(&m_translator);
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
    return QStringLiteral("[%1|%2]").arg(QString::fromUtf8(context), QString::fromUtf8(source));
}
