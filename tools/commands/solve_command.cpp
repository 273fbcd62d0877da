#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/column_names.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/table_options.h"
#include "tools/files/exchange_file.h"
#include "tools/files/freed_memory.h"
#include "tools/files/standard_streams.h"
#include "tools/files/system_files.h"
#include "tools/models/model_input.h"
#include "tools/models/model_session.h"
#include "tools/models/ranging_report.h"
#include "tools/models/solve_interrupt.h"
#include "tools/models/solve_report.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct SolveOptions {
  std::string model;
  std::string modelData;
  std::string data;
  std::string solver;
  std::string start;
  std::string basis;
  std::string out;
  std::vector<std::string> drives;
  std::vector<std::string> settings;
  std::vector<std::string> shown;
  std::vector<std::string> options;
  bool notes = false;
  bool explain = false;
  bool json = false;
  bool csv = false;
  bool ranging = false;
  TableOptions table;
};

void setOptions(ztb::Model& model, const std::vector<std::string>& options) {
  for (const std::string& option : options) {
    const std::size_t equals = option.find('=');
    if (equals == std::string::npos) {
      throw UsageError(
          fmt::format("--option \"{}\" has no value; write it as \"TimeLimit=60\"", option));
    }
    try {
      model.setOption(option.substr(0, equals), option.substr(equals + 1));
    } catch (const ztb::Error& error) {
      throw UsageError(fmt::format("--option \"{}\": {}", option, error.what()));
    }
  }
}

ztb::Symbol solvedSymbol(const ModelSession& session, const ztb::Database& database,
                         const std::string& name) {
  const auto symbol = database.findSymbol(name);
  const bool isSolved =
      symbol && (symbol->type() == ztb::Type::variable || symbol->type() == ztb::Type::equation);
  if (isSolved) return *symbol;
  throw Failure(withFile(session.file(), fmt::format("the model has no variable or equation {}{}",
                                                     name, session.solvedText())));
}

// A row of cells for each record: labels, level, marginal, bounds.
void showSymbol(const ztb::Symbol& symbol, const TableOptions& options) {
  const int dimension = symbol.dimension();
  std::vector<std::vector<std::string>> rows;
  for (ztb::Record& record : symbol.records()) {
    std::vector<std::string> cells;
    for (int position = 0; position < dimension; ++position) {
      cells.push_back(printable(record.key(position).view()));
    }
    for (const double value : {record.level(), record.marginal(), record.lower(), record.upper()}) {
      cells.emplace_back(NumberText(value, options.digits).view());
    }
    rows.push_back(std::move(cells));
  }

  TablePrinter table(options.style());
  const std::vector<std::string> domains(static_cast<std::size_t>(dimension), "*");
  for (const std::string& column : ztb::keyColumns(symbol.name().view(), symbol.type(), domains)) {
    table.addColumn(column, TablePrinter::Align::left);
  }
  for (const std::string_view field : {"level", "marginal", "lower", "upper"}) {
    table.addColumn(field, TablePrinter::Align::right);
  }
  print(fmt::format("\n{}: {}\n", symbol.name().str(), counted(rows.size(), "record")));
  const auto viewsOf = [](const std::vector<std::string>& cells) {
    return std::vector<std::string_view>(cells.begin(), cells.end());
  };
  for (const auto& row : rows) table.measure(viewsOf(row));
  table.printHeader(stdout);
  for (const auto& row : rows) table.printRow(stdout, viewsOf(row));
}

// Why a solve gave none.
std::string withoutSolution(const ztb::Model& model) {
  const std::string_view status = ztbModelStatusText(model.status());
  return status == "no solution" ? fmt::format("no solution, the solver ended with: {}",
                                               ztbModelSolveStatusText(model.solveStatus()))
                                 : fmt::format("no solution: {}", status);
}

// How far from the best a solution may be that a limit or a signal left.
void printBound(const ztb::Model& model) {
  const double bound = model.bound();
  if (!std::isfinite(bound)) {
    const int ended = model.solveStatus();
    const bool isLimited = ended == ztbSolveIterationLimit || ended == ztbSolveTimeLimit ||
                           ended == ztbSolveTerminated;
    if (isLimited) print("bound       none: nothing is proved of better points\n");
    return;
  }
  print(fmt::format("bound       {}\n", NumberText(bound).view()));
  if (const std::optional<double> gap = gapOf(model)) {
    print(fmt::format("gap         {:.3g} %\n", 100 * *gap));
  }
}

// Why the last solve had no solution.
ztb::Model::Conflict explained(ModelSession& session) {
  try {
    return session.model().explain();
  } catch (const ztb::Error& error) {
    throw Failure(withFile(session.file(), fmt::format("--explain: {}", error.what())));
  }
}

void printSummary(const SolveReport& report, int digits) {
  const ztb::Model& model = report.session.model();
  if (model.hasSolution()) {
    print(fmt::format("objective   {}\n", NumberText(model.objective(), digits).view()));
  }
  print(fmt::format("status      {}, {}\n", ztbModelStatusText(model.status()),
                    ztbModelSolveStatusText(model.solveStatus())));
  if (model.status() == ztbModelFeasible || !model.hasSolution()) printBound(model);
  if (report.started) {
    const bool hasStarts = sameFolded(report.solver, "cbc");
    print(fmt::format("start       {}\n", model.startTaken() ? "taken"
                                          : hasStarts
                                              ? "not taken"
                                              : "not taken: cbc alone begins with a point"));
  }
  if (!report.basis.empty()) print(fmt::format("basis       {}\n", report.basis));
  print(fmt::format(
      "solver      {}\ntime        {:.3f} s\nprocessor   {:.3f} s\niterations  {:.0f}\n",
      report.solver, model.seconds(), model.processorSeconds(), model.iterations()));
}

// What stands behind the summary, which took longer.
void printDetails(const SolveOptions& options, const SolveReport& report) {
  if (report.conflict) {
    print(
        fmt::format("these cannot hold together:\n  {}\n", conflictText(*report.conflict, "\n  ")));
  }
  for (const ztb::Symbol& symbol : report.shown) showSymbol(symbol, options.table);
  if (report.ranging) {
    printRanging(*report.ranging, options.shown, options.table.style(), options.table.digits);
  }
}

void printReport(const SolveOptions& options, const SolveReport& report) {
  if (options.csv && report.conflict) {
    printError(fmt::format("ztb: {}: these cannot hold together: {}", options.model,
                           conflictText(*report.conflict, "; ")));
  }
  if (options.json) {
    printSolveJson(report);
  } else if (!options.csv) {
    printDetails(options, report);
  } else if (options.ranging) {
    if (report.ranging) printRangingCsv(*report.ranging, options.shown);
  } else if (options.shown.empty()) {
    printSolveCsv(report);
  } else if (!report.shown.empty()) {
    printRecordsCsv(report.shown.front());
  }
}

void withBasis(ModelSession& session, void (ztb::Model::*use)(const ztb::ZString&),
               const std::string& file) {
  try {
    (session.model().*use)(file);
  } catch (const ztb::Error& error) {
    throw Failure(withFile(session.file(), fmt::format("--basis: {}", error.what())));
  }
}

void applyInput(const SolveOptions& options, const std::optional<ExchangeFile>& data,
                const ModelFills* filling, ModelSession& session) {
  if (!data && options.settings.empty() && options.start.empty()) return;
  ModelInput input(session);
  if (data) input.applyFile(*data, filling);
  for (const std::string& setting : options.settings) input.applySetting(setting);
  if (!options.start.empty()) input.applyStart(options.start);
}

void run(const SolveOptions& options) {
  if (options.csv && !options.ranging && options.shown.size() > 1) {
    throw UsageError("--csv prints one table: name one symbol with --show, or none");
  }
  if ((options.csv || options.json) && options.table.digits != 0) {
    throw UsageError("--digits: goes with what people read; JSON and CSV have every number whole");
  }
  refuseReplacing({options.model, options.modelData, options.data, options.start, options.basis},
                  options.out);
  if (!options.out.empty() && options.out != "-") requirePlace(options.out);
  if (!options.basis.empty()) requirePlace(options.basis);
  keepFreedMemory();
  OutputFile output(options.out);
  Progress progress;
  progress.step("reading " + options.model);
  std::optional<ExchangeFile> data;
  if (!options.data.empty()) data.emplace(options.data);
  std::optional<ModelFills> fills;
  if (data && takesFills(options.model)) fills.emplace(*data);
  ModelFills* const filling = fills ? &*fills : nullptr;
  ModelSession session(options.model, options.modelData, filling, options.drives,
                       ModelSession::Tied::whenAsked);
  for (const std::string& note : session.notes(options.notes)) printError("ztb: " + note);
  setOptions(session.model(), options.options);
  for (const std::string& name : options.shown) {
    (void)solvedSymbol(session, session.database(), name);
  }
  if (!options.out.empty()) (void)session.database();
  applyInput(options, data, filling, session);

  const bool hadBasis = !options.basis.empty() && std::filesystem::exists(pathOf(options.basis));
  if (hadBasis) withBasis(session, &ztb::Model::readBasis, options.basis);

  const std::string solver = options.solver.empty() ? session.standardSolver() : options.solver;
  progress.step("solving with " + solver);
  try {
    const SolveInterrupt interrupt(session.model());
    const Progress::Detail detail(progress, SolveProgress(session.model()));
    session.solve(solver);
  } catch (const ztb::Error& error) {
    throw Failure(withFile(options.model, error.what()));
  }

  ztb::Model& model = session.model();
  // What fails after the solve is told when the solution has been written and printed.
  std::optional<Failure> later;
  std::optional<ztb::Model::Ranging> ranging;
  if (options.ranging && model.hasSolution()) {
    progress.step("working out ranges");
    try {
      ranging = rangingOf(session);
      if (!options.out.empty()) addRangeSymbols(session, *ranging);
    } catch (const Failure& failure) {
      later = failure;
    }
  }
  // Before anything is printed, since a reader who has seen enough ends this process.
  if (model.hasSolution() && !options.out.empty()) {
    progress.step("writing " + output.name());
    try {
      session.database().write(output.path());
    } catch (const ztb::Error& error) {
      throw Failure(withFile(output.name(), error.what()));
    }
    output.finish();
  }
  SolveReport report{.session = session,
                     .solver = solver,
                     .started = !options.start.empty(),
                     .basis = {},
                     .conflict = {},
                     .ranging = std::move(ranging),
                     .shown = {}};
  if (!options.basis.empty()) {
    report.basis = model.basisTaken() ? "taken" : hadBasis ? "not taken" : "none yet";
  }
  if (!options.json && !options.csv) printSummary(report, options.table.digits);
  if (options.explain && model.status() == ztbModelInfeasible) {
    progress.step("looking for the rows and bounds that cannot hold together");
    try {
      report.conflict = explained(session);
    } catch (const Failure& failure) {
      later = failure;
    }
  }
  for (const std::string& name : options.shown) {
    if (model.hasSolution()) {
      report.shown.push_back(solvedSymbol(session, session.database(), name));
    }
  }
  printReport(options, report);
  if (!model.hasSolution()) {
    if (later) printError(fmt::format("ztb: {}", later->what()));
    throw Failure(withFile(options.model, withoutSolution(model)));
  }
  // Last, so that a solve that leaves no basis loses nothing else.
  if (!options.basis.empty()) withBasis(session, &ztb::Model::writeBasis, options.basis);
  if (later) throw *later;
}

}  // namespace

void addSolveCommand(CommandLine& line) {
  auto options = std::make_shared<SolveOptions>();
  Command command = line.add("solve", "Solve a model, with data from a file");
  command.text("MODEL", options->model, "Model file: .lp, .mps, .mps.gz or .mod")
      .typeName("FILE")
      .required();
  command.text("--model-data", options->modelData, "Data file of a .mod model")
      .typeName("FILE")
      .notEmpty();
  command
      .text("--data", options->data,
            "RXF file: parameters NAME drive the model's columns NAME_var, or what --drive says; "
            "variables give bounds and levels, equations levels; - for standard input")
      .typeName("FILE")
      .notEmpty();
  command.texts(
      "--drive", options->drives,
      "What a parameter drives in a model without columns NAME_var, as in \"price(food) = "
      "cost of buy\"; may be repeated");
  command.texts("--set", options->settings, "Set one value, as in \"demand[oslo]=30\"");
  command
      .text("--solver", options->solver,
            "Solver of the catalogue; without it clp for linear models, cbc with "
            "integers, ipopt with products of columns, bonmin with both")
      .notEmpty();
  command
      .text("--start", options->start,
            "RXF file: a search over integers by cbc begins with the levels of its variables")
      .typeName("FILE")
      .notEmpty();
  command
      .text("--basis", options->basis,
            "File with the basis of an earlier solve by clp or glpk, to begin with where it is one "
            "of the same rows and columns; that of this solve takes its place")
      .typeName("FILE")
      .notEmpty();
  command.texts("--option", options->options, "Option of the solver, as in TimeLimit=60");
  command
      .text("--out", options->out,
            "Write parameters and solution to this RXF file, - for standard output; what is "
            "printed then goes to standard error")
      .typeName("FILE")
      .notEmpty();
  command.texts("--show", options->shown, "Print the solution of a variable or equation");
  command.flag("--explain", options->explain,
               "Of an infeasible model print rows and bounds that cannot hold together, and do "
               "without any one of them; an --option TimeLimit holds for this too");
  command.flag("--ranging", options->ranging,
               "Print how far each cost and right-hand side, or those of what --show names, can "
               "move by itself while the basis stays optimal (clp, glpk), and put SYM_cost_lower, "
               "SYM_cost_upper, SYM_rhs_lower and SYM_rhs_upper into --out");
  command.flag("--notes", options->notes,
               "Tell each name that had to be changed for the database, not only their count");
  const Option csv = command.flag(
      "--csv", options->csv,
      "Print CSV: a line with what the solve left, or the records of the symbol of --show, or the "
      "ranges of --ranging");
  command.flag("--json", options->json, "Print JSON, with the records of each symbol of --show")
      .excludes(csv);
  addWidthOption(command, options->table);
  addDigitsOption(command, options->table);
  addMemoryOption(command);
  command.footer(
      "Examples:\n"
      "  ztb solve diet.lp --show buy\n"
      "  ztb solve transport.lp --data demand.rxf --set \"demand[oslo]=30\" --out solution.rxf\n"
      "  ztb solve plan.mps --drive \"demand(city) = rhs of demand\" --data demand.rxf\n"
      "  ztb solve plan.mod --model-data plan.dat --solver glpk --option TimeLimit=60\n"
      "A --drive names cost, upper or lower of a variable, rhs of an equation, or coefficient of "
      "a\nvariable in an equation: \"yield(crop, soil) = coefficient of grow in harvest(soil)\".\n"
      "Exit codes: 0 solved, 1 no solution or failed, 2 wrong usage.");
  command.action([options] {
    run(*options);
    return exitFine;
  });
}

}  // namespace tool
