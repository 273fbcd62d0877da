#include "providers/rxf/blocks_ahead.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

#include "providers/rxf/system_calls.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

// What the thread has, and what passes between it and the caller: the columns, the position behind
// them and the failure belong to the caller while `ready` holds, else to the thread.
struct BlocksAhead::Work {
  Work(const BlockReader& from, const SpecialTable& table)
      : specials(table), reader(from, decompressor), process(from.calls().process()) {
    columns.shape(reader.dim(), reader.slots(), kBlockRecords);
  }

  void run() {
    do {
      try {
        reader.next(decoded);
        columns.decode(decoded, specials, room);
      } catch (...) {
        failure = std::current_exception();
      }
      behind = reader.position();
      set(ready, true);
    } while (failure == nullptr && !reader.atEnd() && mayGoOn());
  }

  // Changes what the other side waits for.
  void set(bool& flag, bool value) {
    {
      const std::scoped_lock lock(mutex);
      flag = value;
    }
    changed.notify_one();
  }

  bool mayGoOn() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return stopped || !ready; });
    return !stopped;
  }

  void awaitBlock() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return ready; });
  }

  void end() {
    set(stopped, true);
    thread.join();
  }

  const SpecialTable specials;
  Decompressor decompressor;
  BlockReader reader;
  DecodedBlock decoded;
  PieceRoom room;

  BlockColumns columns;
  BlockReader::Position behind;
  std::exception_ptr failure;

  std::mutex mutex;
  std::condition_variable changed;
  bool ready = false;
  bool stopped = false;

  std::thread thread;
  long process;
};

BlocksAhead::BlocksAhead() = default;

BlocksAhead::~BlocksAhead() {
  stop();
}

void BlocksAhead::start(const BlockReader& reader, const SpecialTable& specials,
                        BlockColumns& columns) noexcept {
  stop();
  if (reader.blocksLeft() < kFewestBlocks || reader.calls().processors() < 2) return;
  try {
    if (!columns.hasRoom(reader.dim(), reader.slots(), kBlockRecords)) {
      columns.shape(reader.dim(), reader.slots(), kBlockRecords);
    }
    auto work = std::make_unique<Work>(reader, specials);
    reader.calls().startThread(
        work->thread, [](void* what) { static_cast<Work*>(what)->run(); }, work.get());
    work_ = std::move(work);
  } catch (...) {
    // Without memory or a thread the reader goes on by itself.
  }
}

bool BlocksAhead::take(BlockReader& reader, BlockColumns& columns) {
  if (leftBehind()) return false;
  work_->awaitBlock();
  if (work_->failure != nullptr) {
    const std::exception_ptr failure = work_->failure;
    const BlockReader::Position behind = work_->behind;
    stop();
    try {
      std::rethrow_exception(failure);
    } catch (const std::bad_alloc&) {
      return false;
    } catch (...) {
      reader.moveTo(behind);
      throw;
    }
  }
  std::swap(columns, work_->columns);
  reader.moveTo(work_->behind);
  if (reader.atEnd()) {
    stop();
  } else {
    work_->set(work_->ready, false);
  }
  return true;
}

void BlocksAhead::stop() noexcept {
  if (work_ == nullptr || leftBehind()) return;
  work_->end();
  work_.reset();
}

// Whether the thread is one of the process that this one was forked from. What it had here is in
// whatever state it was at that moment, and is left alone.
bool BlocksAhead::leftBehind() noexcept {
  if (work_->process == work_->reader.calls().process()) return false;
  static_cast<void>(work_.release());
  return true;
}

}  // namespace rxffile
