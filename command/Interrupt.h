#ifndef COMMAND_INTERRUPT_H
#define COMMAND_INTERRUPT_H

/**
 * Ctrl-C (SIGINT), SIGTERM and SIGHUP: noted, and acted on between two steps only. Each tells on
 * standard error when it will be. A closed pipe (SIGPIPE) is no reason to leave an instrument half
 * written and is ignored.
 */
namespace Interrupt {

/** What an interrupt means at present. */
enum class Phase {
    BetweenSteps, ///< it ends the program after the present step
    Committing,   ///< the record that was staged is committed first
    TakingBack    ///< the way back is gone to its end
};

/** Takes the signals over, for the rest of the process. They reach no thread that is started
    later, but for the one that calls `receiveHere`. */
void install();
/** Lets the calling thread take the signals. */
void receiveHere();
void setPhase(Phase phase);
/** Whether there was one since `install`. */
bool isRequested();

} // namespace Interrupt

#endif
