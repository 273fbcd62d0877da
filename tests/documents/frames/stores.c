#include <stddef.h>
#include <ztb/ztb.h>

int main(void) {
  char text[ZTB_TEXT_BUFFER_SIZE];
  ztbRec* db = NULL;
  void* symbol = NULL;
  int store = 0;
  if (!ztbcreate(&db, text, sizeof text)) return 1;
  // FRAGMENTS
  if (!c__ztbsymbolinfo(db, symbol, ZTB_SYMBOL_INFO_STORAGE, &store, NULL, NULL)) return 2;
  return store != ZTB_STORAGE_TRIE || !ztbfree(&db);
}
