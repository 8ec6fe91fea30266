#ifndef COMMAND_CONSOLE_H
#define COMMAND_CONSOLE_H

#include "command/Transaction.h"

/** Shows a person the difference on standard error and asks for confirmation there. */
class Console : public TransactionObserver {
public:
    /** @param isSure  `--yes` was given: nothing is asked */
    Console(std::int32_t serialNumber, bool isSure)
        : m_serialNumber(serialNumber), m_isSure(isSure) {}

    /** Whether there is a terminal to ask a person at. */
    static bool hasTerminal();

    /** Asks a question that ends in "[y/N]". */
    static bool asks(const Text& question);

    void foundImplausible(const CalibrationAccessory& accessory, const Implausible& value) override;
    void foundDifference(const FieldChanges& changes) override;
    bool confirms() override;

private:
    std::int32_t m_serialNumber;
    bool m_isSure;
};

#endif
