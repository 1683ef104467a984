// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <pluginterfaces/base/funknown.h>

#include <memory>
#include <stdexcept>
#include <string>

struct ReleaseInterface
{
    void operator() (Steinberg::FUnknown* object) const { object->release(); }
};

/** A counted reference to an object of a plug-in's. */
template <typename T>
using Interface = std::unique_ptr<T, ReleaseInterface>;

/** Another interface of an object, or none. */
template <typename T>
Interface<T> queryFor (Steinberg::FUnknown& object, const Steinberg::TUID id)
{
    void* found = nullptr;
    return Interface<T> (object.queryInterface (id, &found) == Steinberg::kResultOk ? static_cast<T*> (found)
                                                                                    : nullptr);
}

/** Throws std::runtime_error if a call did not end well. */
inline void require (Steinberg::tresult result, const std::string& what)
{
    if (result != Steinberg::kResultOk)
        throw std::runtime_error (what + " gave " + std::to_string (result));
}
