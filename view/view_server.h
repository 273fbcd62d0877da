// A viewer: files, a server for them, and who may ask it.
//
// It listens on the loopback address alone. A request names it as 127.0.0.1 or localhost with its
// port, so that a page elsewhere cannot reach it under a name of its own; what is not of the page
// itself needs the key that the token of the link gives.
#ifndef ZTB_VIEW_VIEW_SERVER_H_
#define ZTB_VIEW_VIEW_SERVER_H_

#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "view/api.h"
#include "view/http_server.h"

namespace view {

struct ViewOptions {
  std::vector<std::string> files;
  int port = 0;  // 0 for any that is free
  // A request is there, whole, within this time.
  std::chrono::milliseconds readTimeout{5000};
  // Without a request of the page the server ends after this time.
  std::chrono::milliseconds idleTimeout{std::chrono::minutes(10)};
  // Whether the page solves the model at once.
  bool solve = false;
  // Pages of this machine, such as notebooks, may show the page in a frame.
  bool framed = false;
};

class ViewServer {
 public:
  // Opens the files and takes the port. Throws Failure and UsageError.
  explicit ViewServer(const ViewOptions& options);
  ~ViewServer();
  ViewServer(const ViewServer&) = delete;
  ViewServer& operator=(const ViewServer&) = delete;

  [[nodiscard]] int port() const { return port_; }
  // What opens the page, with the token.
  [[nodiscard]] std::string link() const;

  // Serves until stop(), or until nobody asked for anything long enough.
  void run();
  // May be called from another thread or a signal handler, also before run().
  void stop() noexcept;

 private:
  [[nodiscard]] HttpAnswer answer(const HttpRequest& request) noexcept;
  [[nodiscard]] HttpAnswer checkedAnswer(const HttpRequest& request);
  [[nodiscard]] HttpAnswer sessionAnswer(const HttpRequest& request) const;
  [[nodiscard]] HttpAnswer dataAnswer(const HttpRequest& request);
  void requireHost(const HttpRequest& request) const;
  void requireKey(const HttpRequest& request) const;
  void noteRequest();

  ViewOptions options_;
  Session session_;
  std::string token_;
  std::string key_;
  int wake_ = -1;
  int port_ = 0;
  std::atomic<std::chrono::steady_clock::rep> latest_{0};
  HttpServer server_;
};

}  // namespace view

#endif  // ZTB_VIEW_VIEW_SERVER_H_
