#include "view/http_server.h"

#include <httplib.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <thread>

namespace view {

namespace {

using Clock = std::chrono::steady_clock;

// Requests that are worked on at once; browsers open a few connections before they need them.
constexpr std::size_t threads = 16;
constexpr std::chrono::seconds writeTimeout{30};

bool waitFor(int socket, short event, Clock::time_point until) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
    if (left.count() <= 0) return false;
    pollfd asked{socket, event, 0};
    const int found = poll(&asked, 1, static_cast<int>(std::min<long long>(left.count(), 60000)));
    if (found > 0) return true;
    if (found < 0 && errno != EINTR) return false;
  }
}

// One connection. All that comes in does so before a time, however it is cut into pieces, and up to
// a size.
class BoundedStream : public httplib::Stream {
 public:
  BoundedStream(int socket, std::chrono::milliseconds readTimeout)
      : socket_(socket), readUntil_(Clock::now() + readTimeout) {}

  [[nodiscard]] bool is_readable() const override {
    return left_ > 0 && waitFor(socket_, POLLIN, readUntil_);
  }
  [[nodiscard]] bool is_writable() const override {
    return waitFor(socket_, POLLOUT, Clock::now() + writeTimeout);
  }
  ssize_t read(char* into, std::size_t size) override {
    // The parser asks for single bytes.
    if (at_ == end_) {
      if (!is_readable()) return -1;
      const ssize_t count = recv(socket_, buffer_.data(), std::min(buffer_.size(), left_), 0);
      if (count <= 0) return count;
      at_ = 0;
      end_ = static_cast<std::size_t>(count);
      left_ -= end_;
    }
    const std::size_t count = std::min(size, end_ - at_);
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(at_), count, into);
    at_ += count;
    return static_cast<ssize_t>(count);
  }
  ssize_t write(const char* bytes, std::size_t size) override {
    return is_writable() ? send(socket_, bytes, size, MSG_NOSIGNAL) : -1;
  }
  void get_remote_ip_and_port(std::string& ip, int& port) const override { local(ip, port); }
  void get_local_ip_and_port(std::string& ip, int& port) const override { local(ip, port); }
  [[nodiscard]] socket_t socket() const override { return socket_; }

 private:
  static void local(std::string& ip, int& port) {
    ip = "127.0.0.1";
    port = 0;
  }

  int socket_;
  Clock::time_point readUntil_;
  std::size_t left_ = HttpServer::mostBytes;
  std::array<char, 4096> buffer_{};
  std::size_t at_ = 0;
  std::size_t end_ = 0;
};

std::vector<std::string> headersOf(const httplib::Request& request, const char* name) {
  std::vector<std::string> values;
  const auto [first, last] = request.headers.equal_range(name);
  for (auto header = first; header != last; ++header) values.push_back(header->second);
  return values;
}

HttpRequest requestOf(const httplib::Request& request) {
  HttpRequest result;
  result.method = request.method;
  result.path = request.path;
  for (const auto& [name, value] : request.params) result.parameters.emplace_back(name, value);
  result.hosts = headersOf(request, "Host");
  result.authorizations = headersOf(request, "Authorization");
  result.origins = headersOf(request, "Origin");
  result.hasRange = request.has_header("Range");
  result.body = request.body;
  return result;
}

}  // namespace

class HttpServer::Implementation : public httplib::Server {
 public:
  Implementation(HttpServer::Handler handler, std::chrono::milliseconds readTimeout)
      : handler_(std::move(handler)), readTimeout_(readTimeout) {
    // Another server has its port to itself.
    set_socket_options([](socket_t socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    set_address_family(AF_INET);
    set_payload_max_length(mostBytes);
    new_task_queue = [] { return new httplib::ThreadPool(threads); };
    const auto answer = [this](const httplib::Request& request, httplib::Response& response) {
      answerTo(request, response);
    };
    // A body is read for what is posted there, and for nothing else.
    Post("/api/session", answer);
    set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      if (request.method == "POST" && request.path == "/api/session") {
        return HandlerResponse::Unhandled;
      }
      answerTo(request, response);
      return HandlerResponse::Handled;
    });
  }
  ~Implementation() override { end(); }

  void begin() {
    thread_ = std::thread([this] { listen_after_bind(); });
  }
  void end() {
    if (!thread_.joinable()) return;
    // A server that does not listen yet cannot be stopped.
    while (!is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    Server::stop();
    thread_.join();
  }

 private:
  void answerTo(const httplib::Request& request, httplib::Response& response) {
    HttpAnswer answer = handler_(requestOf(request));
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers) response.set_header(name, value);
    if (!answer.type.empty()) response.set_header("Content-Type", answer.type);
    if (answer.file.empty()) {
      response.body = std::move(answer.body);
    } else {
      sendFile(answer, response);
    }
  }

  static void sendFile(const HttpAnswer& answer, httplib::Response& response) {
    const std::shared_ptr<std::FILE> file(std::fopen(answer.file.c_str(), "rb"), [](std::FILE* f) {
      if (f != nullptr) std::fclose(f);
    });
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(answer.file, error);
    if (file == nullptr || error) {
      response.status = 500;
      return;
    }
    if (size == 0) return;
    response.set_content_provider(
        size, answer.type,
        [file, held = answer.held](std::size_t offset, std::size_t length,
                                   httplib::DataSink& sink) {
          std::array<char, 65536> piece;
          if (fseeko(file.get(), static_cast<off_t>(offset), SEEK_SET) != 0) return false;
          const std::size_t count =
              std::fread(piece.data(), 1, std::min(piece.size(), length), file.get());
          return count > 0 && sink.write(piece.data(), count);
        });
  }

  bool process_and_close_socket(socket_t socket) override {
    bool closed = false;
    BoundedStream stream(socket, readTimeout_);
    const bool done = process_request(stream, true, closed, nullptr);
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
    return done;
  }

  HttpServer::Handler handler_;
  std::chrono::milliseconds readTimeout_;
  std::thread thread_;
};

HttpServer::HttpServer(Handler handler, std::chrono::milliseconds readTimeout)
    : implementation_(std::make_unique<Implementation>(std::move(handler), readTimeout)) {}

HttpServer::~HttpServer() = default;

int HttpServer::bind(int port) {
  constexpr const char* address = "127.0.0.1";
  if (port == 0) {
    const int found = implementation_->bind_to_any_port(address);
    return found > 0 ? found : 0;
  }
  return implementation_->bind_to_port(address, port) ? port : 0;
}

void HttpServer::start() {
  implementation_->begin();
}

void HttpServer::stop() {
  implementation_->end();
}

}  // namespace view
