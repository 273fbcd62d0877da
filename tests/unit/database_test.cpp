// The database object: what it starts with, how it answers without an exchange-file peer, and what
// its end frees.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include "core/frame.h"
#include "core/operations.h"
#include "core/ztb.h"
#include "peers/platform.h"
#include "peers/rgy_family.h"
#include "peers/rxf_family.h"
#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;

// Opened on a folder without a peer library.
class Database : public testing::Test {
 protected:
  static std::string emptyFolder() {
    return (std::filesystem::temp_directory_path() / "no such folder").string();
  }

  // Asks the database for another symbol without domains.
  AbstractZTBSymbol* add(const char* name, int type, int dim) {
    SymbolDescription description;
    description.name = name;
    description.type = type;
    description.dim = dim;
    AbstractZTBSymbol* const universe = db_.universe.get();
    return db_.addSymbol(description, std::array{universe, universe}.data(), nullptr);
  }

  ZTB db_{emptyFolder().c_str()};
};

TEST_F(Database, startsEmpty) {
  EXPECT_EQ(dmap::StorageKind::dMap, db_.recordStorage);
  EXPECT_EQ(Source::none, db_.initFrom);
  EXPECT_EQ("", db_.rxfFileName);
  EXPECT_EQ(emptyFolder(), db_.sysDir);
  EXPECT_TRUE(db_.symbols.empty());
  EXPECT_EQ(1, db_.uels.size());
  EXPECT_EQ(1, db_.textPool.size());
  EXPECT_STREQ("", db_.textPool.at(0));
  EXPECT_EQ(0, db_.dvState);
  EXPECT_FALSE(db_.writeRecording);
  EXPECT_FALSE(db_.altBounds);
  EXPECT_FALSE(db_.solverLoaded);
  EXPECT_EQ(0, db_.solverNumber);
  EXPECT_EQ(0, db_.colCount);
  EXPECT_EQ(0, db_.rowCount);
  for (const void* handle : {db_.solverAlg, db_.pbi, db_.snv, db_.nmt, db_.rgy}) {
    EXPECT_EQ(nullptr, handle);
  }
  EXPECT_EQ(nullptr, db_.logCallback);
  EXPECT_EQ(nullptr, db_.hvexUserMem);
  EXPECT_EQ(nullptr, db_.hvexEntries.findSymbol);
  EXPECT_EQ(nullptr, db_.hvexEntries.dataReadRawStart);
  EXPECT_EQ(nullptr, db_.hvexEntries.dataReadRaw);
  EXPECT_EQ(nullptr, db_.hvexEntries.dataReadDone);
  EXPECT_EQ(nullptr, db_.hvexEntries.getElemText);
}

TEST_F(Database, hasAUniverseThatIsNotInTheTable) {
  const AbstractZTBSymbol& universe = *db_.universe;
  EXPECT_EQ("*", universe.name);
  EXPECT_EQ("universe", universe.text);
  EXPECT_EQ(1, universe.dim);
  EXPECT_EQ(dmap::typeSet, universe.type);
  EXPECT_EQ(-1, universe.symbolNumber);
  EXPECT_EQ(0, universe.userInfo);
  EXPECT_TRUE(universe.loaded);
  EXPECT_EQ(&db_, universe.database);
  EXPECT_FALSE(db_.symbols.contains("*"));
  EXPECT_EQ(&universe, db_.lookUp("*"));
}

TEST_F(Database, startsWithTheInternalSpecialValuesUnmapped) {
  const auto sameAsInternal = [](const SpecialValues& values) {
    return std::ranges::equal(values, internalSpecialValues, sameBits);
  };
  EXPECT_TRUE(sameAsInternal(db_.specialValues));
  EXPECT_TRUE(sameAsInternal(db_.userSpecialValues));
  EXPECT_EQ(SpecialValues{}, db_.hvexSpecialValues);
  EXPECT_EQ(SpecialValueMode::none, db_.specialValueMode);
}

TEST_F(Database, saysThatThePeerIsMissingAndKeepsItsWords) {
  EXPECT_EQ(nullptr, db_.rxf);
  const peers::platform::FileNaming& naming = peers::platform::fileNaming;
  const std::string file =
      emptyFolder() + naming.separator + naming.prefix + "rxfcclib" + naming.bits + naming.suffix;
  const std::string reason = "Could not load shared library " + file + ": ";
  EXPECT_EQ(reason, std::string(db_.peerMessage).substr(0, reason.size()));
  EXPECT_EQ("RXF create did not succeed: " + std::string(db_.peerMessage), db_.lastError);
}

TEST_F(Database, keepsAtMost227CharsOfThePeersWords) {
  const ZTB db(("/" + std::string(400, 'd')).c_str());
  EXPECT_EQ(("Could not load shared library /" + std::string(400, 'd')).substr(0, 227),
            db.peerMessage);
}

TEST_F(Database, worksWithoutAPeer) {
  AbstractZTBSymbol* symbol = add("p", dmap::typeParameter, 1);
  ASSERT_NE(nullptr, symbol);
  EXPECT_EQ(Source::db, db_.initFrom);
  EXPECT_TRUE(db_.ensureLoaded(*symbol));
  EXPECT_NE(nullptr, symbol->addRecord(Keys{1}.data(), nullptr, nullptr));
}

TEST_F(Database, openingAFileWithoutAPeerFailsAndLeavesTheDatabaseAsItWas) {
  db_.fail("earlier");
  EXPECT_EQ(0, db_.InitFromRXF("x.rxf"));
  EXPECT_EQ("RXF create did not succeed: " + std::string(db_.peerMessage), db_.lastError);
  EXPECT_EQ(Source::none, db_.initFrom);
  EXPECT_EQ("", db_.rxfFileName);
}

TEST_F(Database, writingAFileWithoutAPeerFails) {
  add("p", dmap::typeParameter, 1);
  db_.fail("earlier");
  EXPECT_EQ(0, db_.WriteRXF("x.rxf", 0));
  EXPECT_EQ("RXF create did not succeed: " + std::string(db_.peerMessage), db_.lastError);
  EXPECT_EQ(0, peers::rxfFamily.state.objectCount);
  EXPECT_EQ(1, db_.symbols.size());
}

TEST_F(Database, closingAFileWithoutOneFails) {
  EXPECT_EQ(0, db_.CloseRXF(true));
  EXPECT_STREQ("Database not initialized from RXF", db_.lastError);
}

TEST_F(Database, aSymbolOfTheApiIsLoadedFromTheStart) {
  AbstractZTBSymbol* symbol = add("p", dmap::typeParameter, 1);
  db_.fail("earlier");
  EXPECT_TRUE(db_.ensureLoaded(*symbol));
  EXPECT_STREQ("earlier", db_.lastError);
}

TEST_F(Database, aSymbolWithoutASourceFailsToLoadOnceWithTheStateInTheMessage) {
  AbstractZTBSymbol* symbol = add("p", dmap::typeParameter, 1);
  symbol->loaded = false;
  EXPECT_FALSE(db_.ensureLoaded(*symbol));
  EXPECT_STREQ("Symbol p not initialized from RXF or PBI: 3", db_.lastError);
  EXPECT_TRUE(symbol->loaded);
  EXPECT_TRUE(db_.ensureLoaded(*symbol));
  EXPECT_TRUE(symbol->isEmpty());
}

TEST_F(Database, aSymbolOfANewDatabaseFailsToLoadWith0InTheMessage) {
  const auto symbol = unittest::symbolOf(1, dmap::typeSet);
  symbol->loaded = false;
  EXPECT_FALSE(db_.ensureLoaded(*symbol));
  EXPECT_STREQ("Symbol s not initialized from RXF or PBI: 0", db_.lastError);
}

TEST_F(Database, lookUpFoldsCaseAndLeavesAnAliasUnresolved) {
  AbstractZTBSymbol* set = add("i", dmap::typeSet, 1);
  AbstractZTBSymbol* alias = add("j", dmap::typeAlias, 1);
  EXPECT_EQ(set, db_.lookUp("I"));
  EXPECT_EQ(alias, db_.lookUp("J"));
  EXPECT_EQ(set, alias->aliasTarget);
  EXPECT_EQ(nullptr, db_.lookUp("k"));
}

TEST_F(Database, aRefusedNameLeavesItWithoutASource) {
  void* symbol = nullptr;
  EXPECT_EQ(0, ztbAddSymbol(handleOf(&db_), "1", 1, dmap::typeSet, 0, "", &symbol));
  EXPECT_EQ(0, ztbAddSymbolX(handleOf(&db_), nullptr, 0, dmap::typeParameter, 0, "", nullptr,
                             nullptr, &symbol));
  EXPECT_EQ(Source::none, db_.initFrom);
}

TEST_F(Database, aRefusedDomainTakesItOutOfItsNewStateAllTheSame) {
  ZTB other(emptyFolder().c_str());
  void* domain = other.universe.get();
  void* symbol = nullptr;
  EXPECT_EQ(1, ztbAddSymbolX(handleOf(&db_), "p", 1, dmap::typeParameter, 0, "", &domain, nullptr,
                             &symbol));
  EXPECT_EQ(nullptr, symbol);
  EXPECT_STREQ("Universe from different database", db_.lastError);
  EXPECT_EQ(Source::db, db_.initFrom);
}

TEST_F(Database, aSetIsMarkedAsSoonAsASymbolNamesItAsDomain) {
  AbstractZTBSymbol* set = add("i", dmap::typeSet, 1);
  AbstractZTBSymbol* other = add("k", dmap::typeSet, 1);
  SymbolDescription description;
  description.name = "p";
  description.dim = 2;
  description.type = dmap::typeParameter;
  ASSERT_NE(nullptr,
            db_.addSymbol(description, std::array{set, db_.universe.get()}.data(), nullptr));
  EXPECT_TRUE(set->usedAsDomain);
  EXPECT_FALSE(other->usedAsDomain);
  EXPECT_FALSE(db_.universe->usedAsDomain);
}

TEST_F(Database, freeingAnEmptyHandleSucceedsAndLeavesItEmpty) {
  ztbRec* handle = nullptr;
  EXPECT_EQ(1, ztbFree(&handle));
  EXPECT_EQ(nullptr, handle);
  std::array<char, 256> message{};
  ASSERT_EQ(1, ztbCreateD(&handle, emptyFolder().c_str(), message.data()));
  EXPECT_EQ(1, ztbFree(&handle));
  EXPECT_EQ(1, ztbFree(&handle));
  EXPECT_EQ(nullptr, handle);
}

TEST_F(Database, textNumbersAreThePlacesInThePool) {
  EXPECT_EQ(0, db_.textNumber(""));
  EXPECT_EQ(1, db_.textNumber("a food"));
  EXPECT_EQ(2, db_.textNumber("a nutrient"));
  EXPECT_EQ(1, db_.textNumber("A FOOD"));
  EXPECT_EQ(3, db_.textPool.size());
}

TEST_F(Database, aLongMessageIsCutTo255Chars) {
  EXPECT_EQ(0, db_.fail("%s", std::string(300, 'x').c_str()));
  EXPECT_EQ(std::string(255, 'x'), db_.lastError);
}

// The end of a database that holds an object of the solver catalogue, which writes down its calls.
class DatabaseWithSolver : public testing::Test {
 protected:
  DatabaseWithSolver() {
    std::array<char, 256> message{};
    EXPECT_TRUE(peers::rgyCreateD(&db_->rgy, CATALOGUE_PEER_DIRECTORY, message.data(),
                                  static_cast<int>(message.size())))
        << message.data();
    db_->solverNumber = 2;
    db_->solverLoaded = true;
    db_->solverAlg = &solver_;
  }

  // What the end of the database asks of the catalogue.
  std::string callsOfTheEnd() {
    calls();
    const int objects = peers::rgyFamily.state.objectCount;
    db_.reset();
    EXPECT_EQ(objects - 1, peers::rgyFamily.state.objectCount);
    return calls();
  }

  static std::string calls() {
    void* library = dlopen(CATALOGUE_PEER, RTLD_NOW);
    const std::string result =
        reinterpret_cast<const char* (*)()>(dlsym(library, "catalogueCalls"))();
    dlclose(library);
    return result;
  }

  std::unique_ptr<ZTB> db_ = std::make_unique<ZTB>("/no such folder");
  int solver_ = 9;
};

TEST_F(DatabaseWithSolver, freesTheSolverByItsNumberAndThenTheCatalogue) {
  EXPECT_EQ("rgyAlgFree 7 2 9\nrgyXFree\n", callsOfTheEnd());
}

TEST_F(DatabaseWithSolver, freesTheCatalogueAloneWithoutASolverNumber) {
  db_->solverNumber = 0;
  EXPECT_EQ("rgyXFree\n", callsOfTheEnd());
}

TEST_F(DatabaseWithSolver, freesTheCatalogueAloneWhenTheSolverIsNotLoaded) {
  db_->solverLoaded = false;
  EXPECT_EQ("rgyXFree\n", callsOfTheEnd());
}

TEST_F(DatabaseWithSolver, freesTheCatalogueAloneWithoutASolverObject) {
  db_->solverAlg = nullptr;
  EXPECT_EQ("rgyXFree\n", callsOfTheEnd());
}

TEST_F(DatabaseWithSolver, leavesTheModelItsEnvironmentAndItsDictionaryToTheCaller) {
  int model = 0;
  db_->pbi = &model;
  db_->snv = &model;
  db_->nmt = &model;
  EXPECT_EQ("rgyAlgFree 7 2 9\nrgyXFree\n", callsOfTheEnd());
}

}  // namespace
}  // namespace ztb
