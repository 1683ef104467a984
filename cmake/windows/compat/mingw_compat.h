// SPDX-License-Identifier: AGPL-3.0-only
// Included ahead of every C++ file when Debian's MinGW compiler builds for Windows, and in no other build: what
// JUCE's sources expect of the compiler that they are usually built with for Windows.
#pragma once
#pragma GCC system_header // what follows bends the language, which is not to be warned of

#ifdef __cplusplus

    #include <cstring>     // JUCE uses strncmp and std::memcpy, which come in by the way elsewhere
    #include <guiddef.h>   // GUID
    #include <intrin.h>    // __cpuid with an array
    #include <type_traits> // std::remove_cv_t

    // GCC 12 cannot parse this operator inside a default member initialiser, where JUCE silences a warning.
    #define _Pragma(text)

// JUCE asks a smart pointer for the id of the interface that it points to. MinGW's __uuidof works on the exact
// type alone, so it is taught to look inside.
namespace juce
{
template <class>
class ComSmartPtr;
}

namespace mingw_compat
{
template <class T>
struct InterfaceId
{
    static const GUID& get() { return __mingw_uuidof<T>(); }
};

template <class T>
struct InterfaceId<juce::ComSmartPtr<T>> : InterfaceId<T>
{
};
} // namespace mingw_compat

    #undef __uuidof
    #define __uuidof(expression) ::mingw_compat::InterfaceId<std::remove_cv_t<__typeof (expression)>>::get()

#endif
