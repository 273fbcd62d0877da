// The parts of a workbook file, unpacked, and XML that is read from them.
#ifndef ZTB_FORMATS_EXCEL_XLSX_FILE_H_
#define ZTB_FORMATS_EXCEL_XLSX_FILE_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace formats {

// The attributes of an element; names come without the prefix of their namespace.
class XmlAttributes {
 public:
  explicit XmlAttributes(const char** pairs) : pairs_(pairs) {}
  // Empty for an attribute that there is not.
  [[nodiscard]] std::string_view operator[](std::string_view name) const;

 private:
  const char** pairs_;
};

// What is told of a document as it is read. Names come without the prefix of their namespace.
struct XmlEvents {
  std::function<void(std::string_view name, const XmlAttributes& attributes)> begin;
  std::function<void(std::string_view name)> end;
  std::function<void(std::string_view text)> text;
};

// A part that is read from front to back, with its XML handed on as it comes.
class XlsxPart {
 public:
  virtual ~XlsxPart() = default;
  // Reads on and hands over what is there; false at the end. Throws Failure for what is damaged, no
  // XML, or grows beyond reason when it is unpacked.
  virtual bool advance() = 0;
  // What part of it was read, from 0 to 1, as the file tells its size.
  [[nodiscard]] virtual double share() const = 0;
};

class XlsxFile {
 public:
  // Throws Failure if the file is no zip file.
  explicit XlsxFile(const std::string& path);
  XlsxFile(const XlsxFile&) = delete;
  XlsxFile& operator=(const XlsxFile&) = delete;
  ~XlsxFile();

  [[nodiscard]] bool has(const std::string& part) const;
  // Opens a part. One at a time is open.
  std::unique_ptr<XlsxPart> open(const std::string& part, XmlEvents events);
  // Reads a part whole; nothing happens where there is none.
  void read(const std::string& part, XmlEvents events);
  // Whether bytes stand somewhere in a part.
  bool contains(const std::string& part, std::string_view bytes);

  [[nodiscard]] const std::string& path() const { return path_; }
  [[noreturn]] void fail(const std::string& reason) const;

 private:
  std::string path_;
  void* zip_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_EXCEL_XLSX_FILE_H_
