/* Distances and shipments between plants and markets: a C99 client. */
#include <stdio.h>
#include <stdlib.h>
#include <ztb/ztb.h>

static ztbRec* database = NULL;

static void stop(const char* call) {
  char text[ZTB_TEXT_BUFFER_SIZE] = "";
  c__ztbgetlasterror(database, text);
  printf("failed: %s: %s\n", call, text);
  exit(EXIT_FAILURE);
}

#define MUST(call) \
  do {             \
    if (!(call)) { \
      stop(#call); \
    }              \
  } while (0)

static void checkInterface(void) {
  char message[ZTB_TEXT_BUFFER_SIZE];
  int compatibility = -1;
  const int codes[] = {15, 11, 2};
  MUST(c__xapiversion(5, message, &compatibility));
  printf("version: %d, %s\n", compatibility, message);
  MUST(c__xcheck("ztbFindSymbol", 2, codes, message));
  printf("wrong signature: %d", c__xcheck("ztbFindSymbol", 1, codes, message));
  printf(", %s\n", message);
}

static void create(void) {
  char message[ZTB_TEXT_BUFFER_SIZE];
  if (!ztbcreate(&database, message, (int)sizeof(message))) {
    printf("cannot create: %s\n", message);
    exit(EXIT_FAILURE);
  }
}

static void addElement(void* set, const char* label, const char* text) {
  void* record = NULL;
  MUST(c__ztbaddrecord(database, set, &label, &record));
  MUST(c__ztbsetelemtext(database, record, text));
  MUST(c__ztbfreesymboliterator(database, record));
}

static void addDistance(void* distance, const char* from, const char* to, double miles) {
  const char* keys[] = {from, to};
  void* record = NULL;
  MUST(c__ztbmergerecord(database, distance, keys, &record));
  MUST(c__ztbsetlevel(database, record, miles));
  MUST(c__ztbfreesymboliterator(database, record));
}

static void build(void) {
  void* plants = NULL;
  void* markets = NULL;
  void* distance = NULL;
  void* shipped = NULL;
  void* alias = NULL;
  void* domains[2];
  int keys[2];
  const double values[] = {50.0, 0.0, 0.0, 600.0, 1.0};

  MUST(c__ztbaddsymbol(database, "plants", 1, ZTB_SET, 0, "canning plants", &plants));
  MUST(c__ztbaddsymbol(database, "markets", 1, ZTB_SET, 0, "where it is sold", &markets));
  addElement(plants, "north", "the old plant");
  addElement(plants, "south", "the new plant");
  addElement(markets, "harbour", "");
  addElement(markets, "hill", "served on Mondays");
  addElement(markets, "lake", "");
  MUST(c__ztbaddsymbol(database, "sources", 1, ZTB_ALIAS, 0, "", &alias));

  domains[0] = plants;
  domains[1] = markets;
  MUST(c__ztbaddsymbolx(database, "distance", 2, ZTB_PARAMETER, 0, "in miles", domains, NULL,
                        &distance));
  if (distance == NULL) {
    stop("domains of distance");
  }
  addDistance(distance, "south", "hill", 14.0);
  addDistance(distance, "north", "harbour", 25.5);
  addDistance(distance, "north", "lake", 18.0);
  addDistance(distance, "south", "harbour", 7.25);
  addDistance(distance, "north", "hill", 9.0);

  MUST(c__ztbaddsymbol(database, "shipped", 2, ZTB_VARIABLE, 3, "in cases", &shipped));
  MUST(c__ztbfinduel(database, "SOUTH", &keys[0]));
  MUST(c__ztbfinduel(database, "hill", &keys[1]));
  MUST(c__ztbmergerecordint(database, shipped, keys, 1, 0, NULL, 1, values));
}

static void printDistances(const char* from, const char* to) {
  const char* keys[] = {from, to};
  void* distance = NULL;
  void* record = NULL;
  MUST(c__ztbfindsymbol(database, "distance", &distance));
  if (!c__ztbfindfirstrecordslice(database, distance, keys, &record)) {
    stop("slice");
  }
  do {
    char plant[ZTB_TEXT_BUFFER_SIZE];
    char market[ZTB_TEXT_BUFFER_SIZE];
    char* labels[] = {plant, market};
    double miles = 0.0;
    MUST(c__ztbgetkeys(database, record, 2, labels));
    MUST(c__ztbgetlevel(database, record, &miles));
    printf("  %-8s %-8s %6.2f\n", plant, market, miles);
  } while (c__ztbrecordmovenext(database, record));
  MUST(c__ztbfreesymboliterator(database, record));
}

static void printElementsBackwards(const char* name) {
  void* set = NULL;
  void* record = NULL;
  MUST(c__ztbfindsymbol(database, name, &set));
  MUST(c__ztbfindlastrecord(database, set, &record));
  do {
    char label[ZTB_TEXT_BUFFER_SIZE];
    char text[ZTB_TEXT_BUFFER_SIZE];
    MUST(c__ztbgetkey(database, record, 0, label));
    MUST(c__ztbgetelemtext(database, record, text));
    printf("  %-8s \"%s\"\n", label, text);
  } while (c__ztbrecordmoveprev(database, record));
  MUST(c__ztbfreesymboliterator(database, record));
}

static void printShipment(void) {
  const char* keys[] = {"south", "hill"};
  void* shipped = NULL;
  void* record = NULL;
  int numbers[2];
  double values[5];
  MUST(c__ztbfindsymbol(database, "shipped", &shipped));
  MUST(c__ztbfindrecord(database, shipped, keys, &record));
  MUST(c__ztbgetrecordraw(database, record, 2, numbers, values));
  printf("  (%d,%d): %g %g %g %g %g\n", numbers[0], numbers[1], values[0], values[1], values[2],
         values[3], values[4]);
  MUST(c__ztbfreesymboliterator(database, record));
}

static void printFailure(const char* what, int result) {
  char text[ZTB_TEXT_BUFFER_SIZE];
  c__ztbgetlasterror(database, text);
  printf("  %s: %d, %s\n", what, result, text);
}

static void provokeFailures(void) {
  const char* known[] = {"north", "lake"};
  const char* unknown[] = {"north", "moon"};
  void* distance = NULL;
  void* handle = NULL;
  printFailure("find symbol", c__ztbfindsymbol(database, "weights", &handle));
  MUST(c__ztbfindsymbol(database, "distance", &distance));
  printFailure("add twice", c__ztbaddrecord(database, distance, known, &handle));
  printFailure("find record", c__ztbfindrecord(database, distance, unknown, &handle));
  printFailure("set of no dimension", c__ztbaddsymbol(database, "s", 0, ZTB_SET, 0, "", &handle));
}

static int info(int key) {
  int number = -1;
  MUST(c__ztbinfo(database, key, &number, NULL, NULL));
  return number;
}

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    printf("usage: shipments FILE\n");
    return EXIT_FAILURE;
  }
  checkInterface();
  create();
  build();
  printf("all distances:\n");
  printDistances(" ", " ");
  printf("to the hill:\n");
  printDistances(" ", "hill");
  printf("shipped:\n");
  printShipment();
  printf("failures:\n");
  provokeFailures();

  MUST(c__ztbwriterxf(database, arguments[1], 0));
  MUST(ztbfree(&database));

  create();
  MUST(c__ztbinitfromrxf(database, arguments[1]));
  printf("read back: %d symbols, %d with aliases, %d labels, from a file: %d\n",
         info(ZTB_INFO_SYMBOL_COUNT), info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS),
         info(ZTB_INFO_UEL_COUNT), info(ZTB_INFO_FILE_BACKED));
  printf("sources:\n");
  printElementsBackwards("sources");
  printf("from the north:\n");
  printDistances("north", " ");
  printf("shipped:\n");
  printShipment();
  {
    void* distance = NULL;
    MUST(c__ztbfindsymbol(database, "distance", &distance));
    addDistance(distance, "south", "lake", 21.0);
  }
  MUST(c__ztbwriterxf(database, arguments[1], 0));
  printf("written over its source, from a file: %d\n", info(ZTB_INFO_FILE_BACKED));
  printf("from the south:\n");
  printDistances("south", " ");
  MUST(ztbfree(&database));
  return EXIT_SUCCESS;
}
