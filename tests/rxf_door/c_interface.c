/* ztb/rxf.h from C, and what its functions do with arguments that make no sense. */
#include "tests/rxf_door/c_interface.h"

#include <stdio.h>
#include <string.h>
#include <ztb/rxf.h>

double sumFromC(const char* path, const char* symbol, char* message, int messageSize) {
  ztbRxfFile* file = NULL;
  ztbRxfRecords* records = NULL;
  double sum = 0;
  int count = 0;
  if (!ztbRxfOpen(&file, path, message, messageSize)) return -1;
  if (!ztbRxfRecordsOpen(&records, file, ztbRxfFindSymbol(file, symbol), message, messageSize)) {
    ztbRxfClose(&file);
    return -1;
  }
  while ((count = ztbRxfNextBlock(records)) > 0) {
    const int* keys = ztbRxfKeys(records, 0);
    const double* values = ztbRxfValues(records, 0);
    int i;
    for (i = 0; i < count; ++i) sum += keys[i] * values[i];
  }
  snprintf(message, (size_t)messageSize, "%s", ztbRxfMessage(records));
  ztbRxfRecordsClose(&records);
  ztbRxfClose(&file);
  return count < 0 || records != NULL || file != NULL ? -1 : sum;
}
