#include "tests/rxf/peer_file.h"

#include <dlfcn.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace rxftest {

void* exportedAddress(const char* name) {
  static void* library = dlopen(RXF_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  void* address = library == nullptr ? nullptr : dlsym(library, name);
  if (address == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    std::abort();
  }
  return address;
}

PeerFile::PeerFile() {
  static auto* const function = exported<void(void**)>("XCreate");
  function(&rxf_);
}

PeerFile::~PeerFile() {
  free();
}

void PeerFile::free() {
  static auto* const function = exported<void(void**)>("XFree");
  function(&rxf_);
}

int PeerFile::openRead(const std::string& fileName) {
  static auto* const function = exported<int(void*, const char*, int*)>("C__rxfOpenRead");
  int error = -1;
  function(rxf_, fileName.c_str(), &error);
  return error;
}

int PeerFile::openWrite(const std::string& fileName, const std::string& producer) {
  static auto* const function =
      exported<int(void*, const char*, const char*, int*)>("C__rxfOpenWrite");
  int error = -1;
  function(rxf_, fileName.c_str(), producer.c_str(), &error);
  return error;
}

int PeerFile::close() {
  static auto* const function = exported<int(void*)>("C__rxfClose");
  return function(rxf_);
}

int PeerFile::errorCount() {
  static auto* const function = exported<int(void*)>("C__rxfErrorCount");
  return function(rxf_);
}

int PeerFile::takeLastError() {
  static auto* const function = exported<int(void*)>("C__rxfGetLastError");
  return function(rxf_);
}

void PeerFile::errorText(int number, char* text) {
  static auto* const function = exported<int(void*, int, char*)>("C__rxfErrorStr");
  function(rxf_, number, text);
}

std::string PeerFile::errorText(int number) {
  std::array<char, 256> text{};
  errorText(number, text.data());
  return text.data();
}

std::vector<std::string> PeerFile::drainErrors() {
  std::vector<std::string> texts;
  for (int number = takeLastError(); number != 0; number = takeLastError()) {
    texts.push_back(errorText(number));
  }
  return texts;
}

void PeerFile::specialValues(double* values) {
  static auto* const function = exported<int(void*, double*)>("C__rxfGetSpecialValues");
  function(rxf_, values);
}

bool PeerFile::setSpecialValues(const double* values) {
  static auto* const function = exported<int(void*, const double*)>("C__rxfSetSpecialValues");
  return function(rxf_, values) != 0;
}

bool PeerFile::setReadSpecialValues(const double* values) {
  static auto* const function = exported<int(void*, const double*)>("C__rxfSetReadSpecialValues");
  return function(rxf_, values) != 0;
}

bool PeerFile::systemInfo(int* symbolCount, int* labelCount) {
  static auto* const function = exported<int(void*, int*, int*)>("C__rxfSystemInfo");
  return function(rxf_, symbolCount, labelCount) != 0;
}

bool PeerFile::symbolInfo(int number, char* name, int* dim, int* type) {
  static auto* const function = exported<int(void*, int, char*, int*, int*)>("C__rxfSymbolInfo");
  return function(rxf_, number, name, dim, type) != 0;
}

bool PeerFile::symbolInfoX(int number, int* recordCount, int* userInfo, char* text) {
  static auto* const function = exported<int(void*, int, int*, int*, char*)>("C__rxfSymbolInfoX");
  return function(rxf_, number, recordCount, userInfo, text) != 0;
}

int PeerFile::symbolDomain(int number, char** names) {
  static auto* const function = exported<int(void*, int, char**)>("C__rxfSymbolGetDomainX");
  return function(rxf_, number, names);
}

int PeerFile::findSymbol(const char* name) {
  static auto* const function = exported<int(void*, const char*, int*)>("C__rxfFindSymbol");
  int number = -1;
  function(rxf_, name, &number);
  return number;
}

bool PeerFile::elementText(int number, char* text) {
  static auto* const function = exported<int(void*, int, char*, int*)>("C__rxfGetElemText");
  int node = -1;
  return function(rxf_, number, text, &node) != 0;
}

int PeerFile::labelCount() {
  static auto* const function = exported<int(void*, int*, int*)>("C__rxfUMUelInfo");
  int count = -1;
  int highMap = -1;
  function(rxf_, &count, &highMap);
  return count;
}

bool PeerFile::label(int number, char* label) {
  static auto* const function = exported<int(void*, int, char*, int*)>("C__rxfUMUelGet");
  int map = -1;
  return function(rxf_, number, label, &map) != 0;
}

int PeerFile::startReading(int number, bool& started) {
  static auto* const function = exported<int(void*, int, int*)>("C__rxfDataReadRawStart");
  int count = -1;
  started = function(rxf_, number, &count) != 0;
  return count;
}

bool PeerFile::read(int* keys, double* values, int* firstChanged) {
  static auto* const function = exported<int(void*, int*, double*, int*)>("C__rxfDataReadRaw");
  return function(rxf_, keys, values, firstChanged) != 0;
}

bool PeerFile::finishReading() {
  static auto* const function = exported<int(void*)>("C__rxfDataReadDone");
  return function(rxf_) != 0;
}

int PeerFile::startBlocks(int number, bool& started) {
  static auto* const function = exported<int(void*, int, int*)>("C__rxfDataReadBlockStart");
  int count = -1;
  started = function(rxf_, number, &count) != 0;
  return count;
}

int PeerFile::readBlock(int* keys, double* values, int room) {
  static auto* const function = exported<int(void*, int*, double*, int)>("C__rxfDataReadBlock");
  return function(rxf_, keys, values, room);
}

void PeerFile::storeDomainSets(bool on) {
  static auto* function = exported<void(void*, int)>("C__rxfStoreDomainSetsSet");
  function(rxf_, on ? 1 : 0);
}

bool PeerFile::startLabels() {
  static auto* const function = exported<int(void*)>("C__rxfUELRegisterRawStart");
  return function(rxf_) != 0;
}

bool PeerFile::addLabel(const char* label) {
  static auto* const function = exported<int(void*, const char*)>("C__rxfUELRegisterRaw");
  return function(rxf_, label) != 0;
}

bool PeerFile::finishLabels() {
  static auto* const function = exported<int(void*)>("C__rxfUELRegisterDone");
  return function(rxf_) != 0;
}

bool PeerFile::addAlias(const char* alias, const char* target) {
  static auto* const function = exported<int(void*, const char*, const char*)>("C__rxfAddAlias");
  return function(rxf_, alias, target) != 0;
}

int PeerFile::addText(const char* text) {
  static auto* const function = exported<int(void*, const char*, int*)>("C__rxfAddSetText");
  int number = -1;
  function(rxf_, text, &number);
  return number;
}

bool PeerFile::startWriting(const char* name, const char* text, int dim, int type, int userInfo) {
  static auto* const function =
      exported<int(void*, const char*, const char*, int, int, int)>("C__rxfDataWriteRawStart");
  return function(rxf_, name, text, dim, type, userInfo) != 0;
}

bool PeerFile::write(const int* keys, const double* values) {
  static auto* const function =
      exported<int(void*, const int*, const double*)>("C__rxfDataWriteRaw");
  return function(rxf_, keys, values) != 0;
}

bool PeerFile::finishWriting() {
  static auto* const function = exported<int(void*)>("C__rxfDataWriteDone");
  return function(rxf_) != 0;
}

bool PeerFile::setDomain(const char* const* names) {
  static auto* const function = exported<int(void*, const char**)>("C__rxfSymbolSetDomain");
  return function(rxf_, const_cast<const char**>(names)) != 0;
}

bool PeerFile::setDomainNames(int number, const char* const* names) {
  static auto* const function = exported<int(void*, int, const char**)>("C__rxfSymbolSetDomainX");
  return function(rxf_, number, const_cast<const char**>(names)) != 0;
}

}  // namespace rxftest
