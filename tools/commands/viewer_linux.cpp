#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <ztb/view.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <new>
#include <optional>
#include <string>
#include <thread>

#include "tools/commands/viewer.h"
#include "tools/files/scratch_folder.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"

namespace tool {

namespace {

// The viewer, as a value.
class Viewer {
 public:
  Viewer() {
    if (ztbViewCreate(&view_) == 0) throw std::bad_alloc();
  }
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;
  ~Viewer() { ztbViewFree(&view_); }

  void option(const std::string& name, const std::string& value) {
    require(ztbViewOption(view_, name.c_str(), value.c_str()));
  }
  void open() { require(ztbViewOpen(view_)); }
  void run() { require(ztbViewRun(view_)); }
  [[nodiscard]] std::string link() const { return ztbViewLink(view_); }
  [[nodiscard]] ztbView* handle() const { return view_; }

 private:
  void require(int done) const {
    if (done != 0) return;
    if (ztbViewIsUsage(view_) != 0) throw UsageError(ztbViewMessage(view_));
    throw Failure(ztbViewMessage(view_));
  }

  ztbView* view_ = nullptr;
};

std::atomic<ztbView*> served{nullptr};

void endView(int /*signal*/) {
  if (ztbView* view = served.load()) ztbViewStop(view);
}

// SIGINT and SIGTERM end the server, and not the process: what it made goes with it.
class ViewInterrupt {
 public:
  explicit ViewInterrupt(ztbView* view) {
    // Looked up outside the handler, which may not.
    ztbViewStop(nullptr);
    served.store(view);
    struct sigaction action {};
    action.sa_handler = &endView;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &interrupt_);
    sigaction(SIGTERM, &action, &terminate_);
  }
  ViewInterrupt(const ViewInterrupt&) = delete;
  ViewInterrupt& operator=(const ViewInterrupt&) = delete;
  ~ViewInterrupt() {
    sigaction(SIGINT, &interrupt_, nullptr);
    sigaction(SIGTERM, &terminate_, nullptr);
    served.store(nullptr);
  }

 private:
  struct sigaction interrupt_ {};
  struct sigaction terminate_ {};
};

// Opens the link in the user's browser. It goes there in a file that nobody else can read: the
// arguments of a process are seen by every user of the machine.
class OpenedBrowser {
 public:
  explicit OpenedBrowser(const std::string& link) {
    const std::string path = folder_.file("ztb-view.html");
    std::FILE* const file = std::fopen(path.c_str(), "w");
    if (file == nullptr) return;
    const std::string page = fmt::format(
        "<!doctype html><meta charset=utf-8><title>ztb view</title>"
        "<meta http-equiv=refresh content=\"0; url={0}\"><a href=\"{0}\">ztb view</a>\n",
        link);
    const bool written = std::fwrite(page.data(), 1, page.size(), file) == page.size();
    if (std::fclose(file) != 0 || !written) return;
    std::string program = "xdg-open";
    std::string address = "file://" + path;
    std::array<char*, 3> arguments{program.data(), address.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    if (posix_spawnp(&process, program.c_str(), &actions, nullptr, arguments.data(), environ) ==
        0) {
      std::thread([process] { waitpid(process, nullptr, 0); }).detach();
    }
    posix_spawn_file_actions_destroy(&actions);
  }

 private:
  ScratchFolder folder_;
};

}  // namespace

void runView(const ViewOptions& options) {
  Viewer viewer;
  for (const std::string& file : options.files) viewer.option("file", file);
  if (options.port) viewer.option("port", std::to_string(*options.port));
  if (options.readTimeout) viewer.option("read-timeout", std::to_string(*options.readTimeout));
  if (options.framed) viewer.option("framed", "1");
  if (options.solve) viewer.option("solve", "1");
  viewer.open();
  const ViewInterrupt interrupt(viewer.handle());
  print(viewer.link() + '\n');
  flushOutput();
  std::optional<OpenedBrowser> browser;
  if (!options.noOpen) browser.emplace(viewer.link());
  viewer.run();
}

}  // namespace tool
