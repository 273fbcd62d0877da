// The ztb command behind what each system calls first.
#ifndef ZTB_TOOLS_COMMANDS_MAIN_H_
#define ZTB_TOOLS_COMMANDS_MAIN_H_

// Runs the command with these arguments, which are UTF-8, and gives its exit code.
int ztbMain(int argc, char** argv);

#endif  // ZTB_TOOLS_COMMANDS_MAIN_H_
