#ifndef DIALOGS_DIALOGSUPPORT_H
#define DIALOGS_DIALOGSUPPORT_H

#include <QIcon>
#include <QMessageBox>
#include <QPointer>
#include <QString>

#include <functional>

class QKeyEvent;
class QPushButton;
class QRadioButton;

/** What every window of the tool needs. User-interface thread only; an application object must
    exist. */
namespace DialogSupport {

/** The path of a file in the Resources folder beside the program's own: the program's folder, one
    up, "/Resources/" and @p fileName. */
QString resourcePath(const QString& fileName);

/** The path of the icon that all windows show. */
QString iconPath();

/** The icon in the file at @p path; a null icon for an empty path. Caches the last icon, so that
    its file is read once for all windows. */
QIcon iconAt(const QString& path);

/** The flags of a window without close button: the selection of an instrument. */
constexpr Qt::WindowFlags titledWindow = Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                         Qt::WindowMinimizeButtonHint |
                                         Qt::WindowMaximizeButtonHint;
/** The flags of all other windows. */
constexpr Qt::WindowFlags closableWindow = titledWindow | Qt::WindowCloseButtonHint;

/** Sets a window's icon and flags, and fixes its present size. */
void prepareWindow(QWidget& window, const QString& iconPath, Qt::WindowFlags flags);

/** The same for a selection dialog; also sets the colour of its OK button. */
void prepareChoice(QWidget& window, QPushButton& okButton, Qt::WindowFlags flags);

/** Waits until @p isFinished returns true, which is checked before each pass. A pass processes the
    pending events and sleeps 10 ms. */
void waitUntil(const std::function<bool()>& isFinished);

/** Waits until the user has left @p window. The window's close event sets @p isFinished. A window
    that is hidden without a close event is closed here: nobody could close it any more. */
void waitUntilLeft(QWidget& window, const bool& isFinished);

/** Whether a key press would dismiss a dialog: Escape with any modifiers, or another key that the
    platform uses for "Cancel". */
bool isCancelKey(const QKeyEvent& event);

/** Shows the busy cursor while it exists. End its scope before showing a message. */
class BusyCursor {
public:
    BusyCursor();
    ~BusyCursor();
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};

/** Unchecks a button even when its exclusive group would keep it checked. */
void forceUncheck(QRadioButton& button);

/** Shows the busy cursor during @p call. @return what the call returns */
template <typename Call>
auto whileBusy(const Call& call) {
    const BusyCursor cursor;
    return call();
}

/** Shows a modal box with one Ok button and returns when it was dismissed in any way.
    @param iconPath  the window icon's file; empty for none */
void showMessageBox(const QString& title, const QString& text, QMessageBox::Icon icon,
                    const QString& iconPath);

/** Restores the keyboard focus at the end of its scope. Disabling a widget moves the focus to the
    next one, where Space would press another button. Does nothing if the widget is still disabled
    or was deleted. */
class FocusKeeper {
public:
    /** Remembers the focus widget of @p window, which must live longer. */
    explicit FocusKeeper(QWidget& window);
    ~FocusKeeper();
    FocusKeeper(const FocusKeeper&) = delete;
    FocusKeeper& operator=(const FocusKeeper&) = delete;

private:
    QPointer<QWidget> m_focused;
};

} // namespace DialogSupport

#endif
