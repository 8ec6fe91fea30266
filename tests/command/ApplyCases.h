#ifndef TESTS_COMMAND_APPLYCASES_H
#define TESTS_COMMAND_APPLYCASES_H

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <vector>

/** An `apply` of all four things under a fault, and what has to come of it. */
struct ApplyCase {
    const char* name;
    QJsonArray faults;
    QStringList environment; ///< beside the usual
    QStringList options;     ///< beside those of `CommandRun::applyAll`
    const char* outcome;
    const char* reason; ///< what the reason has in it
    int exitStatus;
    enum { Initial, Wanted, Any } holds; ///< what the instrument holds afterwards
};

std::vector<ApplyCase> applyCases();

/** One rule for faults; see `rule`. */
QJsonArray ruleFor(const QString& function, const QString& call, const QJsonObject& what);

#endif
