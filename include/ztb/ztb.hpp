// C++20 wrapper of libztbcclib64.so: header only, on the exported c__ names alone.
//
//   ztb::Database diet = ztb::Database::open("diet.rxf");
//   ztb::Symbol price = diet["price"];
//   for (ztb::Record& record : price.records()) {
//     std::cout << record.key(0) << ' ' << record.level() << '\n';
//   }
//   price.merge("Milk").setLevel(11);
//   diet.write("diet.rxf");
//
// A failed operation throws ztb::Error with the library's text and a kind; "not found" is an empty
// optional, but for [], which throws. Names, labels and texts may be std::string_view.
// Nothing is cached and nothing allocated per record: a member costs its calls of the library.
// A Symbol is a plain value that refers to its Database, a Record owns its handle; both end before
// the Database does. A database is used by one thread at a time, for reading too; two databases may
// be used by two threads. ztb.h tells what holds for the process.
#ifndef ZTB_ZTB_HPP_
#define ZTB_ZTB_HPP_

#include <ztb/ztb.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/label_check.hpp>
#include <ztb/memory_limit.hpp>
#include <ztb/record.hpp>
#include <ztb/symbol.hpp>
#include <ztb/symbols.hpp>
#include <ztb/text.hpp>
#include <ztb/z_string.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// Five doubles, at the places ZTB_UNDEFINED to ZTB_EPSILON.
using SpecialValues = std::array<double, ZTB_SPECIAL_VALUE_COUNT>;

// The domain of a position of a new symbol: a one-dimensional set or alias of the same database, or
// the name of one; "*" is the universe. A name that no such set has, also a misspelt one, is kept
// as a name that checks nothing.
class DomainArgument {
 public:
  DomainArgument(const Symbol& set) : handle_(set.handle()) {}
  template <std::convertible_to<ZString> Name>
  DomainArgument(const Name& name) : name_(ZString(name).c_str()) {}
  // A name that is kept as such whether a set has it or not.
  [[nodiscard]] static DomainArgument nameAlone(const ZString& name) {
    DomainArgument domain(name.c_str());
    domain.isAlone_ = true;
    return domain;
  }

  [[nodiscard]] void* handle() const noexcept { return handle_; }
  [[nodiscard]] const char* name() const noexcept { return name_.c_str(); }
  [[nodiscard]] bool isNameAlone() const noexcept { return isAlone_; }

 private:
  void* handle_ = nullptr;
  std::string name_ = "*";
  bool isAlone_ = false;
};

using DomainArguments = std::span<const DomainArgument>;

// Owns a database. Movable; its symbols and records stay valid when it is moved.
class Database {
 public:
  // An empty database. The exchange-file library is looked for beside libztbcclib64.so and on the
  // loader's path, or in folder systemDirectory. A database without it is made all the same:
  // lastError() then says why, and only files cannot be opened or written.
  Database() {
    std::array<char, ZTB_TEXT_BUFFER_SIZE> message{};
    if (ztbcreate(&handle_, message.data(), static_cast<int>(message.size())) == 0) {
      throw Error("ztbCreate", message.data(), ErrorKind::outOfMemory);
    }
  }
  explicit Database(const ZString& systemDirectory) {
    std::array<char, ZTB_TEXT_BUFFER_SIZE> message{};
    ztbcreated(&handle_, systemDirectory.c_str(), message.data(), static_cast<int>(message.size()));
    if (handle_ == nullptr) {
      throw Error("ztbCreateD", "Error while creating object", ErrorKind::outOfMemory);
    }
  }
  Database(Database&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Database& operator=(Database&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { ztbfree(&handle_); }

  // The mirror of an RXF file: labels, texts, symbols and domains are read now, the records of each
  // symbol when they are first touched. The file stays open.
  [[nodiscard]] static Database open(const ZString& fileName) {
    Database database;
    database.openFile(fileName);
    return database;
  }
  // The same with a limit on memory. Only programs that use this one link librxfcclib64.so.
  [[nodiscard]] static Database open(const ZString& fileName, const OpenOptions& options) {
    Database database;
    database.openFile(fileName, options);
    return database;
  }
  // The same for a database that was just made; after a failure it can only be ended.
  void openFile(const ZString& fileName) {
    if (lastErrorKind() == ErrorKind::noLibrary) {
      detail::fail(own(), "ztbInitFromRXF");
    }
    detail::require(c__ztbinitfromrxf(own(), fileName.c_str()), own(), "ztbInitFromRXF");
  }
  // The limit of the thread is afterwards what it was.
  void openFile(const ZString& fileName, const OpenOptions& options) {
    if (options.maxMemory == 0) {
      openFile(fileName);
      return;
    }
    const detail::MemoryLimitScope limit(options.maxMemory);
    openFile(fileName);
    limit.requireTaken();
  }
  // Closes the file; with loadRemaining, what was not read yet is read first, else it is lost.
  void closeFile(bool loadRemaining) {
    detail::require(c__ztbcloserxf(own(), loadRemaining ? 1 : 0), own(), "ztbCloseRXF");
  }
  // Writes the whole database to an RXF file, which may be the one that it was opened from. With
  // checkDomains, records of symbols whose domains are sets are checked against them. On failure
  // the old file stays; only where the folder of the new one could not be brought to the disk,
  // which comes last and is told, the new one stands.
  void write(const ZString& fileName, bool checkDomains = false) {
    detail::require(c__ztbwriterxf(own(), fileName.c_str(), checkDomains ? 0 : 1), own(),
                    "ztbWriteRXF");
  }
  // Whether unread symbols come from a source.
  [[nodiscard]] bool fileBacked() const { return info(ZTB_INFO_FILE_BACKED) != 0; }

  // Labels are numbered from 1 to labelCount(), in the order in which they came.
  [[nodiscard]] int labelCount() const { return info(ZTB_INFO_UEL_COUNT); }
  // Number of a label, added if it is new; the only way in for the empty label, which a record does
  // not bring along. Throws for one that is refused: too long, blank, with a control character or
  // both kinds of quotes.
  int mergeLabel(const ZString& label) {
    return detail::mergeLabel(own(), "ztbMergeUel", label.c_str());
  }
  // Nothing if the database does not have the label; it never has a blank one. Throws for one that
  // no database can hold.
  [[nodiscard]] std::optional<int> findLabel(const ZString& label) const {
    const int number = detail::findLabel(own(), "ztbFindUel", label.c_str());
    return number == detail::newLabel ? std::nullopt : std::optional<int>(number);
  }
  [[nodiscard]] Text label(int number) const {
    Text text;
    detail::require(c__ztbgetuelbyindex(own(), number, text.buffer()), own(), "ztbGetUelByIndex");
    return text;
  }

  // All symbols, aliases included, count from 0 in the order in which they were made.
  [[nodiscard]] int symbolCount() const { return info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS); }
  [[nodiscard]] Symbol symbolAt(int position) const {
    void* handle = nullptr;
    detail::require(c__ztbgetsymbolbynumber(own(), position, &handle), own(),
                    "ztbGetSymbolByNumber");
    return {own(), handle};
  }
  // All of them, to be walked over, as often as wanted:
  //   for (ztb::Symbol symbol : database.symbols()) { ... symbol.name() ... }
  // Symbols that are added on the way are met too.
  [[nodiscard]] Symbols symbols() const { return Symbols(own()); }
  [[nodiscard]] Symbol universe() const { return symbolAt(-1); }
  // A symbol by name, case folded; "*" is the universe. An alias is resolved to its set. Throws if
  // there is none.
  [[nodiscard]] Symbol symbol(const ZString& name) const {
    void* handle = nullptr;
    detail::require(c__ztbfindsymbol(own(), name.c_str(), &handle), own(), "ztbFindSymbol");
    return {own(), handle};
  }
  [[nodiscard]] Symbol operator[](const ZString& name) const { return symbol(name); }
  // The same, but nothing if there is none.
  [[nodiscard]] std::optional<Symbol> findSymbol(const ZString& name) const {
    return find(c__ztbfindsymbol, name, "ztbFindSymbol");
  }
  // The same; an alias stays the alias.
  [[nodiscard]] std::optional<Symbol> findSymbolOrAlias(const ZString& name) const {
    return find(c__ztbfindsymbolwithalias, name, "ztbFindSymbolWithAlias");
  }

  // Adds a symbol, which is no alias, with a domain for each position; userInfo is the subtype of a
  // variable (0 to 9) or equation (0 to 6), which is looked at by addVariable and addEquation.
  // Names have 1 to 63 chars, a letter first, then letters, digits, underscores.
  Symbol addSymbol(const ZString& name, Type type, DomainArguments domains,
                   const ZString& text = "", int userInfo = 0);
  Symbol addSet(const ZString& name, std::initializer_list<DomainArgument> domains,
                const ZString& text = "") {
    return addSymbol(name, Type::set, domains, text);
  }
  Symbol addParameter(const ZString& name, std::initializer_list<DomainArgument> domains,
                      const ZString& text = "") {
    return addSymbol(name, Type::parameter, domains, text);
  }
  Symbol addVariable(const ZString& name, int subtype,
                     std::initializer_list<DomainArgument> domains, const ZString& text = "") {
    requireSubtype(name, "variable", subtype, 9);
    return addSymbol(name, Type::variable, domains, text, subtype);
  }
  Symbol addEquation(const ZString& name, int subtype,
                     std::initializer_list<DomainArgument> domains, const ZString& text = "") {
    requireSubtype(name, "equation", subtype, 6);
    return addSymbol(name, Type::equation, domains, text, subtype);
  }
  // Adds a second name for a set or for the universe, both of this database; for what an alias
  // stands for when one is given. Throws for anything else.
  Symbol addAlias(const ZString& name, const Symbol& target, const ZString& text = "");

  // Chooses the store of symbols that are made or opened from now on.
  void selectStore(Store store) {
    detail::require(c__ztbselectrecordstorage(own(), nullptr, static_cast<int>(store)), own(),
                    "ztbSelectRecordStorage");
  }
  [[nodiscard]] Store store() const { return static_cast<Store>(info(ZTB_INFO_RECORD_STORAGE)); }
  // Moves a symbol with its records to a store. The symbol given and all records of it are dead
  // afterwards; the result has lost its domains, and an alias stands for itself alone.
  [[nodiscard]] Symbol moveTo(const Symbol& symbol, Store store) {
    void* handle = symbol.handle();
    detail::require(c__ztbselectrecordstorage(own(), &handle, static_cast<int>(store)), own(),
                    "ztbSelectRecordStorage");
    return {own(), handle};
  }

  // The caller's spelling of the five special values, used in both directions from now on.
  void setSpecialValues(const SpecialValues& values) {
    c__ztbsetspecialvalues(own(), values.data());
  }
  [[nodiscard]] SpecialValues userSpecialValues() const {
    SpecialValues values{};
    c__ztbgetuserspecialvalues(own(), values.data());
    return values;
  }
  // The library's own five values.
  [[nodiscard]] SpecialValues specialValues() const {
    SpecialValues values{};
    c__ztbgetspecialvalues(own(), values.data());
    return values;
  }

  // Text of the latest failure; a success does not clear it.
  [[nodiscard]] Text lastError() const {
    Text text;
    c__ztbgetlasterror(own(), text.buffer());
    return text;
  }

  [[nodiscard]] ErrorKind lastErrorKind() const { return detail::kindOf(own()); }

  // The handle of the C interface; stays owned by this object.
  [[nodiscard]] ztbRec* handle() const { return own(); }

 private:
  [[nodiscard]] ztbRec* own() const {
    return detail::notMoved(handle_, "ztb::Database", "This database was");
  }
  // The set that a domain stands for; null for a name alone.
  [[nodiscard]] void* domainSet(const DomainArgument& domain) const {
    const std::string_view name = domain.name();
    if (domain.handle() != nullptr || domain.isNameAlone() || name.empty() || name == "*") {
      return domain.handle();
    }
    const std::optional<Symbol> found = findSymbolOrAlias(domain.name());
    const bool isSet = found && (found->type() == Type::set || found->type() == Type::alias);
    return isSet && found->dimension() == 1 ? found->handle() : nullptr;
  }
  static void requireSubtype(const ZString& name, const char* kind, int subtype, int largest) {
    if (subtype < 0 || subtype > largest) {
      throw Error("ztbAddSymbol", "Subtype " + std::to_string(subtype) + " of " + kind + " " +
                                      name.c_str() + " is outside [0," + std::to_string(largest) +
                                      "]");
    }
  }

  using Finder = int (*)(ztbRec*, const char*, void**);

  [[nodiscard]] int info(int key) const {
    int value = 0;
    detail::require(c__ztbinfo(own(), key, &value, nullptr, nullptr), own(), "ztbInfo");
    return value;
  }
  [[nodiscard]] std::optional<Symbol> find(Finder finder, const ZString& name,
                                           const char* operation) const {
    void* handle = nullptr;
    if (finder(own(), name.c_str(), &handle) == 0) {
      if (!detail::nothingFound(own())) {
        detail::fail(own(), operation);
      }
      return std::nullopt;
    }
    return Symbol(own(), handle);
  }

  // Throws what made addSymbol or addAlias fail; of a name that is taken it tells by what, since
  // names are one whatever the case of letters.
  [[noreturn]] void failAdding(const ZString& name, const char* operation) const {
    void* taken = nullptr;
    if (lastErrorKind() != ErrorKind::exists) {
      detail::fail(own(), operation);
    }
    const std::string text = lastError().str();
    if (c__ztbfindsymbolwithalias(own(), name.c_str(), &taken) == 0) {
      throw Error(operation, text, ErrorKind::exists);
    }
    const std::string other = Symbol(own(), taken).name().str();
    const bool folds = other != name.c_str();
    throw Error(operation,
                "The name " + std::string(name.c_str()) + " is that of symbol " + other +
                    " already" + (folds ? " (the case of letters does not matter)" : "") + ": " +
                    text,
                ErrorKind::exists);
  }

  ztbRec* handle_ = nullptr;
};

inline Symbol Database::addSymbol(const ZString& name, Type type, DomainArguments domains,
                                  const ZString& text, int userInfo) {
  const int dimension = static_cast<int>(domains.size());
  if (type < Type::set || type > Type::equation) {
    throw Error(
        "ztbAddSymbol",
        type == Type::alias
            ? "Symbol " + std::string(name.c_str()) +
                  " cannot be added as an alias without the set it stands for, addAlias does"
            : "Type " + std::to_string(static_cast<int>(type)) + " of symbol " + name.c_str() +
                  " is outside [0,3]");
  }
  void* handle = nullptr;
  if (dimension == 0 || dimension > ZTB_MAX_DIMENSION) {
    if (c__ztbaddsymbol(own(), name.c_str(), dimension, static_cast<int>(type), userInfo,
                        text.c_str(), &handle) == 0) {
      failAdding(name, "ztbAddSymbol");
    }
    return {own(), handle};
  }
  std::array<void*, ZTB_MAX_DIMENSION> handles{};
  std::array<const char*, ZTB_MAX_DIMENSION> names{};
  for (std::size_t position = 0; position < domains.size(); ++position) {
    handles[position] = domainSet(domains[position]);
    names[position] = domains[position].name();
  }
  const int result =
      c__ztbaddsymbolx(own(), name.c_str(), dimension, static_cast<int>(type), userInfo,
                       text.c_str(), handles.data(), names.data(), &handle);
  if (result == 0 || handle == nullptr) {
    failAdding(name, "ztbAddSymbolX");
  }
  return {own(), handle};
}

inline Symbol Database::addAlias(const ZString& name, const Symbol& target, const ZString& text) {
  constexpr const char* operation = "ztbAddSymbol";
  if (target.database() != own()) {
    throw Error(operation, "Symbol " + target.name().str() + " belongs to another database");
  }
  const Symbol set = target.unaliased();
  if (set.type() != Type::set) {
    throw Error(operation,
                "Symbol " + set.name().str() + " is no set, which alone an alias can stand for");
  }
  // The library wants the position of the target, which its number does not tell when it came from
  // a file. Any position that is not a set's stands for the universe.
  int position = symbolCount() - 1;
  while (position >= 0 && !(symbolAt(position) == set)) {
    --position;
  }
  void* handle = nullptr;
  if (c__ztbaddsymbol(own(), name.c_str(), set.dimension(), ZTB_ALIAS, position, text.c_str(),
                      &handle) == 0) {
    failAdding(name, operation);
  }
  return {own(), handle};
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_ZTB_HPP_
