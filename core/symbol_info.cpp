// Questions to a symbol, by key.

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "core/text.h"

namespace ztb {
namespace {

int countRecords(ZTB& db, AbstractZTBSymbol& symbol, int& answer) {
  if (isUniverse(db, &symbol)) {
    answer = db.uels.size() - 1;
    return success;
  }
  if (symbol.type == ZTB_ALIAS) {
    answer = 0;
    return success;
  }
  if (!db.ensureLoaded(symbol)) {
    return failure;
  }
  answer = symbol.recordCount();
  return success;
}

}  // namespace

int ztbSymbolInfo(ztbRec* handle, void* sym, int infoKey, int* ival, double* /*dval*/, char* sval) {
  return operation(handle, "ztbSymbolInfo", [&](ZTB& db) {
    int unaskedNumber = 0;
    char unaskedText[ZTB_TEXT_BUFFER_SIZE];
    int& number = ival == nullptr ? unaskedNumber : *ival;
    char* text = sval == nullptr ? unaskedText : sval;
    number = 0;
    text[0] = '\0';
    AbstractZTBSymbol* symbol = symbolOf(sym);
    if (symbol == nullptr) {
      return failNoSymbol(db);
    }
    switch (infoKey) {
      case ZTB_SYMBOL_INFO_NAME:
        copyText(text, symbol->name.c_str());
        return success;
      case ZTB_SYMBOL_INFO_DIMENSION:
        number = symbol->dim;
        return success;
      case ZTB_SYMBOL_INFO_TYPE:
        number = symbol->type;
        return success;
      case ZTB_SYMBOL_INFO_RECORD_COUNT:
        return countRecords(db, *symbol, number);
      case ZTB_SYMBOL_INFO_USER_INFO:
        number = symbol->userInfo;
        return success;
      case ZTB_SYMBOL_INFO_TEXT:
        copyText(text, symbol->text.c_str());
        return success;
      case ZTB_SYMBOL_INFO_NUMBER:
        number = symbol->symbolNumber;
        return success;
      case ZTB_SYMBOL_INFO_WRITE_RECORDED:
        number = symbol->writeRecorded ? 1 : 0;
        return success;
      case ZTB_SYMBOL_INFO_STORAGE:
        number = static_cast<int>(symbol->storageKind());
        return success;
      default:
        return db.fail("No valid infoKey, saw %d", infoKey);
    }
  });
}

}  // namespace ztb
