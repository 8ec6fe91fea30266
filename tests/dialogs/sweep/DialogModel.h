#ifndef TESTS_DIALOGS_SWEEP_DIALOGMODEL_H
#define TESTS_DIALOGS_SWEEP_DIALOGMODEL_H

#include "tests/dialogs/sweep/LibraryModel.h"

#include <QMap>
#include <QSet>
#include <QStringList>

/** What a user types on the network page. */
struct TypedNetwork {
    QString ssid;
    QString key;
    QStringList octets; ///< sixteen
};

/** A value file that is accepted. */
struct ValueFile {
    QString path;
    QString baseName;
    QString serialNo;
    KVA_JIG_CALREFDATA record = {}; ///< the part of its accessory filled
};

/** The settings dialog's rules in small: what each of its buttons has to lead to. */
class DialogModel {
public:
    enum Accessory { WhitePlate, AmbientAdapter };

    DialogModel(LibraryModel& library, const QVector<ValueFile>& files);

    /** Opens the dialog with no instrument chosen. */
    void open();
    void end();

    // ---- What a user does
    void pressConnect();
    void pressReadNetwork();
    void typeNetwork(const TypedNetwork& typed);
    void pressWriteNetwork();
    void pressReadPowerOff();
    void choosePowerOff(int mode);
    void pressWritePowerOff();
    void chooseFile(Accessory accessory);
    void pressRegister(Accessory accessory);
    void pressDisconnect();
    /** One tick of the disconnect watch. */
    void tick();

    bool isWatching() const { return m_isConnected; }
    /** Whether a loss is still to be noticed by the watch. */
    bool isLossPending() const { return m_library.disconnectReported; }
    bool canPress(const QString& button) const;
    /** Everything to be seen, and the boxes since the last call. */
    QStringList takeView();

    static QStringList view(QStringList boxes, QStringList disabled, QStringList checked,
                            const QStringList& identity, const QStringList& network,
                            const QStringList& calibration);

private:
    void error(const QString& text);
    void information(const QString& text);
    void connectDevice(const KVA_PORTINFO* port);
    void fill();
    void fillNetwork();
    void fillPowerOff(std::uint8_t mode);
    bool readNetwork();
    void reset();
    bool registerFile(Accessory accessory);
    void setEnabled(const QStringList& names, bool enabled);
    void check(const QString& button);

    LibraryModel& m_library;
    QVector<ValueFile> m_files;
    bool m_isConnected = false;
    bool m_isControllerConnected = false;
    KVA_NETWORKINFO m_network = {}; ///< the working copy
    QStringList m_boxes;
    QSet<QString> m_disabled;
    QSet<QString> m_checked;
    QStringList m_identity;
    QStringList m_networkTexts;
    QStringList m_calibrationTexts;
    bool m_hasFile[2] = {};
};

#endif
