/* A C99 client on <ztb/ztb.h>: makes a database, reads it, writes a file, opens it again.
 *
 *   client_c FILE.rxf
 */
#include <stdio.h>
#include <ztb/ztb.h>

static ztbRec* db = NULL;

static void addSet(const char* name, const char* const* labels, int count) {
  void* set = NULL;
  c__ztbaddsymbol(db, name, 1, ZTB_SET, 0, "", &set);
  for (int i = 0; i < count; ++i) {
    const char* keys[1] = {labels[i]};
    void* record = NULL;
    c__ztbaddrecord(db, set, keys, &record);
    c__ztbfreesymboliterator(db, record);
  }
}

static void addShipment(void* ship, const char* plant, const char* market, double amount) {
  const char* keys[2] = {plant, market};
  void* record = NULL;
  c__ztbaddrecord(db, ship, keys, &record);
  c__ztbsetlevel(db, record, amount);
  c__ztbfreesymboliterator(db, record);
}

static void build(void) {
  const char* plants[2] = {"seattle", "san-diego"};
  const char* markets[2] = {"new-york", "chicago"};
  void* domains[2] = {NULL, NULL};
  void* ship = NULL;
  addSet("plant", plants, 2);
  addSet("market", markets, 2);
  c__ztbfindsymbol(db, "plant", &domains[0]);
  c__ztbfindsymbol(db, "market", &domains[1]);
  c__ztbaddsymbolx(db, "ship", 2, ZTB_PARAMETER, 0, "Cases shipped", domains, NULL, &ship);
  addShipment(ship, "san-diego", "new-york", 275);
  addShipment(ship, "seattle", "chicago", 300);
  addShipment(ship, "seattle", "new-york", 50);
}

static void print(void) {
  char text[ZTB_TEXT_BUFFER_SIZE];
  char names[2][ZTB_TEXT_BUFFER_SIZE];
  char* keys[2] = {names[0], names[1]};
  const char* unknown[2] = {"nowhere", "chicago"};
  void* domains[2];
  void* ship = NULL;
  void* record = NULL;
  int count = 0;
  c__ztbinfo(db, ZTB_INFO_UEL_COUNT, &count, NULL, NULL);
  printf("labels %d\n", count);
  c__ztbfindsymbol(db, "SHIP", &ship);
  c__ztbsymbolinfo(db, ship, ZTB_SYMBOL_INFO_TEXT, NULL, NULL, text);
  printf("text %s\n", text);
  c__ztbgetdomain(db, ship, 2, domains, keys);
  printf("domain %s %s\n", keys[0], keys[1]);
  if (c__ztbfindfirstrecord(db, ship, &record) != 0) {
    do {
      double level = 0;
      c__ztbgetkeys(db, record, 2, keys);
      c__ztbgetlevel(db, record, &level);
      printf("%s %s %.0f\n", keys[0], keys[1], level);
    } while (c__ztbrecordmovenext(db, record) != 0);
    c__ztbfreesymboliterator(db, record);
  }
  c__ztbfindrecord(db, ship, unknown, &record);
  c__ztbgetlasterror(db, text);
  printf("error %s\n", text);
}

int main(int argc, char** argv) {
  char message[ZTB_TEXT_BUFFER_SIZE];
  if (argc != 2) {
    fprintf(stderr, "usage: client_c FILE.rxf\n");
    return 2;
  }
  if (ztbcreate(&db, message, (int)sizeof message) == 0) {
    fprintf(stderr, "%s\n", message);
    return 1;
  }
  build();
  print();
  printf("written %d\n", c__ztbwriterxf(db, argv[1], 0));
  ztbfree(&db);

  xcreate(&db);
  printf("opened %d\n", c__ztbinitfromrxf(db, argv[1]));
  print();
  ztbfree(&db);
  return 0;
}
