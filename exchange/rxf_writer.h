// Writes a whole database to an exchange file, through an object of its own, since the database's
// may still be reading.
//
// Numbers are not translated: labels are registered in the order of their numbers and texts are
// added in pool order, so the raw key and the text number of a record in memory are those in the
// file. Symbols still in the source cross from file to file one record at a time and stay unread.
#ifndef ZTB_EXCHANGE_RXF_WRITER_H_
#define ZTB_EXCHANGE_RXF_WRITER_H_

#include <array>
#include <string>

#include "core/ztb.h"

namespace ztb {

class RxfWriter {
 public:
  RxfWriter(ZTB& database, bool checkDomains) : db_(database), checkDomains_(checkDomains) {}
  RxfWriter(const RxfWriter&) = delete;
  RxfWriter& operator=(const RxfWriter&) = delete;
  // Ends the peer object. A file that was not closed is not published.
  ~RxfWriter();

  // Steps of the write, in the order in which they run. Each returns 0 with the text in the
  // database's last error when it fails.
  int create();
  int open(const std::string& fileName);
  int mapSpecialValues();
  void writeLabels();
  int writeSymbols();
  void writeTexts();
  // Closes the file. A failure when the peer counted errors that no refused domain caused; what the
  // file then holds is up to the peer.
  int finish();

 private:
  using Names = std::array<const char*, dmap::maxDimension>;

  int writeSymbol(AbstractZTBSymbol& symbol, int position);
  int writeAlias(const AbstractZTBSymbol& alias);
  bool setStrictDomain(const AbstractZTBSymbol& symbol);
  void recordDomainNames(const AbstractZTBSymbol& symbol, int position);
  int writeRecords(AbstractZTBSymbol& symbol);
  [[nodiscard]] double textNumberInFile(double level) const;
  // The failure by the errors of the peer, which told how many they were.
  int failPeerErrors(int told);

  ZTB& db_;
  bool checkDomains_;
  void* target_ = nullptr;
  int ignoredErrors_ = 0;
};

}  // namespace ztb

#endif  // ZTB_EXCHANGE_RXF_WRITER_H_
