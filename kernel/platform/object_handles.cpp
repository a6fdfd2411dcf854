#include "kernel/platform/object_handles.h"

#include <limits>
#include <mutex>
#include <unordered_map>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/object.h"

namespace veska {
namespace {

struct HandleTable {
  std::mutex mutex;
  std::unordered_map<int32_t, TObject*> objects;
  int32_t last_handle = 0;
};

HandleTable& Table() {
  static HandleTable* table = new HandleTable;  // lives until the process ends, like the objects
  return *table;
}

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
    table.objects.emplace(handle, object);
    object->handle_.store(handle, std::memory_order_release);
  }
  return handle;
}

TObject* ObjectHandles::ObjectOf(int64_t handle) {
  if (handle <= 0 || handle > std::numeric_limits<int32_t>::max()) return nullptr;
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  const auto found = table.objects.find(static_cast<int32_t>(handle));
  return found == table.objects.end() ? nullptr : found->second;
}

std::size_t ObjectHandles::LiveCount() {
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  return table.objects.size();
}

void ObjectHandles::Forget(TObject& object) noexcept {
  HandleTable& table = Table();
  std::lock_guard lock(table.mutex);
  table.objects.erase(object.handle_.load(std::memory_order_relaxed));
  object.handle_.store(0, std::memory_order_relaxed);
}

}  // namespace veska
