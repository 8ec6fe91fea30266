#include "tests/dialogs/settings/CalibrationTabs.h"

const CalibrationTab& calibrationTab(bool adapter) {
    static const CalibrationTab tabs[] = {
        {SettingsFixture::WhitePlate, 0, "selWCPFilePushBtn", "setWCPValPushBtn",
         "on_setWCPValPushBtn_clicked", 38, "87654321", "ambientAdapter", "white",
         "error: Failed to write WhiteCalibPlate file.",
         "error: Failed to write WhiteCalibPlate data.", "10000001", "10000000", "99999999"},
        {SettingsFixture::AmbientAdapter, 3, "selAmbLightAdpFilePushBtn", "setAmbAdpBodyPushBtn",
         "on_setAmbAdpBodyPushBtn_clicked", 75, "00054321", "white", "ambientAdapter",
         "error: Failed to write AmbientLightAdapter file.",
         "error: Failed to write AmbientLightAdapter data.", "00010001", "00010000", "00099999"},
    };
    return tabs[adapter ? 1 : 0];
}

QStringList checkLines(const QByteArray& serialLine, int count) {
    QStringList lines(QString("SerialNo: %1 \n").arg(serialLine.toInt()));
    for (int i = 0; i < count; ++i)
        lines.append(QString("rfWhite.spcData[%1]: %2 \n")
                         .arg(i)
                         .arg(static_cast<double>(fileValue(i)), 0, 'f', 6));
    return lines;
}
