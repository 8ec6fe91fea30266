#include "command/Report.h"
#include "command/UnfinishedMark.h"
#include "command/VerbSupport.h"

#include <QJsonObject>

#include <cstring>

namespace {

QString portText(const KVA_PORTINFO& port) {
    if (port.portType == ePortType_USB)
        return QStringLiteral("USB");
    return QString::fromLatin1(port.portName,
                               static_cast<int>(::strnlen(port.portName, sizeof port.portName)));
}

QJsonObject toJson(const KVA_PORTINFO& port, bool isUnfinished) {
    QJsonObject object;
    object[QStringLiteral("serialNumber")] = serialText(port.serialNumber);
    object[QStringLiteral("port")] = portText(port);
    object[QStringLiteral("unfinished")] = isUnfinished;
    return object;
}

void printLine(const KVA_PORTINFO& port, bool isUnfinished) {
    const char* source = isUnfinished
                             ? QT_TRANSLATE_NOOP("vq-tl4ctl", "%1  %2  (an unfinished write)")
                             : QT_TRANSLATE_NOOP("vq-tl4ctl", "%1  %2");
    print(translated(source, {serialText(port.serialNumber), portText(port)}));
}

} // namespace

ExitStatus list(const ListOptions& options) {
    CallWatch watch;
    InstrumentAccess access(watch);
    std::vector<KVA_PORTINFO> ports;
    const CallResult result = access.list(ports);
    if (result.failed()) {
        sayToUser(callFailure(result));
        return RefusedStatus;
    }
    for (const KVA_PORTINFO& port : ports) {
        const bool isUnfinished = UnfinishedMark(port.serialNumber).exists();
        if (options.asJson)
            print(toJson(port, isUnfinished));
        else
            printLine(port, isUnfinished);
    }
    return Done;
}
