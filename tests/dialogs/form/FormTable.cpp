#include "tests/dialogs/form/FormTable.h"

#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/InitSettingDialog.h"
#include "dialogs/LangSelectDialog.h"
#include "tests/support/GiveUp.h"

#include <vector>

namespace {

struct Node {
    WidgetRow widget;
    std::vector<Node> children;
};
using Nodes = std::vector<Node>;

Node label(const char* name, QRect geometry, const char* text, const Settings& settings = {}) {
    return {{name, "QLabel", geometry, text, settings}, {}};
}

Node edit(const char* name, QRect geometry, const Settings& settings) {
    return {{name, "QLineEdit", geometry, "", settings}, {}};
}

Node radio(const char* name, QRect geometry, const char* text, const Settings& settings = {}) {
    return {{name, "QRadioButton", geometry, text, settings}, {}};
}

Node button(const char* name, QRect geometry, const char* text,
            const Settings& settings = {{"autoDefault", false}}) {
    return {{name, "QPushButton", geometry, text, settings}, {}};
}

Node box(const char* name, QRect geometry, const char* title, const Nodes& children,
         const Settings& settings = {}) {
    return {{name, "QGroupBox", geometry, title, settings}, children};
}

Node page(const char* name, const char* text, const Nodes& children) {
    return {{name, "QWidget", {}, text, {}}, children};
}

/** The widgets below one, depth first. */
QVector<WidgetRow> flat(const char* parent, const Nodes& nodes) {
    QVector<WidgetRow> rows;
    for (const Node& node : nodes) {
        rows.append(node.widget);
        rows.last().parent = parent;
        rows += flat(node.widget.name, node.children);
    }
    return rows;
}

Settings alignment(Qt::Alignment alignment) {
    return {{"alignment", int(alignment)}};
}

Settings sizePolicy(QSizePolicy::Policy horizontal, QSizePolicy::Policy vertical) {
    return {{"sizePolicy", QVariant::fromValue(QSizePolicy(horizontal, vertical))}};
}

const Settings topLeft = alignment(Qt::AlignLeft | Qt::AlignTop);
const Settings right = alignment(Qt::AlignRight | Qt::AlignVCenter);
const Settings ssid = {{"maxLength", 32}};
const Settings key = {{"maxLength", 64}, {"echoMode", int(QLineEdit::PasswordEchoOnEdit)}};
const Settings octet = Settings{{"maxLength", 3}} + right;
const Settings sunken = {{"frameShape", int(QFrame::Panel)}, {"frameShadow", int(QFrame::Sunken)}};
const Settings centred = sunken + alignment(Qt::AlignCenter);
const Settings preferred = sizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
const Settings fixed = sizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
const Settings japanese = {{"autoDefault", false},
                           {"locale", QLocale(QLocale::Japanese, QLocale::Japan)}};

const Nodes accessPoint = {
    label("ssIDlabel", {20, 30, 50, 31}, "SSID:"),
    edit("SSIDlineEdit", {200, 30, 591, 31}, ssid),
    label("passwdlabel", {20, 70, 171, 31}, "Security Key:"),
    edit("passwdlineEdit", {200, 70, 591, 31}, key),
};

const Nodes addresses = {
    label("dhcplabel", {20, 40, 71, 21}, "DHCP:"),
    radio("dhcpOnRadioBtn", {120, 40, 86, 21}, "ON"),
    radio("dhcpOffRadioBtn", {230, 40, 86, 21}, "OFF"),
    label("iplabel", {20, 90, 171, 31}, "IP Address:"),
    edit("ipaddr1lineEdit", {240, 90, 51, 31}, octet),
    label("ip12label", {300, 105, 21, 16}, ".", topLeft),
    edit("ipaddr2lineEdit", {320, 90, 51, 31}, octet),
    label("ip23label", {380, 105, 21, 16}, ".", topLeft),
    edit("ipaddr3lineEdit", {400, 90, 51, 31}, octet),
    label("ip34label", {460, 105, 21, 16}, ".", topLeft),
    edit("ipaddr4lineEdit", {480, 90, 51, 31}, octet),
    label("subNetlabel", {20, 130, 171, 31}, "Subnet Mask:"),
    edit("subnetMask1lineEdit", {240, 130, 51, 31}, octet),
    label("subnetMask12label", {300, 145, 16, 16}, ".", topLeft),
    edit("subnetMask2lineEdit", {320, 130, 51, 31}, octet),
    label("subnetMask23label", {380, 145, 16, 16}, ".", topLeft),
    edit("subnetMask3lineEdit", {400, 130, 51, 31}, octet),
    label("subnetMask34label", {460, 145, 16, 16}, ".", topLeft),
    edit("subnetMask4lineEdit", {480, 130, 51, 31}, octet),
    label("defaultGWlabel", {20, 170, 211, 31}, "Default Gateway:"),
    edit("defGWaddr1lineEdit", {240, 170, 51, 31}, octet),
    label("defGWaddr12label", {300, 185, 16, 16}, ".", topLeft),
    edit("defGWaddr2lineEdit", {320, 170, 51, 31}, octet),
    label("defGWaddr23label", {380, 185, 16, 16}, ".", topLeft),
    edit("defGWaddr3lineEdit", {400, 170, 51, 31}, octet),
    label("defGWaddr34label", {460, 185, 16, 16}, ".", topLeft),
    edit("defGWaddr4lineEdit", {480, 170, 51, 31}, octet),
    label("dnsServlabel", {20, 210, 181, 31}, "DNS Server:"),
    edit("dnsaddr1lineEdit", {240, 210, 51, 31}, octet),
    label("dnsaddr12label", {300, 225, 16, 16}, ".", topLeft),
    edit("dnsaddr2lineEdit", {320, 210, 51, 31}, octet),
    label("dnsaddr23label", {380, 225, 16, 16}, ".", topLeft),
    edit("dnsaddr3lineEdit", {400, 210, 51, 31}, octet),
    label("dnsaddr34label", {460, 225, 21, 16}, ".", topLeft),
    edit("dnsaddr4lineEdit", {480, 210, 51, 31}, octet),
};

const Nodes wirelessLan = {
    radio("enableRadioBtn", {170, 25, 111, 31}, "Enable"),
    radio("disableRadioBtn", {300, 25, 121, 31}, "Disable"),
    box("AccessPointgroupBox", {20, 50, 801, 121}, "Access Point", accessPoint),
    box("tcpIPGroupBox", {20, 185, 551, 261}, "TCP/IP", addresses),
};

const Nodes network = {
    box("WLanGroupBox", {10, 10, 831, 471}, "Wireless LAN", wirelessLan),
    box("wLanFileCtrlGroupBox", {870, 10, 261, 161}, "File",
        {
            button("readToFilePushBtn", {10, 30, 241, 51}, "Read From File..."),
            button("writeFilePushBtn", {10, 90, 241, 51}, "Write To File..."),
        }),
    box("wLanBodyCtrlGroupBox", {870, 320, 251, 161}, "Body",
        {
            button("readBodyPushBtn", {10, 30, 231, 51}, "Read From Body"),
            button("writeBodyPushBtn", {10, 90, 231, 51}, "Write To Body"),
        }),
};

const Nodes powerOffTimes = {
    radio("invalidradioBtn", {50, 60, 151, 51}, "Disabled"),
    radio("fifteenRadioBtn", {50, 120, 151, 51}, "15minutes"),
    radio("thirtyRadioBtn", {240, 120, 151, 51}, "30minutes"),
    radio("sixtyRadioBtn", {430, 120, 151, 51}, "60minutes"),
};

const Nodes powerOff = {
    box("setPWOffTimeGroupBox", {10, 40, 591, 211}, "Configure auto power off time", powerOffTimes),
    box("groupBox", {870, 320, 251, 161}, "Body",
        {
            button("getAutoPWOffPushBtn", {10, 30, 231, 51}, "Read From Body"),
            button("setAutoPWOffPushBtn", {10, 90, 231, 51}, "Write To Body"),
        }),
};

const Nodes whitePlateFile = {
    label("selWCPFileTlabel", {20, 30, 451, 31}, "White Calibration Plate Values File(.csv)"),
    label("selWCPFileNamelabel", {20, 80, 371, 31}, "", sunken),
    label("selFileSerialNoTlabel", {40, 130, 200, 51}, "Serial No:", right),
    label("selFileSerialNolabel", {260, 140, 131, 31}, "", centred),
};

const Nodes whitePlate = {
    label("curWCalibPlateSerialNoTlabel", {40, 20, 220, 31}, "Current Serial No:", right),
    label("curWCalibPlateSerialNolabel", {280, 20, 131, 31}, "", centred),
    box("selWCalibPlateFileGroupBox", {10, 80, 451, 191},
        "Select White Calibration Plate To Register", whitePlateFile),
    box("groupBox_2", {870, 10, 261, 161}, "File",
        {button("selWCPFilePushBtn", {10, 30, 241, 51}, "Read From File...")}),
    box("groupBox_4", {870, 320, 251, 161}, "Body",
        {button("setWCPValPushBtn", {10, 90, 231, 51}, "Write To Body")}),
};

const Nodes adapterFile = {
    label("selAmbAdpFnameTlabel", {20, 30, 451, 31}, "Ambient Light Adapter Value File(.csv)"),
    label("selAmbAdpFnamelabel", {20, 80, 371, 31}, "", sunken),
    label("selAmbAdpFSerialTlabel", {40, 130, 200, 51}, "Serial No:", right),
    label("selAmbAdpFSerialNolabel", {260, 140, 131, 31}, "", centred),
};

const Nodes adapter = {
    label("curAmbAdpSerialNoTlabel", {40, 20, 220, 31}, "Current Serial No:", right),
    label("curAmbAdpSerialNolabel", {280, 20, 131, 31}, "", centred),
    box("selAmbAdpFileGroupBox", {10, 80, 451, 191}, "Select Ambient Light Adapter To Register",
        adapterFile),
    box("groupBox_3", {870, 10, 261, 161}, "File",
        {button("selAmbLightAdpFilePushBtn", {10, 30, 241, 51}, "Read From File...")}),
    box("groupBox_5", {870, 320, 251, 161}, "Body",
        {button("setAmbAdpBodyPushBtn", {10, 90, 231, 51}, "Write To Body")}),
};

const Nodes pages = {
    page("networkSetTab", "Network", network),
    page("autoPowerOfftab", "Auto Power Off", powerOff),
    page("wCalibPlateTab", "White calibration plate", whitePlate),
    page("ambLightAdpTab", "Ambient light adapter", adapter),
};

const Nodes settings = {
    {{"setBasetabWidget", "QTabWidget", {10, 150, 1141, 531}, "", {}}, pages},
    button("ConnectPushBtn", {1000, 10, 151, 41}, "Connect", japanese),
    button("disConnectPushBtn", {1000, 60, 151, 41}, "Disconnect"),
    button("ClosePushBtn", {1000, 110, 151, 41}, "Close"),
    label("serialNoTLabel", {20, 10, 181, 31}, "Serial No:"),
    label("firmVerTLabel", {20, 50, 221, 31}, "Firmware Ver:", preferred),
    label("MACAddrTLabel", {20, 90, 161, 31}, "MAC Address:"),
    label("serialNolabel", {250, 10, 361, 31}, "", centred),
    label("firmVersionlabel", {250, 50, 361, 31}, "", preferred + centred),
    label("MACAddresslabel", {250, 90, 361, 31}, "", centred),
    label("toolVersionlabel", {940, 690, 221, 21}, "Tool Ver.1.10.0008"),
};

const Nodes languages = {
    radio("engRadioBtn", {20, 30, 181, 41}, "English", fixed + Settings{{"checked", false}}),
    radio("jpnRadioBtn", {20, 90, 181, 31}, "Japanese", fixed + Settings{{"checked", true}}),
};

} // namespace

FormTable settingForm() {
    return {"InitSettingDialog",
            "Spectrophotometer Configuration Tool VQ-TL4",
            "分光測色計設定ツール VQ-TL4",
            {1171, 720},
            QSizePolicy::Preferred,
            [] { return std::make_unique<InitSettingDialog>(); },
            flat("InitSettingDialog", settings)};
}

FormTable langSelectForm() {
    const Nodes nodes = {
        box("langselgrpBox", {10, 10, 221, 151}, "LanguageType", languages, fixed),
        button("pushButton", {240, 70, 91, 41}, "OK", fixed),
    };
    return {"LangSelectDialog",
            "Select Language",
            "言語の選択",
            {351, 170},
            QSizePolicy::Expanding,
            [] { return std::make_unique<LangSelectDialog>(); },
            flat("LangSelectDialog", nodes)};
}

FormTable connectSelectForm() {
    const Nodes nodes = {
        {{"connectlistWidget", "QListWidget", {10, 10, 381, 192}, "", {}}, {}},
        button("pushButton", {410, 90, 91, 41}, "OK", {}),
    };
    return {"ConnectSelectDialog",
            "Select Device",
            "測定器の選択",
            {520, 213},
            QSizePolicy::Preferred,
            [] { return std::make_unique<ConnectSelectDialog>(); },
            flat("ConnectSelectDialog", nodes)};
}

QVector<FormTable> allForms() {
    return {settingForm(), langSelectForm(), connectSelectForm()};
}

QVector<FormWidget> allWidgets() {
    QVector<FormWidget> all;
    for (const FormTable& form : allForms()) {
        for (const WidgetRow& widget : form.widgets)
            all.append({QByteArray(form.name) + '.' + widget.name, form, widget});
    }
    return all;
}

QWidget* findWidget(QDialog& dialog, const char* name) {
    if (dialog.objectName() == name)
        return &dialog;
    const QList<QWidget*> found = dialog.findChildren<QWidget*>(name);
    return found.size() == 1 ? found.first() : nullptr;
}

QString shownText(QDialog& dialog, const WidgetRow& row) {
    QWidget* widget = findWidget(dialog, row.name);
    if (auto* tabs = qobject_cast<QTabWidget*>(findWidget(dialog, row.parent)))
        return tabs->tabText(tabs->indexOf(widget));
    return widget ? widget->property(qobject_cast<QGroupBox*>(widget) ? "title" : "text").toString()
                  : QString();
}

QImage iconOf(const QWidget& window) {
    return window.windowIcon().pixmap(32).toImage();
}

QImage programIcon() {
    const QString path = QCoreApplication::applicationDirPath() + "/../Resources/VQ_TL4.ico";
    const QImage image = QIcon(path).pixmap(32).toImage();
    if (image.isNull())
        giveUp("no icon " + path);
    return image;
}

Qt::WindowFlags titledFlags() {
    QWidget window;
    window.setWindowFlags(Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint);
    return window.windowFlags();
}

Qt::WindowFlags closableFlags() {
    return titledFlags() | Qt::WindowCloseButtonHint;
}
