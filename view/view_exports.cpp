// The C functions of ztb/view.h.

#include <ztb/view.h>

#include <charconv>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "tools/text/failure.h"
#include "tools/text/words.h"
#include "view/view_server.h"

#define VIEW_EXPORT extern "C" [[gnu::visibility("default")]]

struct ztbViewRec {
  view::ViewOptions options;
  std::unique_ptr<view::ViewServer> server;
  std::string link;
  std::string message;
  bool isUsage = false;
};

namespace {

// What `work` does; 0 with the reason in the message when it throws, or there is no viewer.
template <class Work>
int guarded(ztbView* view, const Work& work) {
  if (view == nullptr) return 0;
  view->message.clear();
  view->isUsage = false;
  try {
    work();
    return 1;
  } catch (const tool::UsageError& error) {
    view->message = error.what();
    view->isUsage = true;
  } catch (const std::exception& error) {
    view->message = error.what();
  }
  return 0;
}

int numberOf(std::string_view name, std::string_view text, int least, int most) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || number < least || number > most) {
    throw tool::UsageError("--" + std::string(name) + ": " + tool::inQuotes(text) +
                           " is no whole number from " + std::to_string(least) + " to " +
                           std::to_string(most));
  }
  return number;
}

void setOption(view::ViewOptions& options, std::string_view name, const std::string& value) {
  constexpr int day = 24 * 60 * 60;
  if (name == "file") {
    options.files.push_back(value);
  } else if (name == "port") {
    options.port = numberOf(name, value, 0, 65535);
  } else if (name == "read-timeout") {
    options.readTimeout = std::chrono::seconds(numberOf(name, value, 1, day));
  } else if (name == "idle-timeout") {
    options.idleTimeout = std::chrono::seconds(numberOf(name, value, 1, day));
  } else if (name == "solve") {
    options.solve = numberOf(name, value, 0, 1) == 1;
  } else if (name == "framed") {
    options.framed = numberOf(name, value, 0, 1) == 1;
  } else {
    throw tool::UsageError("there is no option " + tool::inQuotes(name));
  }
}

}  // namespace

VIEW_EXPORT int ztbViewCreate(ztbView** view) {
  *view = new (std::nothrow) ztbView();
  return *view == nullptr ? 0 : 1;
}

VIEW_EXPORT void ztbViewFree(ztbView** view) {
  if (view == nullptr) return;
  delete *view;
  *view = nullptr;
}

VIEW_EXPORT int ztbViewOption(ztbView* view, const char* name, const char* value) {
  return guarded(view, [&] {
    setOption(view->options, name == nullptr ? "" : name, value == nullptr ? "" : value);
  });
}

VIEW_EXPORT int ztbViewOpen(ztbView* view) {
  return guarded(view, [&] {
    view->server = std::make_unique<view::ViewServer>(view->options);
    view->link = view->server->link();
  });
}

VIEW_EXPORT int ztbViewPort(const ztbView* view) {
  return view == nullptr || !view->server ? 0 : view->server->port();
}

VIEW_EXPORT const char* ztbViewLink(const ztbView* view) {
  return view == nullptr ? "" : view->link.c_str();
}

VIEW_EXPORT int ztbViewRun(ztbView* view) {
  return guarded(view, [&] {
    if (!view->server) throw tool::UsageError("the viewer is not open");
    view->server->run();
  });
}

VIEW_EXPORT void ztbViewStop(ztbView* view) {
  if (view != nullptr && view->server) view->server->stop();
}

VIEW_EXPORT const char* ztbViewMessage(const ztbView* view) {
  return view == nullptr ? "" : view->message.c_str();
}

VIEW_EXPORT int ztbViewIsUsage(const ztbView* view) {
  return view != nullptr && view->isUsage ? 1 : 0;
}
