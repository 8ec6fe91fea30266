#ifndef COMMAND_TEXT_H
#define COMMAND_TEXT_H

#include <QString>
#include <QStringList>

#include <initializer_list>
#include <utility>

/**
 * A message for people: a literal of the source with places for arguments. JSON gets the English
 * text, the terminal the translation.
 *
 *     Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1 values instead of %2"), {count, expected})
 *
 * A value type. Any thread; `translated()` only while no translator is installed or removed.
 */
class Text {
public:
    Text() = default;
    /** @param source     a literal in the context "vq-tl4ctl", marked with `QT_TRANSLATE_NOOP`; it
                          is kept by its address
        @param arguments  put in the places %1 to %9 all at once: a place within an argument stays
                          as it is, and so does a place without an argument */
    explicit Text(const char* source, QStringList arguments = {})
        : m_source(source), m_arguments(std::move(arguments)) {}
    explicit Text(const char* source, std::initializer_list<QStringView> arguments);

    bool isEmpty() const { return !m_source; }
    QString english() const;
    QString translated() const;

private:
    const char* m_source = nullptr;
    QStringList m_arguments;
};

/** The translation of a text that only people get. */
inline QString translated(const char* source, std::initializer_list<QStringView> arguments = {}) {
    return Text(source, arguments).translated();
}

#endif
