#include "dialogs/LangSelectDialog.h"

#include "dialogs/DialogSupport.h"
#include "dialogs/RadioKeys.h"
#include "ui_LangSelectDialog.h"

#include <QCloseEvent>
#include <QKeyEvent>

LangSelectDialog::LangSelectDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::LangSelectDialog>()) {
    ui->setupUi(this);
    new RadioKeys({ui->engRadioBtn, ui->jpnRadioBtn}, this);
}

LangSelectDialog::~LangSelectDialog() {
    isFinished = true;
}

void LangSelectDialog::setLanguage(int code) {
    setWindowIcon(DialogSupport::iconAt(DialogSupport::resourcePath(QStringLiteral("VQ_TL4.ico"))));
    setWindowFlags(Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                   Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint);
    ui->pushButton->setStyleSheet(
        QStringLiteral("QPushButton:default{background-color:gainsboro;}"));
    setFixedSize(width(), height());
    ui->langselgrpBox->setTitle(tr("LanguageType"));
    ui->jpnRadioBtn->setText(tr("Japanese"));
    ui->engRadioBtn->setText(tr("English"));
    ui->jpnRadioBtn->setAccessibleDescription(tr("The windows are in Japanese"));
    ui->engRadioBtn->setAccessibleDescription(tr("The windows are in English"));
    ui->pushButton->setAccessibleDescription(tr("Goes on in the chosen language"));

    const bool isEnglish = code == english;
    QRadioButton* chosen = isEnglish ? ui->engRadioBtn : ui->jpnRadioBtn;
    QRadioButton* other = isEnglish ? ui->jpnRadioBtn : ui->engRadioBtn;
    other->setChecked(false);
    chosen->setChecked(true);
    chosen->setFocus(); // and not the first one, from which an arrow key would lead elsewhere
    // Checking in code is no click, so no slot does this.
    languageCode = isEnglish ? english : japanese;
}

void LangSelectDialog::on_pushButton_clicked() {
    isFinished = true;
    close();
}

void LangSelectDialog::on_jpnRadioBtn_clicked() {
    languageCode = japanese;
}

void LangSelectDialog::on_engRadioBtn_clicked() {
    languageCode = english;
}

void LangSelectDialog::keyPressEvent(QKeyEvent* event) {
    if (!DialogSupport::isCancelKey(*event))
        QDialog::keyPressEvent(event);
}

void LangSelectDialog::closeEvent(QCloseEvent* event) {
    if (!isFinished) {
        isCancelled = true;
        isFinished = true;
    }
    QDialog::closeEvent(event);
}
