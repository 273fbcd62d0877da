// Where models are not written, for what is there.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "providers/model/model_error.h"
#include "providers/model/model_writer.h"
#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using lomu::ModelData;

std::string refusal(const ModelData& model, const std::string& file) {
  try {
    lomu::writeModelFile(model, file);
  } catch (const lomu::ModelError& error) {
    return error.what();
  }
  return "none";
}

// Each would be replaced by an ordinary file.
TEST(ModelWritingPlace, linksDevicesAndFoldersAreLeft) {
  const ztbtest::TempFolder folder;
  const ModelData model = modelfiles::lp("min x\nst\nc: x >= 1\nend\n");
  const std::string link = folder.file("link.lp");
  fs::create_symlink(folder.file("target.lp"), link);
  EXPECT_EQ(
      link + ": is a symbolic link, nothing is written through it, expected a file or a new name",
      refusal(model, link));
  EXPECT_TRUE(fs::is_symlink(link));
  const std::string pipe = folder.file("pipe.mps");
  ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
  EXPECT_EQ(pipe + ": is no ordinary file, nothing is written to it, expected a file or a new name",
            refusal(model, pipe));
  EXPECT_TRUE(fs::is_fifo(pipe));
  const std::string inner = folder.file("folder.lp");
  fs::create_directory(inner);
  EXPECT_EQ(inner + ": is a folder, expected a file or a new name", refusal(model, inner));
}

}  // namespace
