#include "tests/hostile/HostileFile.h"

#include "tests/support/StandardOutput.h"

#include <QDir>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <utility>

namespace {

constexpr qint64 zeroCount = qint64(2) << 30;
constexpr qint64 bearableTime = 60 * 1000;          // ms
constexpr qint64 bearableMemory = 64 * 1024 * 1024; // bytes

/** Bytes in memory now; 0 where the system does not tell. */
qint64 residentBytes() {
    long long pages = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*d %lld", &pages) != 1)
            pages = 0;
        std::fclose(file);
    }
    return pages * ::sysconf(_SC_PAGESIZE);
}

/** Forgets the peak of what was done before, where the system can. */
void resetPeak() {
    if (std::FILE* file = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", file);
        std::fclose(file);
    }
}

/** The most bytes that have been in memory at once. */
qint64 peakBytes() {
    rusage use = {};
    ::getrusage(RUSAGE_SELF, &use);
#ifdef __APPLE__
    return use.ru_maxrss;
#else
    return use.ru_maxrss * 1024;
#endif
}

} // namespace

const QStringList& hostileKinds() {
    static const QStringList kinds = {
        QStringLiteral("directory"),
        QStringLiteral("unreadable"),
        QStringLiteral("empty"),
        QStringLiteral("one byte"),
        QStringLiteral("2 GiB of zeros"),
        QStringLiteral("UTF-16"),
        QStringLiteral("byte-order mark"),
        QStringLiteral("carriage returns alone"),
        QStringLiteral("NUL bytes"),
        QStringLiteral("Shift-JIS"),
        QStringLiteral("511 to 513 bytes"),
        QStringLiteral("field limits"),
        QStringLiteral("numbers"),
        QStringLiteral("100000 digits"),
        QStringLiteral("disappears"),
        QStringLiteral("odd path"),
    };
    return kinds;
}

QStringList strayKinds(const QStringList& rows) {
    QStringList missing = hostileKinds();
    QStringList stray;
    for (const QString& row : rows) {
        const QString kind = row.section(QStringLiteral(": "), 0, 0);
        if (hostileKinds().contains(kind))
            missing.removeAll(kind);
        else
            stray.append(kind);
    }
    return stray + missing;
}

QByteArray printedDuring(const std::function<void()>& action) {
    StandardOutput output;
    action();
    return output.take();
}

QVector<QPair<QByteArray, Place>> oddPlaces(const QString& extension) {
    const auto place = [&extension](const char* folder, const char* name) {
        return Place{QString::fromUtf8(folder), QString::fromUtf8(name) + extension};
    };
    return {
        {"odd path: blanks", place(" two  blanks ", "lab 5")},
        {"odd path: quotes", place(R"(the "new" lab's)", "it's 'this'")},
        {"odd path: Japanese", place("設定ファイル", "測定室 表示")},
        {"odd path: emoji", place("📁🌈", "👩‍🔬 🇯🇵")},
        {"odd path: all of it", place(R"( "表示" d'été 📁)", "測定室's 🌈 (1)")},
    };
}

WorkingFolder::WorkingFolder(const QString& name)
    : m_start(QDir::currentPath()),
      m_isReady(QDir(m_folder.path()).mkdir(name) && QDir::setCurrent(m_folder.filePath(name))) {
    // So that the file's own permissions decide.
    m_isReady = m_isReady && ::chmod(QFile::encodeName(m_folder.path()).constData(), 0755) == 0 &&
                ::chmod(".", 0755) == 0;
}

WorkingFolder::~WorkingFolder() {
    QDir::setCurrent(m_start);
}

HostileFile::HostileFile(QString name, Trick trick, QByteArray content)
    : m_name(std::move(name)), m_trick(trick), m_content(std::move(content)) {}

bool HostileFile::place() {
    QDir().rmdir(m_name);
    QFile::remove(m_name);
    if (m_trick == Zeros)
        return makeZeros();
    QFile file(m_name);
    return file.open(QIODevice::WriteOnly) && file.write(m_content) == m_content.size() &&
           file.flush();
}

bool HostileFile::makeZeros() const {
    const int file = ::open(path().constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool made = file >= 0 && ::ftruncate(file, zeroCount) == 0;
    ::close(file);
    return made;
}

bool HostileFile::forbid() {
    const bool changed = ::chmod(path().constData(), 0) == 0;
    m_guard.emplace();
    const int file = ::open(path().constData(), O_RDONLY | O_CLOEXEC);
    const bool isForbidden = file < 0 && errno == EACCES;
    if (file >= 0)
        ::close(file);
    return changed && isForbidden;
}

bool HostileFile::strike() {
    m_hasStruck = true;
    if (m_trick == Folder)
        m_hasStruck = QFile::remove(m_name) && QDir().mkdir(m_name);
    else if (m_trick == Unreadable)
        m_hasStruck = forbid();
    else if (m_trick == Gone)
        m_hasStruck = QFile::remove(m_name);
    return m_hasStruck;
}

void HostileFile::release() {
    m_guard.reset();
}

void HostileFile::strikeBetween(ModalAnswerer& answers) {
    answers.onFileDialog = [this](QFileDialog& dialog) {
        QObject::connect(&dialog, &QFileDialog::fileSelected, [this] { strike(); });
    };
    answers.onBox = [this](QMessageBox&) { release(); };
}

Expense::Expense() : m_resident(residentBytes()) {
    resetPeak();
    m_peak = peakBytes();
    m_time.start();
}

bool Expense::isBearable() const {
    const qint64 time = m_time.elapsed();
    const qint64 memory = std::max(residentBytes() - m_resident, peakBytes() - m_peak);
    const bool isBearable = time <= bearableTime && memory <= bearableMemory;
    if (!isBearable)
        std::fprintf(stderr, "%lld ms, %lld KiB\n", static_cast<long long>(time),
                     static_cast<long long>(memory / 1024));
    return isBearable;
}
