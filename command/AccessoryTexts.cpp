#include "command/AccessoryTexts.h"

#include <QCoreApplication>

const AccessoryTexts AccessoryTexts::all[2] = {
    {CalibrationAccessory::whitePlate, InputRole::whitePlate, "whitePlate",
     QT_TRANSLATE_NOOP("vq-tl4ctl", "White plate:      %1"),
     QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: values of a white plate, no fault"),
     QT_TRANSLATE_NOOP("vq-tl4ctl",
                       "White plate, value %1 of %2, values[%3]: %4 (expected: %5). %6")},
    {CalibrationAccessory::ambientAdapter, InputRole::ambientAdapter, "ambientAdapter",
     QT_TRANSLATE_NOOP("vq-tl4ctl", "Ambient adapter:  %1"),
     QT_TRANSLATE_NOOP("vq-tl4ctl", "%1: values of an ambient adapter, no fault"),
     QT_TRANSLATE_NOOP("vq-tl4ctl",
                       "Ambient adapter, value %1 of %2, values[%3]: %4 (expected: %5). %6")}};

const AccessoryTexts& AccessoryTexts::of(const CalibrationAccessory& accessory) {
    return all[&accessory == &CalibrationAccessory::whitePlate ? 0 : 1];
}
