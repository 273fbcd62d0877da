/* Opening and building the optimization models that a ZTB database works on.
 *
 * A model is rows and columns: row 0 is the objective, the other rows are constraints, and a column
 * is a variable. ztbModelPbi gives the handle that ztbRegisterPBI, ztbInitFromDict and
 * ztbInitUpdate of ztb.h take. The functions stand in liblomudclib64.so; link with it, or open it
 * at run time.
 *
 * Every function that can fail returns 0 (or -1 where it returns a number) and leaves the reason in
 * `message`, cut to `messageSize` bytes with its final zero, or, for a model that exists, in
 * ztbModelMessage. A model that a function refused to change is as it was.
 *
 * A model is used by one thread at a time, together with the database that it is tied to, but for
 * ztbModelTerminate; both may go from one thread to another. Two threads may open, build and solve
 * two models at the same time. Ipopt and Bonmin solve one model at a time in a process, the others
 * wait; GLPK begins afresh when a live solver comes to another thread.
 */
#ifndef ZTB_MODEL_H_
#define ZTB_MODEL_H_

#include <ztb/errors.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ztbModelRec ztbModel;

/* Kinds of columns. A semi-continuous one is 0 or within its bounds, and a semi-integer one an
 * integer besides. */
enum {
  ztbColumnContinuous = 0,
  ztbColumnInteger = 1,
  ztbColumnBinary = 2,
  ztbColumnSemiContinuous = 3,
  ztbColumnSemiInteger = 4
};

/* Types of rows, with right-hand side r. */
enum {
  ztbRowEqual = 0,          /* = r  */
  ztbRowGreaterOrEqual = 1, /* >= r */
  ztbRowLessOrEqual = 2,    /* <= r */
  ztbRowFree = 3            /* no condition */
};

/* Kinds of models. A product of columns does not count while one of its columns stands still, that
 * is, while its bounds are equal. */
enum {
  ztbKindLinear = 1,
  ztbKindMixedInteger = 2,
  ztbKindQuadratic = 4,
  ztbKindMixedIntegerQuadratic = 5
};

/* What a solve found. */
enum {
  ztbModelOptimal = 1,        /* a best solution */
  ztbModelLocallyOptimal = 2, /* no better solution close by */
  ztbModelUnbounded = 3,      /* the objective can be improved without end */
  ztbModelInfeasible = 4,     /* no point satisfies all rows and bounds */
  ztbModelFeasible = 6,       /* a solution, but a limit came before the proof that it is best */
  ztbModelNoSolution = 13     /* not solved yet, or nothing found */
};

/* How a solve ended. */
enum {
  ztbSolveNormal = 1,
  ztbSolveIterationLimit = 2,
  ztbSolveTimeLimit = 3,
  ztbSolveTerminated = 4, /* by ztbModelTerminate */
  ztbSolveFailed = 13     /* not solved yet, or the solver gave up */
};

/* Opens a model file; its kind is told by the ending:
 *   .lp            CPLEX LP, with quadratic terms in square brackets
 *   .mps           MPS, fixed or free (by the look of it)
 *   .mod           MathProg; `dataFile`, unless null or empty, takes the place of its data section
 * .lp and .mps may be followed by .gz. A refusal names file, line and column. */
int ztbModelOpen(ztbModel** model, const char* file, const char* dataFile, char* message,
                 int messageSize);

/* Records of a set or parameter for a MathProg model. `labels` has dimension entries a record, one
 * record after the other; `values` an entry a record of a parameter, null for a set. */
typedef struct ztbModelFill {
  const char* name;
  int isSet;
  int dimension; /* of a set: of its elements */
  long long count;
  const char* const* labels;
  const double* values;
  int taken; /* set by the call: 1 if the model declares it */
} ztbModelFill;

/* As ztbModelOpen, with the records of `fills` in the place of the data that the model itself, or
 * its data file, has for sets and parameters of these names, letters in any case where the model
 * has one such name. Of an indexed set the first labels are those of the index. Fills of other
 * names, and all of them for other kinds of files, are not taken. Labels that are spelled as
 * numbers are numbers to the model. Refused: what the model computes itself, and values that are
 * not finite. */
int ztbModelOpenFilled(ztbModel** model, const char* file, const char* dataFile,
                       ztbModelFill* fills, int fillCount, char* message, int messageSize);

/* The kind of the latest failure of a function here in the calling thread, a ZTB_ERROR_ code of
 * ztb/errors.h; ZTB_ERROR_NONE before the first. A success does not clear it. */
int ztbModelErrorKind(void);

/* Makes an empty model: no columns, and row 0, the objective, named "objective", minimized. */
int ztbModelCreate(ztbModel** model, char* message, int messageSize);

/* Frees the model and everything reached through ztbModelPbi, and sets *model to null. A database
 * that was tied to it must not be updated or solved any more, but may be freed later. */
void ztbModelFree(ztbModel** model);

/* Names the objective, sets its direction (1: maximize) and its constant. */
int ztbModelSetObjective(ztbModel* model, const char* name, int maximize, double constant);

/* Adds a column and returns its number, counted from 0. Infinite bounds are the IEEE infinities;
 * those of a binary column lie within 0 and 1. Columns have distinct names. */
int ztbModelAddColumn(ztbModel* model, const char* name, int kind, double lower, double upper);

/* Adds a row and returns its number, counted from 1 since 0 is the objective. `range`, unless 0,
 * makes a >= row end at rhs + range and a <= row begin at rhs - range; below 0 it leaves a row that
 * nothing satisfies. Rows have distinct names. */
int ztbModelAddRow(ztbModel* model, const char* name, int type, double rhs, double range);

/* Adds `value` times a column, or times a product of two columns (which may be the same), to a row.
 * Terms given twice add up. */
int ztbModelAddTerm(ztbModel* model, int row, int column, double value);
int ztbModelAddProduct(ztbModel* model, int row, int column1, int column2, double value);

/* Adds a special ordered set of kind 1 or 2: of its columns, in ascending order of their weights,
 * at most one, or two neighbours, are not 0. A set has at least one member; its columns are
 * distinct, and so are their weights, which are finite. */
int ztbModelAddSet(ztbModel* model, const char* name, int kind, int count, const int* columns,
                   const double* weights);

/* Says which numbers of the model a symbol drives, in a text such as
 *   price(food) = cost of buy
 *   demand(city) = rhs of demand
 *   cap(plant, month) = upper of make(plant, month, *)
 *   low = lower of buy('Milk')
 *   yield(crop, soil) = coefficient of grow in harvest(soil)
 * The symbol's positions have names; those of a variable or equation are named likewise, stand for
 * one label in quotes or for any as *, or are those of the symbol in their order where it stands
 * alone. Each number gets a column of a variable named after the symbol with _var behind, price_var
 * above, which ztbUpdateModelSymbol fixes like that of any parameter in a model; until then it
 * stands at what the model has. Such columns no solver sees. A refusal tells what the model lacks
 * and which it has. From the first statement on nothing can be added to the model, and none comes
 * behind ztbModelPbi. */
int ztbModelDrive(ztbModel* model, const char* statement);

/* The model instance for ztb.h; null with the reason in ztbModelMessage. From the first call on the
 * model cannot be built further. */
void* ztbModelPbi(ztbModel* model);

/* An option by name, values as text. Options:
 *   NameSysDir      directory of the solver catalogue vltcmpNT.txt, ending in "/";
 *                   default: where the library stands
 *   LogFile         file that log lines are appended to; default none
 *   LogScreen       1: log lines go to standard output; default 0
 *   TimeLimit       seconds that a solve may take, above 0; default 1e10
 *   IterationLimit  iterations that a solve may take, 0 to 2147483647; default 2147483647
 *   RelativeGap     relative distance from the best bound at which a search over integers may stop,
 *                   0 to 1; default 1e-9
 *   UseStart        1: a search over integers begins with the levels of the columns as a solution;
 *                   default 0
 * A get copies at most `size` bytes with the final zero. */
int ztbModelSetOption(ztbModel* model, const char* name, const char* value);
int ztbModelGetOption(ztbModel* model, const char* name, char* value, int size);

/* The kind of a model that ztbModelPbi was called for, by its present bounds; otherwise 0. Bounds
 * that ztbUpdateModelSymbol gave to variables and parameters count from the next solve on:
 * ztbModelUpdatedKind tells the kind that this solve will find. */
int ztbModelKind(ztbModel* model);
int ztbModelUpdatedKind(ztbModel* model);

/* Solves the model as it stands with a solver of the catalogue, without a database; from then on
 * the model cannot be built further. The solver begins afresh each time and is freed behind it:
 * repeated solves with changed data go through a database, whose solver stays alive. Symbols of a
 * database that was tied to the model before are not told of the new solution. 1 when the solver
 * ended, whatever it found; otherwise ztbModelMessage tells why, and ztbModelErrorKind the kind:
 * ZTB_ERROR_NOT_FOUND for a solver that there is not, ZTB_ERROR_SOLVER for one that failed. */
int ztbModelSolve(ztbModel* model, const char* solver);

/* What the last solve left: the codes above, the objective's value, and the solver's iterations. */
int ztbModelStatus(ztbModel* model);
int ztbModelSolveStatus(ztbModel* model);
double ztbModelObjective(ztbModel* model);
double ztbModelIterations(ztbModel* model);

/* What no objective can be better than, as far as the last solve knows: the objective itself once
 * it is proved to be best, an infinity where nothing is known. */
double ztbModelBound(ztbModel* model);

/* One field, ZTB_LEVEL to ZTB_SCALE of ztb/types.h, of all records of a variable or equation by its
 * name in the database, in their order: as its symbol would have them if it were read now. Copies
 * at most `count` and gives how many there are; -1 when there is no such variable, equation or
 * field. */
int ztbModelGetField(ztbModel* model, const char* symbol, int field, double* values, int count);

/* The time of the last solve in seconds: by the wall clock, which limits go by, and of the
 * processor, in the thread that solved. */
double ztbModelSeconds(ztbModel* model);
double ztbModelProcessorSeconds(ztbModel* model);

/* 1 if the last solve began with the solution that option UseStart asked for: the integers stood
 * within their bounds and the rest of the columns could be completed to a point. Else 0, and always
 * 0 for solvers other than cbc. */
int ztbModelStartTaken(ztbModel* model);

/* Writes the basis that the last solve left, to begin a later solve of the same model with, in
 * another process too. A file that was there is replaced. Refused when it left none: clp and glpk
 * leave one with the optimum of a linear model. */
int ztbModelWriteBasis(ztbModel* model, const char* file);

/* Has the next solve begin with a basis that was written so, if it is one of a model with the same
 * columns and rows; ztbModelBasisTaken tells after the solve. clp and glpk take it. Data may have
 * changed. Refused: a file that holds no basis. */
int ztbModelReadBasis(ztbModel* model, const char* file);

/* 1 if the last solve began with the basis that ztbModelReadBasis read. */
int ztbModelBasisTaken(ztbModel* model);

/* How many solves of this model were followed by a cold one so far: a live solver claimed something
 * without a proof that holds, or gave up, and the model was solved once more from the beginning.
 * The log tells each. */
int ztbModelColdSolves(ztbModel* model);

/* Puts levels, marginals and statuses of all columns and rows back to what they were before the
 * first solve, for a solver that begins at the levels, as ipopt does: its next solve does not
 * depend on the ones before. */
int ztbModelResetLevels(ztbModel* model);

/* Words for the codes above, such as "optimal" and "time limit". */
const char* ztbModelStatusText(int status);
const char* ztbModelSolveStatusText(int status);

/* Asks a running solve to end; may be called from another thread or a signal handler. The next
 * solve clears the request. */
void ztbModelTerminate(ztbModel* model);

/* Works out how far each cost and each right-hand side can move by itself while the basis that the
 * last solve left stays optimal: levels of basic columns move with a right-hand side, the objective
 * with a cost, marginals and levels do not. Refused when that solve found no optimum, for models
 * with integers or products that move, when the model was updated since, and for solvers other than
 * clp and glpk. Where several bases are optimal, the ranges are those of the one that the solver
 * left. */
int ztbModelRanging(ztbModel* model);

/* What ztbModelRanging found, infinite where there is no end: of a column's coefficient in the
 * objective, products included, and of a row's right-hand side. 0 for a number out of range and
 * before ztbModelRanging. */
int ztbModelCostRange(ztbModel* model, int column, double* lower, double* upper);
int ztbModelRhsRange(ztbModel* model, int row, double* lower, double* upper);

/* The symbol that a column or row of a model in use is an element of, and its labels, of which
 * *dimension, at most 20, go to `labels`. Null for a number out of range. */
const char* ztbModelColumnElement(ztbModel* model, int column, int* dimension, const char** labels);
const char* ztbModelRowElement(ztbModel* model, int row, int* dimension, const char** labels);

/* How many columns and rows a model in use has, row 0 included; 0 for one that is not. */
int ztbModelColumnCount(ztbModel* model);
int ztbModelRowCount(ztbModel* model);

/* Parts of a model that a conflict is made of: a row that is an equation, a side of a row, both
 * bounds of a column that stands still, a bound of a column. */
enum {
  ztbPartRow = 0,
  ztbPartRowLower = 1,
  ztbPartRowUpper = 2,
  ztbPartColumn = 3,
  ztbPartColumnLower = 4,
  ztbPartColumnUpper = 5
};

/* Finds out why the last solve had no solution: rows and bounds, as it had them, that cannot hold
 * together, and do without any one of them. Takes `seconds` at most, then what is left by then is
 * the answer. Refused when there is a solution, and for a model with products that can move. Uses
 * the solvers clp and, with integers, cbc of the catalogue. */
int ztbModelExplain(ztbModel* model, double seconds);

/* What ztbModelExplain found: how many members, 0 <= member < count; each in words, such as
 * "demand(oslo) >= 30, driven by demand_var(oslo)", and as a part with the number of its row or
 * column; 1 if each was shown to be needed. They may hold together but for columns that have to be
 * integers, that are 0 or within their bounds, or that are in ordered sets: IsByIntegers is 1 then,
 * and Condition tells which of these the model has, as "columns that have to be integers" or
 * "semi-continuous columns and special ordered sets"; empty otherwise. */
int ztbModelConflictCount(ztbModel* model);
const char* ztbModelConflictText(ztbModel* model, int member);
int ztbModelConflictMember(ztbModel* model, int member, int* part, int* number);
int ztbModelConflictIsIrreducible(ztbModel* model);
int ztbModelConflictIsByIntegers(ztbModel* model);
const char* ztbModelConflictCondition(ztbModel* model);

/* How far the running solve is, or how far the last one came: the objective of the best point that
 * it has found, and what no point can be better than, for as long as they are not known the
 * infinity that is worse and the one that is better. Gives 1 once either is known. cbc, glpk
 * and bonmin tell both in a search over integers, clp what its method has of the two, ipopt
 * nothing. May be called from another thread, and by a watch. */
int ztbModelProgress(ztbModel* model, double* objective, double* bound);

/* Has `watch` called now and then while a solve runs, by the thread that solves, with `context`:
 * the solve ends as by ztbModelTerminate when it gives anything but 0. Not during calls of a solver
 * that never asks whether to end. Null: none any more. Of the model it must use nothing but
 * ztbModelProgress and ztbModelTerminate. */
void ztbModelSetWatch(ztbModel* model, int (*watch)(void* context), void* context);

/* The reason of the last refusal or failed solve of this model; empty when there was none, and
 * after a solve that worked. */
const char* ztbModelMessage(ztbModel* model);

/* What a user is to be told of a model that was taken all the same, one text each: 0 <= number <
 * count. What the reading of its file left, from ztbModelOpen on; these also go to the log when
 * ztbModelPbi is called first. And names that the dictionary had to change, from ztbModelPbi on. */
int ztbModelNoteCount(ztbModel* model);
const char* ztbModelNote(ztbModel* model, int number);

/* How much of everything a model has; rows without the objective. */
typedef struct ztbModelSize {
  int columns, integers, binaries, semiContinuous; /* integers and binaries apart */
  int rows, sets, families;
  long long terms, products;
  int maximize;
  double constant;          /* of the objective */
  double smallest, largest; /* sizes of coefficients; 0 when there is none */
} ztbModelSize;

/* Columns, or rows, that share the name in front of their labels, and the number of those. */
typedef struct ztbModelFamily {
  const char* name;
  int isRow; /* 0: columns; 1: rows, the objective among them */
  int dimension;
  int count;
  int kind;                         /* of columns or type of rows; -1: not all the same */
  long long entries;                /* terms and products that they stand in */
  double smallest, largest;         /* sizes of their coefficients; 0 when there is none */
  double smallestSide, largestSide; /* of bounds, or right-hand sides and ranges; likewise */
} ztbModelFamily;

/* These work until ztbModelPbi is called for the model. Families count from 0; a name is valid
 * until the model is changed or freed. */
int ztbModelGetSize(ztbModel* model, ztbModelSize* size);
int ztbModelGetFamily(ztbModel* model, int number, ztbModelFamily* family);

/* Writes the model as a file that reads back as the same model, .lp or .mps by the ending. A file
 * that was there is replaced once the new one is whole. Names that the format cannot hold are
 * changed, which a further note tells; comments in the file have them, so that ztbModelOpen gives
 * the model its own names. Refused: numbers that the format cannot hold. */
int ztbModelWrite(ztbModel* model, const char* file);

/* 1 if the catalogue file can be read, else 0 with the file, the line and what is wrong with it. */
int ztbCatalogueCheck(const char* file, char* message, int messageSize);

/* 1 if the catalogue file names the solver, letters in any case, and its library can be opened,
 * else 0 with the solvers that it names, or with what cannot be opened and the Debian package that
 * has it. A library without a directory is looked for beside the file. */
int ztbCatalogueSolver(const char* file, const char* solver, char* message, int messageSize);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_MODEL_H_ */
