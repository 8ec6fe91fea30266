#ifndef COMMAND_INTERRUPT_H
#define COMMAND_INTERRUPT_H

/**
 * Ctrl-C (SIGINT), SIGTERM and SIGHUP: recorded, and handled only between two steps. The handler
 * says on standard error when that will be. SIGPIPE is ignored: a closed pipe is no reason to leave
 * an instrument half written.
 */
namespace Interrupt {

/** What an interrupt does at present. */
enum class Phase {
    BetweenSteps, ///< the program ends after the present step
    Committing,   ///< the staged record is committed first
    TakingBack    ///< the rollback is finished first
};

/** Installs the handlers for the rest of the process, and blocks the signals in this thread and in
    all threads started later, except the one that calls `receiveHere`. */
void install();
/** Unblocks the signals in the calling thread. */
void receiveHere();
void setPhase(Phase phase);
/** Whether there was a signal since `install`. */
bool isRequested();

} // namespace Interrupt

#endif
