// The world: the root element of a running application.  It owns the application's main
// technology, its system register, object model and work place, shows the class registry as an
// element, delivers the element messages that the host's queue carries, reports the errors that
// reach it, and presents the host's settings and the life-cycle watch as published properties,
// so that files can set them.
//
// A world installs itself as the host's window procedure while it lives: a posted message goes
// to its Receiver, or to the main tool when it has none, and is freed in every case.
#pragma once

#include <cstdint>

#include "kernel/models/system_register.h"
#include "kernel/platform/application.h"
#include "kernel/tools/technology.h"

namespace veska {

inline constexpr std::u16string_view kWorldsUnit = u"Worlds";

class TObjectModel : public TOwnerEntity {
  VESKA_CLASS(TObjectModel, TOwnerEntity, kWorldsUnit)
};

class TWorkPlace : public TOwnerEntity {
  VESKA_CLASS(TWorkPlace, TOwnerEntity, kWorldsUnit)
};

class TWorld : public TEntity {
  VESKA_CLASS(TWorld, TEntity, kWorldsUnit)
 public:
  String UID;

  // Takes the class registry's entity as ObjectClasses and becomes the host's window procedure
  // (and the current World, when there is none).
  TWorld();
  ~TWorld() override;

  // Called when the main tool is asked for and there is none; nothing here.
  virtual void Error() {}
  // Delivers the message element that a window message of this library carries; other window
  // messages are left alone.
  virtual void HandleWinMessage(TWindowMessage& message, bool& handled);
  // Shows "World Level Error :" followed by the message.
  virtual void HandleException(const String& message);

  TTechnology* GetMainTool();
  void SetMainTool(TTechnology* tool);
  // The parts below are made, named and added on first read.
  TSystemRegister* GetSysReg();
  void SetSysReg(TSystemRegister* part);
  TWorkPlace* GetWorkPlace();
  void SetWorkPlace(TWorkPlace* part);
  TObjectModel* GetObjectModel();
  void SetObjectModel(TObjectModel* part);
  // The class registry itself, which is never the world's to free.
  TOwnerEntity* GetObjectClasses() const { return object_classes_; }
  void SetObjectClasses(TOwnerEntity* /*ignored*/) {}
  void SetUID(const String& uid) { UID = uid; }
  // The entity that CheckTestedElement watches (an entity, as that check reads its owners).
  void SetTestElement(TEntity* element);

  // The host's settings, read and written directly.
  String GetExeName() const { return Application().ExeName(); }
  String GetApplicDir() const;
  String GetHelpFile() const { return Application().HelpFile(); }
  void SetHelpFile(const String& value) { Application().SetHelpFile(value); }
  String GetHint() const { return Application().Hint(); }
  void SetHint(const String& value) { Application().SetHint(value); }
  bool GetShowHint() const { return Application().ShowHint(); }
  void SetShowHint(bool value) { Application().SetShowHint(value); }
  int32_t GetHintColor() const { return Application().HintColor(); }
  void SetHintColor(int32_t value) { Application().SetHintColor(value); }
  int32_t GetHintPause() const { return Application().HintPause(); }
  void SetHintPause(int32_t value) { Application().SetHintPause(value); }
  String GetTitle() const { return Application().Title(); }
  void SetTitle(const String& value) { Application().SetTitle(value); }

  // The life-cycle watch (the process-wide switch and time that elements consult).  The year and
  // month views set the 14th, of December for a year, deliberately; 0 stands for no time.
  bool GetLifeCycleWatch() const { return Life_Cycle_Watch; }
  void SetLifeCycleWatch(bool value) { Life_Cycle_Watch = value; }
  TDateTime GetLifeCycleWatchTime() const { return Life_Cycle_WatchTime; }
  void SetLifeCycleWatchTime(TDateTime value) { Life_Cycle_WatchTime = value; }
  uint16_t GetLifeCycleWatchTimeYear() const;
  void SetLifeCycleWatchTimeYear(uint16_t year);
  uint16_t GetLifeCycleWatchTimeMonth() const;
  void SetLifeCycleWatchTimeMonth(uint16_t month);
  String GetLifeCycleWatchTimeString() const;
  // ISO 8601 first (read as UTC), then the local format; text that is neither sets 0.
  void SetLifeCycleWatchTimeString(const String& text);

  static void Publish(Publisher<TWorld>& p);

 private:
  // Frees the part held so far as an element of the world, then adds and keeps the new one.
  template <class Part>
  void ReplacePart(CachedPart<Part>& cache, Part* part);

  CachedPart<TTechnology> main_tool_;
  CachedPart<TSystemRegister> system_register_;
  CachedPart<TWorkPlace> work_place_;
  CachedPart<TObjectModel> object_model_;
  TOwnerEntity* object_classes_ = nullptr;  // the process's class registry
  TApplication* host_ = nullptr;
  TWindowProc previous_window_proc_;
  TExceptionHandler previous_exception_handler_;
};

// The current world; none until one is made.  Main thread only.
inline TWorld* World = nullptr;

// The text of the main tool's property of that name; empty without a world or a main tool.
String MainToolPropString(StringView name);

}  // namespace veska
