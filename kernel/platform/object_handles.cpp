#include "kernel/platform/object_handles.h"

#include <array>
#include <limits>
#include <memory>
#include <mutex>
#include <vector>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/object.h"

namespace veska {
namespace {

// Handles are given in rising order and never reused, so a handle indexes the table directly:
// page handle / kPageSize, slot handle % kPageSize.  A page is made when its first handle is
// given and freed once all its handles have been given and forgotten, so the table holds pages
// only where handles still live, however many were given over the run.
constexpr int32_t kPageBits = 10;
constexpr int32_t kPageSize = int32_t{1} << kPageBits;

struct Page {
  std::array<TObject*, kPageSize> slots{};
  int32_t live = 0;
};

struct HandleTable {
  std::mutex mutex;
  std::vector<std::unique_ptr<Page>> pages;
  int32_t last_handle = 0;

  // Whether every handle of the page has been given: only then can it empty for good.
  bool FullyGiven(std::size_t page) const {
    return static_cast<int64_t>(page + 1) * kPageSize - 1 <= last_handle;
  }
  void FreeIfEmpty(std::size_t page) {
    if (pages[page] != nullptr && pages[page]->live == 0 && FullyGiven(page)) pages[page].reset();
  }
};

HandleTable& Table() {
  static HandleTable* table = new HandleTable;  // lives until the process ends, like the objects
  return *table;
}

std::size_t PageOf(int32_t handle) { return static_cast<std::size_t>(handle >> kPageBits); }
std::size_t SlotOf(int32_t handle) { return static_cast<std::size_t>(handle & (kPageSize - 1)); }

}  // namespace

int32_t ObjectHandles::HandleOf(TObject* object) {
  if (object == nullptr) return 0;
  // Most objects asked for a handle have one already: that answer needs no lock.
  if (const int32_t given = object->handle_.load(std::memory_order_acquire); given != 0) return given;
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  int32_t handle = object->handle_.load(std::memory_order_relaxed);
  if (handle == 0) {
    if (table.last_handle == std::numeric_limits<int32_t>::max()) {
      throw ERangeError(u"Object handles exhausted");
    }
    handle = ++table.last_handle;
    const std::size_t page = PageOf(handle);
    if (page == table.pages.size()) {
      // The page before is now fully given; its objects may all have gone already.
      if (page > 0) table.FreeIfEmpty(page - 1);
      table.pages.push_back(std::make_unique<Page>());
    }
    Page& current = *table.pages[page];
    current.slots[SlotOf(handle)] = object;
    ++current.live;
    object->handle_.store(handle, std::memory_order_release);
  }
  return handle;
}

TObject* ObjectHandles::ObjectOf(int64_t handle) {
  if (handle <= 0 || handle > std::numeric_limits<int32_t>::max()) return nullptr;
  const auto number = static_cast<int32_t>(handle);
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  const std::size_t page = PageOf(number);
  if (page >= table.pages.size() || table.pages[page] == nullptr) return nullptr;
  return table.pages[page]->slots[SlotOf(number)];
}

void ObjectHandles::Forget(TObject& object) noexcept {
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  const int32_t handle = object.handle_.load(std::memory_order_relaxed);
  const std::size_t page = PageOf(handle);
  Page& holder = *table.pages[page];
  holder.slots[SlotOf(handle)] = nullptr;
  --holder.live;
  table.FreeIfEmpty(page);
  object.handle_.store(0, std::memory_order_relaxed);
}

}  // namespace veska
