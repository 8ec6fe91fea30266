#include "tests/dialogs/settings/CalibrationTabs.h"

#include <QFile>
#include <QtTest>

const CalibrationTab& calibrationTab(bool adapter) {
    static const CalibrationTab tabs[] = {
        {SettingsFixture::WhitePlate, 0, QStringLiteral("selWCPFilePushBtn"),
         QStringLiteral("setWCPValPushBtn"), "on_setWCPValPushBtn_clicked", 38, "87654321",
         QStringLiteral("ambientAdapter"), QStringLiteral("white"),
         QStringLiteral("error: Failed to write WhiteCalibPlate file."),
         QStringLiteral("error: Failed to write WhiteCalibPlate data."), "10000001", "10000000"},
        {SettingsFixture::AmbientAdapter, 3, QStringLiteral("selAmbLightAdpFilePushBtn"),
         QStringLiteral("setAmbAdpBodyPushBtn"), "on_setAmbAdpBodyPushBtn_clicked", 75, "00054321",
         QStringLiteral("white"), QStringLiteral("ambientAdapter"),
         QStringLiteral("error: Failed to write AmbientLightAdapter file."),
         QStringLiteral("error: Failed to write AmbientLightAdapter data."), "00010001",
         "00010000"},
    };
    return tabs[adapter ? 1 : 0];
}

void addCalibrationTabs() {
    QTest::addColumn<bool>("adapter");
    QTest::newRow("white plate") << false;
    QTest::newRow("adapter") << true;
}

float fileValue(int index) {
    return static_cast<float>(index) + 0.25F;
}

QByteArray valueFile(const QByteArray& serialLine, int count) {
    QByteArray values;
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            values += ',';
        values += QByteArray::number(static_cast<double>(fileValue(i)));
    }
    return "Reference values\nSerial number and values\n" + serialLine + '\n' + values + '\n';
}

QString writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? path
                                                                                    : QString();
}

QStringList checkLines(const QByteArray& serialLine, int count) {
    QStringList lines(QStringLiteral("SerialNo: %1 \n").arg(serialLine.toInt()));
    for (int i = 0; i < count; ++i)
        lines.append(QStringLiteral("rfWhite.spcData[%1]: %2 \n")
                         .arg(i)
                         .arg(static_cast<double>(fileValue(i)), 0, 'f', 6));
    return lines;
}
