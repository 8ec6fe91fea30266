#include "tests/dialogs/settings/SettingsFixture.h"

#include "simulator/KvaSim.h"

#include <QAbstractButton>
#include <QApplication>
#include <QJsonDocument>
#include <QLabel>
#include <QTabWidget>
#include <QtTest>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

/** Lets a test at a private member, as an explicit instantiation may name it. */
template <QTimer InitSettingDialog::*Member>
struct WatchAccess {
    friend QTimer& privateWatchOf(InitSettingDialog& dialog) { return dialog.*Member; }
};
template struct WatchAccess<&InitSettingDialog::m_timer>;
QTimer& privateWatchOf(InitSettingDialog& dialog);

// The friend is inline, so that other sources would not find it in an optimised build.
QTimer& watchOf(InitSettingDialog& dialog) {
    return privateWatchOf(dialog);
}

namespace {

constexpr char instrumentJson[] = R"({
    "serialNumber": 1234567,
    "device": {"firmware": [1, 2, 3], "macAddress": "02:0a:bc:0d:ef:09"},
    "wirelessModule": true,
    "network": {"active": {"APConnectUse": 1, "DHCPUse": 0, "IPAddress": "192.168.0.10",
                           "SubnetMask": "255.255.255.0", "DefaultGateway": "192.168.0.1",
                           "DNS": "8.8.4.0", "SSID": "press-hall", "EncryptKey": "spectral-key"}},
    "powerOffMode": 2,
    "calibration": {"committed": {"white": {"serialNumber": "12345678"},
                                  "ambientAdapter": {"serialNumber": "00012345"},
                                  "reserved": {"seed": 7}}}
})";

const QStringList& switchable() {
    static const QStringList names = {
        QStringLiteral("setBasetabWidget"),
        QStringLiteral("networkSetTab"),
        QStringLiteral("autoPowerOfftab"),
        QStringLiteral("wCalibPlateTab"),
        QStringLiteral("ambLightAdpTab"),
        QStringLiteral("ConnectPushBtn"),
        QStringLiteral("disConnectPushBtn"),
        QStringLiteral("ClosePushBtn"),
        QStringLiteral("readToFilePushBtn"),
        QStringLiteral("writeFilePushBtn"),
        QStringLiteral("readBodyPushBtn"),
        QStringLiteral("writeBodyPushBtn"),
        QStringLiteral("getAutoPWOffPushBtn"),
        QStringLiteral("setAutoPWOffPushBtn"),
        QStringLiteral("selWCPFilePushBtn"),
        QStringLiteral("setWCPValPushBtn"),
        QStringLiteral("selAmbLightAdpFilePushBtn"),
        QStringLiteral("setAmbAdpBodyPushBtn"),
    };
    return names;
}

const QStringList& radioButtons() {
    static const QStringList names = {
        QStringLiteral("enableRadioBtn"),  QStringLiteral("disableRadioBtn"),
        QStringLiteral("dhcpOnRadioBtn"),  QStringLiteral("dhcpOffRadioBtn"),
        QStringLiteral("invalidradioBtn"), QStringLiteral("fifteenRadioBtn"),
        QStringLiteral("thirtyRadioBtn"),  QStringLiteral("sixtyRadioBtn"),
    };
    return names;
}

QString kindOf(const ModalAnswerer::Box& box) {
    const Qt::WindowFlags hints = Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                  Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint |
                                  Qt::WindowCloseButtonHint;
    // A type, and the system menu where a window has a close button.
    const Qt::WindowFlags addedByQt = Qt::WindowType_Mask | Qt::WindowSystemMenuHint;
    const QString title = QStringLiteral("Spectrophotometer Configuration Tool VQ-TL4");
    if (box.title != title || box.buttons != QMessageBox::Ok || !box.isModal || box.hasParent ||
        (box.flags & ~addedByQt) != hints)
        return QStringLiteral("malformed");
    if (box.icon == QMessageBox::Information)
        return QStringLiteral("information");
    return box.icon == QMessageBox::Critical ? QStringLiteral("error") : QStringLiteral("other");
}

QString describe(const ModalAnswerer::Box& box) {
    return kindOf(box) + QStringLiteral(": ") + box.text;
}

ModalAnswerer::Box recordOf(const QMessageBox& box) {
    return {box.windowTitle(), box.text(),
            box.icon(),        box.standardButtons(),
            box.windowFlags(), !box.windowIcon().isNull(),
            box.isModal(),     box.parentWidget() != nullptr};
}

QJsonDocument taken(char* text) {
    QJsonDocument document = QJsonDocument::fromJson(text);
    KvaSim_Free(text);
    return document;
}

std::shared_ptr<CKvaSdk_Ctrl> controllerOn(const QJsonArray& instruments) {
    const QJsonObject bench = {{QStringLiteral("version"), 1},
                               {QStringLiteral("instruments"), instruments}};
    if (!KvaSim_LoadJson(QJsonDocument(bench).toJson().constData()))
        SettingsFixture::giveUp(QString::fromUtf8(KvaSim_LastError()));
    KvaSim_WaitForEvents();
    g_deviceDisconnected.store(false);
    return std::make_shared<CKvaSdk_Ctrl>();
}

} // namespace

QJsonObject SettingsFixture::instrument(int serial) {
    QJsonObject object = QJsonDocument::fromJson(instrumentJson).object();
    object[QStringLiteral("serialNumber")] = serial;
    return object;
}

SettingsFixture::SettingsFixture(const QJsonArray& instruments)
    : controller(controllerOn(instruments)) {
    selection.setSdkCtrl(controller);
    dialog.setSdkCtrl(controller);
    dialog.setConnectSelectDialog(&selection);
    clearRecords();
}

SettingsFixture::~SettingsFixture() {
    KvaSim_WaitForEvents();
    g_deviceDisconnected.store(false);
}

bool SettingsFixture::connectFirst(Page page) {
    controller->GetDevicePortList();
    dialog.connectDevice(0, false);
    if (!keepsWatching)
        watchOf(dialog).setInterval(std::chrono::hours(1));
    dialog.show();
    openPage(page);
    const bool connected = watchOf(dialog).isActive() && answers.boxes.isEmpty();
    clearRecords();
    return connected;
}

void SettingsFixture::openPage(Page page) {
    child<QTabWidget>(QStringLiteral("setBasetabWidget")).setCurrentIndex(page);
}

void SettingsFixture::clearRecords() {
    KvaSim_WaitForEvents();
    KvaSim_ClearCallLog();
    log.clear();
    answers.boxes.clear();
    answers.fileDialogs.clear();
}

bool SettingsFixture::set(const char* patch) {
    const int serial = state()[QStringLiteral("serialNumber")].toInt();
    return KvaSim_Set(serial, patch);
}

bool SettingsFixture::answer(const QString& function, int result, int call) {
    QJsonObject rule = {{QStringLiteral("function"), function}, {QStringLiteral("result"), result}};
    if (call > 0)
        rule[QStringLiteral("call")] = call;
    return KvaSim_AddFault(QJsonDocument(rule).toJson().constData());
}

QJsonObject SettingsFixture::state() {
    return taken(KvaSim_State())[QStringLiteral("instruments")][0].toObject();
}

QStringList SettingsFixture::calls() {
    QStringList names;
    const QJsonArray entries = taken(KvaSim_CallLog()).array();
    for (const QJsonValue& entry : entries)
        names.append(entry[QStringLiteral("function")].toString());
    return names;
}

QJsonObject SettingsFixture::argumentsOf(const QString& function) {
    QJsonObject arguments;
    const QJsonArray entries = taken(KvaSim_CallLog()).array();
    for (const QJsonValue& entry : entries) {
        if (entry[QStringLiteral("function")].toString() == function)
            arguments = entry[QStringLiteral("arguments")].toObject();
    }
    return arguments;
}

void SettingsFixture::emitEvent(quint32 code) {
    KvaSim_EmitEvent(code, 0, 0);
    KvaSim_WaitForEvents();
}

void SettingsFixture::click(const QString& name) {
    auto& button = child<QAbstractButton>(name);
    if (!button.isVisible() || !button.isEnabled())
        giveUp(QStringLiteral("nobody could click ") + name);
    // Not the middle: a radio button takes clicks on its circle and its text only.
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
}

void SettingsFixture::invoke(const char* slot) {
    if (!QMetaObject::invokeMethod(&dialog, slot, Qt::DirectConnection))
        giveUp(QStringLiteral("no slot ") + QLatin1String(slot));
}

void SettingsFixture::uncheck(const QString& name) {
    auto& button = child<QAbstractButton>(name);
    button.setAutoExclusive(false);
    button.setChecked(false);
    button.setAutoExclusive(true);
}

QVector<QLineEdit*> SettingsFixture::addressEdits() {
    QVector<QLineEdit*> edits;
    for (const char* row : {"ipaddr", "subnetMask", "defGWaddr", "dnsaddr"}) {
        for (int octet = 1; octet <= 4; ++octet)
            edits.append(&child<QLineEdit>(
                QStringLiteral("%1%2lineEdit").arg(QLatin1String(row)).arg(octet)));
    }
    return edits;
}

void SettingsFixture::setOctets(const QStringList& octets) {
    const QVector<QLineEdit*> edits = addressEdits();
    for (int i = 0; i < edits.size(); ++i)
        edits[i]->setText(octets.value(i));
}

QStringList SettingsFixture::disabled() {
    QStringList names;
    for (const QString& name : switchable()) {
        const QWidget& widget = child(name);
        if (!widget.isEnabledTo(widget.parentWidget()))
            names.append(name);
    }
    return names;
}

QStringList SettingsFixture::checked() {
    QStringList names;
    for (const QString& name : radioButtons()) {
        if (child<QAbstractButton>(name).isChecked())
            names.append(name);
    }
    return names;
}

QStringList SettingsFixture::identity() {
    return {child<QLabel>(QStringLiteral("serialNolabel")).text(),
            child<QLabel>(QStringLiteral("firmVersionlabel")).text(),
            child<QLabel>(QStringLiteral("MACAddresslabel")).text()};
}

QStringList SettingsFixture::networkTexts() {
    QStringList texts = {child<QLineEdit>(QStringLiteral("SSIDlineEdit")).text(),
                         child<QLineEdit>(QStringLiteral("passwdlineEdit")).text()};
    QStringList octets;
    for (const QLineEdit* edit : addressEdits())
        octets.append(edit->text());
    for (int address = 0; address < 4; ++address)
        texts.append(octets.mid(4 * address, 4).join(QLatin1Char('.')));
    return texts;
}

QStringList SettingsFixture::calibrationTexts() {
    QStringList texts;
    for (const char* name :
         {"curWCalibPlateSerialNolabel", "selWCPFileNamelabel", "selFileSerialNolabel",
          "curAmbAdpSerialNolabel", "selAmbAdpFnamelabel", "selAmbAdpFSerialNolabel"})
        texts.append(child<QLabel>(QLatin1String(name)).text());
    return texts;
}

QStringList SettingsFixture::fileToolTips() {
    return {child<QLabel>(QStringLiteral("selWCPFileNamelabel")).toolTip(),
            child<QLabel>(QStringLiteral("selAmbAdpFnamelabel")).toolTip()};
}

int SettingsFixture::enabledAddressEdits() {
    int count = 0;
    for (const QLineEdit* edit : addressEdits())
        count += edit->isEnabledTo(edit->parentWidget()) ? 1 : 0;
    return count;
}

QStringList SettingsFixture::everything() {
    QStringList all =
        disabled() + checked() + identity() + networkTexts() + calibrationTexts() + fileToolTips();
    all.append(QString::number(enabledAddressEdits()));
    for (const QString& name : radioButtons())
        all.append(QString::number(child<QAbstractButton>(name).isCheckable() ? 1 : 0));
    return all;
}

QStringList SettingsFixture::boxes() const {
    QStringList described;
    for (const ModalAnswerer::Box& box : answers.boxes)
        described.append(describe(box));
    return described;
}

QStringList SettingsFixture::lines() const {
    KvaSim_WaitForEvents();
    return log.lines();
}

void SettingsFixture::whenShown(QWidget& window, std::function<void()> action) {
    auto* poll = new QTimer(&dialog);
    QObject::connect(poll, &QTimer::timeout, &dialog, [poll, &window, action = std::move(action)] {
        if (!window.isVisible())
            return;
        poll->stop();
        action();
    });
    poll->start(1);
}

QString SettingsFixture::dismissBoxAbove(QWidget& below) {
    QString shown;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || box == &below || !box->isVisible())
            return;
        poll.stop();
        shown = describe(recordOf(*box));
        box->button(QMessageBox::Ok)->click();
    });
    poll.start(1);
    const bool dismissed = QTest::qWaitFor(
        [&] { return !shown.isEmpty() && QApplication::activeModalWidget() == &below; }, 20000);
    return dismissed ? shown : QString();
}

const QStringList& SettingsFixture::disabledWhenConnected() {
    static const QStringList names = {
        QStringLiteral("ConnectPushBtn"), QStringLiteral("ClosePushBtn"),
        QStringLiteral("setWCPValPushBtn"), QStringLiteral("setAmbAdpBodyPushBtn")};
    return names;
}

const QStringList& SettingsFixture::disabledWhenNotConnected() {
    static const QStringList names = {
        QStringLiteral("networkSetTab"),       QStringLiteral("autoPowerOfftab"),
        QStringLiteral("wCalibPlateTab"),      QStringLiteral("ambLightAdpTab"),
        QStringLiteral("disConnectPushBtn"),   QStringLiteral("setWCPValPushBtn"),
        QStringLiteral("setAmbAdpBodyPushBtn")};
    return names;
}

QStringList SettingsFixture::connectLines(int instrumentCount) {
    return {QStringLiteral("port count[%1] \n").arg(instrumentCount),
            QStringLiteral("  wifiModuleEnable :      1\n"),
            QStringLiteral("KVA_GetShutdownTime() success[mode:2].\n")};
}

QStringList SettingsFixture::connectCalls() {
    return {QStringLiteral("KVA_Connect"),
            QStringLiteral("KVA_GetDeviceInfo"),
            QStringLiteral("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA"),
            QStringLiteral("KVA_GetNetworkInfo"),
            QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA"),
            QStringLiteral("KVA_GetShutdownTime")};
}

QStringList SettingsFixture::digitLines(const QStringList& texts) {
    QStringList lines;
    for (const QString& text : texts) {
        lines.append(QStringLiteral("length:%1\n").arg(text.length()));
        for (const QChar character : text)
            lines.append(QString(character));
    }
    return lines;
}

void SettingsFixture::giveUp(const QString& reason) {
    std::fprintf(stderr, "%s\n", qUtf8Printable(reason));
    std::abort();
}
