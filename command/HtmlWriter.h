#ifndef COMMAND_HTMLWRITER_H
#define COMMAND_HTMLWRITER_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QXmlStreamWriter>

#include <initializer_list>
#include <utility>
#include <vector>

/** Writes HTML that is well-formed XML as well. Every text and every attribute is escaped, and what
    could not be seen in it is made visible. */
class HtmlWriter {
public:
    using Attributes = std::initializer_list<std::pair<const char*, QString>>;

    /** @param target  outlives the object; has all of it when each element is closed */
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
    /** An element of one text; never in the short form, which only some elements of HTML have. */
    void element(const char* name, const QString& text, Attributes attributes = {});
    /** An element without content: one of SVG, or one that never has any. */
    void empty(const char* name, Attributes attributes);

    struct Row {
        QStringList cells; ///< the first is the row's heading
        QString link;      ///< that the heading leads to; empty for none
    };
    struct Table {
        QString caption;
        QStringList headings; ///< of the columns; none where the rows' are enough
        std::vector<Row> rows;
        const char* style = ""; ///< a class
    };
    void table(const Table& table);

    /** The text with each character that cannot be printed as its number: `\u{1b}`. */
    static QString visible(const QString& text);

private:
    QXmlStreamWriter m_writer;
};

#endif
