#ifndef TESTS_DIALOGS_SETTINGS_CONNECTEDFIXTURE_H
#define TESTS_DIALOGS_SETTINGS_CONNECTEDFIXTURE_H

#include "tests/dialogs/settings/SettingsFixture.h"
#include "tests/support/TestFolder.h"

/** A fixture that `connectFirst` has connected, in a working folder of its own. The test fails when
    it is not connected. */
class ConnectedFixture : public SettingsFixture {
public:
    /** @param patch  changes the instrument before, see `TestBench::set` */
    explicit ConnectedFixture(Page page = Network, const QByteArray& patch = "{}");

    TestFolder folder;

    /** What there was while the last box was open, unless a test sets `answers.onBox`. */
    struct {
        QStringList everything;
        QStringList disabled;
        QStringList texts;
        QStringList calls;
        bool isWatching = false;
    } atBox;

    /** What was disabled while the last box was open and is not any more. */
    QStringList busyAtBox();
    /** Pulls the plug and waits for the watch's report on top of @p below. @return as `boxes` */
    QString loseBehind(QWidget& below);
};

#endif
