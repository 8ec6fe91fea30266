#include "command/Console.h"

#include "command/Interrupt.h"
#include "command/Report.h"

#include <QByteArray>

#include <poll.h>
#include <unistd.h>

namespace {

/** The first line that is typed; nothing after an interrupt or at the end of the input. */
QByteArray readAnswer() {
    QByteArray answer;
    while (!answer.endsWith('\n') && !Interrupt::isRequested()) {
        // Polled: another thread may have handled the signal.
        struct pollfd input = {STDIN_FILENO, POLLIN, 0};
        constexpr int millisecondsBetweenLooks = 100;
        if (::poll(&input, 1, millisecondsBetweenLooks) <= 0)
            continue;
        char character = 0;
        if (::read(STDIN_FILENO, &character, 1) != 1)
            return {};
        answer += character;
    }
    if (!answer.endsWith('\n'))
        return {};
    return answer.trimmed().toLower();
}

} // namespace

bool Console::hasTerminal() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

void Console::foundImplausible(const CalibrationAccessory& accessory, const Implausible& value) {
    sayToUser(implausibleText(accessory, value));
}

void Console::foundDifference(const FieldChanges& changes) {
    sayDifference(m_serialNumber, changes);
}

bool Console::confirms() {
    if (m_isSure)
        return true;
    return asks(Text(QT_TRANSLATE_NOOP("vq-tl4ctl", "Write this to instrument %1? [y/N]"),
                     {serialText(m_serialNumber)}));
}

bool Console::asks(const Text& question) {
    sayToUser(question);
    const QByteArray answer = readAnswer();
    return answer == "y" || answer == "yes";
}
