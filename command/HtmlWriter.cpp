#include "command/HtmlWriter.h"

namespace {

void begin(QXmlStreamWriter& writer, const char* name, HtmlWriter::Attributes attributes) {
    writer.writeStartElement(QString::fromLatin1(name));
    for (const auto& [attribute, value] : attributes)
        writer.writeAttribute(QString::fromLatin1(attribute),
                              HtmlWriter::visible(value.toString()));
}

QStringList listOf(std::initializer_list<QStringView> texts) {
    QStringList list;
    for (const QStringView text : texts)
        list.append(text.toString());
    return list;
}

} // namespace

HtmlWriter::Table::Table(QString title, std::initializer_list<QStringView> columns,
                         const char* name)
    : caption(std::move(title)), headings(listOf(columns)), style(name) {}

void HtmlWriter::Table::add(std::initializer_list<QStringView> cells, const QString& link) {
    rows.push_back(Row{listOf(cells), link});
}

HtmlWriter::HtmlWriter(QByteArray* target) : m_writer(target) {
    m_writer.setAutoFormatting(true);
    m_writer.setAutoFormattingIndent(1);
}

HtmlWriter::Scope::Scope(QXmlStreamWriter& writer, const char* name, Attributes attributes)
    : m_writer(writer) {
    begin(writer, name, attributes);
}

HtmlWriter::Scope::~Scope() {
    m_writer.writeEndElement();
}

HtmlWriter::Scope HtmlWriter::open(const char* name, Attributes attributes) {
    return {m_writer, name, attributes};
}

void HtmlWriter::documentType() {
    m_writer.writeDTD(QStringLiteral("<!DOCTYPE html>"));
}

void HtmlWriter::style(const char* css) {
    m_writer.writeTextElement(QStringLiteral("style"), QString::fromUtf8(css));
}

void HtmlWriter::element(const char* name, const QString& text, Attributes attributes) {
    begin(m_writer, name, attributes);
    m_writer.writeCharacters(visible(text));
    m_writer.writeEndElement();
}

void HtmlWriter::empty(const char* name, Attributes attributes) {
    begin(m_writer, name, attributes);
    m_writer.writeEndElement();
}

void HtmlWriter::table(const Table& table) {
    const Scope scope = open("table", {{"class", QString::fromLatin1(table.style)}});
    element("caption", table.caption);
    if (!table.headings.isEmpty()) {
        const Scope head = open("thead");
        const Scope line = open("tr");
        for (const QString& heading : table.headings)
            element("th", heading, {{"scope", QStringLiteral("col")}});
    }
    const Scope body = open("tbody");
    for (const Row& row : table.rows) {
        const Scope line = open("tr");
        if (row.link.isEmpty()) {
            element("th", row.cells.value(0), {{"scope", QStringLiteral("row")}});
        } else {
            const Scope heading = open("th", {{"scope", QStringLiteral("row")}});
            element("a", row.cells.value(0), {{"href", row.link}});
        }
        for (const QString& cell : row.cells.mid(1))
            element("td", cell);
    }
}

QString HtmlWriter::visible(const QString& text) {
    QString result;
    for (const uint character : text.toUcs4()) {
        if (QChar::isPrint(character))
            result += QString::fromUcs4(&character, 1);
        else
            result += QStringLiteral("\\u{%1}").arg(character, 0, 16);
    }
    return result;
}
