#ifndef TESTS_DIALOGS_SETTINGS_NETWORKVALUES_H
#define TESTS_DIALOGS_SETTINGS_NETWORKVALUES_H

#include "tests/dialogs/settings/SettingsFixture.h"

/** Network settings, of names and values as the bench has them. All but the switches differ from
    what the bench's instrument holds. */
QJsonObject networkValues(double wireless = 1, double dhcp = 0);

/** The octets of the addresses, in the order of the edits. */
QStringList octetsOf(const QJsonObject& values);
/** What the page shows, as in `SettingsFixture::networkTexts`. */
QStringList networkTexts(const QJsonObject& values);
/** The settings file. */
QByteArray settingsFile(const QJsonObject& values = networkValues());
/** The patch that makes them the instrument's. */
QByteArray networkPatch(const QJsonObject& values);
/** Makes the page show them. */
void typeNetwork(SettingsFixture& f, const QJsonObject& values = networkValues());

/** The buttons that are checked with these switches. */
QStringList switchButtons(double wireless, double dhcp);

#endif
