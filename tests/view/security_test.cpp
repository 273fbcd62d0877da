// Who may ask the server, and for what: each rule is broken by one request.
#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "tests/view/view_client.h"

namespace viewtest {
namespace {

using testing::HasSubstr;

class ViewSecurityTest : public ViewTest {
 protected:
  Server server_{{makeCosts()}};
  std::string bearer(const std::string& key) const {
    return server_.host() + "Authorization: Bearer " + key + "\r\n";
  }
};

TEST_F(ViewSecurityTest, ListensOnTheLoopbackAddressAlone) {
  // Any other address of 127/8 is this machine too, and so is each of its own addresses.
  EXPECT_EQ(connected("127.0.0.2", server_.port()), -1);
  ifaddrs* all = nullptr;
  ASSERT_EQ(getifaddrs(&all), 0);
  for (const ifaddrs* one = all; one != nullptr; one = one->ifa_next) {
    if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_INET) continue;
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(one->ifa_addr)->sin_addr, text.data(),
              text.size());
    if (std::string(text.data()) == "127.0.0.1") continue;
    EXPECT_EQ(connected(text.data(), server_.port()), -1) << text.data();
  }
  freeifaddrs(all);
}

TEST_F(ViewSecurityTest, HoldsATokenOf128BitsThatNoOtherServerHas) {
  const Server other({path("costs.rxf")});
  std::set<std::string> secrets{server_.token(), server_.key(), other.token(), other.key()};
  EXPECT_EQ(secrets.size(), 4U);
  for (const std::string& secret : secrets) {
    EXPECT_EQ(secret.size(), 32U);
    EXPECT_EQ(secret.find_first_not_of("0123456789abcdef"), std::string::npos);
  }
}

TEST_F(ViewSecurityTest, GivesNothingOfTheFilesWithoutTheKey) {
  const std::string key = server_.key();
  std::string wrong = key;
  wrong.back() = wrong.back() == '0' ? '1' : '0';
  for (const std::string& headers :
       {server_.host(), bearer(wrong), bearer(key.substr(1)), bearer(key + "0"), bearer(""),
        bearer(server_.token()), server_.host() + "Authorization: Basic " + key + "\r\n",
        bearer(key) + "Authorization: Bearer " + key + "\r\n"}) {
    for (const char* path : {"files", "symbols?f=0", "rows?s=cost", "export?s=cost&format=csv",
                             "progress?of=1", "cancel?of=1", "alive", "nothing"}) {
      const Answer answer = server_.ask("GET", std::string("/api/") + path, headers);
      EXPECT_EQ(answer.status, 401) << path << '\n' << headers;
      EXPECT_EQ(answer.body.find("Ada"), std::string::npos);
    }
  }
  EXPECT_EQ(server_.ask("GET", "/api/files?key=" + key, server_.host()).status, 401);
  EXPECT_EQ(server_.ask("GET", "/api/files", bearer(key)).status, 200);
  EXPECT_THAT(Json::parse(server_.ask("GET", "/api/files", server_.host()).body)["error"],
              HasSubstr("open the link that ztb view shows"));
}

TEST_F(ViewSecurityTest, GivesTheKeyForTheTokenAlone) {
  const auto post = [&](const std::string& body) {
    return server_.ask("POST", "/api/session", server_.host(), body).status;
  };
  EXPECT_EQ(post(R"({"token":"00000000000000000000000000000000"})"), 401);
  EXPECT_EQ(post(R"({"token":""})"), 401);
  EXPECT_EQ(post(R"({"token":7})"), 400);
  EXPECT_EQ(post(R"({})"), 400);
  EXPECT_EQ(post("token"), 400);
  EXPECT_EQ(post(R"({"token":")" + server_.token() + R"("})"), 200);
}

TEST_F(ViewSecurityTest, AnswersUnderItsOwnNameAlone) {
  const std::string port = std::to_string(server_.port());
  const auto statusOf = [&](const std::string& headers) {
    return server_.ask("GET", "/page/nothing.js", headers).status;
  };
  EXPECT_EQ(statusOf("Host: 127.0.0.1:" + port + "\r\n"), 404);
  EXPECT_EQ(statusOf("Host: LocalHost:" + port + "\r\n"), 404);
  for (const std::string& host :
       {"evil.example:" + port, std::string("127.0.0.1"), std::string("127.0.0.1:1"),
        "127.0.0.1.evil.example:" + port, "[::1]:" + port, "0.0.0.0:" + port, std::string()}) {
    EXPECT_EQ(statusOf("Host: " + host + "\r\n"), 403) << host;
  }
  EXPECT_EQ(statusOf(""), 403);
  EXPECT_EQ(statusOf(server_.host() + "Host: evil.example\r\n"), 403);
  EXPECT_EQ(statusOf(server_.host() + "Origin: http://evil.example\r\n"), 403);
  EXPECT_EQ(statusOf(server_.host() + "Origin: null\r\n"), 403);
  EXPECT_EQ(statusOf(server_.host() + "Origin: http://127.0.0.1:" + port + "\r\n"), 404);
}

TEST_F(ViewSecurityTest, TakesNoOtherMethods) {
  const std::string headers = bearer(server_.key());
  for (const char* method : {"POST", "PUT", "DELETE", "PATCH", "OPTIONS", "HEAD"}) {
    const Answer answer = server_.ask(method, "/api/files", headers);
    EXPECT_EQ(answer.status, 405) << method;
    EXPECT_EQ(answer.header("allow"), "GET");
  }
  const Answer session = server_.ask("GET", "/api/session", headers);
  EXPECT_EQ(session.status, 405);
  EXPECT_EQ(session.header("allow"), "POST");
}

TEST_F(ViewSecurityTest, SendsTheHeadersThatKeepAPageToItself) {
  const std::string with =
      bearer(server_.key()) + "Origin: http://127.0.0.1:" + std::to_string(server_.port()) + "\r\n";
  for (const char* path : {"/", "/page/main.js", "/api/files", "/api/nothing", "/etc/passwd"}) {
    const Answer answer = server_.ask("GET", path, with);
    EXPECT_EQ(answer.header("content-security-policy"),
              "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data: "
              "blob:; connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors "
              "'none'")
        << path;
    EXPECT_EQ(answer.header("x-content-type-options"), "nosniff");
    EXPECT_EQ(answer.header("referrer-policy"), "no-referrer");
    EXPECT_EQ(answer.header("cache-control"), "no-store");
    for (const auto& [name, value] : answer.headers) {
      EXPECT_FALSE(name.starts_with("access-control")) << name;
    }
  }
}

TEST_F(ViewSecurityTest, LetsAFrameOfThisMachineShowItWhereThatIsAskedFor) {
  const Server framed({path("costs.rxf")}, {{"framed", "1"}});
  EXPECT_THAT(framed.ask("GET", "/", framed.host()).header("content-security-policy"),
              testing::EndsWith("frame-ancestors http://localhost:* http://127.0.0.1:*"));
}

TEST_F(ViewSecurityTest, ReachesNoFileByAPath) {
  std::ofstream(path("secret.txt")) << "hidden";
  const std::string here = path("secret.txt");
  for (const std::string& name :
       {here, "/page/" + here, "/page/../.." + here, "/page/%2e%2e/%2e%2e" + here,
        "/page/..%2f..%2f" + here, std::string("/page/../secret.txt"),
        std::string("/page/secret.txt"), std::string("/page/"), std::string("/page"),
        std::string("/page/index.html%00.js"), std::string("//etc/passwd"),
        std::string("/index.html/")}) {
    const Answer answer = server_.ask("GET", name, server_.host());
    EXPECT_EQ(answer.status, 404) << name;
    EXPECT_EQ(answer.body.find("hidden"), std::string::npos) << name;
  }
  EXPECT_EQ(server_.ask("GET", "/", server_.host()).status, 200);
}

TEST_F(ViewSecurityTest, CutsRequestsThatAreTooLong) {
  const std::string start = "GET / HTTP/1.1\r\n" + server_.host();
  const auto statusOf = [&](const std::string& bytes) {
    const std::string answer = exchanged(server_.port(), bytes);
    return answer.empty() ? 0 : std::stoi(answer.substr(9, 3));
  };
  EXPECT_NE(statusOf("GET /" + std::string(70000, 'a') + " HTTP/1.1\r\n"), 200);
  EXPECT_NE(statusOf(start + "X: " + std::string(70000, 'a') + "\r\n\r\n"), 200);
  std::string many = start;
  for (int i = 0; i < 5000; ++i) many += "X-" + std::to_string(i) + ": some value\r\n";
  EXPECT_NE(statusOf(many + "\r\n"), 200);
  const std::string body = R"({"token":")" + std::string(70000, 'a') + R"("})";
  EXPECT_NE(server_.ask("POST", "/api/session", server_.host(), body).status, 200);
  // Ranges would have one byte sent many times.
  EXPECT_EQ(server_.ask("GET", "/", server_.host() + "Range: bytes=0-9,0-9\r\n").status, 400);
  EXPECT_EQ(statusOf(start + "\r\n"), 200);
}

// A client that sends a byte now and then holds nothing for longer than the time of a request.
TEST_F(ViewSecurityTest, CutsSlowClients) {
  const Server hasty({path("costs.rxf")}, {{"read-timeout", "1"}});
  const int silent = connected("127.0.0.1", hasty.port());
  const int slow = connected("127.0.0.1", hasty.port());
  ASSERT_GE(silent, 0);
  ASSERT_GE(slow, 0);
  const std::string start = "GET / HTTP/1.1\r\nX: ";
  send(slow, start.data(), start.size(), MSG_NOSIGNAL);
  bool isCut = false;
  for (int tenths = 0; tenths < 100 && !isCut; ++tenths) {
    std::array<char, 1024> bytes{};
    timeval wait{.tv_sec = 0, .tv_usec = 100000};
    setsockopt(slow, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    send(slow, "x", 1, MSG_NOSIGNAL);
    const ssize_t count = recv(slow, bytes.data(), bytes.size(), 0);
    isCut = count >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
  }
  EXPECT_TRUE(isCut);
  timeval wait{.tv_sec = 10, .tv_usec = 0};
  setsockopt(silent, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
  std::array<char, 1024> bytes{};
  const ssize_t count = recv(silent, bytes.data(), bytes.size(), 0);
  EXPECT_FALSE(count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK));
  close(silent);
  close(slow);
  EXPECT_EQ(hasty.ask("GET", "/", hasty.host()).status, 200);
}

TEST_F(ViewSecurityTest, EndsWhenNoPageAsksAnyMore) {
  Server idle({path("costs.rxf")}, {{"idle-timeout", "1"}});
  const int port = idle.port();
  idle.wait();
  EXPECT_EQ(connected("127.0.0.1", port), -1);
}

TEST_F(ViewSecurityTest, RefusesAPortThatIsTaken) {
  ztbView* view = nullptr;
  ASSERT_EQ(ztbViewCreate(&view), 1);
  ztbViewOption(view, "file", path("costs.rxf").c_str());
  const std::string port = std::to_string(server_.port());
  ASSERT_EQ(ztbViewOption(view, "port", port.c_str()), 1);
  EXPECT_EQ(ztbViewOpen(view), 0);
  EXPECT_EQ(ztbViewMessage(view), "port " + port +
                                      " of 127.0.0.1 cannot be had: another program has it, or it "
                                      "needs more rights");
  EXPECT_EQ(ztbViewIsUsage(view), 0);
  EXPECT_EQ(ztbViewOption(view, "port", "65536"), 0);
  EXPECT_STREQ(ztbViewMessage(view), "--port: '65536' is no whole number from 0 to 65535");
  EXPECT_EQ(ztbViewIsUsage(view), 1);
  EXPECT_EQ(ztbViewOption(view, "colour", "1"), 0);
  EXPECT_STREQ(ztbViewMessage(view), "there is no option 'colour'");
  ztbViewFree(&view);
  EXPECT_EQ(view, nullptr);
}

// Labels and texts of any bytes come as JSON, and labels can be asked for as they came.
TEST_F(ViewSecurityTest, HandsHostileLabelsOutAsText) {
  std::string anything;
  for (int byte = 255; anything.size() < 63; --byte) {
    if (byte != '\'' && byte != '"') anything += static_cast<char>(byte);
  }
  const std::vector<std::string> labels{"<script>alert(1)</script>",
                                        "\xE2\x80\xAE txet",
                                        anything,
                                        "\\n",
                                        "\xFF",
                                        "</a> \\\"",
                                        "\xC3("};
  std::vector<TestRecord> records;
  for (std::size_t at = 0; at < labels.size(); ++at) {
    records.push_back({{labels[at]}, {static_cast<double>(at)}});
  }
  const Server hostile({makeFile("hostile.rxf", labels, {{"p", ZTB_PARAMETER, {"*"}, records}})});
  const Json rows = hostile.json("rows", {{"s", "p"}})["rows"];
  ASSERT_EQ(rows.size(), labels.size());
  EXPECT_EQ(rows[0][0], labels[0]);
  EXPECT_EQ(rows[1][0], labels[1]);
  EXPECT_EQ(rows[4][0], "\\\\xFF");
  for (std::size_t at = 0; at < labels.size(); ++at) {
    const Json found =
        hostile.json("rows", {{"s", "p"}, {"in0", rows[at][0].get<std::string>()}})["rows"];
    ASSERT_EQ(found.size(), 1U) << rows[at][0];
    EXPECT_EQ(found[0][1], static_cast<double>(at));
  }
}

}  // namespace
}  // namespace viewtest
