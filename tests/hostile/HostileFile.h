#ifndef TESTS_HOSTILE_HOSTILEFILE_H
#define TESTS_HOSTILE_HOSTILEFILE_H

#include "tests/support/ModalAnswerer.h"
#include "tests/unit/files/UnopenableFile.h"

#include <QElapsedTimer>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <optional>

/** Every way in which a file that is read can be hostile. A table of them names its rows
    "kind: variant", or by the kind alone. */
const QStringList& hostileKinds();

/** The kinds of these rows that are none of `hostileKinds`, and those that have no row. */
QStringList strayKinds(const QStringList& rows);

/** What the process writes to its standard output during @p action. To be compared afterwards: a
    failure reported meanwhile would go astray. */
QByteArray printedDuring(const std::function<void()>& action);

/** A folder and a file name in it. */
struct Place {
    QString folder = QStringLiteral("files");
    QString name = QStringLiteral("hostile.csv");
};

/** Names with blanks, quotes, Japanese and emoji, with this extension. Double quotes stand in the
    folder: Qt's file dialog takes them for its own where they are typed. */
QVector<QPair<QByteArray, Place>> oddPlaces(const QString& extension);

/** Makes a folder in a temporary one and works in it while it exists. */
class WorkingFolder {
public:
    explicit WorkingFolder(const QString& name);
    ~WorkingFolder();
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    /** Whether it could be made. */
    bool isReady() const { return m_isReady; }

private:
    QString m_start;
    QTemporaryDir m_folder;
    bool m_isReady;
};

/** A file in the working folder that a file dialog lets a user choose, and what it is when it is
    read. */
class HostileFile {
public:
    enum Trick {
        None,       ///< its content is hostile enough
        Zeros,      ///< 2 GiB of zeros without a line end
        Folder,     ///< becomes a folder
        Unreadable, ///< may not be read
        Gone        ///< disappears
    };

    /** @param content  of a `Zeros`, ignored */
    HostileFile(QString name, Trick trick, QByteArray content);

    /** Puts it in place, so that it can be chosen. False when the machine did not let it. */
    bool place();
    /** Plays the trick. False when the machine did not let it. */
    bool strike();
    /** Takes back what the trick has done to the whole process. */
    void release();

    /** Plays the trick when a file dialog is left with a choice, and takes it back when a message
        box is shown. */
    void strikeBetween(ModalAnswerer& answers);
    /** Whether that went well. */
    bool hasStruck() const { return m_hasStruck; }

    /** In the local 8-bit encoding. */
    QByteArray path() const { return QFile::encodeName(m_name); }

private:
    bool makeZeros() const;
    bool forbid();

    QString m_name;
    Trick m_trick;
    QByteArray m_content;
    bool m_hasStruck = false;
    std::optional<WithoutPrivileges> m_guard;
};

/** Time and memory since it was made. */
class Expense {
public:
    Expense();
    /** Whether both are within what any file may cost, however long: 60 s, 64 MiB. What there was
        goes to the standard error when not. */
    bool isBearable() const;

private:
    QElapsedTimer m_time;
    qint64 m_resident;
    qint64 m_peak;
};

#endif
