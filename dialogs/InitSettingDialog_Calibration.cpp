#include "dialogs/DialogSupport.h"
#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "ui_InitSettingDialog.h"

#include <QDir>
#include <QFileInfo>

using DialogSupport::whileBusy;

/** What differs between the tabs of the white calibration plate and the ambient light adapter. */
struct InitSettingDialog::CalibrationTab {
    QLabel* currentSerialNo; ///< held by the instrument
    QLabel* fileName;
    QLabel* fileSerialNo;
    QPushButton* choose;
    QPushButton* write;
    QString& filePath; ///< of the chosen file
    bool (CKvaSdk_Ctrl::*checkFile)(const char* path);
    bool (CKvaSdk_Ctrl::*registerFile)(const char* path);
    QString CKvaSdk_Ctrl::*fileSerialNoText;
    QString CKvaSdk_Ctrl::*currentSerialNoText;
    const char* noFileMessage;
    const char* notWrittenMessage;
};

InitSettingDialog::CalibrationTab InitSettingDialog::whitePlateTab() {
    return {ui->curWCalibPlateSerialNolabel,
            ui->selWCPFileNamelabel,
            ui->selFileSerialNolabel,
            ui->selWCPFilePushBtn,
            ui->setWCPValPushBtn,
            m_wcpFilePath,
            &CKvaSdk_Ctrl::ReadWCPFile,
            &CKvaSdk_Ctrl::WriteWCPData,
            &CKvaSdk_Ctrl::m_fileWCPSerialNo,
            &CKvaSdk_Ctrl::m_curWCPSerialNo,
            QT_TR_NOOP("Failed to write WhiteCalibPlate file."),
            QT_TR_NOOP("Failed to write WhiteCalibPlate data.")};
}

InitSettingDialog::CalibrationTab InitSettingDialog::ambientAdapterTab() {
    return {ui->curAmbAdpSerialNolabel,
            ui->selAmbAdpFnamelabel,
            ui->selAmbAdpFSerialNolabel,
            ui->selAmbLightAdpFilePushBtn,
            ui->setAmbAdpBodyPushBtn,
            m_ambFilePath,
            &CKvaSdk_Ctrl::ReadAmbAdpFile,
            &CKvaSdk_Ctrl::WriteAmbAdpData,
            &CKvaSdk_Ctrl::m_fileAmbAdpSerialNo,
            &CKvaSdk_Ctrl::m_curAmbAdpSerialNo,
            QT_TR_NOOP("Failed to write AmbientLightAdapter file."),
            QT_TR_NOOP("Failed to write AmbientLightAdapter data.")};
}

void InitSettingDialog::clearCalibrationTab(const CalibrationTab& tab) {
    tab.currentSerialNo->setText(QString());
    tab.fileName->setText(QString());
    tab.fileName->setToolTip(QString());
    tab.fileSerialNo->setText(QString());
    tab.filePath.clear();
}

void InitSettingDialog::clearCalibrationTabs() {
    clearCalibrationTab(whitePlateTab());
    clearCalibrationTab(ambientAdapterTab());
}

void InitSettingDialog::chooseValueFile(const CalibrationTab& tab) {
    const QString name = askFileName(QFileDialog::getOpenFileName, tr("Open"), tr("csv(*.csv)"),
                                     QFileDialog::DontUseCustomDirectoryIcons);
    if (name.isEmpty())
        return;
    CKvaSdk_Ctrl& ctrl = *m_sdkCtrl;
    const bool valid = (ctrl.*tab.checkFile)(name.toLocal8Bit().constData());
    tab.fileName->setText(QFileInfo(name).baseName());
    // Files of different years may have the same base name.
    tab.fileName->setToolTip(QDir::toNativeSeparators(name));
    tab.fileSerialNo->setText(valid ? ctrl.*tab.fileSerialNoText : QString());
    tab.write->setEnabled(valid);
    // Kept for a refused file as well: a write would read the file again and check it.
    tab.filePath = name;
    if (valid)
        showInfoMessage(tr("Successful read file data."));
    else
        showErrorMessage(tr("Failed to read file data."));
}

void InitSettingDialog::registerValueFile(const CalibrationTab& tab) {
    const DialogSupport::FocusKeeper focus(*this);
    // Prevents a second click: the event loop runs while a message is open.
    tab.write->setEnabled(false);
    tab.choose->setEnabled(false);

    CKvaSdk_Ctrl& ctrl = *m_sdkCtrl;
    if (tab.filePath.isEmpty()) {
        showErrorMessage(tr(tab.noFileMessage));
    } else if (whileBusy([&] { return (ctrl.*tab.registerFile)(tab.filePath.toLocal8Bit()); })) {
        showInfoMessage(tr("Successful device writing."));
        whileBusy([&] { return ctrl.GetCalRefSerialNo(); });
        tab.currentSerialNo->setText(ctrl.*tab.currentSerialNoText);
    } else {
        showErrorMessage(tr(tab.notWrittenMessage));
    }

    tab.write->setEnabled(true);
    tab.choose->setEnabled(true);
}

void InitSettingDialog::on_selWCPFilePushBtn_clicked() {
    chooseValueFile(whitePlateTab());
}

void InitSettingDialog::on_selAmbLightAdpFilePushBtn_clicked() {
    chooseValueFile(ambientAdapterTab());
}

void InitSettingDialog::on_setWCPValPushBtn_clicked() {
    registerValueFile(whitePlateTab());
}

void InitSettingDialog::on_setAmbAdpBodyPushBtn_clicked() {
    registerValueFile(ambientAdapterTab());
}
