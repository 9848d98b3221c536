// The subcommands of the idxbase tool. Each takes the arguments after its
// name and returns the process exit status (kExit* of command_line.h; lock
// also returns its command's). Each answers "--help" with its help text.
#ifndef IDXBASE_TOOLS_COMMANDS_H_
#define IDXBASE_TOOLS_COMMANDS_H_

namespace idxbase_tool {

// Prints the version and build information.
int AboutCommand(int argc, char** argv);
// Prints the tool's version ("idxbase --version").
int VersionCommand(int argc, char** argv);
// Lists the development switches: variable, rule, default and value.
int FlagsCommand(int argc, char** argv);
// Prints the names of an index's directories and files.
int NamesCommand(int argc, char** argv);
// Runs a handful of filters over a built-in table of parts.
int DemoCommand(int argc, char** argv);
// Prints the records of a typed CSV file that match a filter.
int FilterCommand(int argc, char** argv);
// Writes or verifies ".checksum" files.
int ChecksumCommand(int argc, char** argv);
// Runs a command while holding a directory's lock.
int LockCommand(int argc, char** argv);
// Tells whether a directory's lock is held.
int IsLockedCommand(int argc, char** argv);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_COMMANDS_H_
