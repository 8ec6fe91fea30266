#include "command/Text.h"

#include <QCoreApplication>

namespace {

QString filled(const QString& source, const QStringList& arguments) {
    QString result;
    for (int i = 0; i < source.size(); ++i) {
        const bool place = source[i] == QLatin1Char('%') && i + 1 < source.size();
        const int number = place ? source[i + 1].unicode() - u'0' : 0;
        if (number >= 1 && number <= 9 && number <= arguments.size()) {
            result += arguments[number - 1];
            ++i;
        } else {
            result += source[i];
        }
    }
    return result;
}

} // namespace

Text::Text(const char* source, std::initializer_list<QStringView> arguments) : m_source(source) {
    for (const QStringView argument : arguments)
        m_arguments.append(argument.toString());
}

QString Text::english() const {
    if (isEmpty())
        return {};
    return filled(QString::fromUtf8(m_source), m_arguments);
}

QString Text::translated() const {
    if (isEmpty())
        return {};
    return filled(QCoreApplication::translate("vq-tl4ctl", m_source), m_arguments);
}
