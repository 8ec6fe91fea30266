#include "command/InputRole.h"

#include "command/InstrumentState.h"

#include <QCoreApplication>

const InputRole InputRole::network = {"network", QT_TRANSLATE_NOOP("vq-tl4ctl", "Network settings"),
                                      nullptr};
const InputRole InputRole::whitePlate = {"white-plate",
                                         QT_TRANSLATE_NOOP("vq-tl4ctl", "White calibration plate"),
                                         &CalibrationAccessory::whitePlate};
const InputRole InputRole::ambientAdapter = {
    "ambient-adapter", QT_TRANSLATE_NOOP("vq-tl4ctl", "Ambient light adapter"),
    &CalibrationAccessory::ambientAdapter};
const InputRole InputRole::snapshot = {"snapshot", QT_TRANSLATE_NOOP("vq-tl4ctl", "Snapshot"),
                                       nullptr};
const InputRole InputRole::plan = {"plan", QT_TRANSLATE_NOOP("vq-tl4ctl", "Plan"), nullptr};

const InputRole* InputRole::stored(const QString& text) {
    const QString word = text.section(QLatin1Char(' '), 0, 0);
    for (const InputRole* role : {&network, &whitePlate, &ambientAdapter, &snapshot, &plan}) {
        if (word == QLatin1String(role->word))
            return role;
    }
    return nullptr;
}

QString InputRole::toStore(std::optional<std::int32_t> serialNumber) const {
    QString text = QString::fromLatin1(word);
    if (serialNumber)
        text += QLatin1Char(' ') + serialText(*serialNumber);
    return text;
}
