#include "command/Fault.h"

#include <QtGlobal>

QString Fault::toString() const {
    if (!cell.isEmpty())
        return Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "%1, row %2, column %3: %4"),
                    {file, QString::number(line), cell, text.translated()})
            .translated();
    QString place = file;
    for (const int number : {line, column}) {
        if (number > 0)
            place += QLatin1Char(':') + QString::number(number);
    }
    return place + QStringLiteral(": ") + text.translated();
}
