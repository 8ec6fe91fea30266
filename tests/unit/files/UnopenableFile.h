#ifndef TESTS_UNIT_FILES_UNOPENABLEFILE_H
#define TESTS_UNIT_FILES_UNOPENABLEFILE_H

#include "tests/unit/files/FileFixture.h"

#include <QTest>

#include <cstdlib>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

/** Gives up the superuser's right to read everything while it exists. */
class WithoutPrivileges {
public:
    WithoutPrivileges() : m_user(::geteuid()) {
        if (m_user == 0)
            m_changed = ::seteuid(65534) == 0;
    }
    ~WithoutPrivileges() {
        if (!m_changed)
            return;
        if (::seteuid(m_user) != 0)
            std::abort();
#ifdef __linux__
        ::prctl(PR_SET_DUMPABLE, 1); // a change of user takes it away, leak checkers need it
#endif
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

private:
    uid_t m_user;
    bool m_changed = false;
};

/** A path of one of the kinds that count as a file that cannot be opened for reading. */
class UnopenableFile {
public:
    /** One row for each kind; the column is "kind". */
    static void addRows() {
        QTest::addColumn<QByteArray>("kind");
        for (const char* kind :
             {"missing", "empty path", "folder", "behind a file", "link to nothing",
              "link to itself", "name too long", "no permission", "pipe", "socket", "device"})
            QTest::newRow(kind) << QByteArray(kind);
    }

    /** @param content  what the file holds where it is one, right for the reader under test */
    UnopenableFile(const QByteArray& kind, const QByteArray& content) {
        m_path = m_folder.path("file");
        if (kind == "missing")
            m_made = true;
        else if (kind == "empty path")
            makeElsewhere({});
        else if (kind == "folder")
            m_made = ::mkdir(m_path.constData(), 0700) == 0;
        else if (kind == "behind a file")
            makeElsewhere(m_folder.write("file", content) + "/file");
        else if (kind == "link to nothing")
            m_made = ::symlink("nothing", m_path.constData()) == 0;
        else if (kind == "link to itself")
            m_made = ::symlink("file", m_path.constData()) == 0;
        else if (kind == "name too long")
            makeElsewhere(m_folder.path("") + QByteArray(5000, 'n'));
        else if (kind == "no permission")
            makeForbidden(content);
        else if (kind == "pipe")
            m_made = ::mkfifo(m_path.constData(), 0600) == 0;
        else if (kind == "socket")
            makeSocket();
        else if (kind == "device")
            makeElsewhere("/dev/zero");
    }

    /** Whether the machine let the path be made as it should be. */
    bool isMade() const { return m_made; }
    const char* path() const { return m_path.constData(); }

private:
    void makeElsewhere(const QByteArray& path) {
        m_path = path;
        m_made = true;
    }

    void makeForbidden(const QByteArray& content) {
        m_made = !m_folder.write("file", content).isEmpty() && ::chmod(m_path.constData(), 0) == 0;
        m_guard.emplace();
        m_made = m_made && ::geteuid() != 0;
    }

    void makeSocket() {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const auto length = static_cast<std::size_t>(m_path.size());
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (socket < 0 || length >= sizeof(address.sun_path))
            return;
        std::memcpy(address.sun_path, m_path.constData(), length);
        m_made = ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
        ::close(socket);
    }

    TestFolder m_folder; // outlives the guard, which could not remove it
    QByteArray m_path;
    bool m_made = false;
    std::optional<WithoutPrivileges> m_guard;
};

#endif
