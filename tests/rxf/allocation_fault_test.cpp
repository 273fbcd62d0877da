// Every allocation of a write and of a read fails once: no exception, no leak, the file is the old
// one or the new one, and the failure is told.

#include <gtest/gtest.h>

#include <memory>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/failing_new.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;

// The operations as the exported functions run them.
class GuardedObject {
 public:
  GuardedObject() : object_(std::make_unique<RxfObject>(rxffile::operatingSystem())) {}

  int openRead(const std::string& path) {
    const FailingNew::Armed armed;
    return object_->openRead(path.c_str());
  }
  int openWrite(const std::string& path) {
    const FailingNew::Armed armed;
    return object_->openWrite(path.c_str(), "");
  }
  int close() {
    const FailingNew::Armed armed;
    return object_->close();
  }
  int errorCount() {
    const FailingNew::Armed armed;
    return object_->errorCount();
  }
  int takeLastError() { return object_->takeLastError(); }

  bool startLabels() {
    return run([&] { return object_->startLabels(); });
  }
  bool addLabel(const char* label) {
    return run([&] { return object_->addLabel(label); });
  }
  bool finishLabels() {
    return run([&] { return object_->finishLabels(); });
  }
  bool addAlias(const char* alias, const char* target) {
    return run([&] { return object_->addAlias(alias, target); });
  }
  bool addText(const char* text) {
    return run([&] { return object_->addText(text) != 0; });
  }
  bool startWriting(const char* name, const char* text, int dim, int type, int userInfo) {
    return run([&] { return object_->startWriting(name, text, dim, type, userInfo); });
  }
  bool write(const int* keys, const double* values) {
    return run([&] { return object_->write(keys, values); });
  }
  bool finishWriting() {
    return run([&] { return object_->finishWriting(); });
  }
  bool setDomain(const char* const* names) {
    return run([&] { return object_->setDomain(names); });
  }
  bool setDomainNames(int number, const char* const* names) {
    return run([&] { return object_->setDomainNames(number, names); });
  }
  int startReading(int number, bool& started) {
    int count = 0;
    run([&] {
      count = object_->startReading(number, started);
      return true;
    });
    return count;
  }
  bool read(int* keys, double* values, int* firstChanged) {
    return run([&] { return object_->read(keys, values, firstChanged); });
  }
  bool finishReading() {
    return run([&] { return object_->finishReading(); });
  }

 private:
  template <typename Body>
  bool run(const Body& body) {
    const FailingNew::Armed armed;
    try {
      return body();
    } catch (...) {
      object_->takeException();
      return false;
    }
  }

  std::unique_ptr<RxfObject> object_;
};

TEST(AllocationFault, ofAWriteLeavesTheOldFileAndIsCounted) {
  const TempFolder folder;
  const std::string path = folder.file("x");
  {
    GuardedObject object;
    ASSERT_EQ(object.openWrite(path), 0);
    ASSERT_EQ(object.close(), 0);
  }
  const std::string old = readFile(path);
  const Content content = smallContent();
  for (int at = 1;; ++at) {
    SCOPED_TRACE(at);
    bool failed = false;
    {
      GuardedObject object;
      const FailingNew failing(at);
      if (object.openWrite(path) == 0) {
        writeContent(object, content);
        const int errors = object.errorCount();
        failed = FailingNew::failed();
        if (failed) {
          EXPECT_EQ(errors, 1);
          EXPECT_EQ(object.takeLastError(), 33);
        }
        EXPECT_EQ(object.close() != 0, failed);
      } else {
        failed = true;
        EXPECT_EQ(object.takeLastError(), 33);
      }
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
    if (!failed) {
      EXPECT_GT(at, 20);
      break;
    }
    EXPECT_TRUE(readFile(path) == old);
  }
}

TEST(AllocationFault, ofAReadGivesNoWrongRecordAndIsCounted) {
  const TempFolder folder;
  const std::string path = folder.file("x");
  {
    GuardedObject object;
    ASSERT_EQ(object.openWrite(path), 0);
    writeContent(object, smallContent());
    ASSERT_EQ(object.close(), 0);
  }
  const Content expected = smallContent();
  for (int at = 1;; ++at) {
    SCOPED_TRACE(at);
    GuardedObject object;
    const FailingNew failing(at);
    if (object.openRead(path) != 0) {
      EXPECT_EQ(object.takeLastError(), 33);
      continue;
    }
    for (int i = 1; i <= 9; ++i) {
      if (expected.symbols[static_cast<std::size_t>(i) - 1].type == kAlias) continue;
      bool started = false;
      const int count = object.startReading(i, started);
      std::array<int, 20> keys{};
      std::array<double, 5> values{};
      int firstChanged = 0;
      for (int r = 0; r < count; ++r) {
        ASSERT_TRUE(object.read(keys.data(), values.data(), &firstChanged));
      }
      if (started) object.finishReading();
    }
    if (!FailingNew::failed()) {
      EXPECT_EQ(object.errorCount(), 0);
      EXPECT_GT(at, 20);
      break;
    }
    EXPECT_EQ(object.takeLastError(), 33);
  }
}

}  // namespace
}  // namespace rxftest
