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
    DialogSupport::prepareChoice(*this, *ui->pushButton, DialogSupport::closableWindow);
    ui->langselgrpBox->setTitle(tr("LanguageType"));
    ui->pushButton->setAccessibleDescription(tr("Goes on in the chosen language"));

    // setChecked() emits no clicked(), so no slot sets the code.
    languageCode = Language::ofCode(code) ? code : Language::japanese;
    for (const Language& language : Language::all) {
        auto* button = findChild<QRadioButton*>(QLatin1String(language.radioButton));
        button->setText(tr(language.name));
        button->setAccessibleDescription(tr(language.description));
        const bool isChosen = language.code == languageCode;
        button->setChecked(isChosen);
        if (isChosen)
            button->setFocus(); // else the first has it, and an arrow key would start there
    }
}

void LangSelectDialog::on_pushButton_clicked() {
    isFinished = true;
    close();
}

void LangSelectDialog::on_jpnRadioBtn_clicked() {
    languageCode = Language::japanese;
}

void LangSelectDialog::on_engRadioBtn_clicked() {
    languageCode = Language::english;
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
