// Runs the test classes of the program, or those that have the functions that are named.

#include "SimulatorTest.h"

#include <algorithm>
#include <memory>

namespace {

/** Whether the class has what the command line names, or the command line names nothing. */
bool isWanted(const QObject& test, const QStringList& arguments) {
    const auto isOption = [](const QString& argument) { return argument.startsWith('-'); };
    if (std::all_of(arguments.begin() + 1, arguments.end(), isOption))
        return true;
    return std::any_of(arguments.begin() + 1, arguments.end(), [&](const QString& argument) {
        const QByteArray slot = argument.section(':', 0, 0).toLatin1() + "()";
        return test.metaObject()->indexOfSlot(slot) >= 0;
    });
}

} // namespace

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    int failed = 0;
    for (const auto make : simtest::tests()) {
        const std::unique_ptr<QObject> test(make());
        if (isWanted(*test, QCoreApplication::arguments()))
            failed += QTest::qExec(test.get(), argumentCount, arguments);
    }
    return std::min(failed, 127);
}
