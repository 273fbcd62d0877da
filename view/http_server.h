// A server on the loopback address: requests come as what they say, answers go out whole. Each
// connection carries one request, which has to be there, whole, within a time and a size.
#ifndef ZTB_VIEW_HTTP_SERVER_H_
#define ZTB_VIEW_HTTP_SERVER_H_

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace view {

struct HttpRequest {
  std::string method;
  std::string path;
  std::vector<std::pair<std::string, std::string>> parameters;
  // Each Host, Authorization and Origin header that there is.
  std::vector<std::string> hosts;
  std::vector<std::string> authorizations;
  std::vector<std::string> origins;
  // Whether a part of the answer is asked for.
  bool hasRange = false;
  std::string body;  // of a POST
};

struct HttpAnswer {
  int status = 200;
  std::string type;
  std::string body;
  // A file in place of the body, which `held` keeps as long as it is read.
  std::string file{};
  std::shared_ptr<void> held{};
  std::vector<std::pair<std::string, std::string>> headers;
};

class HttpServer {
 public:
  // Called by several threads at once; throws nothing.
  using Handler = std::function<HttpAnswer(const HttpRequest& request)>;

  // Bytes that a request may have, all of it.
  static constexpr std::size_t mostBytes = 65536;

  HttpServer(Handler handler, std::chrono::milliseconds readTimeout);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  // Takes a port of 127.0.0.1, 0 for any that is free, and gives its number; 0 when it cannot be
  // had. From then on connections wait for start().
  int bind(int port);
  // Serves in threads of its own until stop().
  void start();
  void stop();

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace view

#endif  // ZTB_VIEW_HTTP_SERVER_H_
