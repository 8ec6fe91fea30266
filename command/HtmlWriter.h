#ifndef COMMAND_HTMLWRITER_H
#define COMMAND_HTMLWRITER_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QXmlStreamWriter>

#include <initializer_list>
#include <utility>
#include <vector>

/** Writes HTML that is also well-formed XML. Every text and attribute is escaped, and its
    unprintable characters are made visible. */
class HtmlWriter {
public:
    /** Names and values. The values need to exist only during the call. */
    using Attributes = std::initializer_list<std::pair<const char*, QStringView>>;

    /** @param target  must outlive the object; complete once each element is closed */
    explicit HtmlWriter(QByteArray* target);

    /** An element that is closed at the end of its scope. */
    class Scope {
    public:
        Scope(QXmlStreamWriter& writer, const char* name, Attributes attributes);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        QXmlStreamWriter& m_writer;
    };
    [[nodiscard]] Scope open(const char* name, Attributes attributes = {});

    void documentType();
    /** @param css  without a character that would be escaped */
    void style(const char* css);
    /** An element with a text; never self-closing, which HTML allows only for some elements. */
    void element(const char* name, const QString& text, Attributes attributes = {});
    /** A self-closing element: one of SVG, or a void element of HTML. */
    void empty(const char* name, Attributes attributes);

    struct Row {
        QStringList cells; ///< the first is the row's heading
        QString link;      ///< target of the heading's link; empty for none
    };
    struct Table {
        /** @param columns  their headings; none if the rows' headings are enough
            @param name     a class */
        Table(QString title, std::initializer_list<QStringView> columns, const char* name);
        /** @param cells  the first is the row's heading
            @param link   target of the heading's link; empty for none */
        void add(std::initializer_list<QStringView> cells, const QString& link = {});

        QString caption;
        QStringList headings;
        std::vector<Row> rows;
        const char* style;
    };
    void table(const Table& table);

    /** The text with unprintable characters as numbers: `\u{1b}`. */
    static QString visible(const QString& text);

private:
    QXmlStreamWriter m_writer;
};

#endif
