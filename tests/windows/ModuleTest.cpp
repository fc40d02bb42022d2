// The module as a server of classes, and its objects' identities.
#include <windows.h>

#include <oleauto.h>
#include <olectl.h>

#include "windows/host/Fixture.h"
#include "windows/host/Slots.h"

namespace quillmarch::addin {

using winhost::CallSlot;
using winhost::Export;
using winhost::ModuleTest;
using winhost::Setting;

namespace {

constexpr CLSID kConnect = {
    0x5B9C1E43, 0xAF66, 0x4F7D, {0xBC, 0x38, 0x94, 0xE7, 0xFA, 0x05, 0x12, 0xC3}};
constexpr CLSID kPane = {
    0xB0C1D2E3, 0x4F5A, 0x6B7C, {0x8D, 0x9E, 0x0F, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}};
constexpr IID kRibbonCallback = {
    0x4A8B0D32, 0x9F55, 0x4E6C, {0xAB, 0x27, 0x83, 0xD6, 0xE9, 0xF4, 0x01, 0xB2}};
constexpr IID kPaneSink = {
    0xC1D2E3F4, 0x5A6B, 0x7C8D, {0x9E, 0x0F, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F}};
constexpr IID kExtensibility = {
    0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};
constexpr IID kRibbonExtensibility = {0x000C0396, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kTaskPaneConsumer = {0x000C033E, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
using CanUnloadFunction = HRESULT(STDAPICALLTYPE*)();

ComPtr<IClassFactory> FactoryOf(const CLSID& id) {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(S_OK, Export<GetClassObjectFunction>("DllGetClassObject")(
                      id, IID_IClassFactory, reinterpret_cast<void**>(factory.put())));
  return factory;
}

HRESULT CanUnload() {
  return Export<CanUnloadFunction>("DllCanUnloadNow")();
}

template <typename T = IUnknown>
ComPtr<T> Make(const CLSID& id, const IID& iid = IID_IUnknown) {
  ComPtr<T> made;
  EXPECT_EQ(S_OK, CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, iid,
                                   reinterpret_cast<void**>(made.put())));
  return made;
}

DISPID IdOf(IDispatch* dispatch, const wchar_t* name) {
  std::wstring text = name;
  LPOLESTR names[] = {text.data()};
  DISPID id = -77;
  dispatch->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  return id;
}

// Puts in the place of the user's branch one that ends with the session and so takes nothing that
// would outlive it.
class FleetingUser {
 public:
  FleetingUser() {
    EXPECT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_CURRENT_USER, kPath, 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &key_, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CURRENT_USER, key_));
  }
  ~FleetingUser() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(key_);
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CURRENT_USER, kPath));
  }
  DWORD Keys() const {
    DWORD keys = 77;
    RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr);
    return keys;
  }

 private:
  static constexpr wchar_t kPath[] = L"Quillmarch-test-takes-nothing";
  HKEY key_ = nullptr;
};

class ModuleServerTest : public ModuleTest {};

}  // namespace

TEST_F(ModuleServerTest, BothClassesAreMadeByTheirClassAndByTheirProgid) {
  for (const auto& [progId, id] :
       {std::pair{L"PptAddin.Connect", kConnect}, std::pair{L"PptAddin.Connect.1", kConnect},
        std::pair{L"Quillmarch.PptPane", kPane}, std::pair{L"Quillmarch.PptPane.1", kPane}}) {
    CLSID found;
    ASSERT_EQ(S_OK, CLSIDFromProgID(progId, &found));
    EXPECT_TRUE(found == id);
    EXPECT_TRUE(Make(found));
  }
}

TEST_F(ModuleServerTest, AFactoryIsMadeOnceForEachClass) {
  EXPECT_EQ(FactoryOf(kConnect).get(), FactoryOf(kConnect).get());
  EXPECT_NE(FactoryOf(kConnect).get(), FactoryOf(kPane).get());
}

TEST_F(ModuleServerTest, AnUnknownClassIsNotServed) {
  void* out = &out;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, Export<GetClassObjectFunction>("DllGetClassObject")(
                                           IID_IUnknown, IID_IClassFactory, &out));
  EXPECT_EQ(nullptr, out);
  EXPECT_EQ(E_POINTER, Export<GetClassObjectFunction>("DllGetClassObject")(
                           kConnect, IID_IClassFactory, nullptr));
}

TEST_F(ModuleServerTest, NothingIsMadeAsAPartOfAnotherObject) {
  const ComPtr<IClassFactory> factory = FactoryOf(kConnect);
  void* out = nullptr;
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(factory.get(), IID_IUnknown, &out));
}

TEST_F(ModuleServerTest, TheModuleStaysAsLongAsAnObjectOrALockDoes) {
  EXPECT_EQ(S_OK, CanUnload());
  {
    const ComPtr<IUnknown> connect = Make(kConnect);
    EXPECT_EQ(S_FALSE, CanUnload());
  }
  EXPECT_EQ(S_OK, CanUnload());
  {
    const ComPtr<IUnknown> pane = Make(kPane);
    EXPECT_EQ(S_FALSE, CanUnload());
  }
  EXPECT_EQ(S_OK, CanUnload());
  const ComPtr<IClassFactory> factory = FactoryOf(kConnect);
  EXPECT_EQ(S_FALSE, CanUnload());
  factory->LockServer(TRUE);
  const_cast<ComPtr<IClassFactory>&>(factory).Reset();
  EXPECT_EQ(S_FALSE, CanUnload());
  FactoryOf(kConnect)->LockServer(FALSE);
  EXPECT_EQ(S_OK, CanUnload());
}

TEST_F(ModuleServerTest, TheConnectionIsOneObjectWithFourInterfaces) {
  const ComPtr<IUnknown> connect = Make(kConnect);
  const auto ribbon = connect.As<IDispatch>(kRibbonCallback);
  for (const IID& iid : {kExtensibility, kRibbonExtensibility, kTaskPaneConsumer, IID_IDispatch}) {
    const auto face = connect.As<IDispatch>(iid);
    ASSERT_TRUE(face);
    EXPECT_EQ(connect.get(), face.As<IUnknown>(IID_IUnknown).get());
    // What a host asks for as plain dispatch knows the ribbon's handlers.
    EXPECT_EQ(ribbon.get(), face.As<IDispatch>(IID_IDispatch).get());
  }
  EXPECT_FALSE(connect.As<IUnknown>(kPaneSink));
}

TEST_F(ModuleServerTest, EachInterfaceAnswersItsOwnIdsThroughItsOwnInvoke) {
  const ComPtr<IUnknown> connect = Make(kConnect);
  const auto life = connect.As<IDispatch>(kExtensibility);
  const auto xml = connect.As<IDispatch>(kRibbonExtensibility);
  const auto panes = connect.As<IDispatch>(kTaskPaneConsumer);
  EXPECT_EQ(1, IdOf(life.get(), L"OnConnection"));
  EXPECT_EQ(2, IdOf(life.get(), L"ondisconnection"));
  EXPECT_EQ(5, IdOf(life.get(), L"OnBeginShutdown"));
  EXPECT_EQ(1, IdOf(xml.get(), L"GetCustomUI"));
  EXPECT_EQ(1, IdOf(panes.get(), L"CTPFactoryAvailable"));
  // A host that keeps one of the others for its callbacks finds them there too.
  for (const auto& face : {life, xml, panes})
    EXPECT_EQ(100, IdOf(face.get(), L"TranslateFullDocClicked"));

  DISPPARAMS none = {};
  VARIANT result = {};
  EXPECT_EQ(S_OK, xml->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, &result,
                              nullptr, nullptr));
  ASSERT_EQ(VT_BSTR, result.vt);
  EXPECT_EQ(0, std::wstring(result.bstrVal).find(L"<?xml"));
  VariantClear(&result);

  VARIANT factory = winhost::ObjectValue(host.factory.get());
  DISPPARAMS one = {&factory, nullptr, 1, 0};
  EXPECT_EQ(S_OK, panes->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &one, nullptr,
                                nullptr, nullptr));
  VariantClear(&factory);
  EXPECT_EQ(2U, host.factory->references());

  const ComPtr<IDispatch> application = OpenSample();
  VARIANT start[4] = {};  // last argument first: custom, instance, mode, application
  start[1].vt = VT_DISPATCH;
  start[2] = winhost::WholeValue(1);
  start[3] = winhost::ObjectValue(application.get());
  DISPPARAMS four = {start, nullptr, 4, 0};
  EXPECT_EQ(S_OK, life->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &four, nullptr,
                               nullptr, nullptr));
  VariantClear(&start[3]);
  EXPECT_TRUE(winhost::Logged("PPT OnConnection hostApp=ppt appName=Microsoft PowerPoint"));
  for (const DISPID id : {3, 4, 5, 2}) {
    EXPECT_EQ(S_OK, life->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                                 nullptr, nullptr));
  }
  EXPECT_EQ(1U, host.factory->references());
}

TEST_F(ModuleServerTest, AnIdThatNobodyKnowsGoesToTheTypeLibrary) {
  const auto dispatch = Make(kConnect).As<IDispatch>(IID_IDispatch);
  DISPPARAMS none = {};
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
            dispatch->Invoke(77, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                             nullptr, nullptr));
  EXPECT_EQ(-1, IdOf(dispatch.get(), L"NoSuchHandler"));
  std::wstring text = L"x";
  LPOLESTR names[] = {text.data()};
  DISPID id = 0;
  EXPECT_EQ(E_INVALIDARG, dispatch->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id));
  EXPECT_EQ(E_INVALIDARG, dispatch->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr));
  EXPECT_EQ(E_INVALIDARG, dispatch->GetIDsOfNames(IID_NULL, names, 0, 0, &id));
}

TEST_F(ModuleServerTest, TheRibbonCallbacksStandInTheOrderOfTheTypeLibrary) {
  const auto dispatch = Make(kConnect).As<IDispatch>(kRibbonCallback);
  ComPtr<ITypeInfo> type;
  ASSERT_EQ(S_OK, dispatch->GetTypeInfo(0, 0, type.put()));
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
  EXPECT_TRUE(attributes->guid == kRibbonCallback);
  type->ReleaseTypeAttr(attributes);
  // The dual interface behind the dispatch view, with the places of its methods.
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> table;
  ASSERT_EQ(S_OK, type->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
  ASSERT_EQ(S_OK, type->GetRefTypeInfo(reference, table.put()));
  const std::vector<std::pair<const wchar_t*, DISPID>> members = {
      {L"TranslateFullDocClicked", 100},  {L"TranslateCurrentSlideClicked", 101},
      {L"ShowPaneClicked", 102},          {L"GlossaryClicked", 103},
      {L"InstructionClicked", 104},       {L"AccountClicked", 105},
      {L"SupportClicked", 106},           {L"GetImage", 108},
      {L"TranslateSelectionClicked", 109}};
  for (std::size_t i = 0; i < members.size(); ++i) {
    FUNCDESC* function = nullptr;
    ASSERT_EQ(S_OK, table->GetFuncDesc(static_cast<UINT>(i), &function));
    EXPECT_EQ(members[i].second, function->memid);
    EXPECT_EQ(static_cast<SHORT>((7 + i) * sizeof(void*)), function->oVft);
    BSTR name = nullptr;
    UINT names = 0;
    table->GetNames(function->memid, &name, 1, &names);
    EXPECT_STREQ(members[i].first, name);
    SysFreeString(name);
    table->ReleaseFuncDesc(function);
  }
  // The methods themselves, by those places: without an application each shows its box, so only the
  // one that shows none is called here.
  IDispatch* image = dispatch.get();
  EXPECT_TRUE(SUCCEEDED(CallSlot(dispatch.get(), 14, static_cast<IDispatch*>(nullptr), &image)));
  EXPECT_EQ(nullptr, image);
}

TEST_F(ModuleServerTest, TheTypeLibraryDescribesBothClasses) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(S_OK, LoadTypeLibEx(winhost::TestedModulePath().c_str(), REGKIND_NONE, library.put()));
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, library->GetLibAttr(&attributes));
  EXPECT_EQ(1, attributes->wMajorVerNum);
  EXPECT_EQ(0, attributes->wMinorVerNum);
  library->ReleaseTLibAttr(attributes);
  BSTR name = nullptr;
  BSTR help = nullptr;
  library->GetDocumentation(-1, &name, &help, nullptr, nullptr);
  EXPECT_STREQ(L"PptAddinLib", name);
  EXPECT_STREQ(L"PptAddin 1.0 Type Library", help);
  SysFreeString(name);
  SysFreeString(help);
  for (const auto& [id, words] :
       {std::pair{kConnect, L"PptAddin.Connect"}, std::pair{kPane, L"PptAddin.Pane"},
        std::pair{kRibbonCallback, L"Quillmarch ribbon callback sink"},
        std::pair{kPaneSink, L"Quillmarch pane event sink"}}) {
    ComPtr<ITypeInfo> type;
    ASSERT_EQ(S_OK, library->GetTypeInfoOfGuid(id, type.put()));
    BSTR text = nullptr;
    type->GetDocumentation(MEMBERID_NIL, nullptr, &text, nullptr, nullptr);
    EXPECT_STREQ(words, text);
    SysFreeString(text);
  }
}

TEST_F(ModuleServerTest, AModuleWithoutItsTypeLibraryServesAllTheSameAndDoesNotRegister) {
  const HMODULE module = LoadLibraryW(Setting(L"QUILLMARCH_TEST_BARE_MODULE").c_str());
  ASSERT_NE(nullptr, module);
  const auto exported = [module](const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(module, name));
  };
  {
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(S_OK, reinterpret_cast<GetClassObjectFunction>(exported("DllGetClassObject"))(
                        kConnect, IID_IClassFactory, reinterpret_cast<void**>(factory.put())));
    ComPtr<IDispatch> connect;
    ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IDispatch,
                                            reinterpret_cast<void**>(connect.put())));
    ComPtr<ITypeInfo> type;
    EXPECT_TRUE(FAILED(connect->GetTypeInfo(0, 0, type.put())));
    EXPECT_EQ(-1, IdOf(connect.get(), L"NoSuchHandler"));
    EXPECT_EQ(100, IdOf(connect.get(), L"TranslateFullDocClicked"));
    DISPPARAMS none = {};
    EXPECT_TRUE(FAILED(
        connect->Invoke(77, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr)));
  }
  EXPECT_EQ(TYPE_E_CANTLOADLIBRARY,
            reinterpret_cast<CanUnloadFunction>(exported("DllRegisterServer"))());
  FreeLibrary(module);
  // It came as far as the classes, which are now its own.
  EXPECT_EQ(S_OK, Export<CanUnloadFunction>("DllRegisterServer")());
}

TEST_F(ModuleServerTest, ARegistryThatTakesNothingIsAFailureOfRegistering) {
  {
    const FleetingUser branch;
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE),
              Export<CanUnloadFunction>("DllRegisterServer")());
    EXPECT_EQ(0U, branch.Keys());
  }
  // What was registered before is as it was.
  EXPECT_TRUE(Make(kConnect));
}

TEST_F(ModuleServerTest, ThePaneAnswersToEveryInterfaceOfAControl) {
  const ComPtr<IUnknown> pane = Make(kPane);
  for (const IID& iid : {IID_IDispatch, kPaneSink, IID_IViewObject, IID_IViewObject2,
                         IID_IViewObjectEx, IID_IDataObject, IID_IOleControl, IID_IOleObject,
                         IID_IOleWindow, IID_IOleInPlaceObject, IID_IOleInPlaceActiveObject,
                         IID_IOleInPlaceObjectWindowless, IID_IPersist, IID_IPersistStreamInit}) {
    const auto face = pane.As<IUnknown>(iid);
    ASSERT_TRUE(face);
    EXPECT_EQ(pane.get(), face.As<IUnknown>(IID_IUnknown).get());
  }
  EXPECT_FALSE(pane.As<IUnknown>(kRibbonCallback));
}

TEST_F(ModuleServerTest, ThePanesOwnDispatchHasNoMembers) {
  const auto pane = Make<IDispatch>(kPane, IID_IDispatch);
  EXPECT_EQ(-1, IdOf(pane.get(), L"Anything"));
  DISPPARAMS none = {};
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
            pane->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(S_OK, pane->GetTypeInfo(0, 0, type.put()));
}

TEST_F(ModuleServerTest, AControlSaysWhatItsRegistrationSays) {
  const auto pane = Make<IOleObject>(kPane, IID_IOleObject);
  DWORD status = 0;
  EXPECT_EQ(S_OK, pane->GetMiscStatus(DVASPECT_CONTENT, &status));
  EXPECT_EQ(131473U, status);
  CLSID id;
  EXPECT_EQ(S_OK, pane->GetUserClassID(&id));
  EXPECT_TRUE(id == kPane);
  LPOLESTR text = nullptr;
  EXPECT_EQ(S_OK, pane->GetUserType(USERCLASSTYPE_FULL, &text));
  EXPECT_STREQ(L"Quillmarch PowerPoint Pane", text);
  CoTaskMemFree(text);
  SIZEL extent = {1234, 5678};
  EXPECT_EQ(S_OK, pane->SetExtent(DVASPECT_CONTENT, &extent));
  EXPECT_EQ(DV_E_DVASPECT, pane->SetExtent(DVASPECT_ICON, &extent));
  SIZEL read = {};
  EXPECT_EQ(S_OK, pane->GetExtent(DVASPECT_CONTENT, &read));
  EXPECT_EQ(1234, read.cx);
  EXPECT_EQ(5678, read.cy);
}

}  // namespace quillmarch::addin
