// Making symbols and asking about them.

#include <algorithm>
#include <cctype>
#include <cstring>
#include <vector>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "core/text.h"

namespace ztb {
namespace {

bool isValidName(const char* name) {
  const std::size_t length = std::strlen(name);
  if (length < 1 || length > ZTB_MAX_NAME_LENGTH ||
      std::isalpha(static_cast<unsigned char>(name[0])) == 0) {
    return false;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (std::isalnum(static_cast<unsigned char>(name[i])) == 0 && name[i] != '_') {
      return false;
    }
  }
  return true;
}

// The checks that come before anything of a new symbol changes.
bool checkName(ZTB& db, const char* name, const char* text) {
  if (name == nullptr) {
    return db.fail("Name of symbol cannot be NULL") == success;
  }
  if (!isValidName(name)) {
    return db.fail("'%s' is not a valid name for a VELT symbol", name) == success;
  }
  if (text != nullptr && std::strlen(text) > ZTB_MAX_TEXT_LENGTH) {
    return db.fail("Explanatory text too long. Max length is %d", ZTB_MAX_TEXT_LENGTH) == success;
  }
  return true;
}

SymbolDescription describe(const char* name, int dim, int type, int userInfo, const char* text) {
  SymbolDescription description;
  description.name = name;
  description.dim = dim;
  description.type = type;
  description.userInfo = userInfo;
  description.text = text == nullptr ? "" : text;
  return description;
}

int findSymbol(ZTB& db, const char* name, bool resolveAlias, void** symPtr) {
  *symPtr = nullptr;
  if (name == nullptr) {
    return db.fail("Symbol name cannot be NULL");
  }
  AbstractZTBSymbol* symbol = db.lookUp(name);
  if (symbol == nullptr) {
    return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find symbol %s", name);
  }
  *symPtr = resolveAlias ? symbol->aliasTarget : symbol;
  return success;
}

int symbolByIndex(ZTB& db, int index, void** symPtr) {
  *symPtr = nullptr;
  if (index == -1) {
    *symPtr = db.universe.get();
    return success;
  }
  if (index < 0 || index >= db.symbols.orderedSize()) {
    return db.fail("Symbol index %d is out of range", index);
  }
  *symPtr = db.symbols.orderedAt(index);
  return success;
}

int symbolByNumber(ZTB& db, int number, void** symPtr) {
  *symPtr = nullptr;
  if (number == -1) {
    *symPtr = db.universe.get();
    return success;
  }
  if (number < 0 || number >= db.symbols.size()) {
    return db.fail("Symbol index %d is out of range", number);
  }
  *symPtr = db.symbols.atNumber(number);
  return success;
}

}  // namespace

int ztbAddSymbol(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                 const char* text, void** symPtr) {
  return operation(handle, "ztbAddSymbol", [&](ZTB& db) {
    if (dim == 0 && type == ZTB_SET) {
      return db.fail("Dimension must be greater than 0 for a Set");
    }
    if (dim < 0 || dim > ZTB_MAX_DIMENSION) {
      return db.fail("Dimension must be greater or equal 0 and smaller or equal %d (saw %d)",
                     ZTB_MAX_DIMENSION, dim);
    }
    if (!checkName(db, name, text)) {
      return failure;
    }
    *symPtr = nullptr;
    const std::vector<AbstractZTBSymbol*> domains(static_cast<std::size_t>(dim), db.universe.get());
    *symPtr = db.addSymbol(describe(name, dim, type, userInfo, text), domains.data(), nullptr);
    return *symPtr == nullptr ? failure : success;
  });
}

void* ztbAddSymbolPy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                     const char* text, int* status) {
  return handleFromPlain("ztbAddSymbolPy", status, [&](void** result) {
    return ztbAddSymbol(handle, name, dim, type, userInfo, text, result);
  });
}

int ztbAddSymbolX(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                  const char* text, void** domains, const char** domainNames, void** symPtr,
                  int nameCount) {
  return operation(handle, "ztbAddSymbolX", [&](ZTB& db) {
    if (!checkName(db, name, text)) {
      return failure;
    }
    *symPtr = nullptr;
    std::vector<AbstractZTBSymbol*> domainSymbols;
    domainSymbols.reserve(static_cast<std::size_t>(std::max(dim, 0)));
    for (int d = 0; d < dim; ++d) {
      domainSymbols.push_back(domains == nullptr ? nullptr : symbolOf(domains[d]));
    }
    std::vector<const char*> allNames;
    if (domainNames != nullptr && dim > nameCount) {
      allNames.assign(domainNames, domainNames + nameCount);
      allNames.resize(static_cast<std::size_t>(dim));
    }
    AbstractZTBSymbol* added =
        db.addSymbol(describe(name, dim, type, userInfo, text), domainSymbols.data(),
                     allNames.empty() ? domainNames : allNames.data());
    *symPtr = added;
    if (added != nullptr) {
      markWritten(db, *added);
    }
    return success;
  });
}

void* ztbAddSymbolXPy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                      const char* text, void** domains, const char** domainNames, int* status,
                      int nameCount) {
  return handleFromPlain("ztbAddSymbolXPy", status, [&](void** result) {
    return ztbAddSymbolX(handle, name, dim, type, userInfo, text, domains, domainNames, result,
                         nameCount);
  });
}

int ztbFindSymbol(ztbRec* handle, const char* name, void** symPtr) {
  return operation(handle, "ztbFindSymbol",
                   [&](ZTB& db) { return findSymbol(db, name, true, symPtr); });
}

void* ztbFindSymbolPy(ztbRec* handle, const char* name, int* status) {
  return handleFromPlain("ztbFindSymbolPy", status,
                         [&](void** result) { return ztbFindSymbol(handle, name, result); });
}

int ztbFindSymbolWithAlias(ztbRec* handle, const char* name, void** symPtr) {
  return operation(handle, "ztbFindSymbolWithAlias",
                   [&](ZTB& db) { return findSymbol(db, name, false, symPtr); });
}

void* ztbFindSymbolWithAliasPy(ztbRec* handle, const char* name, int* status) {
  return handleFromPlain("ztbFindSymbolWithAliasPy", status, [&](void** result) {
    return ztbFindSymbolWithAlias(handle, name, result);
  });
}

int ztbGetSymbolByIndex(ztbRec* handle, int index, void** symPtr) {
  return operation(handle, "ztbGetSymbolByIndex",
                   [&](ZTB& db) { return symbolByIndex(db, index, symPtr); });
}

void* ztbGetSymbolByIndexPy(ztbRec* handle, int index, int* status) {
  return handleOperation(handle, {"ztbGetSymbolByIndexPy", "ztbGetSymbolByIndex"}, status,
                         [&](ZTB& db, void** result) { return symbolByIndex(db, index, result); });
}

int ztbGetSymbolByNumber(ztbRec* handle, int number, void** symPtr) {
  return operation(handle, "ztbGetSymbolByNumber",
                   [&](ZTB& db) { return symbolByNumber(db, number, symPtr); });
}

void* ztbGetSymbolByNumberPy(ztbRec* handle, int number, int* status) {
  return handleOperation(
      handle, {"ztbGetSymbolByNumberPy", "ztbGetSymbolByNumber"}, status,
      [&](ZTB& db, void** result) { return symbolByNumber(db, number, result); });
}

int ztbClearSymbol(ztbRec* handle, void* sym) {
  return operation(handle, "ztbClearSymbol", [&](ZTB& db) {
    AbstractZTBSymbol* symbol = symbolOf(sym);
    if (symbol == nullptr) {
      return failNoSymbol(db);
    }
    if (isUniverse(db, symbol)) {
      return db.fail("Cannot clear the Universe");
    }
    symbol->unreadable.reset();
    if (symbol->loaded) {
      symbol->clearRecords();
    } else {
      symbol->loaded = true;
    }
    markWritten(db, *symbol);
    return success;
  });
}

int ztbSetUserInfo(ztbRec* handle, void* sym, int userInfo) {
  return unguardedOperation(handle, "ztbSetUserInfo", [&](ZTB& db) {
    AbstractZTBSymbol* symbol = symbolOf(sym);
    if (symbol == nullptr) {
      return failNoSymbol(db);
    }
    if (isUniverse(db, symbol)) {
      return db.fail("Cannot set UserInfo of Universe");
    }
    markWritten(db, *symbol);
    symbol->userInfo = userInfo;
    return success;
  });
}

int ztbGetDomain(ztbRec* handle, void* sym, int /*dim*/, void** domains, char** domainNames) {
  return unguardedOperation(handle, "ztbGetDomain", [&](ZTB& db) {
    AbstractZTBSymbol* symbol = symbolOf(sym);
    if (symbol == nullptr) {
      return failNoSymbol(db);
    }
    if (isUniverse(db, symbol)) {
      return db.fail("The Universe has no domain");
    }
    const AbstractZTBSymbol* source =
        isUniverse(db, symbol->aliasTarget) ? symbol : symbol->aliasTarget;
    for (int d = 0; d < symbol->dim; ++d) {
      const auto position = static_cast<std::size_t>(d);
      const bool known = position < source->domainSymbols.size();
      AbstractZTBSymbol* domain = known ? source->domainSymbols[position] : nullptr;
      if (domain != nullptr) {
        copyText(domainNames[d], domain->name.c_str());
        domains[d] = domain->aliasTarget;
      } else {
        copyText(domainNames[d], known ? source->domainNames[position].c_str() : "");
        domains[d] = nullptr;
      }
    }
    return success;
  });
}

int ztbSymbolDim(ztbRec* handle, void* sym, int* dim) {
  return unguardedOperation(handle, "ztbSymbolDim", [&](ZTB& db) {
    if (sym == nullptr) {
      return failNoSymbol(db);
    }
    *dim = symbolOf(sym)->dim;
    return success;
  });
}

int ztbSymbolType(ztbRec* handle, void* sym, int* type) {
  return unguardedOperation(handle, "ztbSymbolType", [&](ZTB& db) {
    if (sym == nullptr) {
      return failNoSymbol(db);
    }
    *type = symbolOf(sym)->type;
    return success;
  });
}

}  // namespace ztb
