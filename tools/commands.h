// The subcommands of the idxbase tool. Each takes the arguments after its
// name and returns the process exit status.
#ifndef IDXBASE_TOOLS_COMMANDS_H_
#define IDXBASE_TOOLS_COMMANDS_H_

namespace idxbase_tool {

// Prints every development switch as "name=value", one per line.
int FlagsCommand(int argc, char** argv);
// Prints the version and build information.
int AboutCommand(int argc, char** argv);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_COMMANDS_H_
