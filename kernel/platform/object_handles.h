// The handle table: how object references travel as numbers.
//
// The system writes object references into text and integers ("the reference as a number").
// A number is never turned back into an address: each object that is written as a number gets
// a process-wide handle — a positive 32-bit number, given on first use and never reused while
// the process runs — and reading a number looks it up here.  An object leaves the table when
// it is destroyed, so a stale, unknown or forged number gives none.  The number 0 is none.
#pragma once

#include <cstddef>
#include <cstdint>

namespace veska {

class TObject;

class ObjectHandles {
 public:
  // The handle of the object, given now if it has none yet; 0 for none.
  static int32_t HandleOf(TObject* object);
  // The live object with that handle, or none.
  static TObject* ObjectOf(int64_t handle);

 private:
  friend class TObject;
  static void Forget(TObject& object) noexcept;
};

// A reference that does not keep its object: it holds the object's handle and reads as none
// once the object is destroyed, so a holder that does not own what it points at (a selected
// item, a tool's input) never reaches a freed object.
template <class T>
class WeakRef {
 public:
  WeakRef() = default;
  WeakRef(T* object) : handle_(ObjectHandles::HandleOf(object)) {}  // NOLINT: a reference converts implicitly
  // The object, or none when it was none or is gone.  A handle names one object for the whole
  // run, so a live object found under it is the T that was stored.
  T* Get() const { return static_cast<T*>(ObjectHandles::ObjectOf(handle_)); }

 private:
  int32_t handle_ = 0;
};

}  // namespace veska
