#include "tests/dialogs/settings/SettingsFixture.h"

#include "simulator/KvaSim.h"

#include <QTest>

#include <chrono>

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

const QStringList switchable =
    words("setBasetabWidget networkSetTab autoPowerOfftab wCalibPlateTab ambLightAdpTab "
          "ConnectPushBtn disConnectPushBtn ClosePushBtn readToFilePushBtn writeFilePushBtn "
          "readBodyPushBtn writeBodyPushBtn getAutoPWOffPushBtn setAutoPWOffPushBtn "
          "selWCPFilePushBtn setWCPValPushBtn selAmbLightAdpFilePushBtn setAmbAdpBodyPushBtn");

const QStringList radioButtons =
    words("enableRadioBtn disableRadioBtn dhcpOnRadioBtn dhcpOffRadioBtn invalidradioBtn "
          "fifteenRadioBtn thirtyRadioBtn sixtyRadioBtn");

QString kindOf(const ModalAnswerer::Box& box) {
    const Qt::WindowFlags hints = Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                  Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint |
                                  Qt::WindowCloseButtonHint;
    // A type, and the system menu where a window has a close button.
    const Qt::WindowFlags addedByQt = Qt::WindowType_Mask | Qt::WindowSystemMenuHint;
    const QString title = "Spectrophotometer Configuration Tool VQ-TL4";
    if (box.title != title || box.buttons != QMessageBox::Ok || !box.isModal || box.hasParent ||
        (box.flags & ~addedByQt) != hints)
        return "malformed";
    if (box.icon == QMessageBox::Information)
        return "information";
    return box.icon == QMessageBox::Critical ? "error" : "other";
}

QString describe(const ModalAnswerer::Box& box) {
    return kindOf(box) + ": " + box.text;
}

std::shared_ptr<CKvaSdk_Ctrl> controllerOn(const QJsonArray& instruments) {
    TestBench::load(instruments);
    return std::make_shared<CKvaSdk_Ctrl>();
}

} // namespace

QStringList Choice::rows() const {
    QStringList texts;
    for (int i = 0; i < list.count(); ++i)
        texts.append(list.item(i)->text());
    return texts;
}

void Choice::select(int row) const {
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualItemRect(list.item(row)).center());
}

void Choice::accept() const {
    QTest::mouseClick(&ok, Qt::LeftButton);
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
    child<QTabWidget>("setBasetabWidget").setCurrentIndex(page);
}

void SettingsFixture::clearRecords() {
    KvaSim_WaitForEvents();
    TestBench::clearCalls();
    log.clear();
    answers.boxes.clear();
    answers.fileDialogs.clear();
}

void SettingsFixture::click(const QString& name) {
    auto& button = child<QAbstractButton>(name);
    if (!button.isVisible() || !button.isEnabled())
        giveUp("nobody could click " + name);
    // Not the middle: a radio button takes clicks on its circle and its text only.
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
}

void SettingsFixture::choose(const QString& button, const QString& path) {
    answers.willChoose(path);
    click(button);
}

void SettingsFixture::invoke(const char* slot) {
    if (!QMetaObject::invokeMethod(&dialog, slot, Qt::DirectConnection))
        giveUp(QString("no slot ") + slot);
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
            edits.append(&child<QLineEdit>(QString("%1%2lineEdit").arg(row).arg(octet)));
    }
    return edits;
}

void SettingsFixture::setOctets(const QStringList& octets) {
    const QVector<QLineEdit*> edits = addressEdits();
    for (int i = 0; i < edits.size(); ++i)
        edits[i]->setText(octets.value(i));
}

void SettingsFixture::setNameAndKey(const QString& ssid, const QString& key) {
    child<QLineEdit>("SSIDlineEdit").setText(ssid);
    child<QLineEdit>("passwdlineEdit").setText(key);
}

QStringList SettingsFixture::disabled() {
    QStringList names;
    for (const QString& name : switchable) {
        const QWidget& widget = child(name);
        if (!widget.isEnabledTo(widget.parentWidget()))
            names.append(name);
    }
    return names;
}

QStringList SettingsFixture::checked() {
    QStringList names;
    for (const QString& name : radioButtons) {
        if (child<QAbstractButton>(name).isChecked())
            names.append(name);
    }
    return names;
}

QStringList SettingsFixture::identity() {
    return {child<QLabel>("serialNolabel").text(), child<QLabel>("firmVersionlabel").text(),
            child<QLabel>("MACAddresslabel").text()};
}

QStringList SettingsFixture::networkTexts() {
    QStringList texts = {child<QLineEdit>("SSIDlineEdit").text(),
                         child<QLineEdit>("passwdlineEdit").text()};
    QStringList octets;
    for (const QLineEdit* edit : addressEdits())
        octets.append(edit->text());
    for (int address = 0; address < 4; ++address)
        texts.append(octets.mid(4 * address, 4).join('.'));
    return texts;
}

QStringList SettingsFixture::calibrationTexts() {
    QStringList texts;
    for (const QString& name :
         words("curWCalibPlateSerialNolabel selWCPFileNamelabel selFileSerialNolabel "
               "curAmbAdpSerialNolabel selAmbAdpFnamelabel selAmbAdpFSerialNolabel"))
        texts.append(child<QLabel>(name).text());
    return texts;
}

QStringList SettingsFixture::fileToolTips() {
    return {child<QLabel>("selWCPFileNamelabel").toolTip(),
            child<QLabel>("selAmbAdpFnamelabel").toolTip()};
}

QStringList SettingsFixture::texts() {
    return identity() + networkTexts() + calibrationTexts() + fileToolTips();
}

int SettingsFixture::enabledAddressEdits() {
    int count = 0;
    for (const QLineEdit* edit : addressEdits())
        count += edit->isEnabledTo(edit->parentWidget()) ? 1 : 0;
    return count;
}

QStringList SettingsFixture::everything() {
    QStringList all = disabled() + checked() + texts();
    for (const QString& name : radioButtons)
        all.append(QString::number(child<QAbstractButton>(name).isCheckable() ? 1 : 0));
    all.append(watchOf(dialog).isActive() ? "watching" : "idle");
    all.append(QString::number(enabledAddressEdits()));
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

QString SettingsFixture::loseBehind(QWidget& below) {
    watchOf(dialog).setInterval(20); // a second is long
    KvaSim_Unplug(TestBench::serialNumber);
    QString shown;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || box == &below || !box->isVisible())
            return;
        poll.stop();
        shown = describe(ModalAnswerer::Box::of(*box));
        box->button(QMessageBox::Ok)->click();
    });
    poll.start(1);
    const bool dismissed = QTest::qWaitFor(
        [&] { return !shown.isEmpty() && QApplication::activeModalWidget() == &below; }, 20000);
    return dismissed ? shown : QString();
}

QStringList SettingsFixture::connectLines(int instrumentCount) {
    return {QString("port count[%1] \n").arg(instrumentCount), "  wifiModuleEnable :      1\n",
            "KVA_GetShutdownTime() success[mode:2].\n"};
}

QStringList SettingsFixture::digitLines(const QStringList& texts) {
    QStringList lines;
    for (const QString& text : texts) {
        lines.append(QString("length:%1\n").arg(text.length()));
        for (const QChar character : text)
            lines.append(QString(character));
    }
    return lines;
}
