// C++20 wrapper of ztb/formats.h: tables and databases in the files of other programs. Programs
// that use it link libztbformats.so.
//
//   ztb::Formats({{"from", "plan.xlsx#Prices"}, {"parameter",
//   "price(food)"}}).importInto(database); ztb::Formats({{"all", ""}, {"to",
//   "plan.db"}}).exportFrom(database);
//
// Options are those of ztb import and ztb export, without hyphens, in their order. What fails is
// thrown as ztb::Error; the problems of an input stand in front of its text, a line each.
#ifndef ZTB_FORMATS_HPP_
#define ZTB_FORMATS_HPP_

#include <ztb/formats.h>

#include <initializer_list>
#include <new>
#include <string>
#include <utility>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/z_string.hpp>
#include <ztb/ztb.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// A job, for one run.
class Formats {
 public:
  explicit Formats(std::initializer_list<std::pair<const char*, std::string>> options = {}) {
    if (ztbFormatsCreate(&job_) == 0) throw std::bad_alloc();
    try {
      for (const auto& [name, value] : options) option(name, value);
    } catch (...) {
      ztbFormatsFree(&job_);
      throw;
    }
  }
  Formats(const Formats&) = delete;
  Formats& operator=(const Formats&) = delete;
  ~Formats() { ztbFormatsFree(&job_); }

  void option(const ZString& name, const ZString& value = "") {
    require(ztbFormatsOption(job_, name.c_str(), value.c_str()), "ztbFormatsOption");
  }

  // Makes an exchange file, or adds symbols to a database, which keeps what it has when it fails.
  void importTo(const ZString& path) {
    require(ztbFormatsImport(job_, path.c_str()), "ztbFormatsImport");
  }
  void importInto(Database& database) {
    require(ztbFormatsImportInto(job_, database.handle()), "ztbFormatsImportInto");
  }

  // Writes from an exchange file, or from a database.
  void exportFrom(const ZString& path) {
    require(ztbFormatsExport(job_, path.c_str()), "ztbFormatsExport");
  }
  void exportFrom(const Database& database) {
    require(ztbFormatsExportDatabase(job_, database.handle()), "ztbFormatsExportDatabase");
  }

  // Each makes an exchange file of others, which are options "file": see ztbFormatsMerge.
  void mergeTo(const ZString& path) {
    require(ztbFormatsMerge(job_, path.c_str()), "ztbFormatsMerge");
  }
  void concatTo(const ZString& path) {
    require(ztbFormatsConcat(job_, path.c_str()), "ztbFormatsConcat");
  }
  void renameTo(const ZString& path) {
    require(ztbFormatsRename(job_, path.c_str()), "ztbFormatsRename");
  }
  void whereTo(const ZString& path) {
    require(ztbFormatsWhere(job_, path.c_str()), "ztbFormatsWhere");
  }
  void aggregateTo(const ZString& path) {
    require(ztbFormatsAggregate(job_, path.c_str()), "ztbFormatsAggregate");
  }

  // What is worth a word although nothing failed, a line each.
  [[nodiscard]] std::string warnings() const { return ztbFormatsWarnings(job_); }
  // What the run counted, a ZTB_FORMATS_ code.
  [[nodiscard]] long long counted(int what) const { return ztbFormatsCounted(job_, what); }

 private:
  void require(int result, const char* operation) const {
    if (result != 0) return;
    throw Error(operation, std::string(ztbFormatsProblems(job_)) + ztbFormatsMessage(job_),
                static_cast<ErrorKind>(ztbFormatsErrorKind(job_)));
  }

  ztbFormatsJob* job_ = nullptr;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_FORMATS_HPP_
