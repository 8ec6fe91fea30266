#ifndef TESTS_HOSTILE_HOSTILEFILE_H
#define TESTS_HOSTILE_HOSTILEFILE_H

#include "tests/support/ModalAnswerer.h"
#include "tests/unit/files/FileFixture.h"

#include <optional>

/** A file that is hostile when it is read, and where it lies. */
struct HostileCase {
    enum Trick {
        None,       ///< its content is hostile enough
        Zeros,      ///< 2 GiB of zeros without a line end, in place of the content
        Folder,     ///< becomes a folder
        Unreadable, ///< may not be read
        Gone        ///< disappears
    };

    QByteArray name; ///< of the row: "kind: variant", or the kind alone
    QByteArray content;
    Trick trick = None;
    QString folder = "files";
    QString file = "hostile.csv";
};

/** Cases whose folders and files have names with blanks, quotes, Japanese and emoji, with this
    extension. Double quotes stand in the folder: Qt's file dialog takes them for its own where they
    are typed. */
QVector<HostileCase> oddPlaces(const QString& extension);

/** A folder of that name in a temporary one, and the working directory while it exists. Others may
    search it, so that the permissions of the files in it decide. */
class HostileFolder {
public:
    explicit HostileFolder(const QString& name = "files");

private:
    TestFolder m_folder;
};

/** The file of a case, in a folder of its own. A file dialog lets a user choose it; the trick is
    played before it is read. Gives up when the machine does not let it. */
class HostileFile {
public:
    explicit HostileFile(const HostileCase& hostile) : m_case(hostile), m_folder(hostile.folder) {}

    /** Puts it in place. */
    void place();
    /** Puts a good file in its place. */
    void place(const QByteArray& content) const;
    /** Plays the trick. */
    void strike();
    /** Takes back what the trick has done to the whole process. */
    void release() { m_guard.reset(); }
    /** Plays the trick when a file dialog is left with a choice, and takes it back when a message
        box is shown. */
    void strikeBetween(ModalAnswerer& answers);

    /** Whether the trick was played, and what there was since the file was placed cost no more than
        any file may: 60 s, 64 MiB. It goes to the standard error otherwise. */
    bool wasBearable() const;

    /** In the local 8-bit encoding. */
    QByteArray path() const { return QFile::encodeName(m_case.file); }

private:
    const HostileCase m_case;
    HostileFolder m_folder;
    bool m_hasStruck = false;
    std::optional<WithoutPrivileges> m_guard;
    QElapsedTimer m_time;
    qint64 m_resident = 0;
    qint64 m_peak = 0;
};

/** A hostile settings file and what comes of it. */
struct SettingsCase : HostileCase {
    bool isLoaded = false; ///< else refused by the reader, which the debug log tells
    NetworkBytes record;   ///< the zeroed record that was given in, afterwards
};

QVector<SettingsCase> settingsCases();

/** A hostile file of calibration values and what comes of it. */
struct CalibrationCase : HostileCase {
    bool adapter = false;
    bool isRead = true;     ///< what the reader returns
    bool isAccepted = true; ///< as a choice; its number is then shown
    QByteArray printed;     ///< by the reader, on the standard output
    QByteArray serialNo;    ///< the four bytes that it stores; empty: left as they were
    QVector<float> values;  ///< that it stores; empty: left as they were
    int serialNumber = 0;   ///< that of the file, 0 when there is none

    /** Whether writing it to the instrument succeeds, when it has taken the place of a good file
        after that was chosen. Without a number in the file the instrument's own counts. */
    bool isRegistered() const { return isRead && (serialNo.isEmpty() || isAccepted); }
};

/** Of both accessories. The names of their rows end with the accessory. */
QVector<CalibrationCase> calibrationCases();

#endif
