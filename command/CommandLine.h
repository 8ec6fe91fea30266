#ifndef COMMAND_COMMANDLINE_H
#define COMMAND_COMMANDLINE_H

/** Reads the command line and runs its verb. The application object exists. @return the exit
    status; 2 for a command line that is wrong, which was said */
int runCommandLine(int argc, char** argv);

#endif
