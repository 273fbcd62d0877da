// The built file as the loader sees it: which names it exports, which of them are one entry point,
// what it is linked against and where its peers are looked for.
#include <elf.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/library.h"

namespace ztbtest {
namespace {

using Names = std::set<std::string>;

// The dynamic section of a 64-bit ELF file.
class ElfFile {
 public:
  explicit ElfFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    bytes_.resize(static_cast<size_t>(std::max<std::streamoff>(in.tellg(), 0)));
    in.seekg(0);
    in.read(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
    header_ = read<Elf64_Ehdr>(0);
    if (std::memcmp(header_.e_ident, ELFMAG, SELFMAG) != 0) {
      throw std::runtime_error(path + " is not an ELF file");
    }
  }

  Names exportedNames() const {
    const Elf64_Shdr table = section(SHT_DYNSYM);
    Names names;
    for (size_t i = 0; i < table.sh_size / sizeof(Elf64_Sym); ++i) {
      const auto symbol = read<Elf64_Sym>(table.sh_offset + i * sizeof(Elf64_Sym));
      const bool local = ELF64_ST_BIND(symbol.st_info) == STB_LOCAL;
      if (!local && symbol.st_shndx != SHN_UNDEF) {
        names.insert(text(table.sh_link, symbol.st_name));
      }
    }
    return names;
  }

  // The texts of all entries of the dynamic section with a tag.
  Names dynamicTexts(Elf64_Sxword tag) const {
    const Elf64_Shdr table = section(SHT_DYNAMIC);
    Names texts;
    for (size_t i = 0; i < table.sh_size / sizeof(Elf64_Dyn); ++i) {
      const auto entry = read<Elf64_Dyn>(table.sh_offset + i * sizeof(Elf64_Dyn));
      if (entry.d_tag == tag) {
        texts.insert(text(table.sh_link, entry.d_un.d_val));
      }
    }
    return texts;
  }

 private:
  template <typename T>
  T read(size_t offset) const {
    if (offset + sizeof(T) > bytes_.size()) {
      throw std::runtime_error("the file is cut short");
    }
    T value;
    std::memcpy(&value, bytes_.data() + offset, sizeof(T));
    return value;
  }

  Elf64_Shdr sectionAt(size_t i) const {
    return read<Elf64_Shdr>(header_.e_shoff + i * header_.e_shentsize);
  }

  Elf64_Shdr section(Elf64_Word type) const {
    for (size_t i = 0; i < header_.e_shnum; ++i) {
      const Elf64_Shdr candidate = sectionAt(i);
      if (candidate.sh_type == type) {
        return candidate;
      }
    }
    throw std::runtime_error("the file lacks a section");
  }

  std::string text(size_t table, size_t offset) const {
    return bytes_.data() + sectionAt(table).sh_offset + offset;
  }

  std::vector<char> bytes_;
  Elf64_Ehdr header_{};
};

Names expectedNames() {
  return {
#define ZTB_TEST_NAME(name) #name,
      ZTB_TEST_EXPORTED_NAMES(ZTB_TEST_NAME)
#undef ZTB_TEST_NAME
  };
}

Names without(const Names& all, const Names& some) {
  Names rest;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(),
                      std::inserter(rest, rest.end()));
  return rest;
}

bool isExportedName(const std::string& word) {
  for (const char* prefix : {"c__", "d__", "n__", "x", "ztb"}) {
    if (word.rfind(prefix, 0) == 0) {
      return true;
    }
  }
  return false;
}

// A C text without its comments.
std::string withoutComments(std::string text) {
  for (size_t begin = text.find("/*"); begin != std::string::npos; begin = text.find("/*", begin)) {
    text.erase(begin, text.find("*/", begin) + 2 - begin);
  }
  return text;
}

// The functions that the public header declares: the names before opening parentheses.
Names declaredNames() {
  std::ifstream in(ZTB_PUBLIC_HEADER);
  const std::string header = withoutComments({std::istreambuf_iterator<char>(in), {}});
  Names names;
  std::string word;
  for (const char c : header) {
    if (c == '(' && isExportedName(word)) {
      names.insert(word);
    }
    const bool inWord = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
    word = inWord ? word + c : std::string();
  }
  return names;
}

TEST(BuiltLibrary, exportsExactlyTheNamesOfTheInterface) {
  const Names exported = ElfFile(libraryPath()).exportedNames();
  EXPECT_EQ(Names{}, without(exported, expectedNames())) << "exported in excess";
  EXPECT_EQ(Names{}, without(expectedNames(), exported)) << "not exported";
}

TEST(BuiltLibrary, exportsExactlyTheNamesOfThePublicHeader) {
  const Names definedInTheHeader = {"ztbErrorKind",     "ztbHoldValues",    "ztbReadRecords",
                                    "ztbRecordChanges", "ztbReleaseValues", "ztbValuesInPlace"};
  EXPECT_EQ(definedInTheHeader, without(declaredNames(), expectedNames())) << "declared in excess";
  EXPECT_EQ(Names{}, without(expectedNames(), declaredNames())) << "not declared";
}

TEST(BuiltLibrary, isLinkedAgainstTheStandardLibrariesOnly) {
  const Names standard{"libstdc++", "libc++",  "libc++abi",       "libm",       "libgcc_s",
                       "libc",      "libdl",   "ld-linux-x86-64", "libpthread", "libasan",
                       "libubsan",  "libtsan", "libclang_rt"};
  for (const std::string& library : ElfFile(libraryPath()).dynamicTexts(DT_NEEDED)) {
    EXPECT_EQ(1U, standard.count(library.substr(0, library.find_first_of(".")))) << library;
  }
}

TEST(BuiltLibrary, looksForItsPeersBesideItself) {
  EXPECT_EQ((Names{"$ORIGIN"}), ElfFile(libraryPath()).dynamicTexts(DT_RUNPATH));
}

TEST(BuiltLibrary, longerNamesOfCreationAreTheSameEntryPoints) {
  const auto same = [](const char* one, const char* other) {
    EXPECT_NE(nullptr, lib().address(one)) << one;
    EXPECT_EQ(lib().address(one), lib().address(other)) << one << ' ' << other;
  };
  same("xcreate", "ztbxcreate");
  same("xcreated", "ztbxcreated");
  same("xfree", "ztbxfree");
  same("d__xcreated", "d__ztbxcreated");
  same("d__xapiversion", "d__ztbxapiversion");
  same("d__xcheck", "d__ztbxcheck");
}

TEST(BuiltLibrary, namesWithAMessageAreEntryPointsOfTheirOwn) {
  EXPECT_NE(lib().address("xcreate"), lib().address("ztbcreate"));
  EXPECT_NE(lib().address("xfree"), lib().address("ztbfree"));
  EXPECT_NE(lib().address("d__xcreated"), lib().address("d__ztbcreated"));
}

TEST(BuiltLibrary, hidesThePlainOperations) {
  for (const char* name : {"ztbCreate", "ztbCreateD", "ztbFree", "ztbFindSymbol"}) {
    EXPECT_EQ(nullptr, lib().address(name)) << name;
  }
}

}  // namespace
}  // namespace ztbtest
