#include "tests/dialogs/settings/CalibrationTabs.h"
#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/support/TestMain.h"

namespace {

struct FileButton {
    QByteArray name;
    SettingsFixture::Page page;
    QString button;
    QString nameFilter;
    QByteArray content = {};  ///< of a good file; null: the button saves one
    QStringList failure = {}; ///< when the file cannot be read
    QFileDialog::Options options = {};
    bool isCancelled = false;
};

QVector<FileButton> buttonsThatRead() {
    const CalibrationTab& plate = calibrationTab(false);
    const CalibrationTab& adapter = calibrationTab(true);
    const QStringList failure("error: Failed to read file data.");
    const QStringList networkFailure = {"error: Failed to read Network Infomation file data.",
                                        "Failed to read networkInfo parameter data. \n"};
    const QFileDialog::Options options = QFileDialog::DontUseCustomDirectoryIcons;
    const QString csv = "csv(*.csv)";
    return {
        {"network, read", SettingsFixture::Network, "readToFilePushBtn", "*(*.*)", settingsFile(),
         networkFailure},
        {"white plate", plate.page, plate.chooseButton, csv, plate.file(), failure, options},
        {"adapter", adapter.page, adapter.chooseButton, csv, adapter.file(), failure, options},
    };
}

QVector<FileButton> allButtons() {
    QVector<FileButton> buttons = buttonsThatRead();
    buttons.prepend({"network, write", SettingsFixture::Network, "writeFilePushBtn", "ini(*.ini)"});
    return buttons;
}

} // namespace

/** The buttons that open a file dialog, up to the file that it answers. */
class TestFileDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void asksForAFile_data() { addRows(allButtons()); }
    void asksForAFile() {
        const auto row = rowOf<FileButton>();
        ConnectedFixture f(row.page);
        f.setOctets({}); // invalid, but nothing is checked
        const QStringList before = f.everything();
        QString name = "not looked at";
        f.answers.onFileDialog = [&](QFileDialog& dialog) {
            name = dialog.findChild<QLineEdit*>("fileNameEdit")->text();
        };
        f.click(row.button);

        const bool saves = row.content.isNull();
        QCOMPARE(name, QString());
        QCOMPARE(f.answers.fileDialogs.size(), 1);
        const ModalAnswerer::FileDialog& shown = f.answers.fileDialogs[0];
        QCOMPARE(shown.caption, saves ? "Save" : "Open");
        QCOMPARE(shown.directory, QDir::currentPath());
        QCOMPARE(shown.nameFilters, QStringList(row.nameFilter));
        QCOMPARE(shown.selectedNameFilter, row.nameFilter);
        QCOMPARE(shown.acceptMode, saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        QCOMPARE(shown.options, row.options);
        QCOMPARE(shown.parent, &f.dialog);
        // Cancelled, it was as if nothing had been.
        QCOMPARE(f.records(), QStringList());
        QCOMPARE(f.everything(), before);
        QCOMPARE(f.files(), QStringList());
    }

    void vanishedFile_data() { addRows(buttonsThatRead()); }
    void vanishedFile() {
        const auto row = rowOf<FileButton>();
        ConnectedFixture f(row.page);
        QStringList expected = f.calibrationTexts();
        if (row.page != SettingsFixture::Network)
            expected[row.page == SettingsFixture::WhitePlate ? 1 : 4] = "gone";
        const QStringList others = f.checked() + f.networkTexts();
        f.answers.onFileDialog = [](QFileDialog& dialog) {
            connect(&dialog, &QFileDialog::fileSelected,
                    [](const QString& path) { QVERIFY(QFile::remove(path)); });
        };
        f.choose(row.button, f.folder.write("gone.csv", row.content));

        QCOMPARE(f.records(), row.failure);
        QCOMPARE(f.calibrationTexts(), expected);
        QCOMPARE(f.checked() + f.networkTexts(), others);
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
    }

    void afterALoss_data() {
        QVector<FileButton> buttons = allButtons();
        for (FileButton button : allButtons()) {
            button.name += ", cancelled";
            button.isCancelled = true;
            buttons.append(button);
        }
        addRows(buttons);
    }

    void afterALoss() {
        const auto row = rowOf<FileButton>();
        ConnectedFixture f(row.page);
        QString report;
        f.answers.onFileDialog = [&](QFileDialog& dialog) { report = f.loseBehind(dialog); };
        const QString path = f.folder.path("chosen");
        if (!row.content.isNull())
            f.folder.write("chosen", row.content);
        const QStringList files = f.files();
        f.choose(row.button, row.isCancelled ? QString() : path);

        QCOMPARE(report, SettingsFixture::lostBox);
        QCOMPARE(f.answers.fileDialogs.size(), 1);
        QCOMPARE(f.boxes(), QStringList());
        QCOMPARE(f.lines().filter("length:"), QStringList()); // nor are the edits checked
        QCOMPARE(f.files(), files);
        QCOMPARE(f.everything(), SettingsFixture::nothing());
        QVERIFY(f.controller->m_fileWCPSerialNo.isEmpty());
        QVERIFY(f.controller->m_fileAmbAdpSerialNo.isEmpty());

        // Nor is its path kept for a later registration.
        f.invoke(calibrationTab(false).writeSlot);
        f.invoke(calibrationTab(true).writeSlot);
        QCOMPARE(f.boxes(),
                 (QStringList{calibrationTab(false).noFileBox, calibrationTab(true).noFileBox}));
    }
};

TEST_CLASS(TestFileDialogs)
#include "tst_file_dialogs.moc"
