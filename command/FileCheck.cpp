#include "command/FileCheck.h"

#include <QtGlobal>

#include <algorithm>
#include <functional>
#include <tuple>

FileCheck::FileCheck(const InputFile& file, Faults& faults)
    : m_file(file), m_faults(faults), m_before(faults.size()) {
    std::string_view rest(file.content.constData(), static_cast<std::size_t>(file.content.size()));
    while (!rest.empty()) {
        m_lines.push_back(rest.substr(0, rest.find('\n')));
        rest.remove_prefix(std::min(rest.size(), m_lines.back().size() + 1));
    }
}

void FileCheck::add(const char* place, Text text) {
    // The line that begins last at or before the place.
    const auto after = std::upper_bound(
        m_lines.begin(), m_lines.end(), place,
        [](const char* p, std::string_view line) { return std::less<>()(p, line.data()); });
    const int line = static_cast<int>(after - m_lines.begin());
    const char* begin = line > 0 ? (after - 1)->data() : m_file.content.constData();
    m_faults.push_back({m_file.path, line, static_cast<int>(place - begin) + 1, std::move(text)});
}

void FileCheck::addAtLine(std::size_t lineIndex, Text text) {
    m_faults.push_back({m_file.path, static_cast<int>(lineIndex) + 1, 1, std::move(text)});
}

bool FileCheck::hasLines() {
    const QByteArray& content = m_file.content;
    if (content.startsWith("\xFF\xFE") || content.startsWith("\xFE\xFF")) {
        addAtLine(0, Text(QT_TRANSLATE_NOOP(
                         "vq-tl4ctl", "The file is UTF-16 text: save it as plain text or UTF-8")));
        return false;
    }
    if (content.contains('\r') && !content.contains('\n')) {
        add(content.constData() + content.indexOf('\r'),
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl",
                                   "The lines end in CR alone: save the file with LF or CR LF")));
        return false;
    }
    return true;
}

bool FileCheck::isText(std::string_view text) {
    const std::size_t nul = text.find('\0');
    const std::size_t cr = text.find('\r');
    if (nul != std::string_view::npos)
        add(text.data() + nul,
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "There is a NUL byte in the line")));
    if (cr != std::string_view::npos)
        add(text.data() + cr,
            Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "There is a CR in the line, not at its end")));
    return nul == std::string_view::npos && cr == std::string_view::npos;
}

bool FileCheck::finish() {
    const auto begin = m_faults.begin() + static_cast<Faults::difference_type>(m_before);
    std::stable_sort(begin, m_faults.end(), [](const Fault& a, const Fault& b) {
        return std::tie(a.line, a.column) < std::tie(b.line, b.column);
    });
    return begin == m_faults.end();
}

QString FileCheck::quoted(std::string_view bytes) {
    constexpr std::size_t most = 40;
    const bool shortened = bytes.size() > most;
    bytes = bytes.substr(0, most);
    QString result;
    for (const uint c : QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())).toUcs4()) {
        result += QChar::isPrint(c) ? QString::fromUcs4(&c, 1)
                                    : QStringLiteral("\\x%1").arg(c, 2, 16, QLatin1Char('0'));
    }
    return shortened ? result + QStringLiteral("...") : result;
}
