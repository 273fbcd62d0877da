/* What to make in a room of 4, where a earns 3 and b 2 and at most 3 of a can be made: every
 * function for models, called by a C99 client. The best is 3 of a and 1 of b, which earns 11. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <ztb/model.h>
#include <ztb/ztb.h>

static ztbModel* model = NULL;
static char message[256];

/* Where files go. */
static const char* place = "";
static const char* at(const char* ending) {
  static char path[4096];
  snprintf(path, sizeof(path), "%s%s", place, ending);
  return path;
}

static void stop(const char* call) {
  printf("failed: %s: %s, %s\n", call, message, ztbModelMessage(model));
  exit(EXIT_FAILURE);
}

#define MUST(call) \
  do {             \
    if (!(call)) { \
      stop(#call); \
    }              \
  } while (0)

static void build(void) {
  ztbModelSize size;
  ztbModelFamily family;
  char option[64];
  MUST(ztbModelCreate(&model, message, (int)sizeof(message)));
  MUST(ztbModelSetObjective(model, "profit", 1, 0));
  printf("columns: %d", ztbModelAddColumn(model, "make(a)", ztbColumnContinuous, 0, 3));
  printf(" %d\n", ztbModelAddColumn(model, "make(b)", ztbColumnContinuous, 0, HUGE_VAL));
  printf("row: %d\n", ztbModelAddRow(model, "room", ztbRowLessOrEqual, 4, 0));
  MUST(ztbModelAddTerm(model, 0, 0, 3));
  MUST(ztbModelAddTerm(model, 0, 1, 2));
  MUST(ztbModelAddTerm(model, 1, 0, 1));
  MUST(ztbModelAddTerm(model, 1, 1, 1));
  printf("refused: %d", ztbModelAddTerm(model, 7, 0, 1));
  printf(", %s, kind %d\n", ztbModelMessage(model), ztbModelErrorKind() == ZTB_ERROR_REFUSED);
  printf("refused: %d", ztbModelAddProduct(model, 1, 0, 9, 1));
  printf(", %s\n", ztbModelMessage(model));
  MUST(ztbModelGetSize(model, &size));
  MUST(ztbModelGetFamily(model, 0, &family));
  printf("first family: %s of %lld\n", family.name, (long long)family.count);
  MUST(ztbModelSetOption(model, "RelativeGap", "0.5"));
  MUST(ztbModelGetOption(model, "RelativeGap", option, (int)sizeof(option)));
  printf("gap: %s\n", option);
  MUST(ztbModelWrite(model, at(".lp")));
  MUST(ztbModelWrite(model, at(".mps")));
  ztbModelFree(&model);
  printf("freed: %d\n", model == NULL);
}

static ztbRec* tied(void) {
  ztbRec* database = NULL;
  void* pbi = ztbModelPbi(model);
  MUST(pbi != NULL);
  MUST(ztbcreate(&database, message, (int)sizeof(message)));
  MUST(c__ztbinitfromdict(database, pbi));
  MUST(c__ztbinitupdate(database, pbi));
  return database;
}

static int watch(void* context) {
  double objective = 0;
  double bound = 0;
  (void)ztbModelProgress(model, &objective, &bound);
  return context == NULL;
}

static void solveAndLook(void) {
  ztbRec* database = NULL;
  double seconds = -1;
  double levels[2] = {0, 0};
  double lower = 0;
  double upper = 0;
  int dimension = 0;
  const char* labels[20];
  int other = 0;
  MUST(ztbModelOpen(&model, at(".lp"), NULL, message, (int)sizeof(message)));
  MUST(ztbModelDrive(model, "price(thing) = cost of make"));
  database = tied();
  printf("notes: %d, kind %d, updated %d\n", ztbModelNoteCount(model), ztbModelKind(model),
         ztbModelUpdatedKind(model));
  printf("no note: \"%s\"\n", ztbModelNote(model, 0));
  ztbModelSetWatch(model, &watch, &other);
  MUST(c__ztbcallsolvertimed(database, "clp", &seconds));
  ztbModelSetWatch(model, NULL, NULL);
  printf("%s, %s, %g, bound %g\n", ztbModelStatusText(ztbModelStatus(model)),
         ztbModelSolveStatusText(ztbModelSolveStatus(model)), ztbModelObjective(model),
         ztbModelBound(model));
  printf("times: %d\n", seconds >= 0 && ztbModelSeconds(model) >= 0 &&
                            ztbModelProcessorSeconds(model) >= 0 && ztbModelIterations(model) >= 0);
  printf("levels: %d", ztbModelGetField(model, "make", ZTB_LEVEL, levels, 2));
  printf(" %g %g\n", levels[0], levels[1]);
  printf("cold %d, start %d, basis %d\n", ztbModelColdSolves(model), ztbModelStartTaken(model),
         ztbModelBasisTaken(model));
  MUST(ztbModelRanging(model));
  /* A unit of room more goes to b, without an end; one less takes b away at 3. */
  MUST(ztbModelRhsRange(model, 1, &lower, &upper));
  printf("%s: %g to %g\n", ztbModelRowElement(model, 1, &dimension, labels), lower, upper);
  /* a is made as long as it earns more than b. */
  MUST(ztbModelCostRange(model, 0, &lower, &upper));
  printf("%s", ztbModelColumnElement(model, 0, &dimension, labels));
  printf("(%s): %g to %g\n", labels[0], lower, upper);
  printf("of %d columns, %d rows\n", ztbModelColumnCount(model), ztbModelRowCount(model));
  MUST(ztbModelWriteBasis(model, place));
  MUST(ztbModelReadBasis(model, place));
  MUST(ztbModelResetLevels(model));
  MUST(c__ztbcallsolvertimed(database, "GLPK", &seconds));
  printf("basis taken: %d\n", ztbModelBasisTaken(model));
  ztbModelTerminate(model);
  MUST(ztbfree(&database));
  ztbModelFree(&model);
}

static void explain(void) {
  ztbRec* database = NULL;
  double seconds = 0;
  int member = 0;
  int part = 0;
  int number = 0;
  MUST(ztbModelCreate(&model, message, (int)sizeof(message)));
  MUST(ztbModelAddColumn(model, "x", ztbColumnInteger, 0, 9) == 0);
  /* From 7 to 5. */
  MUST(ztbModelAddRow(model, "r", ztbRowGreaterOrEqual, 7, -2) == 1);
  MUST(ztbModelAddTerm(model, 1, 0, 1));
  database = tied();
  MUST(c__ztbcallsolvertimed(database, "cbc", &seconds));
  printf("%s\n", ztbModelStatusText(ztbModelStatus(model)));
  MUST(ztbModelExplain(model, 10));
  for (member = 0; member < ztbModelConflictCount(model); ++member) {
    MUST(ztbModelConflictMember(model, member, &part, &number));
    printf("  %s: part %d of %d\n", ztbModelConflictText(model, member), part, number);
  }
  printf("irreducible %d, by integers %d, \"%s\"\n", ztbModelConflictIsIrreducible(model),
         ztbModelConflictIsByIntegers(model), ztbModelConflictCondition(model));
  MUST(ztbfree(&database));
  ztbModelFree(&model);
}

static void fill(void) {
  const char* labels[] = {"a", "b"};
  const double values[] = {5, 7};
  ztbModelFill fills[2];
  FILE* file = fopen(at(".mod"), "w");
  ztbRec* database = NULL;
  double seconds = 0;
  memset(fills, 0, sizeof(fills));
  if (file == NULL) {
    stop("fopen");
  }
  fputs("set I;\nparam c{I};\nvar x{I} >= 1;\nminimize cost: sum{i in I} c[i] * x[i];\nend;\n",
        file);
  fclose(file);
  fills[0].name = "I";
  fills[0].isSet = 1;
  fills[0].dimension = 1;
  fills[0].count = 2;
  fills[0].labels = labels;
  fills[1].name = "c";
  fills[1].dimension = 1;
  fills[1].count = 2;
  fills[1].labels = labels;
  fills[1].values = values;
  MUST(ztbModelOpenFilled(&model, at(".mod"), NULL, fills, 2, message, (int)sizeof(message)));
  database = tied();
  MUST(c__ztbcallsolvertimed(database, "clp", &seconds));
  printf("filled: %d %d, %g\n", fills[0].taken, fills[1].taken, ztbModelObjective(model));
  MUST(ztbfree(&database));
  ztbModelFree(&model);
}

int main(int count, char** arguments) {
  if (count != 2) return EXIT_FAILURE;
  place = arguments[1];
  build();
  solveAndLook();
  explain();
  fill();
  printf("catalogue: %d", ztbCatalogueCheck("none", message, (int)sizeof(message)));
  printf(", %s\n", message);
  printf("solver: %d", ztbCatalogueSolver("none", "clp", message, (int)sizeof(message)));
  printf(", %s\n", message);
  return EXIT_SUCCESS;
}
