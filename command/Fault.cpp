#include "command/Fault.h"

QString Fault::toString() const {
    QString place = file;
    for (const int number : {line, column}) {
        if (number > 0)
            place += QLatin1Char(':') + QString::number(number);
    }
    return place + QStringLiteral(": ") + text.translated();
}
