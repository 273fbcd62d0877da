// The commands, each in a file of its own. Each function adds one, with its options, to the command
// line.
#ifndef ZTB_TOOLS_COMMANDS_COMMANDS_H_
#define ZTB_TOOLS_COMMANDS_COMMANDS_H_

namespace tool {

class CommandLine;

// ztb info FILE: what is in a file.
void addInfoCommand(CommandLine& line);

// ztb show FILE SYMBOL: the records of a symbol.
void addShowCommand(CommandLine& line);

// ztb import OUT.rxf: makes a file from CSV.
void addImportCommand(CommandLine& line);

// ztb export FILE SYMBOL... --csv DIR: writes a file out as CSV.
void addExportCommand(CommandLine& line);

// ztb diff A B: what changed between two files.
void addDiffCommand(CommandLine& line);

// ztb check FILE: whether a file is intact.
void addCheckCommand(CommandLine& line);

// ztb copy SRC SYMBOL... DST: some symbols of a file, with what they need, as a file of their own.
void addCopyCommand(CommandLine& line);

// ztb merge A B... OUT and ztb concat A B... OUT: the symbols of several files in one.
void addMergeCommand(CommandLine& line);
void addConcatCommand(CommandLine& line);

// ztb rename FILE OUT 'OLD = NEW'...: a file with other names.
void addRenameCommand(CommandLine& line);

// ztb where FILE OUT --where CONDITION: the records that fulfil a condition.
void addWhereCommand(CommandLine& line);

// ztb aggregate FILE SYMBOL: sums over some positions.
void addAggregateCommand(CommandLine& line);

// ztb pivot FILE SYMBOL: a symbol as a two-way table.
void addPivotCommand(CommandLine& line);

// ztb plot FILE SYMBOL --x POSITION: a symbol as a chart.
void addPlotCommand(CommandLine& line);

// ztb sql FILE... QUERY: queries the symbols of files in SQL.
void addSqlCommand(CommandLine& line);

// ztb model MODEL: what a model consists of.
void addModelCommand(CommandLine& line);

// ztb solve MODEL: solves a model, with data from a file and from the command line.
void addSolveCommand(CommandLine& line);

// ztb sweep MODEL --scenarios FILE --over SET --out FILE: solves a model for each scenario of a
// file.
void addSweepCommand(CommandLine& line);

// ztb view FILE [FILE]: files in the browser.
void addViewCommand(CommandLine& line);

// ztb help COMMAND: the help of a command.
void addHelpCommand(CommandLine& line);

// ztb completion SHELL: a script that completes the command line in a shell.
void addCompletionCommand(CommandLine& line);

// ztb manual: the manual page.
void addManualCommand(CommandLine& line);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_COMMANDS_H_
