#ifndef COMMAND_COMMANDLINE_H
#define COMMAND_COMMANDLINE_H

/** Parses the command line and runs its verb. The application object must exist. @return the exit
    status; 2 after the message about a wrong command line */
int runCommandLine(int argc, char** argv);

#endif
