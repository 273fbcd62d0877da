// What is refused before a reader sees it.

#include "providers/model/model_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

using modelfiles::fileRefusal;
using modelfiles::rowText;
using modelfiles::writeFile;

class ModelFile : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) {
    const std::string file = folder_.file(name);
    writeFile(file, text);
    return file;
  }

  ztbtest::TempFolder folder_;
};

TEST_F(ModelFile, endingTellsTheReaderInAnyCase) {
  EXPECT_EQ("min 1 x + 0", rowText(lomu::readModelFile(write("a.LP", "min x\nend\n"), ""), 0));
  EXPECT_EQ("min 1 x + 0",
            rowText(lomu::readModelFile(write("a.Mod", "var x; minimize o: x; end;\n"), ""), 0));
  const std::string mps = "NAME\nROWS\n N c\nCOLUMNS\n x c 1\nENDATA\n";
  EXPECT_EQ("min 1 x + 0", rowText(lomu::readModelFile(write("a.MPS", mps), ""), 0));
}

TEST_F(ModelFile, errorOfAnLpFileNamesFileAndLine) {
  const std::string file = write("a.lp", "min x\nst\nfoo\n");
  EXPECT_EQ(file + ":4:1: found the end of the file, expected \"<=\", \">=\" or \"=\"",
            fileRefusal(file));
}

TEST_F(ModelFile, unknownEnding) {
  for (const std::string name : {"a.txt", "a", ".lp", "a.mod.gz", "a.gz", "a.mps.zip", ""}) {
    EXPECT_EQ(name + ": unknown ending, expected .lp, .lp.gz, .mps, .mps.gz or .mod",
              fileRefusal(name));
  }
}

TEST_F(ModelFile, missingFile) {
  for (const std::string name : {"a.lp", "a.lp.gz", "a.mps", "a.mps.gz", "a.mod"}) {
    const std::string file = folder_.file(name);
    EXPECT_EQ(file + ": No such file or directory, expected a file that can be read",
              fileRefusal(file));
  }
}

TEST_F(ModelFile, folder) {
  const std::string file = folder_.file("a.mps");
  std::filesystem::create_directory(file);
  EXPECT_EQ(file + ": this is a folder, expected a file", fileRefusal(file));
}

TEST_F(ModelFile, noOrdinaryFile) {
  const std::string file = folder_.file("a.mod");
  std::filesystem::create_symlink("/dev/null", file);
  EXPECT_EQ(file + ": this is no ordinary file, expected one", fileRefusal(file));
}

TEST_F(ModelFile, emptyFile) {
  for (const std::string name : {"a.lp", "a.lp.gz", "a.mps", "a.mps.gz", "a.mod"}) {
    const std::string file = write(name, "");
    EXPECT_EQ(file + ":1:1: the file is empty, expected text", fileRefusal(file));
  }
}

TEST_F(ModelFile, fileNameTooLongForTheReader) {
  std::string file = folder_.path().string();
  while (file.size() < 1000) file += "/.";
  file += "/a.mod";
  write("a.mod", "var x;\nend;\n");
  EXPECT_EQ(file + ": the file name has " + std::to_string(file.size()) +
                " characters, expected at most 1000",
            fileRefusal(file));
}

TEST_F(ModelFile, packedFilesAreReadLikePlainOnes) {
  write("a.lp", "min 2 x\nst\nc: x >= 1\nend\n");
  modelfiles::packFile(folder_.file("a.lp"));
  EXPECT_EQ("min 2 x + 0", rowText(lomu::readModelFile(folder_.file("a.lp.gz"), ""), 0));
}

TEST_F(ModelFile, packedFileThatIsCutOffOrNotPackedIsRefused) {
  std::string text = "min 0 x0\nst\n";
  for (int i = 1; i < 5000; ++i) text += "x" + std::to_string(i * i) + " >= 1\n";
  write("a.lp", text + "end\n");
  const std::string file = folder_.file("a.lp.gz");
  modelfiles::packFile(folder_.file("a.lp"));
  std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
  const std::string refusal = fileRefusal(file);
  EXPECT_EQ(file + ": the packed file is damaged or cut off (",
            refusal.substr(0, refusal.find('(') + 1));
  write("b.lp.gz", text + "end\n");
  EXPECT_EQ(folder_.file("b.lp.gz") + ": the file is not packed, expected what gzip writes",
            fileRefusal(folder_.file("b.lp.gz")));
}

TEST_F(ModelFile, dataFileGoesWithMathProgOnly) {
  const std::string file = write("a.lp", "min x\n");
  EXPECT_EQ(file +
                ": this kind of model takes no data file, expected none beside it but a.dat was "
                "given",
            fileRefusal(file, "a.dat"));
}

TEST_F(ModelFile, missingDataFile) {
  const std::string file = write("a.mod", "var x;\nend;\n");
  const std::string data = folder_.file("a.dat");
  EXPECT_EQ(data + ": No such file or directory, expected a file that can be read",
            fileRefusal(file, data));
}

}  // namespace
