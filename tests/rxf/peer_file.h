// The built exchange-file library, opened at run time and called by its exported names only, with
// one C++ function for each operation.
#ifndef ZTB_TESTS_RXF_PEER_FILE_H_
#define ZTB_TESTS_RXF_PEER_FILE_H_

#include <string>
#include <vector>

namespace rxftest {

// Address of an exported name; the test program ends when there is none.
void* exportedAddress(const char* name);

template <typename Function>
Function* exported(const char* name) {
  return reinterpret_cast<Function*>(exportedAddress(name));
}

class PeerFile {
 public:
  PeerFile();
  PeerFile(const PeerFile&) = delete;
  PeerFile& operator=(const PeerFile&) = delete;
  ~PeerFile();

  void* handle() { return rxf_; }
  void free();

  // Result: the error number.
  int openRead(const std::string& fileName);
  int openWrite(const std::string& fileName, const std::string& producer = "");
  int close();

  int errorCount();
  int takeLastError();
  void errorText(int number, char* text);
  // The text of an error number.
  std::string errorText(int number);
  // Texts of all pending errors, the latest first.
  std::vector<std::string> drainErrors();

  void specialValues(double* values);
  bool setSpecialValues(const double* values);
  bool setReadSpecialValues(const double* values);

  bool systemInfo(int* symbolCount, int* labelCount);
  bool symbolInfo(int number, char* name, int* dim, int* type);
  bool symbolInfoX(int number, int* recordCount, int* userInfo, char* text);
  int symbolDomain(int number, char** names);
  int findSymbol(const char* name);
  bool elementText(int number, char* text);
  int labelCount();
  bool label(int number, char* label);

  int startReading(int number, bool& started);
  bool read(int* keys, double* values, int* firstChanged);
  bool finishReading();
  int startBlocks(int number, bool& started);
  int readBlock(int* keys, double* values, int room);

  void storeDomainSets(bool on);
  bool startLabels();
  bool addLabel(const char* label);
  bool finishLabels();
  bool addAlias(const char* alias, const char* target);
  int addText(const char* text);
  bool startWriting(const char* name, const char* text, int dim, int type, int userInfo);
  bool write(const int* keys, const double* values);
  bool finishWriting();
  bool setDomain(const char* const* names);
  bool setDomainNames(int number, const char* const* names);

 private:
  void* rxf_ = nullptr;
};

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_PEER_FILE_H_
