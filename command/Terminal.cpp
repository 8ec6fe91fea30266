#include "command/Terminal.h"

#include <mutex>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

std::mutex mutex; ///< protects the status line
QByteArray status;

void write(std::FILE* stream, const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

const char takeLineBack[] = "\r\033[K";

int terminalWidth() {
    struct winsize size = {};
    constexpr int usual = 80;
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usual;
}

/** Cuts the text to one column less than the terminal has: a full line may wrap. */
QString fitting(const QString& text) {
    constexpr ushort lastNarrow = 0x7F;
    int rest = terminalWidth() - 1;
    QString result;
    for (const QChar character : text) {
        rest -= character.unicode() > lastNarrow ? 2 : 1;
        if (rest < 0)
            break;
        result += character;
    }
    return result;
}

} // namespace

bool Terminal::isInteractive() {
    const QByteArray kind = qgetenv("TERM");
    return ::isatty(STDERR_FILENO) == 1 && !kind.isEmpty() && kind != "dumb";
}

QString Terminal::painted(const QString& text, Colour colour) {
    static const bool hasColours = isInteractive() && qgetenv("NO_COLOR").isEmpty();
    if (!hasColours || colour == Colour::None)
        return text;
    constexpr int codes[] = {0, 32, 33, 31};
    return QStringLiteral("\033[%1m%2\033[0m").arg(codes[static_cast<int>(colour)]).arg(text);
}

void Terminal::writeLine(std::FILE* stream, const QByteArray& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!status.isEmpty())
        write(stderr, takeLineBack);
    write(stream, line + '\n');
    if (!status.isEmpty())
        write(stderr, status);
}

void Terminal::setStatus(const QString& text) {
    if (!isInteractive())
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    status = fitting(text).toLocal8Bit();
    write(stderr, takeLineBack + status);
}
