// A file is published whole at closing or not at all, through the built library.

#include <gtest/gtest.h>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

Content labelled(const std::string& label) {
  return {{label}, {}, {{"p", kParameter, 1, 0, "", {record({1}, {1})}, 0, {}, ""}}};
}

void write(const std::string& path, const Content& content) {
  PeerFile file;
  ASSERT_EQ(file.openWrite(path), 0);
  writeContent(file, content);
  ASSERT_EQ(file.close(), 0);
}

Content read(const std::string& path) {
  PeerFile file;
  EXPECT_EQ(file.openRead(path), 0);
  return readContent(file);
}

TEST(Publishing, freeingWithoutClosingLeavesNothingAndTheOldFileUntouched) {
  const TempFolder folder;
  write(folder.file("x"), labelled("old"));
  const std::string before = readFile(folder.file("x"));
  {
    PeerFile file;
    ASSERT_EQ(file.openWrite(folder.file("x")), 0);
    writeContent(file, labelled("new"));
    EXPECT_EQ(file.errorCount(), 0);
  }
  EXPECT_EQ(readFile(folder.file("x")), before);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(Publishing, aFileThatIsOpenForReadingCanBeWrittenOver) {
  const TempFolder folder;
  write(folder.file("x"), labelled("old"));
  PeerFile reader;
  ASSERT_EQ(reader.openRead(folder.file("x")), 0);
  write(folder.file("x"), labelled("new"));
  EXPECT_TRUE(readContent(reader) == labelled("old"));
  EXPECT_TRUE(read(folder.file("x")) == labelled("new"));
}

TEST(Publishing, countingErrorsBetweenChangesLosesNothing) {
  const TempFolder folder;
  PeerFile file;
  ASSERT_EQ(file.openWrite(folder.file("x")), 0);
  EXPECT_EQ(file.errorCount(), 0);
  file.startLabels();
  file.addLabel("one");
  EXPECT_EQ(file.errorCount(), 0);
  file.finishLabels();
  EXPECT_EQ(file.errorCount(), 0);
  file.startWriting("p", "", 1, kParameter, 0);
  const int key = 1;
  const double value = 1;
  EXPECT_EQ(file.errorCount(), 0);
  file.write(&key, &value);
  EXPECT_EQ(file.errorCount(), 0);
  file.finishWriting();
  EXPECT_EQ(file.errorCount(), 0);
  file.addText("t");
  EXPECT_EQ(file.errorCount(), 0);
  EXPECT_EQ(file.errorCount(), 0);
  EXPECT_EQ(file.close(), 0);
  Content expected = labelled("one");
  expected.texts = {"t"};
  EXPECT_TRUE(read(folder.file("x")) == expected);
}

TEST(Publishing, countingErrorsDoesNotChangeTheFile) {
  const TempFolder folder;
  write(folder.file("x"), smallContent());
  {
    PeerFile file;
    ASSERT_EQ(file.openWrite(folder.file("y")), 0);
    writeContent(file, smallContent());
    file.errorCount();
    file.addText("more");
    file.errorCount();
    EXPECT_EQ(file.close(), 0);
  }
  Content more = smallContent();
  more.texts.emplace_back("more");
  write(folder.file("z"), more);
  EXPECT_TRUE(readFile(folder.file("y")) == readFile(folder.file("z")));
}

TEST(Publishing, withDomainSetsOffTheErrorCountPublishesAndFreeingKeepsTheFile) {
  const TempFolder folder;
  write(folder.file("x"), labelled("old"));
  {
    PeerFile file;
    ASSERT_EQ(file.openWrite(folder.file("x")), 0);
    file.storeDomainSets(false);
    writeContent(file, labelled("new"));
    EXPECT_TRUE(read(folder.file("x")) == labelled("old"));
    EXPECT_EQ(file.errorCount(), 0);
    EXPECT_TRUE(read(folder.file("x")) == labelled("new"));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
    EXPECT_EQ(file.errorCount(), 0);
  }
  EXPECT_TRUE(read(folder.file("x")) == labelled("new"));
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(Publishing, nothingIsPublishedBeforeTheLabelsOrWithAnythingOpen) {
  const TempFolder folder;
  PeerFile file;
  ASSERT_EQ(file.openWrite(folder.file("x")), 0);
  file.storeDomainSets(false);
  const auto countsAndPublishesNothing = [&] {
    EXPECT_EQ(file.errorCount(), 0);
    return folder.names() == std::vector<std::string>{".x.0.rxftmp"};
  };
  EXPECT_TRUE(countsAndPublishesNothing());
  file.startLabels();
  file.addLabel("one");
  EXPECT_TRUE(countsAndPublishesNothing());
  file.finishLabels();
  file.startWriting("p", "", 1, kParameter, 0);
  EXPECT_TRUE(countsAndPublishesNothing());
  file.finishWriting();
  EXPECT_FALSE(countsAndPublishesNothing());
}

TEST(Publishing, whatIsWrittenBehindAPublishingGoesIntoACopyThatReplacesItWhenItIsWhole) {
  const TempFolder folder;
  Content large = labelled("one");
  for (int i = 0; i < 70000; ++i) large.labels.push_back("label " + std::to_string(i));
  for (int i = 2; i <= 70000; ++i) large.symbols[0].records.push_back(record({i}, {i * 0.37}));
  {
    PeerFile file;
    ASSERT_EQ(file.openWrite(folder.file("x")), 0);
    file.storeDomainSets(false);
    writeContent(file, large);
    ASSERT_EQ(file.errorCount(), 0);
    file.addText("t");
    EXPECT_EQ(folder.names(), (std::vector<std::string>{".x.0.rxftmp", "x"}));
    EXPECT_TRUE(read(folder.file("x")) == large);
    large.texts = {"t"};
    EXPECT_EQ(file.errorCount(), 0);
    EXPECT_TRUE(read(folder.file("x")) == large);
    file.addText("never published");
  }
  EXPECT_TRUE(read(folder.file("x")) == large);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
  write(folder.file("y"), large);
  EXPECT_TRUE(readFile(folder.file("x")) == readFile(folder.file("y")));
}

TEST(Publishing, aRefusedRecordKeepsTheOldFileOnEveryWay) {
  const TempFolder folder;
  write(folder.file("x"), labelled("old"));
  const std::string before = readFile(folder.file("x"));
  Content refused = labelled("new");
  refused.symbols[0].records.push_back(record({1}, {2}));
  for (const bool domainSets : {true, false}) {
    for (const bool counted : {true, false}) {
      PeerFile file;
      ASSERT_EQ(file.openWrite(folder.file("x")), 0);
      file.storeDomainSets(domainSets);
      writeContent(file, refused);
      if (counted) {
        EXPECT_EQ(file.errorCount(), 1);
        EXPECT_EQ(file.takeLastError(), 21);
        EXPECT_EQ(file.close(), 10);
      } else {
        EXPECT_EQ(file.close(), 21);
      }
      EXPECT_EQ(readFile(folder.file("x")), before);
      EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
    }
  }
}

TEST(Publishing, aRefusedStrictDomainDoesNotKeepTheFile) {
  const TempFolder folder;
  PeerFile file;
  ASSERT_EQ(file.openWrite(folder.file("x")), 0);
  file.storeDomainSets(false);
  Content content = labelled("new");
  content.symbols[0].domainKind = 3;
  content.symbols[0].domain = {"nowhere"};
  writeContent(file, content);
  EXPECT_EQ(file.errorCount(), 1);
  EXPECT_EQ(file.takeLastError(), 22);
  EXPECT_TRUE(read(folder.file("x")) == labelled("new"));
  EXPECT_EQ(file.close(), 0);
  EXPECT_TRUE(read(folder.file("x")) == labelled("new"));
}

TEST(Publishing, anObjectCanBeUsedForOneFileAfterAnother) {
  const TempFolder folder;
  PeerFile file;
  for (const char* name : {"x", "y"}) {
    ASSERT_EQ(file.openWrite(folder.file(name)), 0);
    writeContent(file, labelled(name));
    ASSERT_EQ(file.close(), 0);
    ASSERT_EQ(file.openRead(folder.file(name)), 0);
    EXPECT_TRUE(readContent(file) == labelled(name));
    ASSERT_EQ(file.close(), 0);
  }
}

TEST(Publishing, theSameContentGivesTheSameBytes) {
  const TempFolder folder;
  write(folder.file("x"), smallContent());
  write(folder.file("y"), smallContent());
  EXPECT_TRUE(readFile(folder.file("x")) == readFile(folder.file("y")));
}

}  // namespace
}  // namespace rxftest
