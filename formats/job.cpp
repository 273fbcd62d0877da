#include "formats/job.h"

#include <fmt/format.h>

#include <exception>
#include <new>
#include <utility>

#include "tools/files/scratch_folder.h"
#include "tools/text/failure.h"

namespace formats {

bool Job::attempt(const std::function<void()>& body) noexcept {
  const bool done = run(body);
  try {
    for (std::string* text : {&message_, &result_.problems, &result_.warnings}) {
      *text = result_.names.applied(std::move(*text));
    }
  } catch (const std::bad_alloc&) {
    // What is told then has the names that the files have.
  }
  return done;
}

bool Job::run(const std::function<void()>& body) noexcept {
  usage_ = false;
  try {
    message_.clear();
    body();
    kind_ = ZTB_ERROR_NONE;
    return true;
  } catch (const tool::UsageError& error) {
    usage_ = true;
    kind_ = ZTB_ERROR_REFUSED;
    message_ = error.what();
  } catch (const tool::Failure& error) {
    kind_ = error.kind();
    message_ = error.what();
  } catch (const ztb::Error& error) {
    kind_ = static_cast<int>(error.kind());
    message_ = error.text();
  } catch (const std::bad_alloc&) {
    kind_ = ZTB_ERROR_OUT_OF_MEMORY;
    message_ = "out of memory";
  } catch (const std::exception& error) {
    kind_ = ZTB_ERROR_INTERNAL;
    message_ = error.what();
  }
  return false;
}

bool Job::option(const char* name, const char* value) noexcept {
  return attempt([&] {
    const std::string option = name == nullptr ? "" : name;
    const std::string text = value == nullptr ? "" : value;
    if (option == "progress") {
      shows_ = true;
      return;
    }
    if (option == "shown-file") {
      result_.names.add(sets_.lastFile(), text);
      return;
    }
    if (option == "file" || sets_.hasFiles()) {
      if (!sets_.option(option, text)) {
        throw tool::UsageError(fmt::format("--{}: no such option", option));
      }
      return;
    }
    // Those that belong to a source follow it; without one the job is an export.
    const bool ofSource = option == "format" || option == "wide";
    const bool imports = (!ofSource || import_.hasSources()) && import_.option(option, text);
    const bool exports = (!ofSource || !imports) && export_.option(option, text);
    if (!imports && !exports) {
      throw tool::UsageError(fmt::format("--{}: no such option", option));
    }
  });
}

bool Job::import(const char* path) noexcept {
  return attempt([&] { import_.write(path, shows_, result_); });
}

bool Job::importInto(ztbRec* database) noexcept {
  return attempt([&] { import_.addTo(database, shows_, result_); });
}

bool Job::exportFile(const char* path) noexcept {
  return attempt([&] { export_.write(path, shows_, result_); });
}

bool Job::makeFile(void (SetsRun::*make)(const std::string&, bool, RunResult&) const,
                   const char* path) noexcept {
  return attempt([&] { (sets_.*make)(path, shows_, result_); });
}

bool Job::exportDatabase(ztbRec* database) noexcept {
  return attempt([&] {
    // Records are walked over as a file has them, in the order of their labels.
    const tool::ScratchFolder folder;
    const std::string file = folder.file("database.rxf");
    result_.names.add(file, "the database");
    ztb::detail::require(c__ztbwriterxf(database, file.c_str(), 1), database, "ztbWriteRXF");
    export_.write(file, shows_, result_);
  });
}

}  // namespace formats
