// A viewer that serves in a thread of the test, and a client that speaks HTTP over a socket.
#ifndef ZTB_TESTS_VIEW_VIEW_CLIENT_H_
#define ZTB_TESTS_VIEW_VIEW_CLIENT_H_

#include <gtest/gtest.h>
#include <ztb/types.h>
#include <ztb/view.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/temp_folder.h"

namespace viewtest {

using Json = nlohmann::json;

// What came back; the names of headers in small letters.
struct Answer {
  int status = 0;
  std::multimap<std::string, std::string> headers;
  std::string body;

  [[nodiscard]] std::string header(const std::string& name) const;
};

// Sends these bytes to a port of 127.0.0.1 and gives all that comes back before the connection is
// closed. Fails the test after ten seconds.
std::string exchanged(int port, const std::string& bytes);

// The number of a socket connected to a port of an address; -1 where nobody listens.
int connected(const std::string& address, int port);

// %XX for all that is no letter or digit.
std::string encoded(const std::string& text);

// A running server.
class Server {
 public:
  // Options of ztbViewOption beside the files.
  explicit Server(const std::vector<std::string>& files,
                  const std::vector<std::pair<std::string, std::string>>& options = {});
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  [[nodiscard]] int port() const { return ztbViewPort(view_); }
  [[nodiscard]] std::string link() const { return ztbViewLink(view_); }
  [[nodiscard]] std::string token() const;
  // The key that the token gives.
  [[nodiscard]] std::string key() const;

  // A request with these lines behind the first; each with its end.
  [[nodiscard]] Answer ask(const std::string& method, const std::string& path,
                           const std::string& headers, const std::string& body = "") const;
  // GET with the right headers.
  [[nodiscard]] Answer get(const std::string& path) const;
  // The same of /api, with parameters as they are, and the answer as JSON; fails the test unless
  // all is well.
  [[nodiscard]] Json json(
      const std::string& path,
      const std::vector<std::pair<std::string, std::string>>& parameters = {}) const;
  // The same for what is refused; its sentence.
  [[nodiscard]] std::string refused(
      int status, const std::string& path,
      const std::vector<std::pair<std::string, std::string>>& parameters = {}) const;
  // The headers that a page sends.
  [[nodiscard]] std::string host() const;
  // Waits until the server has ended by itself.
  void wait();
  void stop() { ztbViewStop(view_); }

 private:
  ztbView* view_ = nullptr;
  std::thread thread_;
};

// A record: labels and values; of a set the number of its text.
struct TestRecord {
  std::vector<std::string> keys;
  std::vector<double> values;
};

struct TestSymbol {
  std::string name;
  int type;  // ZTB_SET and so on
  std::vector<std::string> domains;
  std::vector<TestRecord> records;
};

class ViewTest : public testing::Test {
 protected:
  // Writes a file with labels in this order, and gives its path.
  std::string makeFile(const std::string& name, const std::vector<std::string>& labels,
                       const std::vector<TestSymbol>& symbols,
                       const std::vector<std::string>& texts = {});
  // cost(plant, week): two plants, three weeks, among them special values.
  std::string makeCosts(const std::string& name = "costs.rxf");
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.file(name); }
  // What the ztb command prints.
  static std::string ztb(const std::string& arguments);

 private:
  ztbtest::TempFolder folder_;
};

}  // namespace viewtest

#endif  // ZTB_TESTS_VIEW_VIEW_CLIENT_H_
