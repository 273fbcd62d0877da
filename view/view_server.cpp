#include "view/view_server.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <new>

#include "formats/json/json_object.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"
#include "view/page_files.h"
#include "view/secret.h"

namespace view {

namespace {

using Clock = std::chrono::steady_clock;

std::string policy(bool framed) {
  return fmt::format(
      "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data: blob:; "
      "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors {}",
      framed ? "http://localhost:* http://127.0.0.1:*" : "'none'");
}

HttpAnswer jsonAnswer(int status, std::string text) {
  return {.status = status, .type = "application/json", .body = std::move(text), .headers = {}};
}

HttpAnswer failure(int status, std::string_view text) {
  formats::JsonText json;
  json.beginObject();
  json.name("error");
  json.text(text);
  json.endObject();
  return jsonAnswer(status, json.chars());
}

HttpAnswer pageAnswer(const std::string& path) {
  constexpr std::string_view folder = "/page/";
  const std::string_view name = path == "/"                ? "index.html"
                                : path.starts_with(folder) ? std::string_view(path).substr(6)
                                                           : std::string_view();
  const PageFile* file = findPageFile(name);
  if (file == nullptr) return failure(404, "There is nothing under this address.");
  return {.status = 200,
          .type = std::string(file->type) + "; charset=utf-8",
          .body = {reinterpret_cast<const char*>(file->bytes), file->size},
          .headers = {}};
}

}  // namespace

ViewServer::ViewServer(const ViewOptions& options)
    : options_(options),
      token_(makeSecret()),
      key_(makeSecret()),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      server_([this](const HttpRequest& request) { return answer(request); }, options.readTimeout) {
  if (options.files.empty() || options.files.size() > mostFiles) {
    throw tool::UsageError("expected one file or two");
  }
  if (wake_ < 0) throw tool::Failure("the system gives no event counter");
  for (const std::string& file : options.files) {
    session_.files.push_back(std::make_shared<const OpenedFile>(file));
  }
  const auto isModel = [](const auto& file) { return file->kind() == FileKind::model; };
  if (options.solve && std::ranges::none_of(session_.files, isModel)) {
    throw tool::UsageError("--solve: there is no model to solve");
  }
  port_ = server_.bind(options.port);
  if (port_ == 0) {
    throw tool::Failure(options.port == 0
                            ? "no port of 127.0.0.1 can be had"
                            : fmt::format("port {} of 127.0.0.1 cannot be had: another program "
                                          "has it, or it needs more rights",
                                          options.port));
  }
}

ViewServer::~ViewServer() {
  session_.jobs.end();
  server_.stop();
  if (wake_ >= 0) close(wake_);
}

std::string ViewServer::link() const {
  return fmt::format("http://127.0.0.1:{}/#token={}{}", port_, token_,
                     options_.solve ? "&solve=auto" : "");
}

void ViewServer::run() {
  noteRequest();
  server_.start();
  for (;;) {
    const auto idle = Clock::now().time_since_epoch() - Clock::duration(latest_.load());
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(options_.idleTimeout - idle);
    if (left.count() <= 0) break;
    pollfd asked{wake_, POLLIN, 0};
    const auto wait = std::min<std::chrono::milliseconds::rep>(left.count() + 1, 60000);
    if (poll(&asked, 1, static_cast<int>(wait)) > 0) break;
  }
  session_.jobs.end();
  server_.stop();
}

void ViewServer::stop() noexcept {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wake_, &one, sizeof one);
}

void ViewServer::noteRequest() {
  latest_ = Clock::now().time_since_epoch().count();
}

HttpAnswer ViewServer::answer(const HttpRequest& request) noexcept {
  HttpAnswer result;
  try {
    try {
      result = checkedAnswer(request);
    } catch (const RequestError& error) {
      result = failure(error.status(), error.what());
    } catch (const tool::UsageError& error) {
      result = failure(400, error.what());
    } catch (const std::bad_alloc&) {
      result = failure(503, "There is not enough memory for this request.");
    } catch (const std::exception& error) {
      result = failure(500, error.what());
    }
    result.headers.emplace_back("Content-Security-Policy", policy(options_.framed));
    result.headers.emplace_back("X-Content-Type-Options", "nosniff");
    result.headers.emplace_back("Referrer-Policy", "no-referrer");
    result.headers.emplace_back("Cross-Origin-Resource-Policy", "same-origin");
    result.headers.emplace_back("Cache-Control", "no-store");
  } catch (const std::exception&) {
    result = {.status = 503, .type = {}, .body = {}, .headers = {}};
  }
  return result;
}

HttpAnswer ViewServer::checkedAnswer(const HttpRequest& request) {
  requireHost(request);
  const bool isSession = request.path == "/api/session";
  if (request.method != (isSession ? "POST" : "GET")) {
    HttpAnswer refused =
        failure(405, fmt::format("{} is not taken here.", tool::shortened(request.method)));
    refused.headers.emplace_back("Allow", isSession ? "POST" : "GET");
    return refused;
  }
  if (request.hasRange) throw RequestError(400, "Parts of an answer are not to be had.");
  if (isSession) return sessionAnswer(request);
  if (!request.path.starts_with("/api/")) return pageAnswer(request.path);
  requireKey(request);
  noteRequest();
  return dataAnswer(request);
}

void ViewServer::requireHost(const HttpRequest& request) const {
  const auto isOwn = [&](std::string_view host) {
    return tool::sameFolded(host, fmt::format("127.0.0.1:{}", port_)) ||
           tool::sameFolded(host, fmt::format("localhost:{}", port_));
  };
  if (request.hosts.size() != 1 || !isOwn(request.hosts.front())) {
    throw RequestError(403, "This server answers under its own address alone.");
  }
  constexpr std::string_view scheme = "http://";
  for (const std::string& origin : request.origins) {
    if (!origin.starts_with(scheme) || !isOwn(std::string_view(origin).substr(scheme.size()))) {
      throw RequestError(403, "This server answers its own page alone.");
    }
  }
}

void ViewServer::requireKey(const HttpRequest& request) const {
  constexpr std::string_view scheme = "Bearer ";
  const bool known =
      request.authorizations.size() == 1 && request.authorizations.front().starts_with(scheme) &&
      isSameSecret(std::string_view(request.authorizations.front()).substr(scheme.size()), key_);
  if (!known) {
    throw RequestError(401, "This page is not known any more: open the link that ztb view shows.");
  }
}

HttpAnswer ViewServer::sessionAnswer(const HttpRequest& request) const {
  formats::JsonObject given;
  const std::string problem = formats::parseJsonObject(request.body, given);
  const formats::JsonValue* token = problem.empty() ? given.find("token") : nullptr;
  if (token == nullptr || token->kind != formats::JsonValue::Kind::text) {
    throw RequestError(400, "Expected {\"token\": \"...\"}.");
  }
  if (!isSameSecret(token->text, token_)) {
    throw RequestError(401, "The link is of another server: open the one that ztb view shows.");
  }
  formats::JsonText json;
  json.beginObject();
  json.name("key");
  json.text(key_);
  json.endObject();
  return jsonAnswer(200, json.chars());
}

HttpAnswer ViewServer::dataAnswer(const HttpRequest& request) {
  const Answering answering = findAnswering(std::string_view(request.path).substr(5));
  if (answering == nullptr) throw RequestError(404, "There is nothing under this address.");
  const Parameters parameters(request.parameters);
  Jobs::Running running(session_.jobs, parameters.text("id", ""));
  formats::JsonText json;
  Question question{session_, parameters, running.job(), json, {}};
  answering(question);
  if (question.file) {
    return {.status = 200,
            .type = question.file->type,
            .body = {},
            .file = question.file->path,
            .held = question.file,
            .headers = {{"Content-Disposition",
                         fmt::format("attachment; filename=\"{}\"", question.file->name)}}};
  }
  return jsonAnswer(200, json.chars());
}

}  // namespace view
