#include "dialogs/DialogSupport.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QIcon>
#include <QKeyEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QThread>

QString DialogSupport::resourcePath(const QString& fileName) {
    QDir base(QCoreApplication::applicationDirPath());
    base.cdUp();
    return base.absolutePath() + QStringLiteral("/Resources/") + fileName;
}

QString DialogSupport::iconPath() {
    return resourcePath(QStringLiteral("VQ_TL4.ico"));
}

QIcon DialogSupport::iconAt(const QString& path) {
    static QString lastPath;
    static QIcon lastIcon;
    if (path != lastPath || lastIcon.isNull()) {
        lastIcon = QIcon(path);
        lastPath = path;
        // Its pixmaps must not outlive the application object.
        qAddPostRoutine([] { lastIcon = QIcon(); });
    }
    return lastIcon;
}

void DialogSupport::prepareWindow(QWidget& window, const QString& iconPath, Qt::WindowFlags flags) {
    window.setWindowIcon(iconAt(iconPath));
    window.setWindowFlags(flags);
    window.setFixedSize(window.size());
}

void DialogSupport::prepareChoice(QWidget& window, QPushButton& okButton, Qt::WindowFlags flags) {
    okButton.setStyleSheet(QStringLiteral("QPushButton:default{background-color:gainsboro;}"));
    prepareWindow(window, iconPath(), flags);
}

void DialogSupport::waitUntil(const std::function<bool()>& isFinished) {
    while (!isFinished()) {
        QCoreApplication::processEvents();
        QThread::msleep(10);
    }
}

void DialogSupport::waitUntilLeft(QWidget& window, const bool& isFinished) {
    waitUntil([&] {
        if (!isFinished && window.isHidden() && window.close() && !isFinished) {
            // Qt 6 gives a close event only to a window that is shown.
            QCloseEvent event;
            QCoreApplication::sendEvent(&window, &event);
        }
        return isFinished;
    });
}

bool DialogSupport::isCancelKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_Escape || event.matches(QKeySequence::Cancel);
}

void DialogSupport::forceUncheck(QRadioButton& button) {
    button.setCheckable(false);
    button.setChecked(false);
    button.setCheckable(true);
}

DialogSupport::BusyCursor::BusyCursor() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

DialogSupport::BusyCursor::~BusyCursor() {
    QApplication::restoreOverrideCursor();
}

void DialogSupport::showMessageBox(const QString& title, const QString& text,
                                   QMessageBox::Icon icon, const QString& iconPath) {
    QMessageBox box;
    box.setWindowTitle(title);
    box.setWindowIcon(iconAt(iconPath));
    box.setWindowFlags(closableWindow);
    box.setText(text);
    box.setIcon(icon);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

DialogSupport::FocusKeeper::FocusKeeper(QWidget& window) : m_focused(window.focusWidget()) {}

DialogSupport::FocusKeeper::~FocusKeeper() {
    if (m_focused && m_focused->isEnabled())
        m_focused->setFocus(Qt::OtherFocusReason);
}
