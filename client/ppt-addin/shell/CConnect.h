// What the host creates when it loads the add-in: the connection to the host, its ribbon and one
// task pane for each document window. Every entry point is called on the host thread, in any order
// and as often as the host likes; none throws.
#pragma once

#include <functional>
#include <memory>
#include <span>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"
#include "foundation/seams/Desktop.h"
#include "foundation/seams/HostThread.h"
#include "foundation/seams/TaskPane.h"
#include "shell/ModuleResources.h"
#include "shell/PaneMap.h"
#include "shell/RibbonCalls.h"

namespace quillmarch::addin {

// What a connection is given. All of it outlives the connection.
struct ShellSurroundings {
  HostThread& thread;
  Desktop& desktop;
  ModuleResources& resources;
};

class CConnect {
 public:
  explicit CConnect(ShellSurroundings surroundings);
  ~CConnect();
  CConnect(const CConnect&) = delete;
  CConnect& operator=(const CConnect&) = delete;

  // ---- _IDTExtensibility2 (CConnect.cpp) -------------------------------------------------------

  ResultCode OnConnection(const ObjectRef& application);
  ResultCode OnDisconnection();
  ResultCode OnAddInsUpdate();
  ResultCode OnStartupComplete();
  ResultCode OnBeginShutdown();

  // ---- ICustomTaskPaneConsumer (CConnect.cpp) --------------------------------------------------

  ResultCode CTPFactoryAvailable(std::shared_ptr<TaskPaneFactory> factory);

  // ---- IRibbonExtensibility (Ribbon.cpp) -------------------------------------------------------

  // The same text for every ribbon. `allocate` makes the host's copy; false when it cannot.
  ResultCode GetCustomUI(const std::function<bool(const Wide& xml)>& allocate);

  // ---- The ribbon's dispatch, and IRibbonCallback (Ribbon.cpp) ---------------------------------

  // IDispatch::Invoke for the ids of the ribbon. `args` are ordered as in rgvarg, the last one
  // first. `result` may be null. False for an id that is the type library's to serve.
  bool Invoke(DispId id, std::span<const RibbonArgument> args, Variant* result, ResultCode& code);

  // `control` may be null, for all of them.
  ResultCode TranslateFullDocClicked(AutomationObject* control);
  ResultCode TranslateCurrentSlideClicked(AutomationObject* control);
  ResultCode ShowPaneClicked(AutomationObject* control);
  ResultCode GlossaryClicked(AutomationObject* control);
  ResultCode InstructionClicked(AutomationObject* control);
  ResultCode AccountClicked(AutomationObject* control);
  ResultCode SupportClicked(AutomationObject* control);
  ResultCode TranslateSelectionClicked(AutomationObject* control);
  ResultCode PdfTranslateClicked(AutomationObject* control);

  // ---- Task panes (TaskPanes.cpp) --------------------------------------------------------------

  // Opens a page in the pane of the window that was clicked in; what goes wrong is shown to the
  // user and is success all the same. Null `page` means "translate"; empty `mode` leaves the mode.
  ResultCode ShowPanePage(const char16_t* page, AutomationObject* control, const Wide& mode);
  struct EnsuredPane {
    ResultCode code = kFail;
    std::shared_ptr<TaskPane> pane;  // null also when the host let it go again at once
    bool justCreated = false;
  };
  // The window's task pane, made when there is none. The user has been told of a failure.
  EnsuredPane EnsureTaskPane(const WindowContext& context, const ObjectRef& window);
  void PrunePanes();

  // ---- Width (ConnectWidth.cpp) ----------------------------------------------------------------

  // What timer 1 of every pane calls.
  void WidthTick();
  std::int32_t LoadInitialWidth();
  void SaveAllOnShutdown();

  // ---- Fields ----------------------------------------------------------------------------------

  ObjectRef hostApp;
  ObjectRef ribbonUi;
  std::shared_ptr<TaskPaneFactory> ctpFactory;
  PaneMap panes;

 private:
  // The outermost handler of an entry: an exception ends as success.
  static ResultCode Enter(const std::function<ResultCode()>& body);
  void ShowBox(const Wide& text, std::uint32_t style);

  ResultCode InvokeButton(DispId id, std::span<const RibbonArgument> args);
  ResultCode InvokeCommon(DispId id, std::span<const RibbonArgument> args, Variant* result);
  ResultCode TextOfControl(std::span<const RibbonArgument> args, bool tip, Variant* result);
  ResultCode GetImageCall(std::span<const RibbonArgument> args);

  void OpenPage(const char16_t* page, AutomationObject* control, const Wide& mode);
  bool IsGoodEntry(std::int64_t key, const WindowContext& context);
  std::shared_ptr<TaskPane> ReusePane(std::int64_t key, const WindowContext& context);
  void LogNoMatch(std::int64_t key, const WindowContext& context) const;
  ResultCode CreateTaskPane(TaskPaneFactory& factory, const WindowContext& context,
                            const ObjectRef& window, std::shared_ptr<TaskPane>& pane);
  // Gives the pane that the map then holds for the key.
  std::shared_ptr<TaskPane> KeepPane(std::int64_t key, const WindowContext& context,
                                     const std::shared_ptr<TaskPane>& pane, std::int32_t width);
  void DropPane(std::int64_t key, const PaneMapEntry& entry, const char16_t* reason);

  void ServeWidthHook();
  void LeaveWidthHook();
  void ForEachPane(const std::function<void(TaskPane&, PaneWidthState&)>& act);

  ShellSurroundings surroundings_;
  const std::shared_ptr<const bool> life_ = std::make_shared<const bool>();  // goes with this
};

// The number of the next pane: how many the process has tried to make.
std::int32_t NextPaneId();
// Set once a task pane has landed in another window than it was made for. Nothing reads it.
bool CtpWindowMismatch();

// As at the process's start, for tests: the next connection tells the service again.
void ForgetAddinLoaded();

}  // namespace quillmarch::addin
