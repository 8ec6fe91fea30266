#include "dialogs/InitSettingDialog.h"

#include "dialogs/DialogSupport.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "ui_InitSettingDialog.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QtDebug>

#include <utility>

namespace {

constexpr int watchInterval = 1000; // ms

} // namespace

InitSettingDialog::InitSettingDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::InitSettingDialog>()) {
    connect(&m_timer, SIGNAL(timeout()), this, SLOT(timerHit()));
    m_timer.setInterval(watchInterval);
    // The default kind may fire 5 % late.
    m_timer.setTimerType(Qt::PreciseTimer);
    ui->setupUi(this);
    m_addressEdits = {
        ui->ipaddr1lineEdit,     ui->ipaddr2lineEdit,     ui->ipaddr3lineEdit,
        ui->ipaddr4lineEdit,     ui->subnetMask1lineEdit, ui->subnetMask2lineEdit,
        ui->subnetMask3lineEdit, ui->subnetMask4lineEdit, ui->defGWaddr1lineEdit,
        ui->defGWaddr2lineEdit,  ui->defGWaddr3lineEdit,  ui->defGWaddr4lineEdit,
        ui->dnsaddr1lineEdit,    ui->dnsaddr2lineEdit,    ui->dnsaddr3lineEdit,
        ui->dnsaddr4lineEdit,
    };
    nameFields();
    separateChoices();
}

InitSettingDialog::~InitSettingDialog() {
    isFinished = true;
    m_timer.stop();
    ui.reset();
}

void InitSettingDialog::setSdkCtrl(std::shared_ptr<CKvaSdk_Ctrl> ctrl) {
    m_sdkCtrl = std::move(ctrl);
}

void InitSettingDialog::setConnectSelectDialog(ConnectSelectDialog* dialog) {
    m_connectSelectDialog = dialog;
}

void InitSettingDialog::keyPressEvent(QKeyEvent* event) {
    if (!DialogSupport::isCancelKey(*event))
        QDialog::keyPressEvent(event);
}

void InitSettingDialog::closeEvent(QCloseEvent* event) {
    if (!isFinished)
        on_ClosePushBtn_clicked();
    QDialog::closeEvent(event);
}

void InitSettingDialog::showErrorMessage(const QString& message) {
    DialogSupport::showMessageBox(tr("Spectrophotometer Configuration Tool VQ-TL4"),
                                  tr(message.toUtf8().constData()), QMessageBox::Critical,
                                  iconPath);
}

void InitSettingDialog::showInfoMessage(const QString& message) {
    DialogSupport::showMessageBox(tr("Spectrophotometer Configuration Tool VQ-TL4"),
                                  tr(message.toUtf8().constData()), QMessageBox::Information,
                                  iconPath);
}

void InitSettingDialog::on_setBasetabWidget_currentChanged(int index) {
    qDebug("select tab:%d", index);
    const auto focus = [](const QWidget& page, QWidget& target) {
        if (page.isEnabled())
            target.setFocus(Qt::OtherFocusReason);
    };
    switch (index) {
    case 1:
        focus(*ui->autoPowerOfftab, *ui->autoPowerOfftab);
        break;
    case 2:
        focus(*ui->wCalibPlateTab, *ui->curWCalibPlateSerialNolabel);
        break;
    case 3:
        focus(*ui->ambLightAdpTab, *ui->curAmbAdpSerialNolabel);
        break;
    default: // the network tab leaves the focus where it is
        break;
    }
}

QString InitSettingDialog::askFileName(FileQuestion ask, const QString& caption,
                                       const QString& filter, QFileDialog::Options options) {
    const bool wasConnected = m_isConnected;
    QString selectedFilter = filter;
    const QString name = ask(this, caption, QStringLiteral("./"), filter, &selectedFilter, options);
    return wasConnected && !m_isConnected ? QString() : name;
}
