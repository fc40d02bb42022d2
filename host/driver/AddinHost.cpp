#include "host/driver/AddinHost.h"

#include <pugixml.hpp>
#include <utility>

#include "foundation/automation/Variant.h"

namespace quillmarch::host {

namespace {

constexpr std::int32_t kFirstWidthPt = 300;  // what a host gives a task pane by itself
constexpr std::int32_t kDockLeft = 0;
constexpr std::uintptr_t kFirstPaneWindow = 0x71000;
constexpr WideView kPaneProgId = u"Quillmarch.PptPane";

// An object that answers by name alone, from a table of its own.
class NamedObject : public AutomationObject {
 public:
  using Member = std::function<ResultCode(Variant&)>;

  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) delete this;
  }
  ResultCode IdOfName(WideView name, DispId& id) override {
    for (std::size_t i = 0; i < members_.size(); ++i) {
      if (LowerAscii(members_[i].first) != LowerAscii(name)) continue;
      id = static_cast<DispId>(i) + 1;
      return kOk;
    }
    return kUnknownName;
  }
  ResultCode Invoke(DispId id, std::uint16_t, const ParamBlock&, Variant* result) override {
    if (id < 1 || static_cast<std::size_t>(id) > members_.size()) return kMemberNotFound;
    Variant answer;
    const ResultCode code = members_[static_cast<std::size_t>(id) - 1].second(answer);
    if (result != nullptr) *result = std::move(answer);
    return code;
  }
  ResultCode QueryTyped(const InterfaceId&, ObjectRef&) override { return kNoInterface; }
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(this); }

  void Add(Wide name, Member member) { members_.emplace_back(std::move(name), std::move(member)); }
  static ObjectRef Make(NamedObject*& made) {
    made = std::make_unique<NamedObject>().release();
    return ObjectRef::Adopt(made);
  }
  virtual ~NamedObject() = default;

 private:
  int references_ = 1;
  std::vector<std::pair<Wide, Member>> members_;
};

ResultCode AnswerTo(const PlayedAnswer& answer, const char* call) {
  return answer ? answer(call) : kOk;
}

NamedObject::Member Gives(const char* call, Variant value, const PlayedAnswer& answer) {
  return [call, value = std::move(value), answer](Variant& out) {
    const ResultCode code = AnswerTo(answer, call);
    if (Succeeded(code)) out = value;
    return code;
  };
}

ObjectRef RibbonControl(const Wide& id, const ObjectRef& context, const PlayedAnswer& answer) {
  NamedObject* control = nullptr;
  ObjectRef ref = NamedObject::Make(control);
  control->Add(u"Id", Gives("Id", Variant::Text(id), answer));
  if (context) control->Add(u"Context", Gives("Context", Variant::Object(context), answer));
  return ref;
}

// The add-in's hold on a task pane.
class TaskPaneReference final : public TaskPane {
 public:
  TaskPaneReference(std::shared_ptr<HostedTaskPane> task, PlayedAnswer answer)
      : task_(std::move(task)), answer_(std::move(answer)) {
    ++task_->references;
  }
  ~TaskPaneReference() override { --task_->references; }
  TaskPaneReference(const TaskPaneReference&) = delete;
  TaskPaneReference& operator=(const TaskPaneReference&) = delete;

  ResultCode GetWindow(ObjectRef& out) override {
    const ResultCode code = Answer("Window");
    if (Succeeded(code)) out = task_->window;
    return code;
  }
  ResultCode PutVisible(bool visible) override { return Put("Visible=", task_->visible, visible); }
  ResultCode GetDockPosition(std::int32_t& out) override {
    return Get("DockPosition", task_->dock, out);
  }
  ResultCode PutDockPosition(std::int32_t position) override {
    return Put("DockPosition=", task_->dock, position);
  }
  ResultCode GetWidth(std::int32_t& out) override { return Get("Width", task_->width, out); }
  ResultCode PutWidth(std::int32_t width) override { return Put("Width=", task_->width, width); }

 private:
  ResultCode Answer(const char* call) const {
    const ResultCode code = AnswerTo(answer_, call);
    // Destroyed before the call, or inside it.
    return Succeeded(code) && !task_->window ? kFail : code;
  }
  template <typename Value>
  ResultCode Get(const char* call, const Value& field, Value& out) const {
    const ResultCode code = Answer(call);
    if (Succeeded(code)) out = field;
    return code;
  }
  template <typename Value>
  ResultCode Put(const char* call, Value& field, Value value) const {
    const ResultCode code = Answer(call);
    if (Succeeded(code)) field = value;
    return code;
  }

  std::shared_ptr<HostedTaskPane> task_;
  PlayedAnswer answer_;
};

void EndPane(HostedTaskPane& task) {
  task.visible = false;
  task.window.Reset();
  const std::shared_ptr<addin::CPptPane> pane = std::exchange(task.pane, nullptr);
  if (pane != nullptr && pane->HasWindow()) {
    pane->OnWindowMessage({pane->windowHandle(), addin::WindowMessage::kDestroy, 0, 0, 0});
  }
}

}  // namespace

class AddinHost::Factory final : public TaskPaneFactory {
 public:
  explicit Factory(AddinHost& host) : host_(host) {}
  ResultCode CreateCTP(const Wide& progId, const Wide& title, const ObjectRef& parentWindow,
                       std::shared_ptr<TaskPane>& out) override {
    if (progId != kPaneProgId || !parentWindow) return kInvalidArgument;
    const PlayedAnswer& answer = host_.parts_.answer;
    const ResultCode code = AnswerTo(answer, "CreateCTP");
    if (Failed(code)) return code;
    out = std::make_shared<TaskPaneReference>(host_.MakeTaskPane(title, parentWindow), answer);
    return kOk;
  }

 private:
  AddinHost& host_;
};

AddinHost::AddinHost(ObjectRef application, AddinHostParts parts)
    : application_(std::move(application)), parts_(std::move(parts)) {}

AddinHost::~AddinHost() {
  Stop();
}

bool AddinHost::Start() {
  // Held, for any of the calls may end in Stop.
  const auto connection = std::make_shared<addin::CConnect>(
      addin::ShellSurroundings{parts_.thread, parts_.desktop, parts_.resources});
  connection_ = connection;
  Wide xml;
  const auto copy = [&xml](const Wide& text) {
    xml = text;
    return true;
  };
  if (Failed(connection->OnConnection(application_)) ||
      Failed(connection->CTPFactoryAvailable(std::make_shared<Factory>(*this))) ||
      Failed(connection->GetCustomUI(copy)) || !ReadRibbon(xml)) {
    return false;
  }
  NamedObject* ribbon = nullptr;
  ribbon_ = NamedObject::Make(ribbon);
  ribbon->Add(u"Invalidate", [this](Variant&) {
    ++invalidations_;
    DrawButtons();
    return kOk;
  });
  if (Failed(Call(onLoad_, ribbon_, nullptr))) return false;
  DrawButtons();
  return Succeeded(connection->OnStartupComplete());
}

bool AddinHost::ReadRibbon(const Wide& xml) {
  pugi::xml_document document;
  const std::string utf8 = ToUtf8(xml);
  if (!document.load_buffer(utf8.data(), utf8.size())) return false;
  const pugi::xml_node root = document.child("customUI");
  onLoad_ = ToWide(root.attribute("onLoad").value());
  buttons_.clear();
  for (const pugi::xpath_node& found : root.select_nodes(".//*[local-name()='button']")) {
    const pugi::xml_node button = found.node();
    buttons_.push_back({ToWide(button.attribute("id").value()),
                        ToWide(button.attribute("onAction").value()),
                        {},
                        {}});
  }
  return !buttons_.empty();
}

void AddinHost::DrawButtons() {
  for (DrawnButton& button : buttons_) {
    if (connection_ == nullptr) return;
    const ObjectRef control = RibbonControl(button.id, {}, parts_.answer);
    Variant text;
    if (Succeeded(Call(u"GetLabel", control, &text))) button.label = text.takeText();
    if (Succeeded(Call(u"GetScreentip", control, &text))) button.tip = text.takeText();
  }
}

// By name, and then by the number that the add-in gives for it.
ResultCode AddinHost::Call(const Wide& name, const ObjectRef& control, Variant* result) {
  const Wide names[] = {name};
  DispId ids[] = {-1};
  const ResultCode found = addin::RibbonIdsOfNames(names, ids, {});
  if (Failed(found)) return found;
  const addin::RibbonArgument args[] = {
      {static_cast<std::uint16_t>(VariantType::kObject), Variant::Object(control)}};
  // Held as a caller holds what it calls, for the call may end in Stop.
  const std::shared_ptr<addin::CConnect> connection = connection_;
  ResultCode code = kMemberNotFound;
  if (connection != nullptr) connection->Invoke(ids[0], args, result, code);
  return code;
}

ResultCode AddinHost::Click(const Wide& buttonId, const ObjectRef& window) {
  for (const DrawnButton& button : buttons_) {
    if (button.id == buttonId) {
      return Call(button.onAction, RibbonControl(buttonId, window, parts_.answer), nullptr);
    }
  }
  return kUnknownName;
}

std::shared_ptr<HostedTaskPane> AddinHost::MakeTaskPane(const Wide& title,
                                                        const ObjectRef& window) {
  auto task = std::make_shared<HostedTaskPane>();
  task->window = window;
  task->title = title;
  task->dock = kDockLeft;
  task->width = kFirstWidthPt;
  task->browser = std::make_unique<PlayedBrowser>(parts_.thread, parts_.onPage, parts_.answer);
  addin::PaneSurroundings surroundings{.thread = parts_.thread,
                                       .input = parts_.input,
                                       .fonts = parts_.fonts,
                                       .observer = parts_.observer,
                                       .startWebView = {},
                                       .createWindow = {},
                                       .bridgeWaitMs = parts_.bridgeWaitMs};
  surroundings.loader = task->browser.get();
  surroundings.desktop = &parts_.desktop;
  task->pane = addin::CPptPane::Create(std::move(surroundings));
  // A host that activates the control in place makes its window inside the call.
  task->pane->OnWindowMessage(
      {kFirstPaneWindow + taskPanes_.size(), addin::WindowMessage::kCreate, 0, 0, 0});
  taskPanes_.push_back(task);
  return task;
}

void AddinHost::CloseTaskPane(std::size_t index) {
  EndPane(*taskPanes_.at(index));
}

void AddinHost::SayStart(std::size_t index, const RunRequest& request) {
  const std::shared_ptr<PlayedPage>& page = taskPanes_.at(index)->browser->page();
  if (page != nullptr) page->Say(StartMessage(request));
}

void AddinHost::Stop() {
  if (const std::shared_ptr<addin::CConnect> connection = std::exchange(connection_, nullptr)) {
    connection->OnBeginShutdown();
    connection->OnDisconnection();
  }
  // Out of the list first: a window's end may let anything in.
  for (const auto& task : std::exchange(taskPanes_, {})) EndPane(*task);
  ribbon_.Reset();
  application_.Reset();
}

}  // namespace quillmarch::host
