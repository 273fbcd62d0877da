// A database handle shared by the Python objects that refer to it, and the rule by which threads
// take turns with it.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_CONNECTION_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_CONNECTION_H_

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <unordered_set>
#include <utility>
#include <ztb/ztb.hpp>

#include "bindings/python/native/turn_lock.h"

namespace python {

class Use;

// Owns a database. Symbols keep it alive; after close() every use fails with ztb::Error instead of
// reaching into freed memory.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  explicit Connection(ztb::Database database) : database_(std::move(database)) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() = default;

  void close() noexcept { database_.reset(); }
  [[nodiscard]] bool closed() const noexcept { return !database_; }

  // The database, and its handle of the C interface. Throws when it is closed.
  [[nodiscard]] ztb::Database& database();
  [[nodiscard]] ztbRec* handle() { return database().handle(); }

  // Throws unless `result`, the status of an operation, is a success.
  void require(int result, const char* operation) {
    ztb::detail::require(result, handle(), operation);
  }

  // Throws std::invalid_argument, a ValueError in Python, unless `other` is the same database.
  void requireSame(const Connection& other) const;

  // Reads the records of a symbol, unless they were read before. Ctrl-C leaves that to go on by
  // itself: the next turn begins when it has ended.
  void load(const ztb::Symbol& symbol);
  // Whether the records of a symbol are in memory, so that asking for them reads no file.
  [[nodiscard]] bool isLoaded(const ztb::Symbol& symbol);

  // The turn that a Use holds: leaves it to work that goes on, and ends it there.
  void leaveTurn();
  void endTurn();

 private:
  friend class Use;

  std::optional<ztb::Database> database_;
  std::unordered_set<const void*> loaded_;
  TurnLock turn_;
  // The thread inside of an operation, and what holds its turn.
  std::atomic<std::thread::id> user_;
  Use* use_ = nullptr;
};

using Shared = std::shared_ptr<Connection>;

// The turn of a thread with a database. Long work gives the interpreter's lock away, and then
// another Python thread may come with the same database: it waits here, without the interpreter's
// lock, until the turn ends or Ctrl-C ends the waiting. Throws ztb::Error where the thread itself
// is inside of an operation on the database, as a signal handler can be.
class Use {
 public:
  explicit Use(Connection& connection);
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
  ~Use();

 private:
  friend class Connection;

  Connection& connection_;
  bool left_ = false;
};

// An operation as a member of a Python class, which takes its turn first. `Self` is a reference to
// a class with a connection().
template <class Result, class Self, class... Arguments>
auto inTurn(Result (*operation)(Self, Arguments...)) {
  return [operation](Self self, Arguments... arguments) -> Result {
    const Use use(*self.connection());
    return operation(self, std::forward<Arguments>(arguments)...);
  };
}
template <class Class, class Result, class... Arguments>
auto inTurn(Result (Class::*operation)(Arguments...) const) {
  return [operation](const Class& self, Arguments... arguments) -> Result {
    const Use use(*self.connection());
    return (self.*operation)(std::forward<Arguments>(arguments)...);
  };
}
template <class Class, class Result, class... Arguments>
auto inTurn(Result (Class::*operation)(Arguments...)) {
  return [operation](Class& self, Arguments... arguments) -> Result {
    const Use use(*self.connection());
    return (self.*operation)(std::forward<Arguments>(arguments)...);
  };
}

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_CONNECTION_H_
