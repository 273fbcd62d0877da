#include "formats/excel/xlsx_file.h"

#include <expat.h>
#include <fmt/format.h>
#include <minizip/unzip.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>
#include <vector>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

constexpr std::size_t partBufferSize = std::size_t{1} << 16U;

// Sheets shrink to a tenth or so; what grows by more than this is made to fill memory.
constexpr unsigned long long mostGrowth = 400;
constexpr unsigned long long alwaysAllowed = 1ULL << 24U;

std::string_view localName(const char* name) {
  const std::string_view whole(name);
  return whole.substr(whole.rfind(':') + 1);
}

// The bytes of a part.
class PartBytes {
 public:
  PartBytes(const XlsxFile& file, void* zip, const std::string& part)
      : file_(file), zip_(zip), part_(part), buffer_(partBufferSize) {
    unz_file_info64 info{};
    if (unzLocateFile(zip_, part.c_str(), 2) != UNZ_OK ||
        unzGetCurrentFileInfo64(zip_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
      file_.fail(fmt::format("has no part {}", part));
    }
    if ((info.flag & 1U) != 0) file_.fail("is encrypted");
    size_ = info.uncompressed_size;
    limit_ = std::max(alwaysAllowed, mostGrowth * info.compressed_size);
    if (unzOpenCurrentFile(zip_) != UNZ_OK) {
      file_.fail(fmt::format("part {} cannot be unpacked", part));
    }
  }
  PartBytes(const PartBytes&) = delete;
  PartBytes& operator=(const PartBytes&) = delete;
  ~PartBytes() { unzCloseCurrentFile(zip_); }

  // The next bytes; none at the end.
  std::string_view next() {
    const int count =
        unzReadCurrentFile(zip_, buffer_.data(), static_cast<unsigned>(partBufferSize));
    if (count < 0) file_.fail(fmt::format("part {} is damaged", part_));
    total_ += static_cast<unsigned long long>(count);
    if (total_ > limit_) {
      file_.fail(fmt::format("part {} grows to more than {} times its size when it is unpacked",
                             part_, mostGrowth));
    }
    if (count == 0 && unzCloseCurrentFile(zip_) == UNZ_CRCERROR) {
      file_.fail(fmt::format("part {} is damaged: its checksum is wrong", part_));
    }
    return {buffer_.data(), static_cast<std::size_t>(count)};
  }

  [[nodiscard]] double share() const {
    return size_ == 0 ? 0 : std::min(1.0, static_cast<double>(total_) / static_cast<double>(size_));
  }

 private:
  const XlsxFile& file_;
  void* zip_;
  std::string part_;
  std::vector<char> buffer_;
  unsigned long long size_ = 0;
  unsigned long long limit_ = 0;
  unsigned long long total_ = 0;
};

class XmlPart : public XlsxPart {
 public:
  XmlPart(const XlsxFile& file, void* zip, const std::string& part, XmlEvents events)
      : file_(file),
        part_(part),
        bytes_(file, zip, part),
        events_(std::move(events)),
        parser_(XML_ParserCreate(nullptr)) {
    if (parser_ == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, beginElement, endElement);
    XML_SetCharacterDataHandler(parser_, characters);
    XML_SetStartDoctypeDeclHandler(parser_, docType);
  }
  XmlPart(const XmlPart&) = delete;
  XmlPart& operator=(const XmlPart&) = delete;
  ~XmlPart() override { XML_ParserFree(parser_); }

  bool advance() override {
    const std::string_view bytes = bytes_.next();
    const XML_Status status = XML_Parse(parser_, bytes.data(), static_cast<int>(bytes.size()),
                                        bytes.empty() ? XML_TRUE : XML_FALSE);
    if (thrown_) std::rethrow_exception(thrown_);
    if (status != XML_STATUS_OK) {
      file_.fail(fmt::format("part {}, line {}: {}", part_, XML_GetCurrentLineNumber(parser_),
                             hasDocType_ ? "a document type, which no workbook has"
                                         : XML_ErrorString(XML_GetErrorCode(parser_))));
    }
    return !bytes.empty();
  }
  [[nodiscard]] double share() const override { return bytes_.share(); }

 private:
  // Runs `body`; an exception does not pass the parser, but ends it.
  template <typename Body>
  void guarded(const Body& body) {
    if (thrown_) return;
    try {
      body();
    } catch (...) {
      thrown_ = std::current_exception();
      XML_StopParser(parser_, XML_FALSE);
    }
  }

  static void XMLCALL beginElement(void* user, const char* name, const char** attributes) {
    auto* part = static_cast<XmlPart*>(user);
    part->guarded([&] {
      if (part->events_.begin) part->events_.begin(localName(name), XmlAttributes(attributes));
    });
  }
  static void XMLCALL endElement(void* user, const char* name) {
    auto* part = static_cast<XmlPart*>(user);
    part->guarded([&] {
      if (part->events_.end) part->events_.end(localName(name));
    });
  }
  static void XMLCALL characters(void* user, const char* text, int size) {
    auto* part = static_cast<XmlPart*>(user);
    part->guarded([&] {
      if (part->events_.text) part->events_.text({text, static_cast<std::size_t>(size)});
    });
  }
  static void XMLCALL docType(void* user, const char* /*name*/, const char* /*system*/,
                              const char* /*identity*/, int /*internal*/) {
    auto* part = static_cast<XmlPart*>(user);
    part->hasDocType_ = true;
    XML_StopParser(part->parser_, XML_FALSE);
  }

  const XlsxFile& file_;
  std::string part_;
  PartBytes bytes_;
  XmlEvents events_;
  XML_Parser parser_;
  bool hasDocType_ = false;
  std::exception_ptr thrown_;
};

}  // namespace

std::string_view XmlAttributes::operator[](std::string_view name) const {
  for (const char** pair = pairs_; *pair != nullptr; pair += 2) {
    if (localName(pair[0]) == name) return pair[1];
  }
  return {};
}

XlsxFile::XlsxFile(const std::string& path) : path_(path), zip_(unzOpen64(path.c_str())) {
  if (zip_ == nullptr) {
    if (posix::access(path.c_str(), R_OK) != 0)
      throw tool::systemFailure(path, "cannot be read", errno);
    fail("is no workbook: it cannot be opened as a zip file");
  }
}

XlsxFile::~XlsxFile() {
  unzClose(zip_);
}

bool XlsxFile::has(const std::string& part) const {
  return unzLocateFile(zip_, part.c_str(), 2) == UNZ_OK;
}

std::unique_ptr<XlsxPart> XlsxFile::open(const std::string& part, XmlEvents events) {
  return std::make_unique<XmlPart>(*this, zip_, part, std::move(events));
}

void XlsxFile::read(const std::string& part, XmlEvents events) {
  if (!has(part)) return;
  const std::unique_ptr<XlsxPart> opened = open(part, std::move(events));
  while (opened->advance()) {
  }
}

bool XlsxFile::contains(const std::string& part, std::string_view bytes) {
  PartBytes reader(*this, zip_, part);
  std::string window;
  for (std::string_view next = reader.next(); !next.empty(); next = reader.next()) {
    window += next;
    if (window.find(bytes) != std::string::npos) return true;
    window.erase(0, window.size() - std::min(window.size(), bytes.size() - 1));
  }
  return false;
}

void XlsxFile::fail(const std::string& reason) const {
  throw tool::Failure(fmt::format("{}: {}", path_, reason), ZTB_ERROR_DAMAGED_FILE);
}

}  // namespace formats
