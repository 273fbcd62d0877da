#include <memory>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/viewer.h"
#include "tools/text/failure.h"

namespace tool {

void addViewCommand(CommandLine& line) {
  Command command = line.add("view", "Look at files in the browser");
  auto options = std::make_shared<ViewOptions>();
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
