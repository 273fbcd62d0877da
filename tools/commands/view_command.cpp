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
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/files/scratch_folder.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"

namespace tool {

namespace {

struct ViewCommandOptions {
  std::vector<std::string> files;
  std::optional<std::size_t> port;
  std::optional<std::size_t> readTimeout;
  bool noOpen = false;
  bool framed = false;
  bool solve = false;
};

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

void runView(const ViewCommandOptions& options) {
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

}  // namespace

void addViewCommand(CommandLine& line) {
  Command command = line.add("view", "Look at files in the browser");
  auto options = std::make_shared<ViewCommandOptions>();
  command
      .words("FILE", options->files, 1, "RXF file or model, - for standard input; two to compare")
      .typeName("[FILE]")
      .required();
  command.number("--port", options->port, "Port of this machine; without it one that is free")
      .typeName("N");
  command.flag("--solve", options->solve,
               "Solve a model at once, as the button of its page does; Cancel ends it");
  command.flag("--no-open", options->noOpen, "Print the link, and leave the browser alone");
  command
      .number("--read-timeout", options->readTimeout,
              "Seconds in which a request has to be there, whole")
      .typeName("SECONDS")
      .defaultText("5");
  command.flag("--framed", options->framed,
               "Let pages of this machine, such as notebooks, show the page in a frame");
  command.footer(
      "The page comes from the command itself, and nothing leaves the machine. Whoever has the "
      "link\n"
      "sees the files. Ctrl-C ends it, and so does a page that was closed for ten minutes.\n\n"
      "Examples:\n"
      "  ztb view diet.rxf\n"
      "  ztb view diet.lp --solve\n"
      "  ztb view before.rxf after.rxf\n"
      "  ztb view --no-open --port 8080 plan.rxf");
  command.action([options] {
    runView(*options);
    return exitFine;
  });
}

}  // namespace tool
