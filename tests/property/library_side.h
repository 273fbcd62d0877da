// The library under test, driven by the same questions as the model and answering in the same form.
#ifndef ZTB_TESTS_PROPERTY_LIBRARY_SIDE_H_
#define ZTB_TESTS_PROPERTY_LIBRARY_SIDE_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/property/model.h"
#include "tests/support/database.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {

class LibrarySide {
 public:
  LibrarySide() : database_(std::make_unique<Database>()) {}

  std::string lastError() const { return database_->lastError(); }
  int info(int key) const { return database_->info(key); }

  Answer mergeLabel(const std::string& label);
  Answer findLabel(const std::string& label);
  Answer labelOf(int number);

  Answer addSymbol(const std::string& name, int dim, int type, int userInfo,
                   const std::string& text);
  Answer findSymbol(const std::string& name, bool resolveAlias);
  Answer symbolByIndex(int index);
  Answer symbolByNumber(int number);
  Answer countRecords(size_t symbol);
  Answer clear(size_t symbol);
  void setUserInfo(size_t symbol, int userInfo);
  // Name, text, dimension, type, user information and number in one text.
  std::string description(size_t symbol);

  Answer addRecord(size_t symbol, const std::vector<std::string>& labels);
  Answer mergeRecord(size_t symbol, const std::vector<std::string>& labels);
  Answer findRecord(size_t symbol, const std::vector<std::string>& labels);
  Answer storeByNumber(size_t symbol, const Key& key, bool check, const Slots* values);
  Answer storeSetByNumber(size_t symbol, const Key& key, bool check, const std::string* text);
  Answer findInSlice(size_t symbol, const std::vector<std::string>& labels, bool last);
  Answer findFirstOrLast(size_t symbol, bool last);

  bool hasCursor() const { return cursor_.has_value(); }
  void dropCursor() { cursor_.reset(); }
  // Replaces the cursor by a copy.
  Answer copyCursor();
  Answer moveNext();
  Answer movePrev();
  Answer hasNext();
  Answer hasPrev();
  Answer readSlot(int slot);
  Answer writeSlot(int slot, double value);
  Answer readText();
  Answer writeText(const std::string& text);
  Answer readKey(int index);
  Answer erase();
  // Numbers and first value of the record under the cursor.
  std::string rawRecord(int dim);

  Answer closeFile(bool loadRemain);
  void setSpecialValues(const std::array<double, 5>& spelling);
  // Writes to a new file.
  Answer write();
  // Opens the file that was written last in a new database.
  void reopen();

 private:
  void* symbolAt(size_t position) const;
  int positionOf(void* symbol) const;
  Answer foundSymbol(int result, void* symbol) const;
  Answer foundRecord(int result, void* record);

  TempFolder folder_;
  int fileCount_ = 0;
  std::unique_ptr<Database> database_;
  std::optional<Record> cursor_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_PROPERTY_LIBRARY_SIDE_H_
