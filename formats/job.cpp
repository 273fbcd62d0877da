#include "formats/job.h"

#include <fmt/format.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <new>
#include <system_error>

#include "tools/text/failure.h"

namespace formats {

namespace {

// A folder that goes with everything in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    path_ = ((error ? std::filesystem::path("/tmp") : folder) / "ztb.XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr) {
      throw tool::Failure(path_ + ": cannot be made");
    }
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  [[nodiscard]] std::string file(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

}  // namespace

bool Job::attempt(const std::function<void()>& body) noexcept {
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
  } catch (const MissingFile& error) {
    kind_ = ZTB_ERROR_NO_FILE;
    message_ = error.what();
  } catch (const tool::Failure& error) {
    kind_ = result_.problemCount > 0 ? ZTB_ERROR_DAMAGED_FILE : ZTB_ERROR_IO;
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

bool Job::exportDatabase(ztbRec* database) noexcept {
  return attempt([&] {
    // Records are walked over as a file has them, in the order of their labels.
    const ScratchFolder folder;
    const std::string file = folder.file("database.rxf");
    ztb::detail::require(c__ztbwriterxf(database, file.c_str(), 1), database, "ztbWriteRXF");
    export_.write(file, shows_, result_);
  });
}

}  // namespace formats
