// Allocations that fail while a database works with a model. The peers allocate nothing here.
#include <algorithm>
#include <functional>

#include "tests/bridge/bridge_fixture.h"
#include "tests/fault/failing_allocation.h"
#include "tests/fault/fault_loop.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

constexpr const char* longName = "a_variable_with_a_name_that_is_longer_than_a_small_string";

class BridgeFaults : public BridgeTest {
 protected:
  BridgeFaults() {
    symbol(longName, 2, 5, 0, "a text that is longer than what a small string can hold");
    column({1, 3}, {1, 2, 3, 4, 5});
    column({2, 4}, {6, 7, 8, 9, 1});
    // Whatever is kept for good from the first use is there before anything is counted.
    prepare();
    EXPECT_EQ(1, solve("dual"));
    renew();
  }

  static void initialise(Database& fresh, void* model) {
    lib().c__ztbinitfromdict(fresh, model);
    lib().c__ztbinitupdate(fresh, nullptr);
  }

  struct Attempt {
    int result = -1;
    bool happened = false;
    std::string printed;
  };

  static Attempt attempt(long number, Failures failures, const std::function<int()>& operate) {
    Attempt attempt;
    StdoutCapture capture;
    {
      const FailingAllocation failing(number, failures);
      attempt.result = operate();
      attempt.happened = failing.happened();
    }
    attempt.printed = capture.text();
    return attempt;
  }

  // Runs `survives` with the first, second, ... allocation failing until it needs no further one.
  void forEveryAllocation(const std::function<bool(Database&, long, Failures)>& survives) {
    for (const Failures failures : {Failures::one, Failures::allFromThere}) {
      long number = 1;
      for (bool goesOn = true; goesOn && !HasFailure(); ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number) +
                     (failures == Failures::one ? "" : " and all that follow"));
        const long before = liveAllocations();
        {
          Database fresh(SystemDirectory{scripted::ModelClient::directory()});
          goesOn = survives(fresh, number, failures);
        }
        EXPECT_EQ(before, liveAllocations()) << "allocations are left";
        EXPECT_EQ(0, model_.alive("search"));
      }
      EXPECT_LT(2, number);
    }
  }

  static void expectOutOfMemory(const Database& fresh, const Attempt& attempt,
                                const std::string& operation) {
    const std::string text = "Out of memory in " + operation;
    EXPECT_EQ(0, attempt.result);
    EXPECT_EQ(text, fresh.lastError());
    EXPECT_EQ(text + "\n", attempt.printed);
  }
};

// There is no way back: what stands in the database when memory runs out stays, and is whole.
TEST_F(BridgeFaults, initialisingFromADictionary) {
  Database whole(SystemDirectory{scripted::ModelClient::directory()});
  initialise(whole, model_.handle());
  const Contents wanted = contentsOf(whole);
  forEveryAllocation([&](Database& fresh, long number, Failures failures) {
    void* const model = model_.handle();
    const Attempt tried =
        attempt(number, failures, [&] { return lib().c__ztbinitfromdict(fresh, model); });
    if (!tried.happened) {
      EXPECT_EQ(1, tried.result);
      return false;
    }
    expectOutOfMemory(fresh, tried, "ztbInitFromDict");
    const bool anyLabel = fresh.info(ZTB_INFO_UEL_COUNT) > 0;
    EXPECT_EQ(anyLabel ? 0 : 1, lib().c__ztbinitfromdict(fresh, model));
    EXPECT_EQ(1, lib().c__ztbinitupdate(fresh, nullptr));
    const Contents left = contentsOf(fresh);
    EXPECT_LE(left.symbols.size(), wanted.symbols.size());
    for (std::size_t i = 0; i < left.symbols.size(); ++i) {
      EXPECT_EQ(wanted.symbols[i].first, left.symbols[i].first);
      if (left.labels == wanted.labels) {
        EXPECT_EQ(wanted.symbols[i].second, left.symbols[i].second);
      }
      void* const symbol = fresh.find(left.symbols[i].first.c_str());
      const int dim = fresh.symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION);
      void* domains[ZTB_MAX_DIMENSION] = {};
      TextBuffers names;
      EXPECT_EQ(1, lib().c__ztbgetdomain(fresh, symbol, dim, domains, names));
      EXPECT_EQ(dim, std::count(domains, domains + ZTB_MAX_DIMENSION, fresh.universe()));
    }
    return true;
  });
}

TEST_F(BridgeFaults, preparingUpdates) {
  forEveryAllocation([&](Database& fresh, long number, Failures failures) {
    EXPECT_EQ(1, lib().c__ztbinitfromdict(fresh, model_.handle()));
    const Attempt tried =
        attempt(number, failures, [&] { return lib().c__ztbinitupdate(fresh, nullptr); });
    if (!tried.happened) {
      EXPECT_EQ(1, tried.result);
      return false;
    }
    expectOutOfMemory(fresh, tried, "ztbInitUpdate");
    EXPECT_EQ(1, lib().c__ztbinitupdate(fresh, nullptr));
    return true;
  });
}

TEST_F(BridgeFaults, updatingASymbol) {
  forEveryAllocation([&](Database& fresh, long number, Failures failures) {
    initialise(fresh, model_.handle());
    void* const symbol = fresh.find(longName);
    void* const data = fresh.addParameter("a_parameter_with_a_name_longer_than_a_string", 2);
    fresh.put(data, {"milk", "protein"}, 3.0);
    int noMatch = -1;
    const auto operate = [&] {
      return lib().c__ztbupdatemodelsymbol(fresh, symbol, 0, data, 1, &noMatch);
    };
    const Attempt tried = attempt(number, failures, operate);
    if (!tried.happened) {
      EXPECT_EQ(1, tried.result);
      EXPECT_EQ(0, noMatch);
      return false;
    }
    expectOutOfMemory(fresh, tried, "ztbUpdateModelSymbol");
    EXPECT_EQ(-1, noMatch);
    EXPECT_EQ(1, operate());
    EXPECT_EQ(0, noMatch);
    return true;
  });
}

TEST_F(BridgeFaults, solving) {
  for (const char* solver : {"dual", "barrier"}) {
    forEveryAllocation([&](Database& fresh, long number, Failures failures) {
      initialise(fresh, model_.handle());
      fresh.recordCount(fresh.find(longName));
      const auto operate = [&] { return lib().c__ztbcallsolver(fresh, solver); };
      const Attempt tried = attempt(number, failures, operate);
      if (!tried.happened) {
        EXPECT_EQ(1, tried.result);
        return false;
      }
      expectOutOfMemory(fresh, tried, "ztbCallSolver");
      EXPECT_EQ(0, model_.alive("view"));
      EXPECT_EQ(1, operate()) << fresh.lastError();
      EXPECT_EQ(3.0, fresh.level(fresh.first(fresh.find(longName)))) << "its own lower bound";
      return true;
    });
  }
}

TEST_F(BridgeFaults, readingASolution) {
  for (const int store : {0, 1, 2}) {
    forEveryAllocation([&](Database& fresh, long number, Failures failures) {
      lib().c__ztbselectrecordstorage(fresh, nullptr, store);
      initialise(fresh, model_.handle());
      void* const symbol = fresh.find(longName);
      void* record = nullptr;
      const Attempt tried = attempt(
          number, failures, [&] { return lib().c__ztbfindfirstrecord(fresh, symbol, &record); });
      if (!tried.happened) {
        EXPECT_EQ(1, tried.result);
        const Record handle(fresh, record);
        EXPECT_EQ((Labels{"flour", "iron"}), fresh.labels(handle, 2));
        return false;
      }
      expectOutOfMemory(fresh, tried, "ztbFindFirstRecord");
      EXPECT_EQ(nullptr, record);
      EXPECT_GE(2, fresh.recordCount(symbol)) << "it is not read a second time";
      EXPECT_EQ(1, lib().c__ztbcallsolver(fresh, "dual"));
      EXPECT_EQ(2, fresh.recordCount(symbol)) << "a solve brings all records";
      return true;
    });
  }
}

}  // namespace
}  // namespace ztbtest
