// Makes a new database the mirror of an exchange file: texts, labels, symbols and domains, without
// records.
#ifndef ZTB_EXCHANGE_RXF_LOADER_H_
#define ZTB_EXCHANGE_RXF_LOADER_H_

#include <string>

#include "core/ztb.h"

namespace ztb {

class RxfLoader {
 public:
  explicit RxfLoader(ZTB& database) : db_(database) {}

  // Steps of the load, in the order in which they run. Each returns 0 with the text in the
  // database's last error when it fails; what was taken in up to then stays.
  int open(const std::string& fileName);
  int mapSpecialValues();
  void loadTexts();
  int loadLabels();
  void makeSymbols();
  void resolveDomains();

 private:
  void makeSymbol(int number);
  AbstractZTBSymbol* aliasTargetOf(int number);
  void resolveDomainsOf(AbstractZTBSymbol& symbol, int number);
  AbstractZTBSymbol* domainNamed(const char* name);

  ZTB& db_;
};

}  // namespace ztb

#endif  // ZTB_EXCHANGE_RXF_LOADER_H_
