#ifndef TESTS_SUPPORT_TESTFOLDER_H
#define TESTS_SUPPORT_TESTFOLDER_H

#include "tests/support/GiveUp.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/** A folder of the test's own, removed with its content at the end, and the working directory until
    then. Gives up when it cannot be made. */
class TestFolder {
public:
    TestFolder() {
        if (!m_folder.isValid() || !QDir::setCurrent(m_folder.path()))
            giveUp("no folder for the test: " + m_folder.errorString());
    }
    ~TestFolder() { QDir::setCurrent(m_before); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    QString path() const { return m_folder.path(); }
    /** The path of a file in it. */
    QString path(const QString& name) const { return m_folder.filePath(name); }
    /** The same in the local 8-bit encoding. */
    QByteArray localPath(const QString& name) const { return QFile::encodeName(path(name)); }

    /** Writes a file. @return its path */
    QString write(const QString& name, const QByteArray& content) const {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            giveUp(file.fileName() + " cannot be written");
        return file.fileName();
    }
    /** The content of a file; null when it cannot be read. */
    QByteArray read(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QString m_before = QDir::currentPath();
    QTemporaryDir m_folder;
};

#endif
