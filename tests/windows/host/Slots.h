// Calls a COM method by its place in the object's table, as a compiled host does. The places in the
// tests come from the published type libraries and not from the headers of the code under test, so
// a method that stands in the wrong place there shows here.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace quillmarch::addin::winhost {

// `place` counts from 0; the first three are IUnknown's.
template <typename... Args>
HRESULT CallSlot(IUnknown* object, std::size_t place, Args... args) {
  using Method = HRESULT(STDMETHODCALLTYPE*)(IUnknown*, Args...);
  void** const table = *reinterpret_cast<void***>(object);
  return reinterpret_cast<Method>(table[place])(object, args...);
}

}  // namespace quillmarch::addin::winhost
