#include "tools/commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <sstream>
#include <utility>
#include <ztb/nearest_name.hpp>

#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/screen.h"
#include "tools/text/wrapped_text.h"

namespace tool {

namespace {

template <class Number>
std::string wholeNumberFault(const std::string& text) {
  const bool digits = !text.empty() && std::ranges::all_of(text, [](unsigned char c) {
    return std::isdigit(c) != 0;
  });
  if (!digits) return "'" + text + "' is no whole number of at least 0";
  Number number = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc()) {
    return "'" + text + "' is too large, at most " +
           std::to_string(std::numeric_limits<Number>::max()) + " is expected";
  }
  return "";
}

std::string realFault(const std::string& text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && !text.empty() ? "" : "'" + text + "' is no number";
}

template <class Number>
Number numberOf(const std::string& text) {
  Number number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// What follows the name of an argument that is several words of different meaning, as in
// "FILE ... OUT" or "FILE [FILE]"; empty for any other one.
std::string tailOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  return type.starts_with("...") || type.starts_with('[') ? type : "";
}

// Help that tells such arguments as they are given.
class HelpForm : public CLI::Formatter {
 public:
  std::string make_option_usage(const CLI::Option* option) const override {
    const std::string tail = tailOf(*option);
    return tail.empty() ? CLI::Formatter::make_option_usage(option)
                        : make_option_name(option, true) + " " + tail;
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string tail = tailOf(*option);
    return tail.empty() ? CLI::Formatter::make_option_opts(option) : " " + tail + " REQUIRED";
  }
};

std::vector<std::string> optionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_lnames().empty()) names.push_back("--" + option->get_lnames().front());
  }
  return names;
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
  return text;
}

void printHelpText(const std::string& text) {
  print(wrappedHelp(text, tableWidth(std::nullopt)));
}

bool isOptionWord(const std::string& word) {
  return word.size() > 1 && word.front() == '-';
}

std::string noCommandText(const CLI::App& app, const std::string& word) {
  return "no command '" + word + "'" + ztb::suggestion(word, commandNames(app)) +
         "; ztb --help lists the commands";
}

// What is wrong with words in front of a command, or no text.
std::string faultBefore(const CLI::App& app, const CLI::App& command) {
  const std::vector<std::string> before = app.remaining();
  if (before.empty()) return "";
  if (!isOptionWord(before.front())) return noCommandText(app, before.front());
  const std::string name = before.front().substr(0, before.front().find('='));
  const std::vector<std::string> names = optionNames(command);
  const std::string help = "; see ztb " + command.get_name() + " --help";
  if (std::ranges::find(names, name) != names.end()) {
    return name + " stands before " + command.get_name() +
           "; the options of a command stand behind its name" + help;
  }
  return "no option " + name + ztb::suggestion(name, names) + help;
}

// What the library says of an option's value in our own words.
std::string valueFault(const CLI::App& command, const CLI::ParseError& error) {
  const std::string words = error.what();
  const std::string name = words.substr(0, words.find_first_of(": "));
  const CLI::Option* option = command.get_option_no_throw(name);
  if (option == nullptr) {
    // A flag with a value is named without its dashes.
    const bool isFlag = command.get_option_no_throw("--" + name) != nullptr;
    return isFlag ? "--" + name + " takes no value" : words;
  }
  if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) {
    return name + " and " + words.substr(words.rfind(' ') + 1) + " exclude each other";
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) == nullptr) return words;
  if (option->get_lnames().empty()) {
    return name + " " + option->get_type_name() + ": at least " +
           std::to_string(option->get_items_expected_min()) + " names are expected";
  }
  if (option->count() > static_cast<std::size_t>(option->get_items_expected_max())) {
    return name + " is given " +
           (option->count() == 2 ? "twice" : std::to_string(option->count()) + " times");
  }
  return name + ": its value is missing, expected " + option->get_type_name();
}

// What is wrong with the command line, and where to find help. A misspelt name comes first: it is
// why others seem to be missing or too many.
std::string usageText(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  const CLI::App& command = commands.empty() ? app : *commands.front();
  const std::string help =
      "; see ztb " + (commands.empty() ? "" : command.get_name() + " ") + "--help";
  if (!commands.empty()) {
    const std::string fault = faultBefore(app, command);
    if (!fault.empty()) return fault;
  }
  const std::vector<std::string> words = command.remaining();
  for (const std::string& word : words) {
    if (isOptionWord(word)) {
      const std::string name = word.substr(0, word.find('='));
      return "no option " + name + ztb::suggestion(name, optionNames(command)) + help;
    }
    if (commands.empty()) return noCommandText(app, word);
  }
  if (commands.empty()) return "no command is given; ztb --help lists the commands";
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr && !words.empty()) {
    return "'" + words.front() + "' is one argument too many" + help;
  }
  return valueFault(command, error) + help;
}

OptionDescription described(const CLI::Option& option) {
  const bool isOption = !option.get_lnames().empty();
  const bool takesValue = option.get_items_expected_max() > 0;
  const bool takesMany = !isOption && option.get_items_expected_max() > 1;
  const std::string tail = tailOf(option);
  return {.name = isOption ? "--" + option.get_lnames().front() : option.get_name(true, false),
          .tail = tail.empty() && takesMany ? "..." : tail,
          .value = takesValue ? option.get_type_name() : "",
          .help = option.get_description(),
          .required = option.get_required()};
}

CommandDescription described(const CLI::App& command) {
  CommandDescription result{.name = command.get_name(),
                            .help = command.get_description(),
                            .arguments = {},
                            .options = {},
                            .footer = command.get_footer()};
  for (const CLI::Option* option : command.get_options()) {
    (option->get_lnames().empty() ? result.arguments : result.options)
        .push_back(described(*option));
  }
  return result;
}

}  // namespace

Option& Option::required() {
  option_->required();
  return *this;
}

Option& Option::typeName(const std::string& name) {
  option_->type_name(name);
  return *this;
}

Option& Option::defaultText(const std::string& text) {
  option_->default_str(text);
  return *this;
}

Option& Option::notEmpty() {
  option_->check(CLI::Validator(
      [](const std::string& text) { return text.empty() ? "an empty argument is given" : ""; },
      ""));
  return *this;
}

Option& Option::excludes(const Option& other) {
  option_->excludes(other.option_);
  return *this;
}

Option Command::text(const std::string& name, std::string& into, const std::string& help) {
  return Option(command_->add_option(name, into, help));
}

Option Command::text(const std::string& name, std::optional<std::string>& into,
                     const std::string& help) {
  return Option(command_->add_option(name, into, help));
}

Option Command::texts(const std::string& name, std::vector<std::string>& into,
                      const std::string& help) {
  CLI::Option* option = command_->add_option(name, into, help);
  if (name.front() == '-') option->allow_extra_args(false);
  return Option(option);
}

Option Command::words(const std::string& name, std::vector<std::string>& into, std::size_t least,
                      const std::string& help) {
  return Option(command_->add_option(name, into, help)->expected(static_cast<int>(least), -1));
}

Option Command::flag(const std::string& name, bool& into, const std::string& help) {
  return Option(command_->add_flag(name, into, help)->disable_flag_override());
}

Option Command::number(const std::string& name, std::size_t& into, const std::string& help) {
  return checked(
             name, wholeNumberFault<std::size_t>,
             [&into](const std::string& text) { into = numberOf<std::size_t>(text); }, help)
      .typeName("N");
}

Option Command::number(const std::string& name, std::optional<std::size_t>& into,
                       const std::string& help) {
  return checked(
             name, wholeNumberFault<std::size_t>,
             [&into](const std::string& text) { into = numberOf<std::size_t>(text); }, help)
      .typeName("N");
}

Option Command::number(const std::string& name, int& into, const std::string& help) {
  return checked(
             name, wholeNumberFault<int>,
             [&into](const std::string& text) { into = numberOf<int>(text); }, help)
      .typeName("N");
}

Option Command::number(const std::string& name, std::optional<int>& into, const std::string& help) {
  return checked(
             name, wholeNumberFault<int>,
             [&into](const std::string& text) { into = numberOf<int>(text); }, help)
      .typeName("N");
}

Option Command::real(const std::string& name, std::optional<double>& into,
                     const std::string& help) {
  return checked(
             name, realFault, [&into](const std::string& text) { into = numberOf<double>(text); },
             help)
      .typeName("X");
}

Option Command::each(const std::string& name, std::function<void(const std::string&)> take,
                     const std::string& help) {
  const auto takeOrRemember = [take = std::move(take), fault = fault_](const std::string& word) {
    try {
      take(word);
    } catch (const UsageError&) {
      if (!*fault) *fault = std::current_exception();
    }
  };
  return Option(
      command_->add_option_function<std::string>(name, takeOrRemember, help)->trigger_on_parse());
}

Option Command::checked(const std::string& name,
                        std::function<std::string(const std::string&)> fault,
                        std::function<void(const std::string&)> take, const std::string& help) {
  CLI::Option* option = command_->add_option_function<std::string>(name, std::move(take), help);
  option->check(CLI::Validator(
      [fault = std::move(fault)](const std::string& text) { return fault(text); }, ""));
  return Option(option);
}

void Command::footer(const std::string& text) {
  command_->footer(text);
}

void Command::action(std::function<int()> run) {
  command_->callback([run = std::move(run), chosen = chosen_] { *chosen = run; });
}

CommandLine::CommandLine(const std::string& name, const std::string& version,
                         const std::string& description, const std::string& footer)
    : version_(version), app_(std::make_unique<CLI::App>(description)) {
  app_->formatter(std::make_shared<HelpForm>());
  app_->name(name);
  app_->set_version_flag("--version", version);
  app_->require_subcommand(1);
  // Options are written in one way on each system.
  app_->allow_windows_style_options(false);
  app_->footer(footer);
}

CommandLine::~CommandLine() = default;

Command CommandLine::add(const std::string& name, const std::string& help) {
  return {app_->add_subcommand(name, help), chosen_, fault_};
}

void CommandLine::printHelp(const std::string& command) {
  const std::vector<std::string> names = commandNames(*app_);
  if (command.empty()) {
    // The program's own, not that of the command that asks for it.
    printHelpText(
        app_->get_formatter()->make_help(app_.get(), app_->get_name(), CLI::AppFormatMode::Normal));
  } else if (std::ranges::find(names, command) != names.end()) {
    printHelpText(
        app_->get_subcommand(command)->help(app_->get_name(), CLI::AppFormatMode::Normal));
  } else {
    throw UsageError("no command '" + command + "'" + ztb::suggestion(command, names) +
                     "; ztb --help lists the commands");
  }
}

ProgramDescription CommandLine::description() const {
  ProgramDescription result{.name = app_->get_name(),
                            .version = version_,
                            .help = app_->get_description(),
                            .footer = app_->get_footer(),
                            .commands = {}};
  for (const CLI::App* command : app_->get_subcommands([](const CLI::App*) { return true; })) {
    result.commands.push_back(described(*command));
  }
  // What an argument of this name is one of is known only now that all commands are.
  for (CommandDescription& command : result.commands) {
    for (OptionDescription& argument : command.arguments) {
      if (argument.name == "COMMAND") argument.value = joined(commandNames(*app_), "|");
    }
  }
  return result;
}

int CommandLine::run(int argc, char** argv) {
  try {
    app_->parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      std::ostringstream text;
      app_->exit(error, text, text);
      printHelpText(text.str());
      return 0;
    }
    throw UsageError(usageText(*app_, error));
  }
  if (fault_) std::rethrow_exception(fault_);
  return chosen_();
}

}  // namespace tool
