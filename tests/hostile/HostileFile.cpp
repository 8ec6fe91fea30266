#include "tests/hostile/HostileFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr qint64 zeroCount = qint64(2) << 30;
constexpr qint64 bearableTime = 60 * 1000;          // ms
constexpr qint64 bearableMemory = 64 * 1024 * 1024; // bytes

/** Bytes in memory now; 0 where the system does not tell. */
qint64 residentBytes() {
    QFile file("/proc/self/statm"); // pages: all, resident, and more
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

void require(bool done, const char* what) {
    if (!done)
        giveUp(QString("the machine does not let a test ") + what);
}

} // namespace

QVector<HostileCase> oddPlaces(const QString& extension) {
    const auto place = [&extension](const char* name, const char* folder, const char* file) {
        return HostileCase{name, {}, HostileCase::None, folder, file + extension};
    };
    return {
        place("odd path: blanks", " two  blanks ", "lab 5"),
        place("odd path: quotes", R"(the "new" lab's)", "it's 'this'"),
        place("odd path: Japanese", "設定ファイル", "測定室 表示"),
        place("odd path: emoji", "📁🌈", "👩‍🔬 🇯🇵"),
        place("odd path: all of it", R"( "表示" d'été 📁)", "測定室's 🌈 (1)"),
    };
}

HostileFolder::HostileFolder(const QString& name) {
    require(::chmod(".", 0755) == 0 && QDir().mkdir(name) && QDir::setCurrent(name) &&
                ::chmod(".", 0755) == 0,
            "have its folder");
}

void HostileFile::place(const QByteArray& content) const {
    QDir().rmdir(m_case.file);
    QFile file(m_case.file);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            "write its file");
}

void HostileFile::place() {
    place(m_case.trick == HostileCase::Zeros ? QByteArray() : m_case.content);
    require(m_case.trick != HostileCase::Zeros || QFile::resize(m_case.file, zeroCount),
            "stretch its file");
    m_resident = residentBytes();
    QFile peak("/proc/self/clear_refs"); // forgets the peak of what was before, where there is one
    if (peak.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        peak.write("5");
    m_peak = peakMemory();
    m_time.start();
}

void HostileFile::strike() {
    m_hasStruck = true;
    if (m_case.trick == HostileCase::Folder || m_case.trick == HostileCase::Gone)
        require(QFile::remove(m_case.file), "remove its file");
    if (m_case.trick == HostileCase::Folder)
        require(QDir().mkdir(m_case.file), "make a folder");
    if (m_case.trick == HostileCase::Unreadable) {
        require(::chmod(path(), 0) == 0, "forbid its file");
        m_guard.emplace();
        require(::open(path(), O_RDONLY | O_CLOEXEC) < 0 && errno == EACCES,
                "do without its rights");
    }
}

void HostileFile::strikeBetween(ModalAnswerer& answers) {
    answers.onFileDialog = [this](QFileDialog& dialog) {
        QObject::connect(&dialog, &QFileDialog::fileSelected, [this] { strike(); });
    };
    answers.onBox = [this](QMessageBox&) { release(); };
}

bool HostileFile::wasBearable() const {
    const qint64 time = m_time.elapsed();
    const qint64 memory = std::max(residentBytes() - m_resident, peakMemory() - m_peak);
    const bool isBearable = time <= bearableTime && memory <= bearableMemory;
    if (!isBearable)
        std::fprintf(stderr, "%lld ms, %lld KiB\n", time, memory / 1024);
    return isBearable && m_hasStruck;
}
