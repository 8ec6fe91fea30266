#include "dialogs/ConnectSelectDialog.h"

#include "dialogs/DialogSupport.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "ui_ConnectSelectDialog.h"

#include <QKeyEvent>
#include <QtDebug>

#include <utility>

ConnectSelectDialog::ConnectSelectDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::ConnectSelectDialog>()) {
    ui->setupUi(this);
    ui->connectlistWidget->setAccessibleName(tr("Instruments"));
    ui->connectlistWidget->setAccessibleDescription(tr("The instruments that can be connected"));
    ui->pushButton->setAccessibleDescription(tr("Connects to the chosen instrument"));
}

ConnectSelectDialog::~ConnectSelectDialog() {
    isFinished = true;
}

void ConnectSelectDialog::setSdkCtrl(std::shared_ptr<CKvaSdk_Ctrl> ctrl) {
    m_sdkCtrl = std::move(ctrl);
}

void ConnectSelectDialog::setDeviceList(QStringList devices) {
    DialogSupport::prepareChoice(*this, *ui->pushButton, DialogSupport::titledWindow);
    ui->connectlistWidget->clear();
    for (const QString& device : std::as_const(devices))
        ui->connectlistWidget->insertItem(ui->connectlistWidget->count(), device);
    ui->connectlistWidget->setCurrentRow(0);
    setWindowTitle(tr("Select Device"));
}

bool ConnectSelectDialog::choose(const QStringList& devices,
                                 const std::function<bool()>& isAbandoned) {
    setDeviceList(devices);
    ui->connectlistWidget->setFocus();
    show();
    DialogSupport::waitUntil([&] {
        // A window manager can close a window without a close button. Show it again then.
        if (!isFinished && !isVisible())
            show();
        return isFinished || isAbandoned();
    });
    // Checked even after a choice: both may happen in the same pass of the event loop.
    if (isAbandoned()) {
        close();
        return false;
    }
    qDebug("select portNum[main]:%d", portNum);
    return true;
}

void ConnectSelectDialog::on_pushButton_clicked() {
    isFinished = true;
    close();
}

void ConnectSelectDialog::on_connectlistWidget_itemSelectionChanged() {
    portNum = ui->connectlistWidget->currentRow();
    qDebug("select portNum[ConnectSelectDialog]:%d", portNum);
}

void ConnectSelectDialog::keyPressEvent(QKeyEvent* event) {
    if (!DialogSupport::isCancelKey(*event))
        QDialog::keyPressEvent(event);
}
