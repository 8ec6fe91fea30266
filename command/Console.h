#ifndef COMMAND_CONSOLE_H
#define COMMAND_CONSOLE_H

#include "command/Transaction.h"

/** The person before the terminal: sees the difference on standard error and is asked there. */
class Console : public TransactionObserver {
public:
    /** @param isSure  the person said yes beforehand and is not asked */
    Console(std::int32_t serialNumber, bool isSure)
        : m_serialNumber(serialNumber), m_isSure(isSure) {}

    /** Whether there is somebody who can be asked. */
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
