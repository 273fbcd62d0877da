#include "tests/view/view_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <limits>
#include <ztb/rxf.hpp>

namespace viewtest {

namespace {

Answer answerOf(const std::string& bytes) {
  Answer answer;
  const std::size_t end = bytes.find("\r\n\r\n");
  if (end == std::string::npos || bytes.size() < 12) return answer;
  answer.status = std::stoi(bytes.substr(9, 3));
  for (std::size_t at = bytes.find("\r\n") + 2; at < end;) {
    const std::size_t next = bytes.find("\r\n", at);
    const std::string line = bytes.substr(at, next - at);
    const std::size_t colon = line.find(": ");
    std::string name = line.substr(0, colon);
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
    answer.headers.emplace(name, colon == std::string::npos ? "" : line.substr(colon + 2));
    at = next + 2;
  }
  answer.body = bytes.substr(end + 4);
  return answer;
}

}  // namespace

std::string Answer::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? "" : found->second;
}

int connected(const std::string& address, int port) {
  const int client = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<std::uint16_t>(port));
  inet_pton(AF_INET, address.c_str(), &to.sin_addr);
  if (connect(client, reinterpret_cast<const sockaddr*>(&to), sizeof to) == 0) return client;
  close(client);
  return -1;
}

std::string exchanged(int port, const std::string& bytes) {
  const int client = connected("127.0.0.1", port);
  EXPECT_GE(client, 0);
  const timeval limit{.tv_sec = 10, .tv_usec = 0};
  setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  std::string all;
  std::array<char, 65536> piece{};
  ssize_t count = 0;
  while ((count = recv(client, piece.data(), piece.size(), 0)) > 0) {
    all.append(piece.data(), static_cast<std::size_t>(count));
  }
  EXPECT_FALSE(count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) << "no end in ten seconds";
  close(client);
  return all;
}

std::string encoded(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      result += c;
    } else {
      std::array<char, 4> code{};
      std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(c));
      result += code.data();
    }
  }
  return result;
}

Server::Server(const std::vector<std::string>& files,
               const std::vector<std::pair<std::string, std::string>>& options) {
  EXPECT_EQ(ztbViewCreate(&view_), 1);
  for (const std::string& file : files) {
    EXPECT_EQ(ztbViewOption(view_, "file", file.c_str()), 1);
  }
  for (const auto& [name, value] : options) {
    EXPECT_EQ(ztbViewOption(view_, name.c_str(), value.c_str()), 1) << ztbViewMessage(view_);
  }
  EXPECT_EQ(ztbViewOpen(view_), 1) << ztbViewMessage(view_);
  thread_ = std::thread([this] { ztbViewRun(view_); });
}

Server::~Server() {
  stop();
  wait();
  ztbViewFree(&view_);
}

void Server::wait() {
  if (thread_.joinable()) thread_.join();
}

std::string Server::token() const {
  const std::string text = link();
  return text.substr(text.find("#token=") + 7);
}

std::string Server::key() const {
  const Answer answer = ask("POST", "/api/session", host(), R"({"token":")" + token() + R"("})");
  EXPECT_EQ(answer.status, 200) << answer.body;
  return Json::parse(answer.body)["key"];
}

std::string Server::host() const {
  return "Host: 127.0.0.1:" + std::to_string(port()) + "\r\n";
}

Answer Server::ask(const std::string& method, const std::string& path, const std::string& headers,
                   const std::string& body) const {
  std::string request = method + ' ' + path + " HTTP/1.1\r\n" + headers;
  if (!body.empty()) request += "Content-Length: " + std::to_string(body.size()) + "\r\n";
  return answerOf(exchanged(port(), request + "\r\n" + body));
}

Answer Server::get(const std::string& path) const {
  return ask("GET", path, host() + "Authorization: Bearer " + key() + "\r\n");
}

namespace {

std::string addressOf(const std::string& path,
                      const std::vector<std::pair<std::string, std::string>>& parameters) {
  std::string address = "/api/" + path;
  char before = '?';
  for (const auto& [name, value] : parameters) {
    address += before + name + '=' + encoded(value);
    before = '&';
  }
  return address;
}

}  // namespace

Json Server::json(const std::string& path,
                  const std::vector<std::pair<std::string, std::string>>& parameters) const {
  const Answer answer = get(addressOf(path, parameters));
  EXPECT_EQ(answer.status, 200) << answer.body;
  EXPECT_EQ(answer.header("content-type"), "application/json");
  return Json::parse(answer.body, nullptr, false);
}

std::string Server::refused(
    int status, const std::string& path,
    const std::vector<std::pair<std::string, std::string>>& parameters) const {
  const Answer answer = get(addressOf(path, parameters));
  EXPECT_EQ(answer.status, status) << answer.body;
  return Json::parse(answer.body, nullptr, false).value("error", "no sentence");
}

std::string ViewTest::makeFile(const std::string& name, const std::vector<std::string>& labels,
                               const std::vector<TestSymbol>& symbols,
                               const std::vector<std::string>& texts) {
  const auto numberOf = [&](const std::string& label) {
    const auto found = std::ranges::find(labels, label);
    return static_cast<int>(found - labels.begin()) + 1;
  };
  ztb::RxfOutput output(path(name), "test");
  for (const std::string& label : labels) output.addLabel(label);
  for (const TestSymbol& symbol : symbols) {
    ztbRxfSymbolInfo info{};
    info.name = symbol.name.c_str();
    info.text = "";
    info.type = symbol.type;
    info.dimension = static_cast<int>(symbol.domains.size());
    info.domainKind = ZTB_RXF_DOMAIN_NAMES;
    output.addSymbol(info, symbol.domains);
    for (const TestRecord& record : symbol.records) {
      std::vector<int> numbers;
      for (const std::string& key : record.keys) numbers.push_back(numberOf(key));
      std::vector<const int*> keys;
      for (const int& number : numbers) keys.push_back(&number);
      keys.push_back(nullptr);
      std::vector<const double*> values;
      for (const double& value : record.values) values.push_back(&value);
      output.addRecords(1, keys, values);
    }
  }
  for (const std::string& text : texts) output.addText(text);
  output.publish();
  return path(name);
}

std::string ViewTest::makeCosts(const std::string& name) {
  constexpr double eps = std::numeric_limits<double>::denorm_min();
  return makeFile(name, {"Ada", "Bor", "w1", "w2", "w3"},
                  {{"plant", ZTB_SET, {"*"}, {{{"Ada"}, {1}}, {{"Bor"}, {0}}}},
                   {"cost",
                    ZTB_PARAMETER,
                    {"plant", "week"},
                    {{{"Ada", "w1"}, {5}},
                     {{"Ada", "w2"}, {-2.5}},
                     {{"Ada", "w3"}, {eps}},
                     {{"Bor", "w1"}, {7}},
                     {{"Bor", "w3"}, {5}}}}},
                  {"the first"});
}

std::string ViewTest::ztb(const std::string& arguments) {
  std::string output;
  FILE* pipe = popen((ZTB_PROGRAM " " + arguments).c_str(), "r");
  if (pipe == nullptr) return output;
  std::array<char, 4096> piece{};
  while (std::fgets(piece.data(), piece.size(), pipe) != nullptr) output += piece.data();
  EXPECT_EQ(pclose(pipe), 0) << arguments;
  return output;
}

}  // namespace viewtest
